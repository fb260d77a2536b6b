// Consecutive rows of a table as texts, in few blocks of memory: a preview may have millions of
// cells.
//
// Threads: one thread fills a chunk, afterwards any thread may read it.
#pragma once
#include <QString>
#include <QStringView>

#include <memory>
#include <string>
#include <vector>

class OneRow;

namespace corvanta::studio {

class RowChunk
{
public:
    explicit RowChunk(int columns)
        : m_columns(columns)
    {
    }
    /// Append a row, which has as many columns. Cells longer than kMaxCellUnits are cut; returns
    /// their number.
    int add(const OneRow &row);

    int rows() const { return m_rows; }
    /// A cell by its row in the chunk. A null view: the cell is missing. Valid as long as the
    /// chunk.
    QStringView text(int row, int column) const;
    /// Whether a cell may contain the text: false means that none does. Ignores case.
    bool mayContain(QStringView text) const;
    /// The memory that it takes.
    qsizetype bytes() const;

    /// A cell may hold a whole document.
    static constexpr int kMaxCellUnits = 32'767;

private:
    /// Set in an end for a missing cell.
    static constexpr quint32 kMissing = 0x80000000U;

    int m_columns;
    int m_rows = 0;
    std::u16string m_text;       // of all cells, without gaps
    std::vector<quint32> m_ends; // of each cell in m_text, in units
};

using RowChunkPtr = std::shared_ptr<const RowChunk>;

} // namespace corvanta::studio
