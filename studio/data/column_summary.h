// Counts and ranges of the columns of the rows that were read so far.
//
// Threads: one at a time per object.
#pragma once
#include "base/stats/column_stats.h"
#include "corvanta/meta_info.h"
#include "corvanta/one_row.h"

#include <QString>
#include <QVector>

#include <vector>

namespace corvanta::studio {

/// What is shown about a column.
struct ColumnSummary
{
    qint64 rows = 0;
    qint64 missing = 0;
    qint64 distinct = 0;         ///< values, without missing cells
    bool isOverDistinct = false; ///< there are more than `distinct`; they are not counted further
    QString minimum;             ///< null: there is no value
    QString maximum;
};

/// Adds up the columns of one table row by row. Its memory does not grow with the rows, see
/// maxDistinctOf().
class SummaryBuilder
{
public:
    explicit SummaryBuilder(const TableSchema &columns);
    /// Add a row with these columns.
    void add(const OneRow &row);
    /// One entry per column.
    QVector<ColumnSummary> summaries() const;

private:
    /// What is known of a column so far.
    struct Column
    {
        cell::Type type; // determines which of the ranges is used
        qint64 missing = 0;
        DistinctCounter distinct;
        NumberRange numbers; // of a column of numbers
        TextRange texts;     // of a column of texts
    };
    static void addCell(const uchar *cell, Column &column);
    static void addNumber(double value, bool isMissing, Column &column);
    static void addText(const cell::Text &text, Column &column);

    std::vector<Column> m_columns;
    qint64 m_rows = 0;
};

} // namespace corvanta::studio
