// The scan looks at every cell once and keeps only bits and counts per column. A sheet of any
// length needs the same memory.
#include "actions/workbook/sheet_scan.h"

#include "codecs/sheet/cell_area.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// The state of one scan.
class Scan
{
public:
    explicit Scan(const ScanOptions &options)
        : m_options(options)
    {
        m_result.firstRow = options.walk.area.firstRow;
    }

    /// Take a step of the walk. Returns false when no more are needed.
    bool take(const WalkStep &step)
    {
        if (m_needsHeader && step.kind == WalkStep::Kind::Row) {
            takeHeader(step);
            return true;
        }
        if (m_needsHeader && m_options.headerIsFirstRow) {
            // An empty header: all names are generated.
            setHeaderRow(step.row);
        }
        if (step.kind == WalkStep::Kind::Row) {
            takeRow(step);
            ++m_rows;
        }
        return m_options.sampleRows == 0 || !m_options.sampleOnly || m_rows < m_options.sampleRows;
    }
    SheetScan &result() { return m_result; }
    /// All rows are taken: note the columns that a few values make text columns.
    void finish()
    {
        constexpr size_t kMaxMixed = 20;
        for (size_t i = 0; i < m_kinds.size() && m_result.mixed.size() < kMaxMixed; ++i) {
            if (auto mixed = m_kinds[i].mixed()) {
                mixed->column = i;
                m_result.mixed.push_back(*std::move(mixed));
            }
        }
    }
    bool isSampled() const { return m_options.sampleRows == 0 || m_rows < m_options.sampleRows; }

private:
    ScannedColumn &column(int number)
    {
        const auto index = static_cast<size_t>(number - m_options.walk.area.firstColumn);
        if (index >= m_result.columns.size()) {
            m_result.columns.resize(index + 1);
        }
        return m_result.columns[index];
    }
    /// The data begins below the header.
    void setHeaderRow(qint64 row)
    {
        m_needsHeader = false;
        m_result.headerRow = row;
        m_result.firstRow = row + 1;
    }
    /// Names are trimmed: blanks around them cannot be seen in a sheet.
    void takeHeader(const WalkStep &step)
    {
        setHeaderRow(step.row);
        for (const sheet::SheetCell &cell : step.cells) {
            column(cell.column).name = m_options.rules.textOf(cell).trimmed();
        }
    }
    void takeRow(const WalkStep &step)
    {
        m_result.lastRow = step.row;
        m_result.cells += static_cast<qint64>(step.cells.size());
        column(step.cells.back().column); // makes room for the others
        m_kinds.resize(m_result.columns.size());
        const bool isSampled = this->isSampled();
        ScannedColumn *const columns = m_result.columns.data();
        for (const sheet::SheetCell &cell : step.cells) {
            const auto index = static_cast<size_t>(cell.column - m_options.walk.area.firstColumn);
            const quint16 content = m_options.rules.contentOf(cell);
            if (content == 0) {
                addMissing(cell, step.row);
                continue;
            }
            if (m_kinds[index].add(content)) {
                m_kinds[index].setFirst(content, step.row, cell.column,
                                        m_options.rules.textOf(cell));
            }
            if ((content & ~columns[index].content) != 0) {
                addContent(content, isSampled, step.row, &columns[index]);
            }
        }
    }
    /// Count a cell without a value if it had an error.
    void addMissing(const sheet::SheetCell &cell, qint64 row)
    {
        if (cell.kind == sheet::CellKind::Error) {
            m_result.errors.add(
                [&] { return u"cell %1"_s.arg(sheet::cellName(cell.column, row)); });
        }
    }
    /// Add what the column did not have yet, and note the first row that changes its type.
    static void addContent(quint16 content, bool isSampled, qint64 row, ScannedColumn *column)
    {
        const bool changesType = typeOf(column->content | content) != typeOf(column->content);
        column->content |= content;
        if (isSampled) {
            column->sampled |= content;
        } else if (changesType && column->sampled != 0 && column->firstNew < 0) {
            column->firstNew = row;
        }
    }

    const ScanOptions &m_options;
    bool m_needsHeader = m_options.hasHeader;
    qint64 m_rows = 0;                // with cells
    std::vector<ColumnKinds> m_kinds; // of the columns
    SheetScan m_result;
};

} // namespace

sheet::WorkbookResult<SheetScan> scanSheet(std::unique_ptr<sheet::SheetRows> rows,
                                           const ScanOptions &options)
{
    SheetWalker walker(std::move(rows), options.walk);
    Scan scan(options);
    for (;;) {
        const auto step = walker.next();
        if (!step) {
            return step.fault();
        }
        if (step->kind == WalkStep::Kind::End || !scan.take(*step)) {
            scan.result().isComplete = step->kind == WalkStep::Kind::End;
            scan.result().problems = walker.rows().problems();
            scan.finish();
            return std::move(scan.result());
        }
    }
}

} // namespace corvanta
