// stats: counts and ranges of each column, in one pass over the rows, after their types are known.
//
// Memory does not grow with the rows: a column keeps its extreme values, and the hashes of its
// distinct values up to a limit.
#include "base/cell.h"
#include "base/number.h"
#include "base/stats/column_stats.h"
#include "cli/commands.h"
#include "cli/input_rows.h"
#include "cli/print/output.h"
#include "cli/table_printer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string_view>
#include <vector>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// What is printed about a column. A member that does not apply is null.
struct ColumnSummary
{
    QString name;
    QString type;
    qint64 rows = 0;
    qint64 missing = 0;
    qint64 distinct = 0;
    bool isOverDistinct = false; ///< there are more than `distinct`
    QJsonValue minimum;
    QJsonValue maximum;
    QJsonValue mean;
    QJsonValue longest;
};

class ColumnStats
{
public:
    /// `isNumeric`: all values are numbers, also those of a Text, which has too many digits.
    ColumnStats(cell::Type type, const ColumnKind &kind, bool isNumeric, size_t maxDistinct)
        : m_type(type)
        , m_kind(kind.kind)
        , m_isExact(kind.letter != 'U')
        , m_isNumeric(isNumeric)
        , m_distinct(maxDistinct)
        , m_texts(kind.kind == ValueKind::Text ? TextOrder::CodePoints : TextOrder::Words)
    {
    }

    void add(const uchar *cell)
    {
        ++m_rows;
        switch (m_type) {
        case cell::Type::Key: {
            const auto key = loadNative<quint32>(cell);
            addNumber(key, cell::isMissingKey(key));
            break;
        }
        case cell::Type::Double: {
            const auto value = loadNative<double>(cell);
            addNumber(value, cell::isMissingDouble(value));
            break;
        }
        case cell::Type::Text:
            addText(cell::readText(cell));
            break;
        }
    }
    ColumnSummary summary(const QString &name) const;

private:
    void addNumber(double value, bool isMissing)
    {
        if (isMissing) {
            ++m_missing;
            return;
        }
        addDistinct(value);
        m_numbers.add(value);
    }
    void addDistinct(double value)
    {
        // Zero has two representations, which are one value.
        const double unsignedZero = value == 0 ? 0 : value;
        m_distinct.add(std::hash<std::string_view>()(
            {reinterpret_cast<const char *>(&unsignedZero), sizeof unsignedZero}));
    }
    void addText(const cell::Text &text)
    {
        if (text.isMissing()) {
            ++m_missing;
            return;
        }
        double value = 0;
        m_isNumeric = m_isNumeric && parseDouble(text.view(), &value);
        if (m_isNumeric && m_isExact) {
            addDistinct(value); // 1.0 and 1.00 are one number
        } else {
            m_distinct.add(std::hash<std::u16string_view>()(text.view()));
        }
        if (m_isNumeric) {
            m_numbers.add(value, text.view());
        }
        if (!m_isNumeric || m_kind == ValueKind::Text) {
            m_texts.add(text.view());
        }
    }

    cell::Type m_type;
    ValueKind m_kind;
    bool m_isExact;   ///< a double holds each number of the column
    bool m_isNumeric; ///< the values so far are numbers
    qint64 m_rows = 0;
    qint64 m_missing = 0;
    DistinctCounter m_distinct;
    NumberRange m_numbers;
    TextRange m_texts;
};

/// Of a text the digits as they are; of a number an integer with all digits, if it fits, or the
/// nearest double.
QJsonValue jsonOf(const StatsNumber &number, ValueKind kind)
{
    const QString text = QString::fromStdU16String(number.text);
    if (kind == ValueKind::Text) {
        return text;
    }
    bool isInteger = false;
    const qint64 integer = text.toLongLong(&isInteger);
    return isInteger ? QJsonValue(integer) : QJsonValue(number.value);
}

ColumnSummary ColumnStats::summary(const QString &name) const
{
    ColumnSummary summary;
    summary.name = name;
    summary.type = kindName(m_kind);
    summary.rows = m_rows;
    summary.missing = m_missing;
    summary.distinct = static_cast<qint64>(m_distinct.count());
    summary.isOverDistinct = m_distinct.isOver();
    // A file that changed after its types were found may have other texts too.
    if (m_isNumeric && !m_numbers.isEmpty()) {
        summary.minimum = jsonOf(m_numbers.smallest(), m_kind);
        summary.maximum = jsonOf(m_numbers.largest(), m_kind);
        summary.mean = m_kind == ValueKind::Text ? QJsonValue() : QJsonValue(m_numbers.mean());
    } else if (!m_texts.isEmpty()) {
        summary.minimum = m_texts.smallest();
        summary.maximum = m_texts.largest();
    }
    if (!m_texts.isEmpty() && m_kind == ValueKind::Text) {
        summary.longest = static_cast<qint64>(m_texts.longest());
    }
    return summary;
}

/// The text of a value for people; null for one that does not apply.
QString shown(const QJsonValue &value)
{
    if (value.isString()) {
        return value.toString().isEmpty() ? u""_s : value.toString(); // empty, but not null
    }
    if (!value.isDouble()) {
        return QString();
    }
    // A double would lose digits of an integer.
    constexpr qint64 kNone = std::numeric_limits<qint64>::min();
    const qint64 integer = value.toInteger(kNone);
    return integer == kNone ? shortestText(value.toDouble()) : QString::number(integer);
}

/// Fields that do not apply are left out, as are infinite numbers, which JSON does not have.
QJsonObject jsonOf(const ColumnSummary &column)
{
    QJsonObject object{{u"name"_s, column.name},
                       {u"type"_s, column.type},
                       {u"rows"_s, column.rows},
                       {u"missing"_s, column.missing}};
    if (!column.isOverDistinct) {
        object[u"distinct"_s] = column.distinct;
    }
    const std::pair<QString, QJsonValue> rest[] = {{u"minimum"_s, column.minimum},
                                                   {u"maximum"_s, column.maximum},
                                                   {u"mean"_s, column.mean},
                                                   {u"longest"_s, column.longest}};
    for (const auto &[name, value] : rest) {
        if (!value.isNull() && (!value.isDouble() || std::isfinite(value.toDouble()))) {
            object[name] = value;
        }
    }
    return object;
}

/// The statistics of all columns of a table.
class TableStats
{
public:
    /// `facts` must be set before the first row.
    explicit TableStats(const InputFacts &facts)
        : m_facts(facts)
    {
    }
    void add(const TableSchema &columns, const OneRow *row)
    {
        // The columns are known with the first call, which may be the end of an empty table.
        if (m_columns.empty()) {
            start(columns);
        }
        if (row != nullptr) {
            const RowView view = row->view();
            for (size_t i = 0; i < m_columns.size(); ++i) {
                m_columns[i].add(view.cells[i]);
            }
        }
    }
    void print(bool isJson) const;

private:
    void start(const TableSchema &columns)
    {
        const size_t maxDistinct = maxDistinctOf(static_cast<size_t>(columns.names.size()));
        const QVector<ColumnKind> kinds = kindsOf(columns, m_facts);
        for (qsizetype i = 0; i < kinds.size(); ++i) {
            const ValueKind kind = kinds[i].kind;
            const bool isNumeric = kind == ValueKind::Integer || kind == ValueKind::Decimal ||
                                   m_facts.longNumbers.contains(columns.names[i]);
            m_columns.emplace_back(columns.types[i].cellType(), kinds[i], isNumeric, maxDistinct);
        }
        m_names = columns.names;
    }
    void printTable(const QVector<ColumnSummary> &columns) const;

    const InputFacts &m_facts;
    std::vector<ColumnStats> m_columns;
    QVector<QString> m_names;
};

void TableStats::print(bool isJson) const
{
    QVector<ColumnSummary> columns;
    for (size_t i = 0; i < m_columns.size(); ++i) {
        columns << m_columns[i].summary(m_names.at(static_cast<qsizetype>(i)));
    }
    if (!isJson) {
        printTable(columns);
        return;
    }
    QJsonArray all;
    for (const ColumnSummary &column : columns) {
        all << jsonOf(column);
    }
    printJson(QJsonDocument(all));
}

void TableStats::printTable(const QVector<ColumnSummary> &columns) const
{
    TableSchema schema;
    for (const QString &name : {u"column"_s, u"type"_s, u"rows"_s, u"missing"_s, u"distinct"_s,
                                u"minimum"_s, u"maximum"_s, u"mean"_s, u"longest"_s}) {
        const bool isText = name == u"column" || name == u"type";
        schema.names << name;
        schema.types << MetaInfo(isText ? cell::Type::Text : cell::Type::Double);
    }
    TablePrinter printer(schema);
    for (const ColumnSummary &column : columns) {
        const QString distinct = QString::number(column.distinct);
        printer.add({column.name, column.type, QString::number(column.rows),
                     QString::number(column.missing),
                     column.isOverDistinct ? u"over "_s + distinct : distinct,
                     shown(column.minimum), shown(column.maximum), shown(column.mean),
                     shown(column.longest)});
    }
    printer.finish();
}

constexpr OptionInfo kStatsOptions[] = {
    {"--json", "", "print an array with an object per column"},
};

} // namespace

CommandOptions statsOptions()
{
    CommandOptions options = inputFileOptions();
    options.groups.prepend({"", kStatsOptions});
    return options;
}

CommandResult<void> statsCommand(const CommandLine &line)
{
    constexpr qint64 kAllRows = -1;
    InputFacts facts;
    facts.extent = ActionParameters::KindExtent::All;
    TableStats stats(facts);
    const auto add = [&](const TableSchema &columns, const OneRow *row) {
        stats.add(columns, row);
        return true;
    };
    auto done = readRows(u"stats"_s, line, kAllRows, ReadExtent::Whole, add, &facts);
    // Nothing is printed of a file that cannot be read.
    if (done) {
        stats.print(line.has(u"--json"_s));
    }
    return done;
}
