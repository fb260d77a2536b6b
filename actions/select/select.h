// select: chooses rows by number, chooses and orders columns, and renames columns.
//
// After the last row that is needed the action ends, and with it the actions that only feed it.
#pragma once
#include "actions/select/select_params.h"
#include "actions/shared/tables/row_transform.h"

#include <vector>

namespace corvanta {

extern const ActionEntry kSelectEntry;

/// Passes rows on as a whole when no column is chosen or renamed. Threads: as ActionBase.
class ActionSelect final : public ParamAction<ActionSelect, SelectParams, RowTransform>
{
public:
    ActionSelect(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<SelectParams> &paramTable() { return selectParamTable(); }
    QVector<ParameterProblem> problems() const override;

private:
    bool begin(const OneRow &columns) override;
    bool takeRow(const OneRow &row) override;
    // These return false after a failure.

    /// Set m_columns.
    bool findColumns(const TableSchema &input);
    /// Change the names of the columns of the output.
    bool renameColumns(QStringList *names);
    /// Each chosen or renamed column has a name of its own.
    bool checkNames(const QStringList &names);
    /// Whether no row after this one is in the output.
    bool isLast(qint64 row) const { return m_params.lastRow >= 0 && row >= m_params.lastRow; }

    std::vector<int> m_columns; // of the input, in the order of the output
    bool m_isUnchanged = true;  // all columns in their order with their names
};

} // namespace corvanta
