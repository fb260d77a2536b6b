// Numbers are counted as doubles, which hold each key exactly, and texts by their hashes.
#include "studio/data/column_summary.h"

#include "base/mapped.h"
#include "base/number.h"

#include <functional>
#include <string_view>

namespace corvanta::studio {

/// All columns share one limit of memory for their distinct values.
SummaryBuilder::SummaryBuilder(const TableSchema &columns)
{
    const size_t maxDistinct = maxDistinctOf(static_cast<size_t>(columns.names.size()));
    m_columns = mapped<std::vector<Column>>(columns.types, [&](const MetaInfo &type) {
        return Column{type.cellType(), 0, DistinctCounter(maxDistinct), {}, {}};
    });
}

void SummaryBuilder::add(const OneRow &row)
{
    const uchar *const *cells = row.getAllColForWrite();
    for (Column &column : m_columns) {
        addCell(*cells++, column);
    }
    ++m_rows;
}

/// Decides by the type of the column, because cells do not have one.
void SummaryBuilder::addCell(const uchar *cell, Column &column)
{
    if (column.type == cell::Type::Text) {
        addText(cell::readText(cell), column);
    } else if (column.type == cell::Type::Key) {
        const auto key = loadNative<quint32>(cell);
        addNumber(key, cell::isMissingKey(key), column);
    } else {
        const auto value = loadNative<double>(cell);
        addNumber(value, cell::isMissingDouble(value), column);
    }
}

void SummaryBuilder::addNumber(double value, bool isMissing, Column &column)
{
    column.missing += isMissing ? 1 : 0;
    if (!isMissing) {
        // Both zeros are one value.
        column.distinct.add(std::hash<double>()(value));
        column.numbers.add(value);
    }
}

void SummaryBuilder::addText(const cell::Text &text, Column &column)
{
    column.missing += text.isMissing() ? 1 : 0;
    if (!text.isMissing()) {
        column.distinct.add(std::hash<std::u16string_view>()(text.view()));
        column.texts.add(text.view());
    }
}

/// Copies only counts and extreme values, so that it may be called for each group of rows.
QVector<ColumnSummary> SummaryBuilder::summaries() const
{
    constexpr qsizetype kMaxUnits = 1000; // more cannot be shown
    QVector<ColumnSummary> summaries;
    summaries.reserve(static_cast<qsizetype>(m_columns.size()));
    for (const Column &column : m_columns) {
        ColumnSummary summary{m_rows, column.missing, static_cast<qint64>(column.distinct.count()),
                              column.distinct.isOver()};
        if (!column.numbers.isEmpty()) {
            summary.minimum = shortestText(column.numbers.smallest().value);
            summary.maximum = shortestText(column.numbers.largest().value);
        } else if (!column.texts.isEmpty()) {
            summary.minimum = column.texts.smallest().left(kMaxUnits);
            summary.maximum = column.texts.largest().left(kMaxUnits);
        }
        summaries << summary;
    }
    return summaries;
}

} // namespace corvanta::studio
