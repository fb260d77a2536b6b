// Places the cells of an HTML table in columns, with their rowspan and colspan (HTML standard,
// section 4.9.12.1).
#pragma once
#include "codecs/markup/text/raw_text.h"

#include <QtGlobal>

#include <vector>

namespace corvanta::markup {

/// How many columns and rows a cell covers.
struct CellSpan
{
    /// 1 to kMaxColumnSpan.
    quint32 columns = 1;
    /// 1 to kMaxRowSpan; 0: all rows to the end of the group (thead, tbody, tfoot).
    quint32 rows = 1;

    /// The limits of the HTML standard (section 4.9.11). A larger number means the limit.
    static constexpr quint32 kMaxColumns = 1000;
    static constexpr quint32 kMaxRows = 65534;

    /// Use an attribute of a cell; every one but "colspan" and "rowspan" has no effect.
    void readAttribute(const RawText &name, const RawText &value);
};

/// Columns count from 0. Threads: one at a time.
class SpanGrid
{
public:
    /// Begin a table.
    void clear();
    /// Begin a group of rows: cells of the rows before it end.
    void beginGroup() { m_firstRow = m_row + 1; }
    void beginRow();
    /// Place the next cell of the row; returns its first column. A cell that spans columns covers
    /// them also where a cell of an earlier row is. Limits `span->columns` to the columns that it
    /// really covers.
    quint32 place(CellSpan *span);

    /// True when a cell of an earlier row covers `column` in the current one.
    bool isCarried(quint32 column) const
    {
        return column < m_slots.size() && m_slots[column].begin >= m_firstRow &&
               m_slots[column].begin < m_row && m_slots[column].end > m_row;
    }
    /// Number of columns of the widest row so far.
    quint32 width() const { return static_cast<quint32>(m_slots.size()); }

    /// Cells span columns only below this one, so that a few bytes do not make a huge table. A cell
    /// after it has one column.
    static constexpr quint32 kMaxSpannedColumns = 16'384;

private:
    /// The cell that covers a column: its first row, and the row after its last one.
    struct Slot
    {
        quint32 begin = 0;
        quint32 end = 0;
    };

    std::vector<Slot> m_slots;
    /// From 1, so that slots without a cell end before it.
    quint32 m_row = 0;
    /// Of the group.
    quint32 m_firstRow = 1;
    /// Where the search for the column of the next cell begins.
    quint32 m_next = 0;
};

} // namespace corvanta::markup
