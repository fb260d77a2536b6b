// A row is packed next to its key in the memory of the sorter, without a copy in between. After the
// last row the sorter returns the packed rows in order, which become cells again.
#include "actions/sort/sort.h"

#include "actions/shared/tables/kept_rows.h"
#include "actions/shared/tables/table_columns.h"
#include "base/utf.h"
#include "codecs/values/value_form.h"
#include "corvanta/main_ui.h"

#include <array>

using namespace Qt::StringLiterals;

namespace corvanta {

ActionSort::ActionSort(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kSortEntry, saved, parameters)
{
}

QVector<ParameterProblem> ActionSort::problems() const
{
    return shared::kindProblems(m_params.kinds) + shared::decimalPointProblems(m_params.decimal);
}

bool ActionSort::begin(const OneRow &columns)
{
    const TableSchema &schema = columns.schema();
    getOutputRowForOutputPin(0)->copySchemaFrom(&columns);
    if (!shared::checkKinds(this, m_params.kinds, schema.names) ||
        !shared::checkDecimalPoint(this, m_params.decimal)) {
        return false;
    }
    const std::vector<rows::KeyColumn> keys = findKeys(schema);
    if (keys.empty()) {
        return false;
    }
    declareOrder(keys);
    m_run = std::make_unique<RunState>(shared::typesOf(schema), keys,
                                       m_params.decimal[0].toLatin1(), shared::sorterOptions(this));
    for (const rows::KeyColumn &key : keys) {
        if (key.type == cell::Type::Text && key.order == TextOrder::CodePoints) {
            m_run->textKeys.push_back({.column = key.column});
        }
    }
    return true;
}

std::vector<rows::KeyColumn> ActionSort::findKeys(const TableSchema &columns)
{
    const std::vector<TextOrder> orders = shared::textOrders(m_params.kinds, columns);
    std::vector<rows::KeyColumn> keys;
    for (const QString &key : m_params.keys) {
        // A column whose name begins with "-" is sorted ascending by its name.
        const bool isDescending = key.startsWith(u'-') && !columns.names.contains(key);
        const int column = requireColumn(columns, isDescending ? key.sliced(1) : key);
        if (column < 0) {
            return {};
        }
        keys.push_back({column, columns.types[column].cellType(), !isDescending,
                        orders[static_cast<size_t>(column)]});
    }
    if (keys.empty()) {
        fail(u"Error: sort: no column to sort by (keys)\n"_s);
    }
    return keys;
}

void ActionSort::declareOrder(const std::vector<rows::KeyColumn> &keys)
{
    OneRow *const out = getOutputRowForOutputPin(0);
    QVector<SortInfos> order;
    for (const rows::KeyColumn &key : keys) {
        if (key.order != TextOrder::CodePoints) {
            break; // the order of numbers and times is not that of the texts
        }
        order.append({out->colName(key.column), key.ascending});
    }
    out->setSortInfos(order);
}

/// The key is encoded before the packed row, which begins where the key ends.
bool ActionSort::takeRow(const OneRow &row)
{
    const uchar *const *const cells = row.view().cells;
    rows::RowSorter &sorter = m_run->sorter;
    char *const key = sorter.room(m_run->encoder.bytesAtMost(cells) +
                                  rows::packedBytesAtMost(m_run->types, cells));
    char *const keyEnd = m_run->encoder.put(cells, key);
    if (keyEnd == nullptr) {
        return fail(u"Error: sort: %1\n"_s.arg(
            shared::notANumber(rowNumber(), row, m_run->encoder.failedColumn())));
    }
    for (TextKey &textKey : m_run->textKeys) {
        countNumbers(row, &textKey);
    }
    const char *const end = rows::packRow(m_run->types, cells, keyEnd);
    return sorter.commit(keyEnd - key, end - keyEnd) || shared::failSorter(this, sorter);
}

/// A number has the form that makes a column one of numbers: 007 is a text.
void ActionSort::countNumbers(const OneRow &row, TextKey *key) const
{
    constexpr qsizetype kMaxUnits = 40;
    const cell::Text text = cell::readText(row.view().cells[key->column]);
    if (text.isMissing()) {
        return;
    }
    ++key->values;
    std::array<char, kMaxUnits * kUtf8BytesPerUnit> bytes{};
    const qsizetype size =
        text.size() <= kMaxUnits ? utf16ToUtf8(text.view().data(), text.size(), bytes.data()) : 0;
    const values::Form form =
        values::formOf({bytes.data(), static_cast<size_t>(size)}, m_params.decimal[0].toLatin1());
    if (form.kind == values::Kind::Integer || form.kind == values::Kind::Decimal) {
        ++key->numbers;
    } else if (key->otherRow == 0) {
        key->otherRow = rowNumber();
        key->other = QString(row.text(key->column)).left(kMaxUnits);
    }
}

/// Only where most values are numbers: 10 comes before 9, which is rarely meant.
void ActionSort::noteTextKeys()
{
    for (const TextKey &key : m_run->textKeys) {
        if (key.numbers == 0 || key.numbers * 2 < key.values) {
            continue;
        }
        const QString name = getOutputRowForOutputPin(0)->colName(key.column);
        const QString count = QString::number(key.numbers);
        MainUI::addLog(
            MainUI::Info,
            key.otherRow == 0
                ? u"sort: the column '%1' is sorted as texts, and all of its values are numbers; kinds='%1=decimal' (convert: --types) sorts them as numbers\n"_s
                      .arg(name)
                : u"sort: the column '%1' is sorted as texts: %2 of its %3 values are numbers; the first other value is '%4' in row %5 (nullValues of readCSV can make it a missing value)\n"_s
                      .arg(name, count, QString::number(key.values), key.other,
                           QString::number(key.otherRow)));
    }
}

bool ActionSort::endInput()
{
    noteTextKeys();
    return m_run->sorter.finish() || shared::failSorter(this, m_run->sorter);
}

/// Numbers are still in the packed row, which is valid until the next one: the output pin copies
/// them.
bool ActionSort::emitRow()
{
    const auto row = m_run->sorter.next();
    if (!row) {
        return shared::failSorter(this, m_run->sorter);
    }
    if (!*row) {
        return false;
    }
    rows::unpackRow(m_run->types, (*row)->data(), bufferForOutputPin(0), m_run->cells.data());
    OneRow *const out = getOutputRowForOutputPin(0);
    for (size_t i = 0; i < m_run->cells.size(); ++i) {
        out->setCol(static_cast<int>(i), m_run->cells[i]);
    }
    setRowReadyForOutput(0);
    return true;
}

} // namespace corvanta
