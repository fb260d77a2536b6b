// filter: keeps the rows for which an expression is true, unchanged.
//
// The columns of the expression are found with the first row. A fault of the expression names the
// character, one of a value the row.
#pragma once
#include "actions/filter/filter_params.h"
#include "actions/shared/tables/row_transform.h"
#include "codecs/expression/condition.h"

#include <optional>

namespace corvanta {

extern const ActionEntry kFilterEntry;

/// Copies no cells. Threads: as ActionBase.
class ActionFilter final : public ParamAction<ActionFilter, FilterParams, RowTransform>
{
public:
    ActionFilter(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<FilterParams> &paramTable() { return filterParamTable(); }
    QVector<ParameterProblem> problems() const override;

private:
    bool begin(const OneRow &columns) override;
    bool takeRow(const OneRow &row) override;
    /// Fail the run because of the expression, as it is after its variables were replaced. Returns
    /// false.
    bool failExpression(const QString &where, const Fault<expression::Error> &fault);

    std::optional<expression::Condition> m_condition; // after begin()
};

} // namespace corvanta
