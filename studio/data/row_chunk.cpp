// The texts of all cells are one text; a second list has their ends:
//
//     row 0: "12" "abc" missing, row 1: "" ...   text 12abc...   ends 2 5 5|missing 5 ...
//
// A cell begins where the one before it ends, so that a missing cell takes 4 bytes, and a list of
// 100,000 rows needs a few hundred allocations.
#include "studio/data/row_chunk.h"

#include "corvanta/one_row.h"

namespace corvanta::studio {

/// A cut is made between two units; half of a character outside the basic plane is shown as a box.
int RowChunk::add(const OneRow &row)
{
    int cut = 0;
    for (int i = 0; i < m_columns; ++i) {
        const QStringView text = row.textView(i);
        cut += text.size() > kMaxCellUnits ? 1 : 0;
        m_text.append(text.utf16(),
                      static_cast<size_t>(qMin<qsizetype>(text.size(), kMaxCellUnits)));
        m_ends.push_back(static_cast<quint32>(m_text.size()) | (text.isNull() ? kMissing : 0));
    }
    ++m_rows;
    return cut;
}

QStringView RowChunk::text(int row, int column) const
{
    const size_t cell =
        static_cast<size_t>(row) * static_cast<size_t>(m_columns) + static_cast<size_t>(column);
    const quint32 end = m_ends[cell];
    if ((end & kMissing) != 0) {
        return {};
    }
    const quint32 begin = cell == 0 ? 0 : m_ends[cell - 1] & ~kMissing;
    return {m_text.data() + begin, static_cast<qsizetype>(end - begin)};
}

/// Text across the border of two cells counts too.
bool RowChunk::mayContain(QStringView text) const
{
    return QStringView(m_text).contains(text, Qt::CaseInsensitive);
}

/// What is reserved counts, not what is used.
qsizetype RowChunk::bytes() const
{
    return static_cast<qsizetype>(m_text.capacity() * sizeof(char16_t) +
                                  m_ends.capacity() * sizeof(quint32) + sizeof *this);
}

} // namespace corvanta::studio
