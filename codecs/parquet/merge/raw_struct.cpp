// The bytes are those of the Thrift compact protocol: per field a header (type and id) and a value,
// then a stop byte; see metadata/thrift_compact.cpp.
#include "codecs/parquet/merge/raw_struct.h"

#include <algorithm>

namespace corvanta::parquet {

namespace {

std::span<const uchar> spanOf(const QByteArray &bytes)
{
    return {reinterpret_cast<const uchar *>(bytes.constData()), static_cast<size_t>(bytes.size())};
}

QByteArray copyOf(std::span<const uchar> bytes, qint64 begin, qint64 end)
{
    return {reinterpret_cast<const char *>(bytes.data()) + begin,
            static_cast<qsizetype>(end - begin)};
}

/// The bytes that `write` gives to a new writer.
template <class F> QByteArray written(F &&write)
{
    CompactWriter writer;
    write(writer);
    return writer.bytes();
}

} // namespace

/// The header of a bool field is its value, so that there are no bytes to copy.
bool RawStruct::readField(CompactReader *reader, std::span<const uchar> bytes, Field *field)
{
    if (field->type == ThriftType::Bool) {
        bool value = false;
        const bool isRead = reader->readBool(&value) >= 0;
        field->value = QByteArray(1, value ? '\1' : '\0');
        return isRead;
    }
    const qint64 begin = reader->position();
    if (reader->skip(field->type) < 0) {
        return false;
    }
    field->value = copyOf(bytes, begin, reader->position());
    return true;
}

/// Fields usually come in ascending order, but need not.
std::optional<RawStruct> RawStruct::parse(std::span<const uchar> bytes, qint64 *size)
{
    CompactReader reader(bytes);
    RawStruct result;
    if (reader.readStructBegin() < 0) {
        return std::nullopt;
    }
    for (;;) {
        Field field;
        if (reader.readFieldBegin(&field.type, &field.id) < 0) {
            return std::nullopt;
        }
        if (field.type == ThriftType::Stop) {
            break;
        }
        if (!readField(&reader, bytes, &field)) {
            return std::nullopt;
        }
        result.m_fields.push_back(std::move(field));
    }
    std::ranges::stable_sort(result.m_fields, {}, &Field::id);
    if (size != nullptr) {
        *size = reader.position();
    }
    return result;
}

std::optional<RawStruct> RawStruct::parse(const QByteArray &bytes)
{
    return parse(spanOf(bytes));
}

/// Of several fields with one id, which only a damaged struct has, the first one counts.
const RawStruct::Field *RawStruct::find(qint16 id) const
{
    const auto found = std::ranges::lower_bound(m_fields, id, {}, &Field::id);
    return found == m_fields.end() || found->id != id ? nullptr : &*found;
}

QByteArray RawStruct::encoded(qint16 id) const
{
    const Field *const field = find(id);
    return field == nullptr ? QByteArray() : field->value;
}

/// The three types have one encoding.
std::optional<qint64> RawStruct::number(qint16 id) const
{
    const Field *const field = find(id);
    const bool isNumber =
        field != nullptr && (field->type == ThriftType::I16 || field->type == ThriftType::I32 ||
                             field->type == ThriftType::I64);
    qint64 value = 0;
    if (!isNumber || CompactReader(spanOf(field->value)).readI64(&value) < 0) {
        return std::nullopt;
    }
    return value;
}

QByteArray RawStruct::text(qint16 id) const
{
    const Field *const field = find(id);
    QByteArray value;
    if (field != nullptr && field->type == ThriftType::String) {
        CompactReader(spanOf(field->value)).readBinary(&value);
    }
    return value;
}

std::optional<RawStruct> RawStruct::record(qint16 id) const
{
    const Field *const field = find(id);
    return field == nullptr || field->type != ThriftType::Struct ? std::nullopt
                                                                 : parse(field->value);
}

std::optional<std::vector<QByteArray>> RawStruct::list(qint16 id) const
{
    const Field *const field = find(id);
    if (field == nullptr || field->type != ThriftType::List) {
        return std::nullopt;
    }
    CompactReader reader(spanOf(field->value));
    ThriftType element = ThriftType::Stop;
    qint32 count = 0;
    // The reader rejects a count that exceeds the bytes.
    if (reader.readListBegin(&element, &count) < 0 ||
        (count > 0 && element != ThriftType::Struct)) {
        return std::nullopt;
    }
    std::vector<QByteArray> elements;
    elements.reserve(static_cast<size_t>(count));
    for (qint32 i = 0; i < count; ++i) {
        const qint64 begin = reader.position();
        if (reader.skip(element) < 0) {
            return std::nullopt;
        }
        elements.push_back(copyOf(spanOf(field->value), begin, reader.position()));
    }
    return elements;
}

/// A list with one damaged element is not used at all.
std::vector<qint32> RawStruct::numbers(qint16 id) const
{
    const Field *const field = find(id);
    if (field == nullptr || field->type != ThriftType::List) {
        return {};
    }
    CompactReader reader(spanOf(field->value));
    ThriftType element = ThriftType::Stop;
    qint32 count = 0;
    bool isGood = reader.readListBegin(&element, &count) >= 0 && element == ThriftType::I32;
    std::vector<qint32> values(isGood ? static_cast<size_t>(count) : 0);
    for (qint32 &value : values) {
        isGood = isGood && reader.readI32(&value) >= 0;
    }
    return isGood ? values : std::vector<qint32>();
}

/// Ids stay in ascending order, which keeps the headers of fields at one byte.
void RawStruct::set(qint16 id, ThriftType type, const QByteArray &value)
{
    remove(id);
    const auto after = std::ranges::upper_bound(m_fields, id, {}, &Field::id);
    m_fields.insert(after, Field{id, type, value});
}

void RawStruct::setI16(qint16 id, qint16 value)
{
    set(id, ThriftType::I16, written([&](CompactWriter &out) { out.writeI16(value); }));
}

void RawStruct::setI32(qint16 id, qint32 value)
{
    set(id, ThriftType::I32, written([&](CompactWriter &out) { out.writeI32(value); }));
}

void RawStruct::setI64(qint16 id, qint64 value)
{
    set(id, ThriftType::I64, written([&](CompactWriter &out) { out.writeI64(value); }));
}

void RawStruct::setBool(qint16 id, bool value)
{
    set(id, ThriftType::Bool, QByteArray(1, value ? '\1' : '\0'));
}

void RawStruct::setText(qint16 id, const QByteArray &value)
{
    set(id, ThriftType::String, written([&](CompactWriter &out) { out.writeString(value); }));
}

void RawStruct::setRecord(qint16 id, const RawStruct &value)
{
    set(id, ThriftType::Struct, value.bytes());
}

void RawStruct::setList(qint16 id, qint32 count, const QByteArray &elements)
{
    setEncodedList(id, written([&](CompactWriter &out) {
                       out.writeListBegin(ThriftType::Struct, count);
                       out.writeEncoded(elements);
                   }));
}

void RawStruct::setList(qint16 id, const std::vector<QByteArray> &elements)
{
    QByteArray all;
    for (const QByteArray &element : elements) {
        all += element;
    }
    setList(id, static_cast<qint32>(elements.size()), all);
}

void RawStruct::setEncodedList(qint16 id, const QByteArray &value)
{
    set(id, ThriftType::List, value);
}

void RawStruct::remove(qint16 id)
{
    std::erase_if(m_fields, [id](const Field &field) { return field.id == id; });
}

QByteArray RawStruct::bytes() const
{
    CompactWriter out;
    out.writeStructBegin();
    for (const Field &field : m_fields) {
        out.writeFieldBegin(field.type, field.id);
        if (field.type == ThriftType::Bool) {
            out.writeBool(field.value.at(0) != '\0');
        } else {
            out.writeEncoded(field.value);
        }
    }
    out.writeFieldStop();
    return out.bytes();
}

/// As fields such as ColumnMetaData::encodings have them.
QByteArray encodedNumbers(std::span<const qint32> numbers)
{
    return written([&](CompactWriter &out) {
        out.writeListBegin(ThriftType::I32, static_cast<qint32>(numbers.size()));
        for (const qint32 number : numbers) {
            out.writeI32(number);
        }
    });
}

} // namespace corvanta::parquet
