// What a writer may rely on. A footer has the types of columns, but not always the range of their
// values, and one value outside of the range of a type decides about its whole column:
//
//   column                      the footer says         the values decide
//   64-bit integers             the range, with         whether doubles hold them: F, else U
//                               statistics
//   dates, times, timestamps    the unit                whether all have the usual form and no
//                                                       digit below a microsecond, else texts
//   all others                  everything
#include "actions/read_parquet/column_scan.h"

#include "base/mapped.h"
#include "base/time/iso_time.h"
#include "codecs/parquet/metadata/footer.h"
#include "io/input/kept_pipe.h"
#include "io/input/whole_input.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using parquet::Form;
using Extent = ActionParameters::KindExtent;

/// Rows that a sample has.
constexpr qint64 kSampleRows = 1000;
/// Digits that every double holds.
constexpr int kDoubleDigits = 15;

/// What the texts or numbers are that a conversion gives.
ValueKind kindOf(Form form)
{
    switch (form) {
    case Form::TextBoolean:
        return ValueKind::Boolean;
    case Form::TextDate:
        return ValueKind::Date;
    case Form::TextTime:
        return ValueKind::Time;
    case Form::TextTimestamp:
    case Form::TextInt96:
        return ValueKind::DateTime;
    case Form::KeyFromBoolean:
    case Form::Key32:
    case Form::KeyLow32:
    case Form::DoubleFromInt64:
    case Form::DoubleFromInt32:
    case Form::DoubleFromUint32:
    case Form::DoubleFromUint64:
    case Form::TextInt64:
        return ValueKind::Integer;
    case Form::DoubleFromInt96:
    case Form::DoubleFromFloat:
    case Form::DoubleFromHalf:
    case Form::Double:
    case Form::TextDecimal:
        return ValueKind::Decimal;
    case Form::Text:
    case Form::TextUint64: // may exceed what writers store as an integer
    case Form::TextUuid:
        break;
    }
    return ValueKind::Text;
}

/// A decimal number of few digits is the same number as a double.
char letterOf(const parquet::Column &column)
{
    const int precision = column.detail.precision;
    const bool fitsDouble =
        column.form == Form::TextDecimal && precision > 0 && precision <= kDoubleDigits;
    return static_cast<char>(fitsDouble ? cell::Type::Double : parquet::cellTypeOf(column.form));
}

/// Decimals of few digits are numbers, although the reader gives them as texts.
ColumnKind kindOf(const parquet::Column &column)
{
    return {.column = column.name, .kind = kindOf(column.form), .letter = letterOf(column)};
}

bool isTime(ValueKind kind)
{
    return kind == ValueKind::Date || kind == ValueKind::DateTime || kind == ValueKind::Time;
}

/// Whether the text has the usual form, in microseconds, with the zone of those before.
bool fits(ValueKind kind, std::u16string_view text, std::optional<bool> *isUtc)
{
    constexpr qint64 kPerMicrosecond = 1000;
    if (kind == ValueKind::Date) {
        return parseIsoDate(text).has_value();
    }
    if (kind == ValueKind::Time) {
        return parseIsoTime(text).value_or(1) % kPerMicrosecond == 0;
    }
    const auto moment = parseIsoDateTime(text);
    if (!moment || moment->nanoseconds % kPerMicrosecond != 0) {
        return false;
    }
    *isUtc = isUtc->value_or(moment->isUtc);
    return *isUtc == moment->isUtc;
}

/// The columns of dates and times, whose texts are checked.
class TimeScan
{
public:
    explicit TimeScan(QVector<ColumnKind> *kinds)
        : m_kinds(*kinds)
    {
        for (qsizetype i = 0; i < m_kinds.size(); ++i) {
            if (isTime(m_kinds[i].kind)) {
                m_columns.push_back({i, {}});
                m_names << m_kinds[i].column;
            }
        }
    }
    /// In the order of the cells that run() reads.
    const QStringList &names() const { return m_names; }

    /// Read rows of a table with these columns.
    void run(parquet::TableReader &table, const QString &file, qint64 maxRows)
    {
        std::vector<const uchar *> cells(m_columns.size());
        for (qint64 row = 1; row <= maxRows; ++row) {
            const auto more = table.next(cells.data());
            if (!more || !*more) {
                return; // the run reports a fault
            }
            for (size_t i = 0; i < cells.size(); ++i) {
                check(m_columns[i], cells[i], row, file);
            }
        }
    }

private:
    struct Column
    {
        qsizetype index; // in m_kinds
        std::optional<bool> isUtc;
    };

    void check(Column &column, const uchar *cell, qint64 row, const QString &file)
    {
        ColumnKind &kind = m_kinds[column.index];
        const cell::Text text = cell::readText(cell);
        if (isTime(kind.kind) && text.size() > 0 && !fits(kind.kind, text.view(), &column.isUtc)) {
            kind.before = kind.kind;
            kind.kind = ValueKind::Text;
            kind.exception = QString::fromUtf16(text.data(), text.size());
            kind.exceptionPlace = u"row %1 of the file '%2'"_s.arg(QString::number(row), file);
        }
        kind.isUtc = column.isUtc.value_or(false);
    }

    QVector<ColumnKind> &m_kinds;
    std::vector<Column> m_columns;
    QStringList m_names;
};

/// A reader of only these columns; null if they cannot all be read.
std::unique_ptr<parquet::TableReader> readOnly(ByteSource &source, parquet::ReadOptions options,
                                               const QStringList &columns)
{
    options.selectsColumns = true;
    options.selection = columns;
    auto table = parquet::TableReader::open(source, options, 1);
    const bool isComplete =
        table && (*table)->columns().size() == static_cast<size_t>(columns.size());
    return isComplete ? *std::move(table) : nullptr;
}

} // namespace

/// Null if the file cannot be read, or not again.
std::unique_ptr<ByteSource> ColumnScan::open(const QString &name) const
{
    // A pipe can be read only once: opening it here would take the bytes that the run reads.
    if (input::isPipe(name)) {
        return nullptr;
    }
    auto input = std::make_unique<RunInput>(m_action.globalParameters(), m_control, name, false,
                                            InputFile::Report::Nothing);
    if (!input->file.isOpen()) {
        return nullptr;
    }
    auto source = randomAccess(std::move(input));
    return source ? *std::move(source) : nullptr;
}

/// Whether doubles hold all values of a 64-bit column. False also for one that cannot be read.
bool ColumnScan::areSmall(ByteSource &source, const QString &column) const
{
    parquet::ReadOptions options;
    options.logicalTypes = true;
    options.extendedEncodings = true;
    options.smallIntegers.insert(column);
    const auto table = readOnly(source, options, {column});
    if (!table) {
        return false;
    }
    const uchar *cell = nullptr;
    for (;;) {
        const auto more = table->next(&cell);
        if (!more || !*more) {
            return bool(more);
        }
        // A larger integer rounds to at least this bound.
        const auto value = loadNative<double>(cell);
        if (!cell::isMissingDouble(value) &&
            std::abs(value) >= static_cast<double>(parquet::kMaxExactInteger)) {
            return false;
        }
    }
}

void ColumnScan::addIntegers(const QString &name, parquet::ReadOptions *options) const
{
    const auto source = open(name);
    if (!source) {
        return;
    }
    const auto footer = parquet::readFooter(*source);
    if (!footer) {
        return;
    }
    const parquet::TextIntegers integers = parquet::textIntegersOf(*footer);
    options->textIntegers.insert(integers.large.begin(), integers.large.end());
    for (const QString &column : integers.unknown) {
        const bool isRead = !options->selectsColumns || options->selection.contains(column);
        if (isRead && !options->textIntegers.contains(column)) {
            auto &names =
                areSmall(*source, column) ? options->smallIntegers : options->textIntegers;
            names.insert(column);
        }
    }
}

std::optional<QVector<ColumnKind>> ColumnScan::kindsIn(const QString &name,
                                                       const parquet::ReadOptions &options) const
{
    const auto source = open(name);
    if (!source) {
        return std::nullopt;
    }
    const auto table = parquet::TableReader::open(*source, options, 0);
    // Columns that cannot be read are known only after prepare().
    if (!table || !(*table)->prepare()) {
        return std::nullopt;
    }
    const auto kind = [](const parquet::Column &column) { return kindOf(column); };
    return mapped<QVector<ColumnKind>>((*table)->columns(), kind);
}

std::optional<QVector<ColumnKind>> ColumnScan::kindsOf(const QStringList &names,
                                                       const parquet::ReadOptions &options,
                                                       Extent extent) const
{
    if (names.isEmpty()) {
        return QVector<ColumnKind>();
    }
    // The other files have the same columns, or the run fails.
    auto kinds = kindsIn(names[0], options);
    if (!kinds) {
        return std::nullopt;
    }
    TimeScan times(&*kinds);
    const bool isWhole = extent == Extent::All;
    for (const QString &name : isWhole ? names : names.first(1)) {
        const auto source = times.names().isEmpty() ? nullptr : open(name);
        const auto table = source ? readOnly(*source, options, times.names())
                                  : std::unique_ptr<parquet::TableReader>();
        if (table) {
            times.run(*table, name, isWhole ? table->declaredRows() : kSampleRows);
        }
    }
    return kinds;
}

} // namespace corvanta
