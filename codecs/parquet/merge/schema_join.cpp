// Fields of SchemaElement (parquet.thrift): 1 type, 2 type_length, 3 repetition_type, 4 name,
// 5 num_children, 6 converted_type, 7 scale, 8 precision, 9 field_id, 10 logicalType.
#include "codecs/parquet/merge/schema_join.h"

#include "codecs/parquet/metadata/records.h"

#include <algorithm>
#include <set>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {

// Ids of fields.
constexpr qint16 kType = 1;
constexpr qint16 kTypeLength = 2;
constexpr qint16 kRepetition = 3;
constexpr qint16 kName = 4;
constexpr qint16 kChildren = 5;
constexpr qint16 kConvertedType = 6;
constexpr qint16 kScale = 7;
constexpr qint16 kPrecision = 8;
constexpr qint16 kLogicalType = 10;
constexpr qint16 kFileSchema = 2; // of FileMetaData
constexpr qint16 kFileOrders = 7;

Fault<MergeError> damagedSchema()
{
    return {MergeError::Damaged, u"its schema is damaged"_s};
}

Fault<MergeError> different(const QByteArray &column, const QString &text)
{
    return {MergeError::Different, u"column '%1' %2"_s.arg(QString::fromUtf8(column), text)};
}

/// "INT64", "BYTE_ARRAY (UTF8)", "group": enough to see why two types are not equal.
QString typeText(const RawStruct &element)
{
    static const QStringList physical{
        u"BOOLEAN"_s, u"INT32"_s,  u"INT64"_s,      u"INT96"_s,
        u"FLOAT"_s,   u"DOUBLE"_s, u"BYTE_ARRAY"_s, u"FIXED_LEN_BYTE_ARRAY"_s};
    static const QStringList converted{u"UTF8"_s,
                                       u"MAP"_s,
                                       u"MAP_KEY_VALUE"_s,
                                       u"LIST"_s,
                                       u"ENUM"_s,
                                       u"DECIMAL"_s,
                                       u"DATE"_s,
                                       u"TIME_MILLIS"_s,
                                       u"TIME_MICROS"_s,
                                       u"TIMESTAMP_MILLIS"_s,
                                       u"TIMESTAMP_MICROS"_s,
                                       u"UINT_8"_s,
                                       u"UINT_16"_s,
                                       u"UINT_32"_s,
                                       u"UINT_64"_s,
                                       u"INT_8"_s,
                                       u"INT_16"_s,
                                       u"INT_32"_s,
                                       u"INT_64"_s,
                                       u"JSON"_s,
                                       u"BSON"_s,
                                       u"INTERVAL"_s};
    const auto type = element.number(kType);
    QString text = type ? physical.value(*type, u"unknown"_s) : u"group"_s;
    if (const auto length = element.number(kTypeLength); length && *length > 0) {
        text += u'(' + QString::number(*length) + u')';
    }
    const auto annotation = element.number(kConvertedType);
    if (annotation) {
        text += u" as "_s + converted.value(*annotation, u"unknown"_s);
    } else if (element.has(kLogicalType)) {
        text += u" with a logical type"_s;
    }
    if (annotation == kDecimal) {
        text += u"(%1,%2)"_s.arg(QString::number(element.number(kPrecision).value_or(0)),
                                 QString::number(element.number(kScale).value_or(0)));
    }
    return text;
}

/// Some writers set only one of the two annotations; the logical type says more.
bool haveSameAnnotation(const RawStruct &a, const RawStruct &b)
{
    const qint16 id = a.has(kLogicalType) && b.has(kLogicalType) ? kLogicalType : kConvertedType;
    return a.encoded(id) == b.encoded(id);
}

bool haveSameType(const RawStruct &a, const RawStruct &b)
{
    constexpr qint16 kCompared[] = {kType, kTypeLength, kChildren, kScale, kPrecision};
    return haveSameAnnotation(a, b) && std::ranges::all_of(kCompared, [&](qint16 id) {
               // Some writers set the length of all types, or no children, to 0.
               return a.number(id).value_or(0) == b.number(id).value_or(0);
           });
}

/// Why the element `i` of the columns is not the same; empty if it is. Only a column without
/// children may be required in one file and optional in another: its levels can be added.
QString differenceOf(const MergedColumn &a, const MergedColumn &b, size_t i)
{
    const RawStruct &first = a.elements[i];
    const RawStruct &other = b.elements[i];
    const bool mayBeOptional =
        a.isLeaf() && a.repetition() != kRepeated && b.repetition() != kRepeated;
    const bool sameNullness =
        first.number(kRepetition) == other.number(kRepetition) || mayBeOptional;
    if (haveSameType(first, other) && (i == 0 || first.text(kName) == other.text(kName)) &&
        sameNullness) {
        return {};
    }
    QString types = u"is %1, but %2 in the first part"_s.arg(typeText(other), typeText(first));
    if (haveSameType(first, other)) {
        types = u"has another nesting than in the first part"_s;
    }
    return i == 0 ? types
                  : u"has a nested field '%1' that %2"_s.arg(QString::fromUtf8(other.text(kName)),
                                                             types);
}

QString differenceOf(const MergedColumn &a, const MergedColumn &b)
{
    if (a.elements.size() != b.elements.size()) {
        return u"has other nested fields than in the first part"_s;
    }
    QString text;
    for (size_t i = 0; i < a.elements.size() && text.isEmpty(); ++i) {
        text = differenceOf(a, b, i);
    }
    return text;
}

/// Collects the elements of one column from the list of all.
class ColumnTaker
{
public:
    ColumnTaker(const std::vector<RawStruct> &all, size_t *at)
        : m_all(all)
        , m_at(at)
    {
    }
    /// Nothing if the tree is not complete.
    std::optional<MergedColumn> take()
    {
        do {
            if (*m_at == m_all.size() || !takeElement(m_all[(*m_at)++])) {
                return std::nullopt;
            }
        } while (!m_open.empty());
        m_column.name = m_column.elements.front().text(kName);
        return std::move(m_column);
    }

private:
    struct Group
    {
        qint64 left; // children that follow
        int definition;
        int repetition;
        QByteArray name;
    };

    bool takeElement(const RawStruct &element)
    {
        constexpr size_t kMaxDepth = 200; // levels fit a byte
        const qint64 children = element.number(kChildren).value_or(0);
        const auto repetition = element.number(kRepetition).value_or(kRequired);
        const bool isLeaf = element.has(kType) && children == 0;
        // A group has no type; an enumerator that the format does not have cannot be read.
        const auto type = element.number(kType).value_or(isLeaf ? -1 : kBoolean);
        if (children < 0 || (!isLeaf && children == 0) || m_open.size() > kMaxDepth ||
            repetition < kRequired || repetition > kRepeated || type < kBoolean ||
            type > kFixedLenByteArray) {
            return false;
        }
        Group group{children, m_open.empty() ? 0 : m_open.back().definition,
                    m_open.empty() ? 0 : m_open.back().repetition, element.text(kName)};
        group.definition += repetition == kRequired ? 0 : 1;
        group.repetition += repetition == kRepeated ? 1 : 0;
        m_column.elements.push_back(element);
        if (isLeaf) {
            addLeaf(element, group);
            closeGroups();
        } else {
            m_open.push_back(group);
        }
        return true;
    }

    void addLeaf(const RawStruct &element, const Group &leaf)
    {
        CompactWriter path;
        path.writeListBegin(ThriftType::String, static_cast<qint32>(m_open.size()) + 1);
        for (const Group &group : m_open) {
            path.writeString(group.name);
        }
        path.writeString(leaf.name);
        m_column.leaves.push_back({path.bytes(),
                                   static_cast<qint32>(element.number(kType).value_or(0)),
                                   leaf.definition,
                                   leaf.repetition,
                                   {}});
    }

    /// Count a complete element in the groups around it.
    void closeGroups()
    {
        while (!m_open.empty() && --m_open.back().left == 0) {
            m_open.pop_back();
        }
    }

    const std::vector<RawStruct> &m_all;
    size_t *m_at;
    std::vector<Group> m_open;
    MergedColumn m_column;
};

/// Set the orders of all leaves if the file has one for each.
void addOrders(const RawStruct &metaData, FileColumns *file)
{
    const auto orders = metaData.list(kFileOrders);
    if (!orders || orders->size() != file->leafCount) {
        return;
    }
    for (MergedColumn &column : file->columns) {
        for (size_t i = 0; i < column.leaves.size(); ++i) {
            column.leaves[i].order = (*orders)[column.firstLeaf + i];
        }
    }
}

bool haveSameOrders(const MergedColumn &a, const MergedColumn &b)
{
    return std::ranges::equal(a.leaves, b.leaves, {}, &MergedLeaf::order, &MergedLeaf::order);
}

bool hasOrders(const MergedColumn &column)
{
    return std::ranges::none_of(column.leaves,
                                [](const MergedLeaf &leaf) { return leaf.order.isEmpty(); });
}

} // namespace

qint32 MergedColumn::repetition() const
{
    return static_cast<qint32>(elements.front().number(kRepetition).value_or(kRequired));
}

/// The schema is a list of elements, each followed by its children; the root has no values.
Result<FileColumns, MergeError> FileColumns::of(const RawStruct &metaData)
{
    const auto encoded = metaData.list(kFileSchema);
    std::vector<RawStruct> elements;
    for (const QByteArray &bytes : encoded.value_or(std::vector<QByteArray>())) {
        auto element = RawStruct::parse(bytes);
        if (!element) {
            return damagedSchema();
        }
        elements.push_back(*std::move(element));
    }
    if (elements.empty()) {
        return damagedSchema();
    }
    FileColumns file;
    file.root = elements.front();
    const qint64 count = file.root.number(kChildren).value_or(0);
    size_t at = 1;
    for (qint64 i = 0; i < count; ++i) {
        auto column = ColumnTaker(elements, &at).take();
        if (!column) {
            return damagedSchema();
        }
        column->firstLeaf = file.leafCount;
        file.leafCount += column->leaves.size();
        file.columns.push_back(*std::move(column));
    }
    if (at != elements.size()) {
        return damagedSchema();
    }
    addOrders(metaData, &file);
    return file;
}

int SchemaJoin::indexOf(const QByteArray &name) const
{
    const auto found = m_indexes.find(name);
    return found == m_indexes.end() ? kMissing : found->second;
}

/// The names and their order; the types are compared column by column. The first difference is
/// reported, because those after it may only follow from it.
Result<void, MergeError> SchemaJoin::checkSame(const FileColumns &file) const
{
    const size_t count = std::max(file.columns.size(), m_columns.size());
    for (size_t i = 0; i < count; ++i) {
        const QByteArray here = i < file.columns.size() ? file.columns[i].name : QByteArray();
        const QByteArray first = i < m_columns.size() ? m_columns[i].name : QByteArray();
        if (i >= m_columns.size() || (here != first && indexOf(here) < 0 && !here.isNull())) {
            return different(here, u"is missing in the first part"_s);
        }
        if (here != first) {
            const bool isMissing =
                std::ranges::find(file.columns, first, &MergedColumn::name) == file.columns.end();
            return different(first, isMissing
                                        ? u"of the first part is missing"_s
                                        : u"is not in the place that it has in the first part"_s);
        }
    }
    return {};
}

/// The first file that has a column defines its type and its place.
Result<void, MergeError> SchemaJoin::addColumn(const MergedColumn &column)
{
    const int index = indexOf(column.name);
    if (index == kMissing) {
        m_indexes[column.name] = static_cast<int>(m_columns.size());
        m_columns.push_back(column);
        m_states.push_back({1, column.repetition() != kRequired});
        m_hasOrders = m_hasOrders && hasOrders(column);
        return {};
    }
    const MergedColumn &first = m_columns[static_cast<size_t>(index)];
    State &state = m_states[static_cast<size_t>(index)];
    if (const QString difference = differenceOf(first, column); !difference.isEmpty()) {
        return different(column.name, difference);
    }
    ++state.files;
    state.isOptional = state.isOptional || column.repetition() != kRequired;
    m_hasOrders = m_hasOrders && haveSameOrders(first, column);
    return {};
}

/// Two columns of one name could not be assigned to those of the other files.
Result<void, MergeError> SchemaJoin::add(const FileColumns &file)
{
    std::set<QByteArray> names;
    for (const MergedColumn &column : file.columns) {
        if (!names.insert(column.name).second) {
            return different(column.name, u"is there twice, but columns are joined by name"_s);
        }
    }
    if (m_files++ == 0) {
        m_root = file.root;
    } else if (m_match == MergeMatch::Same) {
        if (auto checked = checkSame(file); !checked) {
            return checked;
        }
    }
    for (const MergedColumn &column : file.columns) {
        if (auto added = addColumn(column); !added) {
            return added;
        }
    }
    return {};
}

/// Only now it is known which columns some files do not have.
Result<void, MergeError> SchemaJoin::finish()
{
    size_t leaves = 0;
    for (size_t i = 0; i < m_columns.size(); ++i) {
        MergedColumn &column = m_columns[i];
        column.firstLeaf = leaves;
        leaves += column.leaves.size();
        const bool becomesOptional = m_states[i].isOptional || m_states[i].files < m_files;
        if (column.repetition() != kRequired || !becomesOptional) {
            continue;
        }
        if (!column.isLeaf()) {
            return different(column.name, u"is a required group, and a part does not have it"_s);
        }
        column.elements.front().setI32(kRepetition, kOptional);
        column.leaves.front().maxDefinition = 1;
    }
    m_root.setI32(kChildren, static_cast<qint32>(m_columns.size()));
    return {};
}

std::vector<QByteArray> SchemaJoin::schema() const
{
    std::vector<QByteArray> elements{m_root.bytes()};
    for (const MergedColumn &column : m_columns) {
        for (const RawStruct &element : column.elements) {
            elements.push_back(element.bytes());
        }
    }
    return elements;
}

/// Without equal orders in all files, no order is true for the values of all row groups.
std::vector<QByteArray> SchemaJoin::orders() const
{
    std::vector<QByteArray> orders;
    for (const MergedColumn &column : m_hasOrders ? m_columns : std::vector<MergedColumn>()) {
        for (const MergedLeaf &leaf : column.leaves) {
            orders.push_back(leaf.order);
        }
    }
    return orders;
}

/// The file is read again, and another program may have replaced it.
Result<std::vector<int>, MergeError> SchemaJoin::columnsIn(const FileColumns &file) const
{
    std::vector<int> indexes(m_columns.size(), kMissing);
    for (size_t i = 0; i < file.columns.size(); ++i) {
        const int index = indexOf(file.columns[i].name);
        const bool isSame =
            index != kMissing &&
            differenceOf(m_columns[static_cast<size_t>(index)], file.columns[i]).isEmpty();
        if (!isSame) {
            return different(file.columns[i].name, u"has changed during the merge"_s);
        }
        indexes[static_cast<size_t>(index)] = static_cast<int>(i);
    }
    return indexes;
}

} // namespace corvanta::parquet
