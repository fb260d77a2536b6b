// The parts of a new workbook with one sheet: fixed texts, and the texts that depend on the rows.
// All texts are UTF-8; fixed_parts.cpp lists the members. Threads: pure functions.
#pragma once
#include "codecs/xlsx/namespaces.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <array>
#include <optional>
#include <vector>

namespace corvanta::xlsx {

/// A package member whose content does not depend on the rows.
struct FixedMember
{
    const char *name; ///< in the package, for example "xl/styles.xml"
    QByteArray content;
};

/// The members before the sheet, in writing order, which begins with the content types. They name
/// the sheet and the workbook that are written later. `dateFormat` as for numberFormatId().
std::array<FixedMember, 4> leadingMembers(int dateFormat, bool hasDays);
/// The styles part, one of them. Its cell format 1 is that of dates, 2 that of hyperlinks and, with
/// `hasDays`, kDayStyle that of dates without a time.
QByteArray newStyles(int dateFormat, bool hasDays);

inline constexpr quint64 kDayStyle = 3;

inline constexpr char kSheetPart[] = "xl/worksheets/sheet1.xml";
inline constexpr char kWorkbookPart[] = "xl/workbook.xml";

/// The sheet up to its first row, with its XML declaration. Not only for new workbooks: an update
/// that adds a sheet passes the family of the workbook. `widths` is a columnWidths() element or
/// empty.
QByteArray newSheetHead(const Family &family, const QByteArray &widths);
/// The element that makes these columns (from 0) as wide as `width` digits; empty for none.
QByteArray columnWidths(const std::vector<int> &columns, int width);
/// The root tag in it, which declares the prefix r for ids of relationships.
QByteArray newSheetRoot(const Family &family);
/// The sheet after its last row; it has the place for hyperlinks (see withHyperlinks()).
QByteArray newSheetTail();

/// A named range of cells, from column A on.
struct NamedRange
{
    QString name;
    qint64 firstRow = 1; ///< from 1
    qint64 lastRow = 1;  ///< inclusive
    int lastColumn = 0;  ///< from 0, inclusive
};
/// The reference to its cells: 'Sheet'!$A$1:$C$9 (ECMA-376 part 1, 18.17.2.3). Not escaped for XML.
QString rangeReference(const NamedRange &range, QString sheetName);

/// The workbook part with one sheet, and with a defined name if `range` is set. Kept for saved
/// graphs: "<" in `sheetName` is not escaped, so such a name makes the part invalid; the caller
/// warns about it.
QByteArray newWorkbook(const QString &sheetName, const std::optional<NamedRange> &range);

} // namespace corvanta::xlsx
