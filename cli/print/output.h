// Standard output of the commands, in UTF-8 whatever the locale is: programs read it, too.
//
// The reason of the first failed write is kept until the program ends, because the stream itself
// only knows that one failed.
// Threads: one at a time.
#pragma once
#include "cli/command_line.h"

class QJsonDocument;

/// Write to the buffer of standard output.
void printBytes(QByteArrayView bytes);
void printText(const QString &text);
void printJson(const QJsonDocument &document); ///< indented, with a line feed at the end

/// Write what is left in the buffer, before the program ends. The fault is kFailed: a program that
/// reads the output must not mistake a part of it for the whole.
CommandResult<void> flushOutput();
