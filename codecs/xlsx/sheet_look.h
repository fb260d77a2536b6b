// How the sheets that a run creates look, apart from their cells.
#pragma once
#include <QStringList>
#include <QtGlobal>

#include <optional>
#include <vector>

namespace corvanta::xlsx {

/// The parts of the header row and the filter need a header in row 1.
struct SheetLook
{
    bool hasBoldHeader = false;
    bool hasFilledHeader = false; ///< a light blue background
    bool freezesHeader = false;   ///< the header row stays visible when the sheet is scrolled
    bool hasFilter = false;       ///< the header cells have menus that sort and filter the rows
    /// WorkbookTarget::nextSheet() may be called. The content types then follow the sheets.
    bool mayContinue = false;
    /// Widths by column, in digits of the default font; 0 or no entry: the default width.
    std::vector<double> widths = {};
    /// Number formats by column (ECMA-376 part 1, 18.8.31); empty or no entry: that of the cells.
    QStringList formats = {};

    /// Whether cells need formats that a workbook does not have.
    bool needsStyles() const
    {
        return hasBoldHeader || hasFilledHeader || !formats.join(QString()).isEmpty();
    }
};

/// The cell formats (the s attribute) of such a sheet.
struct LookStyles
{
    std::optional<quint64> header = {};
    std::vector<std::optional<quint64>> columns = {}; ///< one per entry of SheetLook::formats
};

} // namespace corvanta::xlsx
