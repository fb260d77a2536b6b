// The parts of a new workbook: fixed texts, and the texts that depend on the rows.
// All texts are UTF-8; fixed_parts.cpp lists the members. Threads: pure functions.
#pragma once
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/namespaces.h"
#include "codecs/xlsx/sheet_look.h"
#include "codecs/xlsx/workbook_part.h"

#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace corvanta::xlsx {

/// Formats of date cells that a workbook has in addition to its own choice.
struct MoreFormats
{
    bool days = false;      ///< yyyy/mm/dd, of ISO dates without a time
    bool dateTimes = false; ///< yyyy/mm/dd h:mm:ss, and that of days for dates without a time
    bool times = false;     ///< h:mm:ss
};

/// A package member whose content does not depend on the rows.
struct FixedMember
{
    const char *name; ///< in the package, for example "xl/styles.xml"
    QByteArray content;
};

/// The members that say what the package contains, in writing order: the content types first, then
/// relationships. They name the workbook, its styles and `sheets` sheets.
std::array<FixedMember, 3> packageMembers(int sheets);
/// The styles part. Its cell format 1 is that of dates, 2 that of hyperlinks; those of `more`
/// follow; setMoreStyles() says which are which. `dateFormat` as for numberFormatId().
QByteArray newStyles(int dateFormat, const MoreFormats &more);

inline constexpr quint64 kFirstMoreStyle = 3;
/// Set the cell formats that newStyles() gives to `more`.
void setMoreStyles(const MoreFormats &more, sheet::SheetOptions *options);

inline constexpr char kStylesPart[] = "xl/styles.xml";
/// The part of sheet `number`, from 1.
QByteArray sheetPart(int number);
inline constexpr char kWorkbookPart[] = "xl/workbook.xml";

/// The sheet up to its first row, with its XML declaration. Not only for new workbooks: an update
/// that adds a sheet passes the family of the workbook.
QByteArray newSheetHead(const Family &family, const SheetLook &look);
/// The root tag in it, which declares the prefix r for ids of relationships.
QByteArray newSheetRoot(const Family &family);
/// The sheet after its last row; it has the place for hyperlinks (see withHyperlinks()).
/// `filterRange`, such as A1:C9, gets a filter unless it is empty.
QByteArray newSheetTail(const QByteArray &filterRange);

/// A named range of cells, starting in column A.
struct NamedRange
{
    QString name;
    qint64 firstRow = 1; ///< from 1
    qint64 lastRow = 1;  ///< inclusive
    int lastColumn = 0;  ///< from 0, inclusive
    QString sheet = {};  ///< name of its sheet; empty: the sheet that was written last
};
/// The reference to its cells: 'Sheet'!$A$1:$C$9 (ECMA-376 part 1, 18.17.2.3). Not escaped for XML.
QString rangeReference(const NamedRange &range, QString sheetName);
/// The hidden name that programs give to the range of a sheet's filter (18.2.5). `range` has a row
/// of names; rows and columns that programs cannot read are left out. `sheetIndex` is from 0.
DefinedName filterName(const NamedRange &range, const QString &sheetName, int sheetIndex);
/// The range of that filter, as in newSheetTail().
QByteArray filterRange(const NamedRange &range);

/// The workbook part. Kept for saved graphs: "<" in names of sheets is not escaped, so such a name
/// makes the part invalid; the caller warns about it.
QByteArray newWorkbook(const QStringList &sheets, const std::vector<DefinedName> &names);

} // namespace corvanta::xlsx
