// stats: counts and ranges of each column, in one pass over the rows, after their types are known.
//
// Memory does not grow with the rows: a column keeps its extreme values, and the hashes of its
// distinct values up to a limit.
#include "base/cell.h"
#include "base/number.h"
#include "cli/commands.h"
#include "cli/input_rows.h"
#include "cli/table_printer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string_view>
#include <vector>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// Counts different values by their hashes of 64 bits, of which two are practically never equal.
class DistinctCounter
{
public:
    explicit DistinctCounter(size_t limit)
        : m_limit(limit)
    {
    }
    void add(quint64 hash)
    {
        if (hash != m_last && !isOver()) {
            m_last = hash;
            insert(hash == kFree ? 1 : hash);
        }
    }
    /// More than the limit were added.
    bool isOver() const { return m_count > m_limit; }
    /// Up to the limit.
    size_t count() const { return std::min(m_count, m_limit); }

private:
    static constexpr quint64 kFree = 0;

    /// The slot of a hash, or a free one for it.
    size_t slotOf(quint64 hash) const
    {
        size_t slot = hash & (m_slots.size() - 1);
        while (m_slots[slot] != kFree && m_slots[slot] != hash) {
            slot = (slot + 1) & (m_slots.size() - 1);
        }
        return slot;
    }
    // Half of the slots stay free, so that a search ends after a few.
    void insert(quint64 hash)
    {
        quint64 &slot = m_slots[slotOf(hash)];
        if (slot == hash) {
            return;
        }
        slot = hash;
        ++m_count;
        if (isOver()) {
            m_slots.clear();
            m_slots.shrink_to_fit();
        } else if (m_count * 2 > m_slots.size()) {
            grow();
        }
    }
    void grow()
    {
        std::vector<quint64> old(m_slots.size() * 2);
        old.swap(m_slots);
        for (const quint64 hash : old) {
            if (hash != kFree) {
                m_slots[slotOf(hash)] = hash;
            }
        }
    }

    size_t m_limit;
    size_t m_count = 0;
    quint64 m_last = kFree;
    std::vector<quint64> m_slots = std::vector<quint64>(64); ///< a power of two, at most half full
};

/// The smallest and largest number, and the mean. NaN has no place in an order and is left out.
class NumberRange
{
public:
    // The sum of millions of doubles needs more digits than a double has.
    void add(double value)
    {
        if (!std::isnan(value)) {
            m_smallest = std::min(m_smallest, value);
            m_largest = std::max(m_largest, value);
            m_sum += value;
            ++m_count;
        }
    }
    bool isEmpty() const { return m_count == 0; }
    double smallest() const { return m_smallest; }
    double largest() const { return m_largest; }
    double mean() const { return static_cast<double>(m_sum / static_cast<long double>(m_count)); }

private:
    double m_smallest = std::numeric_limits<double>::infinity();
    double m_largest = -std::numeric_limits<double>::infinity();
    long double m_sum = 0;
    qint64 m_count = 0;
};

/// Orders UTF-16 texts by code point: surrogates come after all other units.
bool isBefore(std::u16string_view a, std::u16string_view b)
{
    const auto rank = [](char16_t unit) {
        const bool isHigh = unit >= 0xD800;
        return !isHigh ? int(unit) : unit < 0xE000 ? unit + 0x10000 : int(unit);
    };
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                        [&](char16_t x, char16_t y) { return rank(x) < rank(y); });
}

/// The first and the last text in that order, and the length of the longest one in characters.
class TextRange
{
public:
    void add(std::u16string_view text)
    {
        if (m_isEmpty || isBefore(text, m_smallest)) {
            m_smallest = text;
        }
        if (m_isEmpty || isBefore(m_largest, text)) {
            m_largest = text;
        }
        m_isEmpty = false;
        // A text has at most as many characters as units.
        if (text.size() > m_longest) {
            m_longest = std::max(m_longest, charactersOf(text));
        }
    }
    bool isEmpty() const { return m_isEmpty; }
    QString smallest() const { return QString::fromStdU16String(m_smallest); }
    QString largest() const { return QString::fromStdU16String(m_largest); }
    size_t longest() const { return m_longest; }

private:
    static size_t charactersOf(std::u16string_view text)
    {
        return static_cast<size_t>(std::ranges::count_if(
            text, [](char16_t unit) { return unit < 0xDC00 || unit > 0xDFFF; }));
    }

    bool m_isEmpty = true;
    std::u16string m_smallest;
    std::u16string m_largest;
    size_t m_longest = 0;
};

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
    ColumnStats(cell::Type type, ValueKind kind, size_t maxDistinct)
        : m_type(type)
        , m_kind(kind)
        , m_isNumeric(kind == ValueKind::Integer || kind == ValueKind::Decimal)
        , m_distinct(maxDistinct)
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
        // Zero has two representations, which are one value.
        const double unsignedZero = value == 0 ? 0 : value;
        m_distinct.add(std::hash<std::string_view>()(
            {reinterpret_cast<const char *>(&unsignedZero), sizeof unsignedZero}));
        m_numbers.add(value);
    }
    void addText(const cell::Text &text)
    {
        if (text.isMissing()) {
            ++m_missing;
            return;
        }
        m_distinct.add(std::hash<std::u16string_view>()(text.view()));
        double value = 0;
        m_isNumeric = m_isNumeric && parseDouble(text.view(), &value);
        if (m_isNumeric) {
            m_numbers.add(value);
        } else {
            m_texts.add(text.view());
        }
    }

    cell::Type m_type;
    ValueKind m_kind;
    bool m_isNumeric; ///< the values so far are numbers
    qint64 m_rows = 0;
    qint64 m_missing = 0;
    DistinctCounter m_distinct;
    NumberRange m_numbers;
    TextRange m_texts;
};

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
        summary.minimum = m_numbers.smallest();
        summary.maximum = m_numbers.largest();
        summary.mean = m_numbers.mean();
    }
    if (!m_texts.isEmpty()) {
        summary.minimum = m_texts.smallest();
        summary.maximum = m_texts.largest();
        summary.longest = m_kind == ValueKind::Text
                              ? QJsonValue(static_cast<qint64>(m_texts.longest()))
                              : QJsonValue();
    }
    return summary;
}

/// The text of a value for people; null for one that does not apply.
QString shown(const QJsonValue &value)
{
    if (value.isString()) {
        return value.toString().isEmpty() ? u""_s : value.toString(); // empty, but not null
    }
    return value.isDouble() ? shortestText(value.toDouble()) : QString();
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
        // Values that all columns may keep, 16 to 32 bytes each.
        constexpr size_t kMaxHashes = 4'000'000;
        constexpr size_t kMaxDistinct = 100'000;
        const auto count = static_cast<size_t>(columns.names.size());
        const size_t maxDistinct = std::min(kMaxDistinct, kMaxHashes / std::max<size_t>(count, 1));
        const QVector<ColumnKind> kinds = kindsOf(columns, m_facts);
        for (qsizetype i = 0; i < kinds.size(); ++i) {
            m_columns.emplace_back(columns.types[i].cellType(), kinds[i].kind, maxDistinct);
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
    std::fputs(QJsonDocument(all).toJson().constData(), stdout);
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
    TablePrinter printer(schema, stdout);
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

} // namespace

CommandOptions statsOptions()
{
    CommandOptions options = inputFileOptions();
    options.flags << u"--json"_s;
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
    const auto done = readRows(u"stats"_s, line, kAllRows, ReadExtent::Whole, add, &facts);
    // Nothing is printed of a file that cannot be read.
    if (done) {
        stats.print(line.has(u"--json"_s));
    }
    return done;
}
