// Encodes the key columns of a row as bytes whose order is that of the rows.
//
// Comparing two keys with memcmp() compares the rows: numbers by value with a NaN after all of
// them, texts by the order of their column, missing cells last in both directions. Equal keys are
// equal values, whatever the types of their columns: the number 7 as K, F or a text of a column of
// numbers.
#pragma once
#include "base/row_view.h"
#include "base/text/text_order.h"

#include <vector>

namespace corvanta::rows {

/// One column of a key.
struct KeyColumn
{
    int column = 0; ///< index in the row
    cell::Type type = cell::Type::Text;
    bool ascending = true;
    TextOrder order = TextOrder::CodePoints; ///< of a column of texts
};

/// Threads: one at a time.
class KeyEncoder
{
public:
    /// `decimalPoint`: of the numbers in texts.
    explicit KeyEncoder(std::vector<KeyColumn> columns, char decimalPoint = '.')
        : m_columns(std::move(columns))
        , m_decimalPoint(decimalPoint)
    {
    }
    /// Room that the key of a row needs at most, in bytes.
    qsizetype bytesAtMost(const uchar *const *cells) const;
    /// Write the key of a row to `out`; returns the address after it. Null if a text of a column of
    /// numbers is not a number; failedColumn() is then its index in the row.
    char *put(const uchar *const *cells, char *out);
    int failedColumn() const { return m_failedColumn; }
    /// Whether a cell of the last key is missing.
    bool hasMissing() const { return m_hasMissing; }

private:
    char *putColumn(const KeyColumn &column, const uchar *cell, char *out);
    char *putValue(const KeyColumn &column, const uchar *cell, char *out);

    std::vector<KeyColumn> m_columns;
    char m_decimalPoint;
    int m_failedColumn = -1;
    bool m_hasMissing = false;
};

} // namespace corvanta::rows
