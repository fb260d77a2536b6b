// Rows are passed on as a whole unless columns are chosen or renamed. Cells of chosen columns are
// copied when the row is sent, because a batch owns its cells.
#include "actions/select/select.h"

#include "actions/shared/params/list_problems.h"
#include "actions/shared/tables/table_columns.h"

#include <QCoreApplication>

#include <numeric>

using namespace Qt::StringLiterals;

namespace corvanta {

ActionSelect::ActionSelect(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kSelectEntry, saved, parameters)
{
}

QVector<ParameterProblem> ActionSelect::problems() const
{
    const auto isPair = [](const QString &text) { return text.contains(u'='); };
    return listProblems(u"rename"_s, m_params.rename, isPair,
                        QCoreApplication::translate(
                            "Problems", "'%1' is not an old and a new name, for example old=new"));
}

/// The columns are chosen first and renamed then, so that new names may be old names of others.
bool ActionSelect::begin(const OneRow &columns)
{
    const TableSchema &input = columns.schema();
    OneRow *const out = getOutputRowForOutputPin(0);
    out->copySchemaFrom(&columns);
    m_isUnchanged = m_params.columns.isEmpty() && m_params.rename.isEmpty();
    if (m_isUnchanged) {
        return true;
    }
    if (!findColumns(input)) {
        return false;
    }
    QStringList names;
    QVector<MetaInfo> types;
    for (const int column : m_columns) {
        names << input.names[column];
        types << input.types[column];
    }
    if (!renameColumns(&names) || !checkNames(names)) {
        return false;
    }
    out->setColName(names);
    out->setMetaData(types);
    out->setSortInfos({}); // its columns may be gone or have other names
    return true;
}

/// Without a list all columns are chosen, in their order.
bool ActionSelect::findColumns(const TableSchema &input)
{
    m_columns.assign(static_cast<size_t>(input.names.size()), 0);
    std::iota(m_columns.begin(), m_columns.end(), 0);
    if (m_params.columns.isEmpty()) {
        return true;
    }
    m_columns.clear();
    for (const QString &name : m_params.columns) {
        m_columns.push_back(requireColumn(input, name));
        if (m_columns.back() < 0) {
            return false;
        }
    }
    return true;
}

/// The old names are those before any change, so that two columns can swap their names.
bool ActionSelect::renameColumns(QStringList *names)
{
    const QStringList old = *names;
    shared::Assigned assigned;
    for (const QString &text : m_params.rename) {
        const auto assignment = shared::assignmentOf(text, old);
        if (!assignment) {
            return fail(
                u"Error: select: '%1' is not an old and a new name, for example old=new\n"_s.arg(
                    text));
        }
        const int column = requireColumn({old, {}, {}}, assignment->column);
        if (column < 0 || !shared::assign(this, "rename", *assignment, &assigned)) {
            return false;
        }
        (*names)[column] = assignment->value;
    }
    return true;
}

/// Writers of tables, and expressions, could not distinguish two columns of one name.
bool ActionSelect::checkNames(const QStringList &names)
{
    std::vector<QString> sorted(names.begin(), names.end());
    std::sort(sorted.begin(), sorted.end());
    const auto twice = std::adjacent_find(sorted.begin(), sorted.end());
    return twice == sorted.end() ||
           fail(u"Error: select: two columns of the output have the name '%1'\n"_s.arg(*twice));
}

/// Returns false after the last row, which ends the action before its input has ended.
bool ActionSelect::takeRow(const OneRow &row)
{
    const qint64 number = rowNumber();
    if (number < m_params.firstRow) {
        return !isLast(number);
    }
    if (isLast(number - 1)) {
        return false; // the range is empty
    }
    OneRow *const out = getOutputRowForOutputPin(0);
    if (m_isUnchanged) {
        out->copyFrom(&row);
    } else {
        const uchar *const *const cells = row.view().cells;
        for (size_t i = 0; i < m_columns.size(); ++i) {
            out->setCol(static_cast<int>(i), cells[m_columns[i]]);
        }
    }
    setRowReadyForOutput(0);
    return !isLast(number);
}

} // namespace corvanta
