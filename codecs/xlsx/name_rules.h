// Which names of sheets and of ranges spreadsheet programs accept. Threads: pure functions.
#pragma once
#include <QString>
#include <QStringList>
#include <QVector>

namespace corvanta::xlsx {

/// Why spreadsheet programs reject a name. Most report the whole workbook as damaged then.
enum class NameFault : quint8 {
    Empty,
    Character, ///< one of / \ ? * [ ] : or a control character
    Quote,     ///< an apostrophe at an end
    Reserved,  ///< "History", in any letter case
    OnlyCase,  ///< differs only in letter case from the name of another sheet
    NotAName,  ///< of a range: not a letter or "_" followed by letters, digits, "_" and "."
    Reference, ///< of a range: reads as a reference to a cell, a row or a column
    TooLong,   ///< of a range: has more than 255 characters
};

/// The faults of the name of a sheet; `others` are the names of the other sheets.
QVector<NameFault> sheetNameFaults(const QString &name, const QStringList &others);
/// The faults of a defined name. Writers use the name all the same: other programs may accept it.
QVector<NameFault> rangeNameFaults(const QString &name);
/// The one of `names` that differs from `name` only in letter case; empty if there is none.
QString sameButCase(const QString &name, const QStringList &names);

} // namespace corvanta::xlsx
