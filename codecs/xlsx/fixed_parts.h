// The parts of a new workbook with one sheet: fixed texts, and the texts that depend on the rows.
#pragma once
#include "codecs/xlsx/namespaces.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QtGlobal>

#include <optional>

namespace corvanta::xlsx {

/// A package member whose content does not depend on the rows.
struct FixedMember
{
    const char *name;
    QByteArray content;
};

/// The members before the sheet, in writing order. `dateFormat` as for numberFormatId().
QList<FixedMember> leadingMembers(int dateFormat);
/// The styles part, one of them. Its cell format 1 is that of dates, 2 that of hyperlinks.
QByteArray newStyles(int dateFormat);

inline constexpr char kSheetPart[] = "xl/worksheets/sheet1.xml";
inline constexpr char kWorkbookPart[] = "xl/workbook.xml";

/// The sheet up to its first row.
QByteArray newSheetHead(const Family &family);
/// The root tag in it.
QByteArray newSheetRoot(const Family &family);
/// The sheet after its last row.
QByteArray newSheetTail();

/// A named range of cells, from column A on.
struct NamedRange
{
    QString name;
    qint64 firstRow = 1; ///< from 1
    qint64 lastRow = 1;  ///< inclusive
    int lastColumn = 0;  ///< from 0, inclusive
};
/// The reference to its cells: 'Sheet'!$A$1:$C$9.
QString rangeReference(const NamedRange &range, QString sheetName);

/// The workbook part with one sheet.
QByteArray newWorkbook(const QString &sheetName, const std::optional<NamedRange> &range);

} // namespace corvanta::xlsx
