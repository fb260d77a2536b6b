// Makes texts from files and users safe to print: no character of them controls the terminal or the
// log.
#pragma once
#include <QString>

/// `text` for one line of a terminal: control characters, line ends and marks that change the
/// writing direction are replaced by escapes such as \n and \x1b.
QString visibleText(const QString &text);

/// The same for a text of several lines: line feeds and tabs stay.
QString visibleLines(const QString &text);
