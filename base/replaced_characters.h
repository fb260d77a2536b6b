// Counts characters that a file cannot hold, for one warning per file.
#pragma once
#include <QString>

namespace corvanta {

/// Characters that were replaced by U+FFFD: unpaired surrogates, which UTF-8 cannot encode, and
/// those that the format excludes. Threads: one at a time.
struct ReplacedCharacters
{
    qint64 count = 0;
    /// Row of the first one, from 1; 0 for a column name. Unused without one.
    qint64 firstRow = 0;
};

/// The warning. `column` has the first one; empty if it is not known.
QString replacedMessage(const ReplacedCharacters &replaced, const QString &file,
                        const QString &column);

} // namespace corvanta
