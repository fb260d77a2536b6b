// codecs/sheet/new_workbook.h
// The fixed parts of a workbook with one sheet, and the texts that depend on what was written.
//
// Format: ECMA-376 part 1 (SpreadsheetML) and part 2 (packages).
#pragma once
#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <span>

namespace corvanta::sheet {

/// A package member whose content does not depend on the rows.
struct FixedMember
{
    const char *name;
    QByteArray content;
};

/// numFmtId of the date display formats 0 to 11; formats 0 to 2 are `ownBase` + format (a format of
/// ours).
int dateNumFmtId(int dateFormat, int ownBase);

/// Members in front of the sheet, in writing order. `dateFormat` (0 to 11) is how date cells are
/// shown.
QList<FixedMember> leadingMembers(int dateFormat);

inline constexpr char kSheetMember[] = "xl/worksheets/sheet1.xml";
inline constexpr char kSheetRelsMember[] = "xl/worksheets/_rels/sheet1.xml.rels";
inline constexpr char kWorkbookMember[] = "xl/workbook.xml";

/// Cells of style 1 (dates) and 2 (hyperlinks) of those members start with these.
inline constexpr char kNewDatePrefix[] = "\" s=\"1\"><v>";
inline constexpr char kNewLinkPrefix[] = "\" s=\"2\" t=\"inlineStr\"><is><t>";

/// The sheet up to its first row.
QByteArray sheetHead();
/// The sheet from behind its last row; `hyperlinks` is the hyperlink block or empty.
QByteArray sheetTail();
QByteArray sheetEndOfRows();

/// The range that a defined name covers; rows from 1, columns from 0.
struct NamedRange
{
    QString name;
    QString sheetName;
    qint64 firstRow = 1;
    qint64 lastRow = 1;
    int lastColumn = 0;
};
/// The reference to its cells: 'Sheet'!$A$1:$C$9.
QString rangeReference(const NamedRange &range);
/// One definedName element.
QByteArray definedName(const NamedRange &range);

/// xl/workbook.xml with one sheet; `definedNames` (elements, may be empty) behind the sheets.
QByteArray workbook(const QString &sheetName, const QByteArray &definedNames);

/// A sheet name as it stands in workbook.xml: "&" and the double quote escaped, nothing else.
QByteArray escapeSheetName(const QString &name);

} // namespace corvanta::sheet
