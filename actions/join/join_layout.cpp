// The output begins with the first table as it is. Of the second one the keys are left out, because
// they equal those of the first, and the other columns follow.
#include "actions/join/join_layout.h"

#include "actions/shared/tables/table_columns.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

bool isText(const rows::KeyColumn &key)
{
    return key.type == cell::Type::Text && key.order != TextOrder::Numbers;
}

class LayoutFinder
{
public:
    LayoutFinder(ActionBase *action, const JoinParams &params, const TableSchema &first,
                 const TableSchema &second)
        : m_action(action)
        , m_params(params)
        , m_first(first)
        , m_second(second)
    {
    }
    std::optional<JoinLayout> find();

private:
    // These return false after a failure.
    bool addKey(const QString &text);
    bool checkKey(const QString &name, const rows::KeyColumn &first, const rows::KeyColumn &second);
    bool addColumn(int column);
    rows::KeyColumn keyOf(const TableSchema &table, int column) const;
    int find(const TableSchema &table, const QString &name, const QString &which);
    void keep(int column, int output);

    ActionBase *m_action;
    const JoinParams &m_params;
    const TableSchema &m_first;
    const TableSchema &m_second;
    JoinLayout m_layout;
};

/// The columns of the first table, then those of the second except its keys, which are equal.
std::optional<JoinLayout> LayoutFinder::find()
{
    m_layout.output = m_first;
    m_layout.firstTypes = shared::typesOf(m_first);
    if (!shared::checkKinds(m_action, m_params.kinds, m_first.names + m_second.names)) {
        return std::nullopt;
    }
    for (const QString &text : m_params.keys) {
        if (!addKey(text)) {
            return std::nullopt;
        }
    }
    if (m_layout.firstKey.empty()) {
        m_action->fail(u"Error: join: no column to join by (keys)\n"_s);
        return std::nullopt;
    }
    for (int column = 0; column < int(m_second.names.size()); ++column) {
        if (!addColumn(column)) {
            return std::nullopt;
        }
    }
    if (m_params.type == JoinType::Full) {
        m_layout.output.sortedOn.clear(); // rows of the second table are at the end
    }
    return std::move(m_layout);
}

/// All columns are listed: with two tables the nearest name alone would be little help.
int LayoutFinder::find(const TableSchema &table, const QString &name, const QString &which)
{
    const auto column = static_cast<int>(table.names.indexOf(name));
    if (column < 0) {
        m_action->fail(u"Error: join: the %1 table has no column '%2' (columns: %3)\n"_s.arg(
            which, name, table.names.join(u", "_s)));
    }
    return column;
}

/// The kind decides which texts are equal: 1 and 1.0 as numbers, for example.
rows::KeyColumn LayoutFinder::keyOf(const TableSchema &table, int column) const
{
    return {column, table.types[column].cellType(), true,
            shared::textOrders(m_params.kinds, table)[size_t(column)]};
}

/// The two sides of a key may have different names and types, but not text and number.
bool LayoutFinder::addKey(const QString &text)
{
    // A name that contains "=" is a name.
    const auto pair =
        m_first.names.contains(text) ? std::nullopt : shared::assignmentOf(text, m_first.names);
    const int first = find(m_first, pair ? pair->column : text, u"first"_s);
    const int second = first < 0 ? -1 : find(m_second, pair ? pair->value : text, u"second"_s);
    if (second < 0) {
        return false;
    }
    rows::KeyColumn firstKey = keyOf(m_first, first);
    rows::KeyColumn secondKey = keyOf(m_second, second);
    if (!checkKey(text, firstKey, secondKey)) {
        return false;
    }
    if (isText(firstKey)) { // a kind of one of them is enough, because both are equal as values
        firstKey.order = secondKey.order = std::max(firstKey.order, secondKey.order);
    }
    m_layout.firstKey.push_back(firstKey);
    m_layout.secondKey.push_back(secondKey);
    if (m_params.type == JoinType::Full) {
        keep(second, first);
        ++m_layout.keptKeys;
    }
    return true;
}

/// A number is never equal to a text; such a join would have no partners and no message.
bool LayoutFinder::checkKey(const QString &name, const rows::KeyColumn &first,
                            const rows::KeyColumn &second)
{
    if (isText(first) != isText(second)) {
        return m_action->fail(
            u"Error: join: the key '%1' is a text in one table and a number in the other; state the kind of the text column (for example '%2=decimal' in kinds)\n"_s
                .arg(name,
                     isText(first) ? m_first.names[first.column] : m_second.names[second.column]));
    }
    return first.type == second.type || m_params.type != JoinType::Full ||
           m_action->fail(
               u"Error: join: the key '%1' has different types in the two tables, which a full join does not allow\n"_s
                   .arg(name));
}

/// Adds a column of the second table that is not a key.
bool LayoutFinder::addColumn(int column)
{
    const auto isColumn = [column](const rows::KeyColumn &key) { return key.column == column; };
    if (std::any_of(m_layout.secondKey.begin(), m_layout.secondKey.end(), isColumn)) {
        return true;
    }
    QString name = m_second.names[column];
    if (m_layout.output.names.contains(name)) {
        m_layout.renamed << name;
        name += m_params.suffix;
    }
    if (m_layout.output.names.contains(name)) {
        return m_action->fail(
            u"Error: join: two columns of the output have the name '%1'; choose another suffix\n"_s
                .arg(name));
    }
    keep(column, int(m_layout.output.names.size()));
    m_layout.output.names << name;
    m_layout.output.types << m_second.types[column];
    return true;
}

/// Lists a column of the second table whose cells are needed.
void LayoutFinder::keep(int column, int output)
{
    m_layout.kept.push_back(column);
    m_layout.keptTypes.push_back(m_second.types[column].cellType());
    m_layout.outputs.push_back(output);
}

} // namespace

std::optional<JoinLayout> findJoinLayout(ActionBase *action, const JoinParams &params,
                                         const TableSchema &first, const TableSchema &second)
{
    return LayoutFinder(action, params, first, second).find();
}

} // namespace corvanta
