// Prints rows as JSON.
#pragma once
#include "corvanta/action_parameters.h"
#include "corvanta/one_row.h"

#include <QByteArray>

#include <vector>

/// Prints an array with an object per row, whose members are the columns in their order. Values of
/// columns of numbers and booleans are bare where JSON has them; it has no nan and no infinity, for
/// example. All others are strings, and missing cells null. The second and later columns of one
/// name get "_2", "_3", ...
class JsonRows
{
public:
    JsonRows(const TableSchema &columns, const QVector<ColumnKind> &kinds);

    void add(const OneRow &row);
    /// Print the rest. Without this call a table of up to 1 MiB prints nothing.
    void finish();

private:
    void flush();

    std::vector<QByteArray> m_members; ///< "NAME": of each column
    std::vector<ValueKind> m_kinds;
    QByteArray m_text = "[";
    bool m_hasRows = false;
};
