// Makes texts from files and users safe to print: no character of them controls the terminal or the
// log.
#pragma once
#include <QString>

/// Call `take` with each code point; U+FFFD for half a surrogate pair. Unlike QString::toUcs4() it
/// makes no list, whose allocation Qt does not check.
template <class Take> void forEachCodePoint(QStringView text, Take take)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPair =
            text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair) {
            take(QChar::surrogateToUcs4(text[i], text[i + 1]));
            ++i;
        } else {
            take(text[i].isSurrogate() ? char32_t(QChar::ReplacementCharacter)
                                       : char32_t(text[i].unicode()));
        }
    }
}

/// `text` for one line of a terminal: control characters, line ends and marks that change the
/// writing direction are replaced by escapes such as \n and \x1b.
QString visibleText(const QString &text);

/// The same for a text of several lines: line feeds and tabs stay.
QString visibleLines(const QString &text);
