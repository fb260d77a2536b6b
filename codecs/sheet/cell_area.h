// Areas of cells in A1 notation, with open ends (ECMA-376 part 1, 18.18.62, and more).
#pragma once
#include "codecs/sheet/workbook_reader.h"

#include <QStringView>

#include <optional>

namespace corvanta::sheet {

/// Parse an area: "B2:D9", "B2" (one cell), "B2:" (to the end), ":D9" (from A1), "A:C" (whole
/// columns), "3:10" (whole rows), each with "$" signs and in any letter case. std::nullopt for
/// other text, and for columns or rows that no sheet has.
std::optional<CellArea> parseArea(QStringView text);

/// An area with the sheet that the text names.
struct SheetArea
{
    QString sheet; ///< empty: the text names none
    CellArea area;
};
/// The same after an optional name of a sheet: "Sheet1!A1:C9", "'It''s here'!$A$1".
std::optional<SheetArea> parseSheetArea(QStringView text);

/// The letters and number of a cell, such as "B7", from 0-based positions.
QString cellName(int column, qint64 row);

} // namespace corvanta::sheet
