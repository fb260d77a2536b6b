// Selects the rows that a writer writes: all of them, or those with one text in one column.
#pragma once
#include "corvanta/one_row.h"

namespace corvanta {

/// The parameters of the selection.
struct RowFilterParams
{
    bool writeAllRows = true;
    QString testCol;
    QString testValue;
};

/// Threads: one at a time.
class RowFilter
{
public:
    /// Find the column to test; returns false when the table has no column of that name.
    bool begin(const RowFilterParams &params, const OneRow &columns)
    {
        m_column = params.writeAllRows ? kNone : columns.getIndexOfColumn(params.testCol);
        m_value = params.testValue;
        return params.writeAllRows || m_column != kNone;
    }
    bool isWanted(const OneRow &row) const
    {
        return m_column == kNone || row.textView(m_column) == m_value;
    }

private:
    static constexpr int kNone = -1;
    int m_column = kNone;
    QString m_value;
};

} // namespace corvanta
