// Measures how wide the columns of a sheet must be for its first rows.
#pragma once
#include "base/row_view.h"
#include "codecs/sheet/sheet_writer.h"

#include <QStringList>

namespace corvanta::sheet {

/// Widths are in digits of the default font, with room for the margins of a cell. They are
/// estimates: the real width of a text depends on its font. Threads: one at a time.
class ColumnMeter
{
public:
    /// What add() needs of the sheet.
    struct Setup
    {
        std::vector<Column> columns;
        FloatFormat floatFormat;
        bool urlTag = false;         ///< the labels of hyperlinks count, not their addresses
        std::vector<int> dateDigits; ///< by column: cells of dates are at least so wide; else 0
        QStringList formats;         ///< number formats by column, as in xlsx::SheetLook
    };
    explicit ColumnMeter(Setup setup);

    /// Count the names of the columns, which may be bold and have the button of a filter.
    void addHeader(bool isBold, bool hasButton);
    void add(const RowView &row);
    /// Rows that were added.
    qint64 rows() const { return m_rows; }
    /// The widths by column, between limits that keep a sheet readable.
    std::vector<double> widths() const;

private:
    double widthOf(size_t column, const RowView &row) const;
    double numberWidth(size_t column, double value) const;
    double textWidth(size_t column, std::u16string_view text) const;

    Setup m_setup;
    std::vector<double> m_formatWidths; // by column: of the literal part of a number format
    std::vector<double> m_widths;
    qint64 m_rows = 0;
};

} // namespace corvanta::sheet
