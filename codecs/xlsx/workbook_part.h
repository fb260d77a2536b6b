// codecs/xlsx/workbook_part.h
// The workbook part: its sheets, and what an update changes in its text.
#pragma once
#include "codecs/opc/markup_scan.h"
#include "codecs/opc/namespaces.h"

#include <QStringList>

#include <vector>

namespace corvanta::xlsx {

struct SheetEntry
{
    QString name;
    quint32 sheetId = 0;
    QByteArray relationshipId;
};

struct Workbook
{
    std::vector<SheetEntry> sheets; ///< in the order of their tabs
    Family family;
    bool has1904Dates = false;

    QStringList sheetNames() const;
    /// An id that no sheet has: the highest plus one.
    quint32 freeSheetId() const;
};

/// Errors: Encoding, Malformed, Unexpected (no workbook, or one without sheets), TooLarge.
Result<Workbook, Error> readWorkbook(QByteArrayView text);

struct DefinedName
{
    QString name;
    QString refersTo;
};

struct WorkbookChange
{
    std::optional<SheetEntry> addedSheet = {};
    /// Takes the place of a name of the whole workbook that is called the same.
    std::optional<DefinedName> definedName = {};
    /// Have everything calculated anew when the workbook is opened.
    bool recalculate = false;
};

/// The text with the change applied. Errors: as readWorkbook.
Result<QByteArray, Error> changedWorkbook(QByteArrayView text, const WorkbookChange &change);

/// `name` where it fits, else with "_2", "_3", ... behind it, so that no other sheet has it (letter
/// case counts) and at most 31 UTF-16 units are used. A longer `name` is cut first.
QString freeSheetName(const QString &name, const QStringList &taken);
inline constexpr qsizetype kMaxSheetNameUnits = 31;

} // namespace corvanta::xlsx
