// The loop over the rows, and what is special about the first one and the end.
#include "actions/shared/tables/row_transform.h"

#include "actions/shared/tables/table_columns.h"

namespace corvanta {

void RowTransform::start()
{
    m_rowNumber = 0;
    m_isBeforeFirstRow = true;
    m_isAtEnd = false;
}

int RowTransform::requireColumn(const TableSchema &columns, const QString &name)
{
    return shared::requireColumn(this, columns, name);
}

/// The first row brings the columns; every action of this kind needs them before any row.
bool RowTransform::step()
{
    while (!yieldRequested()) {
        if (m_isAtEnd) {
            if (!emitRow()) {
                return false;
            }
            continue;
        }
        const OneRow *const row = getNextRowFromInPin(0);
        if (row == nullptr ? !endRows() : !takeFirst(*row)) {
            return false;
        }
    }
    return true;
}

/// Takes a row, the first one after begin().
bool RowTransform::takeFirst(const OneRow &row)
{
    if (m_isBeforeFirstRow) {
        m_isBeforeFirstRow = false;
        if (!begin(row)) {
            return false;
        }
    }
    ++m_rowNumber;
    return takeRow(row);
}

/// A table without rows still has columns.
bool RowTransform::endRows()
{
    m_isAtEnd = true;
    if (!runIsGood() || (m_isBeforeFirstRow && !begin(*getInputColumns(0)))) {
        return false;
    }
    m_isBeforeFirstRow = false;
    return endInput();
}

} // namespace corvanta
