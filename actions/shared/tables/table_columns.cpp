// Names of columns may contain any character, also the sign that divides the texts here. Where one
// side has few allowed values (kinds, types) the last sign counts; otherwise the known names
// decide.
#include "actions/shared/tables/table_columns.h"

#include "base/mapped.h"
#include "base/nearest_name.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace corvanta::shared {

namespace {

/// The kind is after the last sign, because no kind contains one.
Assignment kindOf(const QString &text)
{
    const qsizetype sign = text.lastIndexOf(u'=');
    return {text.left(sign), text.mid(sign + 1)};
}

TextOrder orderOf(const QString &kind)
{
    if (kind == kindName(ValueKind::Text)) {
        return TextOrder::CodePoints;
    }
    const bool areNumbers =
        kind == kindName(ValueKind::Integer) || kind == kindName(ValueKind::Decimal);
    return areNumbers ? TextOrder::Numbers : TextOrder::Words;
}

} // namespace

/// The hint names a similar column, because most mistakes are in the spelling.
int requireColumn(ActionBase *action, const TableSchema &columns, const QString &name)
{
    const auto index = static_cast<int>(columns.names.indexOf(name));
    if (index < 0) {
        action->fail(u"Error: %1: the input has no column '%2'%3\n"_s.arg(
            QString::fromLatin1(action->getTypeName()), name,
            nearestNameHint(name, columns.names)));
    }
    return index;
}

/// Names may have "=": a known name is preferred to the first sign.
std::optional<Assignment> assignmentOf(const QString &text, const QStringList &known)
{
    const qsizetype first = text.indexOf(u'=');
    if (first < 0) {
        return std::nullopt;
    }
    for (qsizetype sign = first; sign >= 0; sign = text.indexOf(u'=', sign + 1)) {
        if (known.contains(text.left(sign))) {
            return Assignment{text.left(sign), text.mid(sign + 1)};
        }
    }
    return Assignment{text.left(first), text.mid(first + 1)};
}

bool assign(ActionBase *action, const char *parameter, const Assignment &assignment,
            Assigned *assigned)
{
    const auto [found, isNew] = assigned->emplace(assignment.column, assignment.value);
    return isNew || found->second == assignment.value ||
           action->fail(u"Error: %1: %2 has two values for the column '%3': '%4' and '%5'\n"_s.arg(
               QString::fromLatin1(action->getTypeName()), QString::fromLatin1(parameter),
               assignment.column, found->second, assignment.value));
}

/// The form that stored rows need: the types without their names.
rows::ColumnTypes typesOf(const TableSchema &columns)
{
    return mapped<rows::ColumnTypes>(columns.types,
                                     [](const MetaInfo &type) { return type.cellType(); });
}

/// Only the form and the kinds: the columns are known in the run.
QVector<ParameterProblem> kindProblems(const QStringList &kinds)
{
    QVector<ParameterProblem> problems;
    for (const QString &text : kinds) {
        if (!text.contains(u'=') || !kindNames().contains(kindOf(text).value)) {
            problems.append(
                {u"kinds"_s,
                 QCoreApplication::translate(
                     "Problems", "'%1' is not a column and a kind (%2), for example price=decimal")
                     .arg(text, kindNames().join(u", "_s))});
        }
    }
    return problems;
}

QVector<ParameterProblem> decimalPointProblems(const QString &decimal)
{
    if (decimal.size() == 1 && decimal[0].unicode() < 0x80) {
        return {};
    }
    return {
        ParameterProblem{u"decimal"_s, u"decimal='%1' is not one ASCII character"_s.arg(decimal)}};
}

std::vector<TextOrder> textOrders(const QStringList &kinds, const TableSchema &columns)
{
    std::vector<TextOrder> orders(static_cast<size_t>(columns.names.size()));
    for (const QString &text : kinds) {
        const Assignment kind = kindOf(text);
        const qsizetype column = columns.names.indexOf(kind.column);
        if (column >= 0) {
            orders[static_cast<size_t>(column)] = orderOf(kind.value);
        }
    }
    return orders;
}

bool checkKinds(ActionBase *action, const QStringList &kinds, const QStringList &known)
{
    const QString type = QString::fromLatin1(action->getTypeName());
    const QVector<ParameterProblem> problems = kindProblems(kinds);
    if (!problems.isEmpty()) {
        return action->fail(u"Error: %1: %2\n"_s.arg(type, problems.front().text));
    }
    for (const QString &text : kinds) {
        const QString column = kindOf(text).column;
        if (!known.contains(column)) {
            return action->fail(u"Error: %1: kinds: the input has no column '%2'%3\n"_s.arg(
                type, column, nearestNameHint(column, known)));
        }
    }
    return true;
}

bool checkDecimalPoint(ActionBase *action, const QString &decimal)
{
    const QVector<ParameterProblem> problems = decimalPointProblems(decimal);
    return problems.isEmpty() ||
           action->fail(u"Error: %1: %2\n"_s.arg(QString::fromLatin1(action->getTypeName()),
                                                 problems.front().text));
}

/// The place and the value, so that the user can find and correct it.
QString notANumber(qint64 row, const OneRow &cells, int column)
{
    return u"row %1: '%2' in column '%3' is not a number"_s.arg(
        QString::number(row), cells.text(column), cells.colName(column));
}

} // namespace corvanta::shared
