// Walks the schema, a tree stored as a list in depth-first order (parquet.thrift, SchemaElement):
//
//   schema[0]  root, numChildren = number of columns
//   schema[i]  leaf: type, repetitionType, annotation; its chunk has the number of the leaf
//              group: numChildren; its children follow directly
//
// The annotation of a leaf is its logicalType, or in older files its convertedType.
#include "codecs/parquet/read/column.h"

#include "base/bytes.h"
#include "codecs/parquet/encoding/codec.h"

#include <QLatin1StringView>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {

/// A leaf of the schema tree.
struct Leaf
{
    const SchemaElement *element;
    QString name; ///< With the names of its groups, separated by dots.
    bool isNested;
};

/// Collects the leaves of a schema in order. Accepts schemas with wrong child counts.
class LeafCollector
{
public:
    void add(const SchemaElement &element)
    {
        // The groups that the previous element has completed.
        while (!m_open.empty() && m_open.back().missingChildren == 0) {
            m_open.pop_back();
        }
        const bool isNested = !m_open.empty();
        QString name = QString::fromUtf8(element.name);
        if (isNested) {
            --m_open.back().missingChildren;
            name.prepend(m_open.back().prefix);
        }
        const qint32 children = element.numChildren.value_or(0);
        if (children <= 0) {
            m_leaves.push_back({&element, name, isNested});
        } else {
            // Deeply nested groups in a damaged schema would make the names grow without limit.
            constexpr qsizetype kMaxPrefix = 1000;
            m_open.push_back({children, name.left(kMaxPrefix) + u'.'});
        }
    }
    std::vector<Leaf> take() { return std::move(m_leaves); }

private:
    struct Group
    {
        qint64 missingChildren;
        QString prefix; // names of the groups, with a dot at the end
    };
    std::vector<Leaf> m_leaves;
    std::vector<Group> m_open;
};

/// The leaves in order, which is also the order of the chunks.
std::vector<Leaf> leavesOf(const FileMetaData &file)
{
    LeafCollector collector;
    for (size_t i = 1; i < file.schema.size(); ++i) {
        collector.add(file.schema[i]);
    }
    return collector.take();
}

/// Bytes of a stored value; 0 if the values have different lengths, or are bits.
int storedBytes(const SchemaElement &element)
{
    switch (*element.type) {
    case kInt32:
    case kFloat:
        return 4;
    case kInt64:
    case kDouble:
        return 8;
    case kInt96:
        return 12;
    case kFixedLenByteArray:
        return element.typeLength.value_or(0);
    default:
        return 0;
    }
}

/// The conversion that ignores annotations.
Form strictForm(qint32 physical, const ReadOptions &options)
{
    switch (physical) {
    case kBoolean:
        return options.booleanTexts ? Form::TextBoolean : Form::KeyFromBoolean;
    case kInt32:
        return Form::Key32;
    case kInt64:
        return options.int64ToKey ? Form::KeyLow32 : Form::DoubleFromInt64;
    case kInt96:
        return Form::DoubleFromInt96;
    case kFloat:
        return Form::DoubleFromFloat;
    case kDouble:
        return Form::Double;
    default:
        return Form::Text;
    }
}

/// What the statistics of all row groups say about the integers of a column.
enum class Range : quint8 { Small, Large, Unknown };

/// The bound of a chunk that the newer member has, or else the older one.
Range rangeOf(const std::optional<QByteArray> &newer, const std::optional<QByteArray> &older,
              bool isUnsigned)
{
    // The older members compare as signed numbers, which the check below allows for: an unsigned
    // column with a value of 2^63 or more has a negative minimum there.
    const std::optional<QByteArray> &bytes = newer ? newer : older;
    if (!bytes || bytes->size() != sizeof(qint64)) {
        return Range::Unknown;
    }
    const auto value = loadLE<qint64>(bytes->constData());
    const bool isSmall = value <= kMaxExactInteger && value >= (isUnsigned ? 0 : -kMaxExactInteger);
    return isSmall ? Range::Small : Range::Large;
}

/// Whether doubles hold all values of the row group exactly.
Range rangeOf(const RowGroup &group, size_t chunk, bool isUnsigned)
{
    const ColumnMetaData *const data =
        chunk < group.columns.size() ? group.columns[chunk].metaData.get() : nullptr;
    if (data == nullptr || data->statistics == nullptr) {
        return Range::Unknown;
    }
    const Statistics &s = *data->statistics;
    // A chunk without values has no range.
    if (s.nullCount == data->numValues) {
        return Range::Small;
    }
    return std::max(rangeOf(s.minValue, s.min, isUnsigned), rangeOf(s.maxValue, s.max, isUnsigned));
}

Range rangeOf(const FileMetaData &file, size_t chunk, bool isUnsigned)
{
    Range range = Range::Small;
    for (const RowGroup &group : file.rowGroups) {
        const Range one = rangeOf(group, chunk, isUnsigned);
        if (one == Range::Large) {
            return one;
        }
        range = std::max(range, one);
    }
    return range;
}

/// Whether the annotation says that the integers have `bits` bits without a sign. `converted` is
/// the older annotation with that meaning.
bool isUnsigned(const SchemaElement &element, int bits, qint32 converted)
{
    if (element.logicalType && element.logicalType->integer) {
        const auto &integer = *element.logicalType->integer;
        return !integer.isSigned && integer.bitWidth == bits;
    }
    return element.convertedType.value_or(-1) == converted;
}

/// Whether the integers are keys that FileWriter stored. Its other integers have the newer
/// annotation.
bool hasKeys(const FileMetaData &file, const SchemaElement &element)
{
    return file.createdBy == kCreatedBy && !element.logicalType;
}

/// The values that a conversion does not keep.
Loss lossOf(const FileMetaData &file, const SchemaElement &element, Form form)
{
    if (form == Form::Text) {
        return Loss::ChangedText;
    }
    if (hasKeys(file, element)) {
        return Loss::None; // they are as they were in the table
    }
    switch (form) {
    case Form::Key32:
        return isUnsigned(element, 8, kUint8) || isUnsigned(element, 16, kUint16) ||
                       isUnsigned(element, 32, kUint32)
                   ? Loss::MissingKey
                   : Loss::NegativeKey;
    case Form::KeyLow32:
        return Loss::WideKey;
    case Form::DoubleFromInt64:
        return isUnsigned(element, 64, kUint64) ? Loss::RoundedUnsigned : Loss::Rounded;
    case Form::DoubleFromUint64:
        return Loss::RoundedUnsigned;
    case Form::DoubleFromInt96:
        return Loss::OtherNumber;
    default:
        return Loss::None;
    }
}

/// Sets the conversion of a column from its annotation: the newer one if present, else the older
/// one.
class LogicalForm
{
public:
    LogicalForm(const FileMetaData &file, const SchemaElement &element, const ReadOptions &options,
                Column &column)
        : m_file(file)
        , m_options(options)
        , m_element(element)
        , m_logical(element.logicalType.value_or(LogicalType{}))
        , m_converted(element.convertedType.value_or(-1))
        , m_column(column)
    {
    }

    void set()
    {
        const bool isInteger = m_column.physical == kInt32 || m_column.physical == kInt64;
        if (isInteger && hasKeys(m_file, m_element)) {
            return;
        }
        switch (m_column.physical) {
        case kInt32:
            setInteger32();
            break;
        case kInt64:
            setInteger64();
            break;
        case kInt96:
            // INT96 has no annotation. In practice it always holds a timestamp without a time zone.
            setTime(Form::TextInt96, 1'000'000'000, false);
            break;
        case kByteArray:
        case kFixedLenByteArray:
            setBytes();
            break;
        default:
            break;
        }
    }

private:
    bool setDecimal()
    {
        if (!m_logical.decimal && m_converted != kDecimal) {
            return false;
        }
        m_column.form = Form::TextDecimal;
        const qint32 scale =
            m_logical.decimal ? m_logical.decimal->scale : m_element.scale.value_or(0);
        // Limits the length of the text, which has a zero for each missing digit.
        constexpr qint32 kMaxScale = 1000;
        m_column.detail.scale = qBound(0, scale, kMaxScale);
        m_column.detail.precision =
            m_logical.decimal ? m_logical.decimal->precision : m_element.precision.value_or(0);
        return true;
    }
    /// Decimal places that show one tick: 3, 6 or 9.
    static int fractionDigitsOf(qint64 ticksPerSecond)
    {
        return ticksPerSecond == 1000 ? 3 : (ticksPerSecond == 1'000'000 ? 6 : 9);
    }
    void setTime(Form form, qint64 ticksPerSecond, bool isUtc)
    {
        m_column.form = form;
        m_column.detail.ticksPerSecond = ticksPerSecond;
        m_column.detail.fractionDigits = fractionDigitsOf(ticksPerSecond);
        m_column.detail.isUtc = isUtc;
    }
    bool setTimes()
    {
        const auto ticks = [](const TimeType &type) {
            return type.unit.millis ? 1000 : type.unit.micros ? 1'000'000 : 1'000'000'000;
        };
        if (m_logical.time) {
            setTime(Form::TextTime, ticks(*m_logical.time), false);
        } else if (m_logical.timestamp) {
            setTime(Form::TextTimestamp, ticks(*m_logical.timestamp),
                    m_logical.timestamp->isAdjustedToUtc);
        } else if (m_converted == kTimeMillis || m_converted == kTimeMicros) {
            setTime(Form::TextTime, m_converted == kTimeMillis ? 1000 : 1'000'000, false);
        } else if (m_converted == kTimestampMillis || m_converted == kTimestampMicros) {
            // The older annotations always mean UTC.
            setTime(Form::TextTimestamp, m_converted == kTimestampMillis ? 1000 : 1'000'000, true);
        } else {
            return false;
        }
        return true;
    }
    void setInteger32()
    {
        if (m_logical.date || m_converted == kDate) {
            m_column.form = Form::TextDate;
        } else if (isUnsigned(m_element, 8, kUint8) || isUnsigned(m_element, 16, kUint16)) {
            m_column.form = Form::Key32; // too small to be a missing key
        } else if (isUnsigned(m_element, 32, kUint32)) {
            m_column.form = Form::DoubleFromUint32; // a key cannot hold the two missing values
        } else if (!setDecimal() && !setTimes()) {
            m_column.form = Form::DoubleFromInt32;
        }
    }
    void setInteger64()
    {
        if (setDecimal() || setTimes()) {
            return;
        }
        const bool isUint = isUnsigned(m_element, 64, kUint64);
        if (!m_options.textIntegers.contains(m_column.name) &&
            (m_options.smallIntegers.contains(m_column.name) ||
             rangeOf(m_file, m_column.chunk, isUint) == Range::Small)) {
            m_column.form = isUint ? Form::DoubleFromUint64 : Form::DoubleFromInt64;
        } else {
            m_column.form = isUint ? Form::TextUint64 : Form::TextInt64;
        }
    }
    void setBytes()
    {
        constexpr int kUuidBytes = 16;
        if (m_logical.uuid && m_column.valueBytes == kUuidBytes) {
            m_column.form = Form::TextUuid;
        } else if (m_logical.float16 && m_column.valueBytes == 2) {
            m_column.form = Form::DoubleFromHalf;
        } else {
            setDecimal();
        }
    }

    const FileMetaData &m_file;
    const ReadOptions &m_options;
    const SchemaElement &m_element;
    const LogicalType m_logical;
    qint32 m_converted;
    Column &m_column;
};

Fault<Error> unreadable(const QString &why)
{
    return {Error::BadData, why};
}

/// A codec that every saved graph reads.
bool isBasicCodec(qint32 codec)
{
    return codec == kUncompressed || codec == kSnappy || codec == kGzip;
}

/// A codec that is read only on request: without it, a saved graph stops at such a file.
bool isExtendedCodec(qint32 codec)
{
    return codec == kBrotli || codec == kZstd || codec == kLz4Raw;
}

/// Why a codec is not read: on request it would be, or it never is.
Fault<Error> codecFault(qint32 codec)
{
    if (isExtendedCodec(codec)) {
        return {Error::NeedsExtended, u"the codec %1"_s.arg(codecName(codec))};
    }
    return unreadable(u"the codec %1 is not supported"_s.arg(codecName(codec)));
}

/// Whether chunks of a codec can be read.
Result<void, Error> checkCodec(qint32 codec, const ReadOptions &options)
{
    if (isBasicCodec(codec) || (isExtendedCodec(codec) && options.extendedEncodings)) {
        return {};
    }
    return codecFault(codec);
}

/// Whether the chunks of a column can be read. Checked before the first row, so that a graph does
/// not fail in the middle of a file.
Result<void, Error> checkChunks(const FileMetaData &file, const Column &column,
                                const ReadOptions &options)
{
    for (const RowGroup &group : file.rowGroups) {
        if (column.chunk >= group.columns.size()) {
            return unreadable(u"a row group has no data for it"_s);
        }
        const ColumnChunk &chunk = group.columns[column.chunk];
        if (!chunk.metaData) {
            return unreadable(u"its metadata is missing or encrypted"_s);
        }
        if (chunk.filePath && !chunk.filePath->isEmpty()) {
            return unreadable(
                u"its data is in another file, '%1'"_s.arg(QString::fromUtf8(*chunk.filePath)));
        }
        if (chunk.metaData->type != column.physical) {
            return unreadable(u"a row group stores it as another type"_s);
        }
        if (auto known = checkCodec(chunk.metaData->codec, options); !known) {
            return known;
        }
    }
    return {};
}

/// Whether a leaf can be read.
Result<void, Error> checkLeaf(const Leaf &leaf)
{
    if (leaf.element->repetitionType.value_or(kRequired) == kRepeated) {
        return unreadable(u"repeated columns are not supported"_s);
    }
    // Levels of nested leaves may exceed 1, because each optional group adds one. ColumnReader
    // knows only levels of one bit.
    if (leaf.isNested) {
        return unreadable(u"nested columns are not supported"_s);
    }
    if (!leaf.element->type || *leaf.element->type < kBoolean ||
        *leaf.element->type > kFixedLenByteArray) {
        return unreadable(u"its type is not known"_s);
    }
    // Larger than any real value, and small enough that sizes computed from it do not overflow.
    constexpr int kMaxValueBytes = 1 << 20;
    const int bytes = storedBytes(*leaf.element);
    if (*leaf.element->type == kFixedLenByteArray && (bytes < 1 || bytes > kMaxValueBytes)) {
        return unreadable(u"its values are of an impossible length"_s);
    }
    return {};
}

} // namespace

QString columnDetail(const QString &column, const QString &why)
{
    return u"column '%1': %2"_s.arg(column, why);
}

CellType cellTypeOf(Form form)
{
    switch (form) {
    case Form::KeyFromBoolean:
    case Form::Key32:
    case Form::KeyLow32:
        return CellType::Key;
    case Form::DoubleFromInt64:
    case Form::DoubleFromInt96:
    case Form::DoubleFromFloat:
    case Form::Double:
    case Form::DoubleFromInt32:
    case Form::DoubleFromUint32:
    case Form::DoubleFromUint64:
    case Form::DoubleFromHalf:
        return CellType::Double;
    default:
        return CellType::Text;
    }
}

namespace {

Column columnOf(const FileMetaData &file, const Leaf &leaf, size_t chunk,
                const ReadOptions &options)
{
    // checkLeaf() has verified the type.
    Column column;
    column.name = leaf.name;
    column.chunk = chunk;
    column.physical = *leaf.element->type;
    column.valueBytes = storedBytes(*leaf.element);
    column.isOptional = leaf.element->repetitionType.value_or(kRequired) == kOptional;
    column.form = strictForm(column.physical, options);
    if (options.logicalTypes) {
        LogicalForm(file, *leaf.element, options, column).set();
    }
    column.loss = lossOf(file, *leaf.element, column.form);
    return column;
}

/// The column of a leaf. Errors: BadData if it cannot be read.
Result<Column, Error> readableColumn(const FileMetaData &file, const Leaf &leaf, size_t chunk,
                                     const ReadOptions &options)
{
    if (auto checked = checkLeaf(leaf); !checked) {
        return checked.fault();
    }
    Column column = columnOf(file, leaf, chunk, options);
    if (auto checked = checkChunks(file, column, options); !checked) {
        return checked.fault();
    }
    return column;
}

bool isSelected(const QString &name, const ReadOptions &options)
{
    return (!options.selectsColumns || options.selection.contains(name)) &&
           !options.excluded.contains(name);
}

} // namespace

Result<Columns, Error> selectColumns(const FileMetaData &file, const ReadOptions &options)
{
    Columns result;
    QStringList missing = options.selection;
    const std::vector<Leaf> leaves = leavesOf(file);
    for (size_t i = 0; i < leaves.size(); ++i) {
        const Leaf &leaf = leaves[i];
        missing.removeAll(leaf.name);
        if (!isSelected(leaf.name, options)) {
            continue;
        }
        if (auto column = readableColumn(file, leaf, i, options)) {
            result.columns.push_back(*std::move(column));
        } else {
            const Fault<Error> &fault = column.fault();
            result.skipped.push_back(
                {leaf.name, {fault.code, columnDetail(leaf.name, fault.detail)}});
        }
    }
    // The first fault names the column that the user has to leave out.
    const bool isRefused = result.columns.empty() || !options.skipsUnreadable;
    if (isRefused && !result.skipped.empty()) {
        return result.skipped.front().fault;
    }
    if (options.selectsColumns) {
        result.missing = missing;
    }
    return result;
}

TextIntegers textIntegersOf(const FileMetaData &file)
{
    ReadOptions options;
    options.logicalTypes = true;
    options.extendedEncodings = true;
    options.skipsUnreadable = true;
    TextIntegers names;
    const auto columns = selectColumns(file, options);
    for (const Column &column : columns ? columns->columns : std::vector<Column>()) {
        const bool isUint = column.form == Form::TextUint64;
        if (isUint || column.form == Form::TextInt64) {
            const bool isLarge = rangeOf(file, column.chunk, isUint) == Range::Large;
            (isLarge ? names.large : names.unknown) << column.name;
        }
    }
    return names;
}

} // namespace corvanta::parquet
