// Columns in the parameters of the actions that change tables: names, and texts such as "old=new".
#pragma once
#include "base/text/text_order.h"
#include "corvanta/action_base.h"
#include "corvanta/meta_info.h"
#include "corvanta/params/param_table.h"
#include "io/rows/packed_row.h"

#include <map>
#include <optional>
#include <vector>

namespace corvanta::shared {

/// The index of a column; -1 after failing the run of `action` because the table has none of this
/// name.
int requireColumn(ActionBase *action, const TableSchema &columns, const QString &name);

/// A text such as "old=new".
struct Assignment
{
    QString column;
    QString value; ///< after the sign
};
/// Split at the first "=" after a name that `known` has, else at the first one. Names may contain
/// the sign. Nothing without one.
std::optional<Assignment> assignmentOf(const QString &text, const QStringList &known);

/// The values that a list of assignments has given to columns so far.
using Assigned = std::map<QString, QString>;
/// Add an assignment of the list `parameter`. False after failing the run of `action` because the
/// column has another value already: one of the two would be ignored.
bool assign(ActionBase *action, const char *parameter, const Assignment &assignment,
            Assigned *assigned);

/// The types of all columns.
rows::ColumnTypes typesOf(const TableSchema &columns);

/// The line of a parameter table for a list of "column=kind".
template <class P> Param<P> columnKinds()
{
    return strings("kinds", &P::kinds)
        .label("Kinds of text columns")
        .meaning("column=kind, one per line; kinds: text, integer, decimal, boolean, date, "
                 "datetime, time. Text columns of the kinds integer and decimal are compared as "
                 "numbers, those of dates and times by time, and booleans without letter case.");
}
/// The line for the decimal point of the numbers in such columns.
template <class P> Param<P> decimalPoint()
{
    return text("decimal", &P::decimal)
        .label("Decimal point")
        .meaning("The character between the digits of decimal numbers in text columns: a point or "
                 "a comma, for example.");
}
/// What is wrong with it: it is not one ASCII character.
QVector<ParameterProblem> decimalPointProblems(const QString &decimal);
/// What is wrong with such a list, whatever the columns are.
QVector<ParameterProblem> kindProblems(const QStringList &kinds);
/// How the texts of each column are compared. Kinds of other columns are ignored.
std::vector<TextOrder> textOrders(const QStringList &kinds, const TableSchema &columns);
/// Fail the run of `action` if an element is not a column and a kind, or names a column that is not
/// one of `known`; false then.
bool checkKinds(ActionBase *action, const QStringList &kinds, const QStringList &known);
/// Fail the run of `action` if decimalPointProblems() finds one; false then.
bool checkDecimalPoint(ActionBase *action, const QString &decimal);

/// The end of the messages about a key that is not a number: "row 7: 'x' in column 'a' is not a
/// number".
QString notANumber(qint64 row, const OneRow &cells, int column);

} // namespace corvanta::shared
