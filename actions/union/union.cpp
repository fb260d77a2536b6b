// The first row of every table is taken before any row is sent, because the columns of the output
// depend on all tables.
#include "actions/union/union.h"

#include "base/number_cell.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// The type that holds the values of both.
MetaInfo commonType(const MetaInfo &a, const MetaInfo &b)
{
    const bool hasText = a.type() == MetaInfo::Unknown || b.type() == MetaInfo::Unknown;
    if (a == b) {
        return a;
    }
    return MetaInfo(hasText ? cell::Type::Text
                            : (a.type() == b.type() ? a.cellType() : cell::Type::Double));
}

/// A cell of another type with the same value; null for a missing one.
const uchar *converted(const uchar *bytes, cell::Type from, cell::Type to, RowBuffer *buffer)
{
    if (to == cell::Type::Double) { // from a key
        const auto key = loadNative<quint32>(bytes);
        return cell::isMissingKey(key) ? nullptr : doubleCell(buffer, key);
    }
    std::array<char16_t, kNumberChars> text{};
    const int n = cell::putNumberText(from, bytes, text.data());
    return n == 0 ? nullptr : textCell(buffer, text.data(), n);
}

} // namespace

ActionUnion::ActionUnion(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kUnionEntry, saved, parameters)
{
}

/// A graph may run again in the same process.
void ActionUnion::start()
{
    m_tables.clear();
    m_hasBegun = false;
    m_pin = 0;
}

/// The tables follow one another; the next pin is read when the one before it has ended.
bool ActionUnion::step()
{
    if (!m_hasBegun && !begin()) {
        return false;
    }
    m_hasBegun = true;
    while (!yieldRequested()) {
        if (m_pin == pinInCount()) {
            return false;
        }
        Table &table = m_tables[static_cast<size_t>(m_pin)];
        const OneRow *row = std::exchange(table.first, nullptr);
        row = row != nullptr ? row : getNextRowFromInPin(m_pin);
        if (row != nullptr) {
            sendRow(table, *row);
        } else {
            ++m_pin;
        }
    }
    return true;
}

/// Describes the output. Waits for the first row of each table in turn.
bool ActionUnion::begin()
{
    TableSchema all;
    m_tables.resize(static_cast<size_t>(pinInCount()));
    for (int pin = 0; pin < pinInCount(); ++pin) {
        m_tables[static_cast<size_t>(pin)].first = getNextRowFromInPin(pin);
        if (!runIsGood() || !addColumns(pin, getInputColumns(pin)->schema(), &all)) {
            return false;
        }
    }
    moveLast(m_params.lastColumn, &all);
    OneRow *const out = getOutputRowForOutputPin(0);
    for (int pin = 0; pin < pinInCount(); ++pin) {
        const OneRow *const columns = getInputColumns(pin);
        Table &table = m_tables[static_cast<size_t>(pin)];
        // An order of one table is not that of all.
        table.isUnchanged = columns->schema() == all;
    }
    out->setColName(all.names);
    out->setMetaData(all.types);
    return true;
}

/// Finds the columns of the output for those of a table, and adds the missing ones.
bool ActionUnion::addColumns(int pin, const TableSchema &columns, TableSchema *all)
{
    if (!checkColumns(pin, columns, *all)) {
        return false;
    }
    std::vector<int> &outputs = m_tables[static_cast<size_t>(pin)].outputs;
    for (qsizetype i = 0; i < columns.names.size(); ++i) {
        const bool isByName = m_params.match == UnionMatch::Names;
        qsizetype output = isByName ? all->names.indexOf(columns.names[i]) : i;
        if (output < 0 || output == all->names.size()) {
            output = all->names.size();
            all->names.append(columns.names[i]);
            all->types.append(columns.types[i]);
        }
        all->types[output] = commonType(all->types[output], columns.types[i]);
        outputs.push_back(static_cast<int>(output));
    }
    return true;
}

/// Make a column the last one. Without effect if no table has it.
void ActionUnion::moveLast(const QString &name, TableSchema *all)
{
    const auto from = static_cast<int>(all->names.indexOf(name));
    if (name.isEmpty() || from < 0) {
        return;
    }
    const auto last = static_cast<int>(all->names.size()) - 1;
    all->names.move(from, last);
    all->types.move(from, last);
    for (Table &table : m_tables) {
        for (int &output : table.outputs) {
            output = output == from ? last : output - (output > from ? 1 : 0);
        }
    }
}

/// Two equal names would be one column when tables are joined by name.
bool ActionUnion::checkColumns(int pin, const TableSchema &columns, const TableSchema &first)
{
    const QString table = QString::number(pin + 1);
    if (m_params.match == UnionMatch::Names) {
        std::vector<QString> sorted(columns.names.begin(), columns.names.end());
        std::sort(sorted.begin(), sorted.end());
        const auto twice = std::adjacent_find(sorted.begin(), sorted.end());
        return twice == sorted.end() ||
               fail(
                   u"Error: union: two columns of table %1 have the name '%2', but columns are joined by name; give them different names\n"_s
                       .arg(table, *twice));
    }
    if (pin == 0) {
        return true;
    }
    if (columns.names.size() != first.names.size()) {
        return fail(
            u"Error: union: table %1 has %2 columns, the first table has %3; match='0' (convert --union) joins columns by name\n"_s
                .arg(table, QString::number(columns.names.size()),
                     QString::number(first.names.size())));
    }
    for (qsizetype i = 0; m_params.match == UnionMatch::Same && i < first.names.size(); ++i) {
        if (columns.names[i] != first.names[i]) {
            return fail(
                u"Error: union: column %1 of table %2 is '%3', that of the first table is '%4'; match='0' (convert --union) joins columns by name\n"_s
                    .arg(QString::number(i + 1), table, columns.names[i], first.names[i]));
        }
    }
    return true;
}

/// Cells that the table does not have stay missing.
void ActionUnion::sendRow(const Table &table, const OneRow &row)
{
    OneRow *const out = getOutputRowForOutputPin(0);
    if (table.isUnchanged) {
        out->copyFrom(&row);
        setRowReadyForOutput(0);
        return;
    }
    const RowView view = row.view();
    for (int i = 0; i < view.columns; ++i) {
        const int output = table.outputs[static_cast<size_t>(i)];
        const cell::Type from = view.type(i);
        const cell::Type to = out->getMetaType(output).cellType();
        out->setCol(output, from == to ? view.cells[i]
                                       : converted(view.cells[i], from, to, bufferForOutputPin(0)));
    }
    setRowReadyForOutput(0);
}

} // namespace corvanta
