// filter: keeps the rows for which an expression is true, unchanged.
#pragma once
#include "actions/filter/filter_params.h"
#include "actions/shared/tables/row_transform.h"
#include "codecs/expression/condition.h"

#include <optional>

namespace corvanta {

extern const ActionEntry kFilterEntry;

class ActionFilter final : public ParamAction<ActionFilter, FilterParams, RowTransform>
{
public:
    ActionFilter(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<FilterParams> &paramTable() { return filterParamTable(); }
    QVector<ParameterProblem> problems() const override;

private:
    bool begin(const OneRow &columns) override;
    bool takeRow(const OneRow &row) override;
    /// Fail the run because of the expression. Returns false.
    bool failExpression(const QString &where, const Fault<expression::Error> &fault);

    std::optional<expression::Condition> m_condition; // after begin()
};

} // namespace corvanta
