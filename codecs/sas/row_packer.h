// Packs rows of cells into blocks: texts become bytes of the file's encoding and are cut to the
// widths of their columns. The layout of a packed row is in table_writer.h.
//
// What is lost is counted per column; the caller words the warnings. Rows are packed as soon as
// they arrive, because the cells of a row live only until the next one, and widths may still be
// unknown: a packed text therefore has its own size, and is padded when the file is written.
#pragma once
#include "base/cell.h"
#include "codecs/sas/iso_date.h"
#include "codecs/sas/text_encoder.h"

#include <span>
#include <string_view>
#include <vector>

namespace corvanta::sas {

/// A column of the input that is written.
struct PackedColumn
{
    int input = 0; ///< index of its cell in a row
    cell::Type type = cell::Type::Text;
    int maxBytes = 0;               ///< texts: longer ones are cut, between characters
    DateUnit date = DateUnit::None; ///< texts: stored as dates, which are numbers
    bool isBoolean = false;         ///< texts: true and false are stored as 1 and 0

    /// Whether its values are stored as texts.
    bool isText() const { return type == cell::Type::Text && date == DateUnit::None && !isBoolean; }
};

/// Events of one kind in a column: their number and the first row.
struct RowCount
{
    qint64 count = 0;
    qint64 firstRow = 0;

    void add(qint64 row, qint64 n = 1)
    {
        firstRow = count == 0 ? row : firstRow;
        count += n;
    }
};

/// What happened to the values of a column.
struct ColumnReport
{
    qsizetype longest = 0; ///< bytes of the longest text, before it was cut
    RowCount cut;          ///< texts
    RowCount replaced;     ///< characters that the encoding does not have
    RowCount notNumbers;   ///< NaN values, which are stored as missing
    RowCount notDates;     ///< texts of a column of dates, which are stored as missing
    RowCount zones;        ///< dates with times whose zone is not stored
    RowCount notBooleans;  ///< texts of a column of booleans, which are stored as missing
};

/// A text of the last row that was cut.
struct CutText
{
    size_t column;   ///< index in the packed columns
    qsizetype bytes; ///< before it was cut
};

/// Threads: one at a time per object. `encoder` must outlive it.
class RowPacker
{
public:
    RowPacker(const TextEncoder &encoder, std::vector<PackedColumn> columns);

    /// Append a row; `row` is its number for the reports. `cells` has all cells of the input row,
    /// also those that are not written.
    void add(const uchar *const *cells, qint64 row);
    /// The texts of the last row that were cut, in the order of the columns.
    std::span<const CutText> cutTexts() const { return m_cut; }
    /// Whole rows since clear(); valid until the next call of a function that is not const.
    std::string_view block() const { return {m_block.data(), m_used}; }
    /// True when block() is so long (1 MiB) that it should be stored now.
    bool isFull() const { return m_used >= kBlockBytes; }
    /// Forget the rows of block(), which the caller has stored. The reports stay.
    void clear() { m_used = 0; }
    /// As given to the constructor.
    const std::vector<PackedColumn> &columns() const { return m_columns; }
    /// One for each column, about all rows so far.
    const std::vector<ColumnReport> &reports() const { return m_reports; }

private:
    static constexpr size_t kBlockBytes = size_t(1) << 20;

    /// Room for `bytes` more bytes at the end of the block.
    char *room(size_t bytes)
    {
        if (m_block.size() - m_used < bytes) [[unlikely]] {
            grow(bytes);
        }
        return m_block.data() + m_used;
    }
    void addDouble(size_t column, double value, qint64 row);
    /// The slow part of room(): the block becomes at least twice as large.
    void grow(size_t bytes);
    void addNumber(double value);
    void addDate(size_t column, const uchar *cell, qint64 row);
    void addBoolean(size_t column, const uchar *cell, qint64 row);
    void addText(size_t column, const uchar *cell, qint64 row);

    const TextEncoder &m_encoder;
    std::vector<PackedColumn> m_columns;
    std::vector<ColumnReport> m_reports;
    std::vector<CutText> m_cut;
    std::vector<char> m_block;
    size_t m_used = 0;
};

} // namespace corvanta::sas
