// The workbook part (ECMA-376 part 1, 18.2): reads its sheets, and changes its text for an update.
// Threads: pure functions.
#pragma once
#include "base/result.h"
#include "codecs/opc/error.h"
#include "codecs/xlsx/namespaces.h"

#include <QStringList>

#include <optional>
#include <vector>

namespace corvanta::xlsx {

struct SheetEntry
{
    QString name;              ///< unique in its workbook, up to 31 UTF-16 units
    quint32 sheetId = 0;       ///< unique in its workbook; not the number of its member
    QByteArray relationshipId; ///< of the workbook's relationship to the sheet
};

struct Workbook
{
    std::vector<SheetEntry> sheets; ///< in the order of their tabs
    QStringList definedNames;       ///< of the whole workbook, not of one sheet
    Family family;
    bool has1904Dates = false; ///< dates count from 1904-01-01

    /// In the order of the tabs.
    QStringList sheetNames() const;
    /// An id that no sheet has: the highest plus one.
    quint32 freeSheetId() const;
};

/// Read the sheets of the part. Chart sheets and hidden sheets are among them. A sheet without a
/// valid id or relationship is read with 0 or an empty text. Errors: Encoding, Malformed,
/// Unexpected (no workbook, or one without sheets), TooLarge.
Result<Workbook, opc::Error> readWorkbook(QByteArrayView text);

struct DefinedName
{
    QString name;
    QString refersTo; ///< a reference: 'Sheet'!$A$1:$C$9
    /// Index, from 0, of the only sheet that knows the name, which users do not see; -1: all sheets
    /// know it.
    int sheetIndex = -1;

    /// The attributes that say so, with a leading space.
    QByteArray scopeAttributes() const;
};

struct WorkbookChange
{
    /// Are added after the other sheets.
    std::vector<SheetEntry> addedSheets = {};
    /// Each replaces a name of the same scope that has the same spelling (letter case does not
    /// count).
    std::vector<DefinedName> definedNames = {};
    /// Programs calculate all formulas when they open the workbook.
    bool recalculate = false;
};

/// The text with the change applied; all other bytes are as read. Errors: as readWorkbook.
Result<QByteArray, opc::Error> changedWorkbook(QByteArrayView text, const WorkbookChange &change);

/// shortSheetName(), with "_2", "_3", ... if a sheet in `taken` has the name. Letter case counts.
QString freeSheetName(const QString &name, const QStringList &taken);
/// The name of a sheet that continues the sheet `name`: with " (2)", " (3)", ..., the first that no
/// sheet in `taken` has, in any letter case.
QString nextSheetName(const QString &name, const QStringList &taken);

} // namespace corvanta::xlsx
