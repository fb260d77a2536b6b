// Rows in order, and merged areas filled. Both pass rows on as they come and keep only what later
// rows need: sorting keeps all rows, filling the first cell of each area that has begun.
//
//   rows 3 1 2 1    sorted: 1 2 3; the cells of both rows 1 are joined
//   A1:B2 merged    filled: A1, B1, A2 and B2 have the value of A1
#include "codecs/sheet/row_filters.h"

#include <QString>

#include <algorithm>
#include <deque>
#include <span>
#include <string>

using namespace Qt::StringLiterals;

namespace corvanta::sheet {

namespace {

/// A row with memory of its own.
struct KeptRow
{
    KeptRow() = default;
    // Only moved: a copy would refer to the texts of its original.
    KeptRow(KeptRow &&) = default;
    KeptRow &operator=(KeptRow &&) = default;

    qint64 number = 0;
    bool isHidden = false;
    std::vector<SheetCell> cells;
    std::deque<std::u16string> texts; // of the cells; they do not move
};

/// Add a copy of the cell.
void addCopy(const SheetCell &cell, KeptRow *row)
{
    row->cells.push_back(cell);
    if (!cell.text.empty()) {
        row->texts.emplace_back(cell.text);
        row->cells.back().text = row->texts.back();
    }
}

/// Add copies of all cells; those of `row` itself must not be among them.
void addCopies(std::span<const SheetCell> cells, KeptRow *row)
{
    for (const SheetCell &cell : cells) {
        addCopy(cell, row);
    }
}

/// The memory that a kept copy of the row takes, or a little more.
qint64 bytesOf(const SheetRow &row)
{
    constexpr size_t kTextBytes = sizeof(std::u16string);
    size_t bytes = sizeof(KeptRow) + 512; // a deque has a block of its own
    for (const SheetCell &cell : row.cells) {
        bytes += sizeof(SheetCell) + kTextBytes + cell.text.size() * sizeof(char16_t);
    }
    return static_cast<qint64>(bytes);
}

/// Sort the cells; of several at one place the last one remains.
void orderCells(std::vector<SheetCell> *cells)
{
    const auto column = [](const SheetCell &cell) { return cell.column; };
    std::ranges::stable_sort(*cells, {}, column);
    size_t kept = 0;
    for (const SheetCell &cell : std::vector<SheetCell>(*cells)) {
        kept -= kept > 0 && (*cells)[kept - 1].column == cell.column ? 1 : 0;
        (*cells)[kept++] = cell;
    }
    cells->resize(kept);
}

/// The last column of an area that is filled: a merged area of whole rows has no last one.
int lastFilled(const CellArea &area)
{
    constexpr int kMaxFilled = 16384;
    return std::min(area.lastColumn, area.firstColumn + kMaxFilled - 1);
}

/// Reads all rows of its source before it delivers the first one.
class SortedRows final : public SheetRows
{
public:
    SortedRows(std::unique_ptr<SheetRows> rows, qint64 maxBytes)
        : m_source(std::move(rows))
        , m_maxBytes(maxBytes)
    {
    }
    WorkbookResult<bool> next(SheetRow *row) override
    {
        if (!m_isRead) {
            if (const auto read = readAll(); !read) {
                return read.fault();
            }
        }
        if (m_at == m_rows.size()) {
            return false;
        }
        const KeptRow &kept = m_rows[m_at++];
        *row = {kept.number, kept.isHidden, kept.cells};
        return true;
    }
    double fractionDone() const override { return m_source->fractionDone(); }
    const SheetProblems &problems() const override { return m_source->problems(); }

private:
    /// Errors: those of the source; TooLarge, when a sheet out of order does not fit the memory.
    WorkbookResult<void> readAll()
    {
        SheetRow row;
        qint64 bytes = 0;
        for (;;) {
            const auto more = m_source->next(&row);
            if (!more) {
                return more.fault();
            }
            if (!*more) {
                break;
            }
            bytes += bytesOf(row);
            if (bytes > m_maxBytes) {
                return Fault{WorkbookError::TooLarge,
                             u"its rows are not in order and too many to be sorted"_s};
            }
            keep(row);
        }
        m_isRead = true;
        std::ranges::stable_sort(m_rows, {}, [](const KeptRow &one) { return one.number; });
        joinEqual();
        return {};
    }
    void keep(const SheetRow &row)
    {
        KeptRow &kept = m_rows.emplace_back();
        kept.number = row.number;
        kept.isHidden = row.isHidden;
        addCopies(row.cells, &kept);
    }
    /// Join the rows that have one number.
    void joinEqual()
    {
        size_t kept = 0;
        for (size_t i = 0; i < m_rows.size(); ++i) {
            if (kept > 0 && m_rows[kept - 1].number == m_rows[i].number) {
                addCopies(m_rows[i].cells, &m_rows[kept - 1]);
                orderCells(&m_rows[kept - 1].cells);
            } else if (kept++ != i) {
                m_rows[kept - 1] = std::move(m_rows[i]);
            }
        }
        m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(kept), m_rows.end());
    }

    std::unique_ptr<SheetRows> m_source;
    const qint64 m_maxBytes;
    bool m_isRead = false;
    std::deque<KeptRow> m_rows;
    size_t m_at = 0;
};

/// Adds rows where the source has none inside a merged area.
class FilledRows final : public SheetRows
{
public:
    FilledRows(std::unique_ptr<SheetRows> rows, std::vector<CellArea> merged)
        : m_source(std::move(rows))
        , m_merged(std::move(merged))
    {
        std::ranges::sort(m_merged, {}, [](const CellArea &area) { return area.firstRow; });
    }
    WorkbookResult<bool> next(SheetRow *row) override
    {
        if (!m_hasRow) {
            auto more = m_source->next(&m_row);
            if (!more || !*more) {
                return more;
            }
            m_hasRow = true;
        }
        // Rows that the source leaves out, inside an area that has begun.
        endAreas();
        if (m_number < m_row.number && !m_active.empty()) {
            return fill({m_number++, false, {}}, row);
        }
        m_number = m_row.number;
        beginAreas();
        m_hasRow = false;
        ++m_number;
        return fill(m_row, row);
    }
    double fractionDone() const override { return m_source->fractionDone(); }
    const SheetProblems &problems() const override { return m_source->problems(); }

private:
    struct ActiveArea
    {
        CellArea area;
        KeptRow first; ///< its first cell, or none
    };

    /// Forget the areas that end above the next row.
    void endAreas()
    {
        std::erase_if(m_active, [&](const ActiveArea &one) { return one.area.lastRow < m_number; });
    }
    /// Begin the areas whose first row is m_row, up to one more than fill() accepts. An area whose
    /// first row has no cells is empty.
    void beginAreas()
    {
        endAreas();
        const auto isBegun = [&] {
            return m_next < m_merged.size() && m_merged[m_next].firstRow <= m_number &&
                   std::ssize(m_active) <= kMaxRowFilled;
        };
        for (; isBegun(); ++m_next) {
            // The source left out its first row, and with it the value.
            if (m_merged[m_next].firstRow < m_number) {
                continue;
            }
            ActiveArea one{m_merged[m_next], {}};
            const auto first =
                std::ranges::lower_bound(m_row.cells, one.area.firstColumn, {},
                                         [](const SheetCell &cell) { return cell.column; });
            if (first != m_row.cells.end() && first->column == one.area.firstColumn) {
                addCopy(*first, &one.first);
                m_active.push_back(std::move(one));
            }
        }
    }
    /// `from` with the cells of the areas. Returns true. Errors: TooLarge.
    WorkbookResult<bool> fill(const SheetRow &from, SheetRow *to)
    {
        m_cells.assign(from.cells.begin(), from.cells.end());
        qint64 filled = 0;
        for (const ActiveArea &one : m_active) {
            SheetCell cell = one.first.cells.front();
            const int last = lastFilled(one.area);
            filled += last - one.area.firstColumn + 1;
            if (filled > kMaxRowFilled || m_filled + filled > kMaxFilled) {
                return Fault{WorkbookError::TooLarge,
                             u"its merged ranges have too many cells; use fillMerged='0'"_s};
            }
            for (cell.column = one.area.firstColumn; cell.column <= last; ++cell.column) {
                m_cells.push_back(cell);
            }
        }
        if (!m_active.empty()) {
            orderCells(&m_cells);
        }
        m_filled += filled;
        *to = {from.number, from.isHidden, m_cells};
        return true;
    }

    // Cells that are filled, of a row and of all rows. Areas of whole sheets, or many at one place,
    // would take hours and gigabytes.
    static constexpr qint64 kMaxRowFilled = qint64(64) << 10;
    static constexpr qint64 kMaxFilled = qint64(32) << 20;

    std::unique_ptr<SheetRows> m_source;
    std::vector<CellArea> m_merged; // by their first rows
    size_t m_next = 0;              // of m_merged: not begun yet
    std::vector<ActiveArea> m_active;
    SheetRow m_row;
    bool m_hasRow = false; // m_row is not delivered yet
    qint64 m_number = 0;   // of the next row
    qint64 m_filled = 0;   // cells of all rows
    std::vector<SheetCell> m_cells;
};

} // namespace

std::unique_ptr<SheetRows> sortedRows(std::unique_ptr<SheetRows> rows, qint64 maxBytes)
{
    return std::make_unique<SortedRows>(std::move(rows), maxBytes);
}

std::unique_ptr<SheetRows> filledRows(std::unique_ptr<SheetRows> rows, std::vector<CellArea> merged)
{
    return std::make_unique<FilledRows>(std::move(rows), std::move(merged));
}

} // namespace corvanta::sheet
