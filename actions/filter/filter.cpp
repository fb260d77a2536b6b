// The expression is parsed and bound once, with the columns of the first row. Rows that pass are
// views of the input: no cell is copied.
#include "actions/filter/filter.h"

#include "actions/shared/tables/table_columns.h"
#include "base/nearest_name.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace corvanta {

ActionFilter::ActionFilter(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kFilterEntry, saved, parameters)
{
}

/// Only the syntax: the columns are known in the run.
QVector<ParameterProblem> ActionFilter::problems() const
{
    QVector<ParameterProblem> problems =
        shared::kindProblems(m_params.kinds) + shared::decimalPointProblems(m_params.decimal);
    const auto parsed = expression::parse(expandString(m_params.where));
    // An empty one is reported as such.
    if (!parsed && !m_params.where.isEmpty()) {
        problems.append(
            {u"where"_s,
             QCoreApplication::translate("Problems", "invalid expression at character %1: %2")
                 .arg(QString::number(parsed.fault().offset + 1), parsed.fault().detail)});
    }
    return problems;
}

/// The place in the expression counts from 1, as people count.
bool ActionFilter::failExpression(const QString &where, const Fault<expression::Error> &fault)
{
    return fail(u"Error: filter: invalid expression '%1' at character %2: %3\n"_s.arg(
        where, QString::number(fault.offset + 1), fault.detail));
}

/// A column that the input does not have is reported with its place in the expression.
bool ActionFilter::begin(const OneRow &columns)
{
    getOutputRowForOutputPin(0)->copySchemaFrom(&columns);
    const QString where = expandString(m_params.where);
    const auto parsed = expression::parse(where);
    if (!parsed) {
        return failExpression(where, parsed.fault());
    }
    const TableSchema &schema = columns.schema();
    if (!shared::checkKinds(this, m_params.kinds, schema.names) ||
        !shared::checkDecimalPoint(this, m_params.decimal)) {
        return false;
    }
    auto bound = expression::Condition::bind(*parsed, columns.view(),
                                             shared::textOrders(m_params.kinds, schema),
                                             m_params.decimal[0].toLatin1());
    if (!bound && bound.fault().code == expression::Error::UnknownColumn) {
        const QString &name = bound.fault().detail;
        // The first operand is usually a column.
        const QString hint = bound.fault().offset > 0
                                 ? u"; a text is put in single quotes ('%1')"_s.arg(name)
                                 : QString();
        return failExpression(where, {expression::Error::UnknownColumn,
                                      u"the input has no column '%1'%2%3"_s.arg(
                                          name, nearestNameHint(name, schema.names), hint),
                                      bound.fault().offset});
    }
    if (!bound) {
        return failExpression(where, bound.fault());
    }
    m_condition = *std::move(bound);
    return true;
}

/// A condition that is neither true nor false, because a cell is missing, does not keep the row.
bool ActionFilter::takeRow(const OneRow &row)
{
    const auto isTrue = m_condition->isTrue(row.view());
    if (!isTrue) {
        return fail(u"Error: filter: row %1: %2\n"_s.arg(QString::number(rowNumber()),
                                                         isTrue.fault().detail));
    }
    if (*isTrue) {
        getOutputRowForOutputPin(0)->copyFrom(&row);
        setRowReadyForOutput(0);
    }
    return true;
}

} // namespace corvanta
