// What of a file the levels did not read, for one message per cause.
#pragma once
#include "base/occurrences.h"

#include <QString>

#include <functional>
#include <vector>

namespace corvanta::markup {

/// A path without an index that matched further elements, which are not read.
struct RepeatedPath
{
    /// As given.
    QString path;
    /// Matches after the first one, in all occurrences together.
    qint64 count = 0;
    /// Place of the first of them.
    QString first;
};

/// Collected while a file is read. Places are texts such as "line 3, column 5".
struct UnreadParts
{
    /// Text at the top of a document, outside of its elements or values.
    Occurrences strayTexts;
    /// Occurrences that are a single text, in which no item of their level was found: rows without
    /// a cell.
    Occurrences bareValues;
    /// The same for JSON arrays with values.
    Occurrences bareArrays;
    /// Elements and attributes of occurrences that no item reads; the place of the first, with its
    /// path from the occurrence. Only with ExtractOptions::countsUnread.
    qint64 unreadItems = 0;
    QString firstUnreadPath;
    QString firstUnreadPlace;
    /// Elements, values and texts that no path leads to; the place of the first, with its name.
    /// Only with ExtractOptions::countsUnread.
    Occurrences outside;
    /// Bytes after a NUL that ended the data; its place is `nulPlace`.
    qint64 bytesAfterNul = 0;
    QString nulPlace;
    /// Filled at the end of the file.
    std::vector<RepeatedPath> repeatedPaths;
};

/// Writes a position for messages: the line counts from 1, the column from 0.
using PlaceText = std::function<QString(qint64 line, qint64 column)>;

/// "line 3, column 5", where both count from 1.
QString placeText(qint64 line, qint64 column);

} // namespace corvanta::markup
