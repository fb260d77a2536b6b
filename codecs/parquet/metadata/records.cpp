// Reads and writes records from the field lists in records.h:
//
//   struct    fields in any order, each a header (type, id) and a value; then a stop byte
//   optional  the field is absent or present
//   vector    a list: header (element type, size) and the elements
//
// The bytes of headers and values are those of the Thrift compact protocol; see thrift_compact.cpp.
// Inside this file a bool is enough: every failure means the same, and readRecord() names it.
#include "codecs/parquet/metadata/records.h"

#include <algorithm>
#include <type_traits>

namespace corvanta::parquet {

namespace {

template <class T> struct IsOptional : std::false_type
{
};
template <class T> struct IsOptional<std::optional<T>> : std::true_type
{
};
template <class T> struct IsOptional<std::unique_ptr<T>> : std::true_type
{
};
template <class T> struct IsVector : std::false_type
{
};
template <class T> struct IsVector<std::vector<T>> : std::true_type
{
};

/// The Thrift type of a member's value.
template <class T> constexpr ThriftType typeOf()
{
    if constexpr (IsVector<T>::value) {
        return ThriftType::List;
    } else if constexpr (std::is_same_v<T, bool>) {
        return ThriftType::Bool;
    } else if constexpr (std::is_same_v<T, qint8>) {
        return ThriftType::Byte;
    } else if constexpr (std::is_same_v<T, qint32>) {
        return ThriftType::I32;
    } else if constexpr (std::is_same_v<T, qint64>) {
        return ThriftType::I64;
    } else if constexpr (std::is_same_v<T, QByteArray>) {
        return ThriftType::String;
    } else {
        return ThriftType::Struct;
    }
}

/// Access to the value of a member. make() creates the value of an optional member; get() returns
/// null if it is not set.
template <class T> struct Slot
{
    using Value = T;
    static T &make(T &member) { return member; }
    static const T *get(const T &member) { return &member; }
};
template <class T> struct Slot<std::optional<T>>
{
    using Value = T;
    static T &make(std::optional<T> &member) { return member.emplace(); }
    static const T *get(const std::optional<T> &member) { return member ? &*member : nullptr; }
};
template <class T> struct Slot<std::unique_ptr<T>>
{
    using Value = T;
    static T &make(std::unique_ptr<T> &member) { return *(member = std::make_unique<T>()); }
    static const T *get(const std::unique_ptr<T> &member) { return member.get(); }
};

bool readValue(CompactReader &in, bool &value)
{
    return in.readBool(&value) >= 0;
}
bool readValue(CompactReader &in, qint8 &value)
{
    return in.readByte(&value) >= 0;
}
bool readValue(CompactReader &in, qint32 &value)
{
    return in.readI32(&value) >= 0;
}
bool readValue(CompactReader &in, qint64 &value)
{
    return in.readI64(&value) >= 0;
}
bool readValue(CompactReader &in, QByteArray &value)
{
    return in.readBinary(&value) >= 0;
}
template <class T> bool readValue(CompactReader &in, std::vector<T> &list);
template <class R> bool readValue(CompactReader &in, R &record);

/// fields() calls it for each member of a record. It reads the current field into the member that
/// has its id and type. A field with the right id and another type is skipped like an unknown one,
/// as in code that Thrift generates.
struct FieldReader
{
    CompactReader &in;
    ThriftType type;
    qint16 id;
    bool isTaken = false;
    bool isGood = true;
    quint32 seen = 0; // the bit of the field's id, if a member took it

    template <class M> void operator()(qint16 memberId, M &member)
    {
        using Value = typename Slot<M>::Value;
        if (id == memberId && type == typeOf<Value>()) {
            isTaken = true;
            isGood = readValue(in, Slot<M>::make(member));
            seen = 1U << memberId;
        }
    }
};

/// Collects the ids of required fields, one bit each. The ids are below 32.
struct RequiredFields
{
    quint32 ids = 0;
    template <class M> void operator()(qint16 id, M &)
    {
        ids |= IsOptional<M>::value ? 0 : 1U << id;
    }
};

template <class R> bool readValue(CompactReader &in, R &record)
{
    if (in.readStructBegin() < 0) {
        return false;
    }
    RequiredFields required;
    R::fields(record, required);
    quint32 seen = 0;
    for (;;) {
        FieldReader field{in, ThriftType::Stop, 0};
        if (in.readFieldBegin(&field.type, &field.id) < 0) {
            return false;
        }
        if (field.type == ThriftType::Stop) {
            break;
        }
        // A visit of all members per field. Records are short and few: one per page and column
        // chunk.
        R::fields(record, field);
        seen |= field.seen;
        if (!field.isGood || (!field.isTaken && in.skip(field.type) < 0)) {
            return false;
        }
        in.readFieldEnd();
    }
    in.readStructEnd();
    return (required.ids & ~seen) == 0;
}

template <class T> bool readValue(CompactReader &in, std::vector<T> &list)
{
    ThriftType element = ThriftType::Stop;
    qint32 size = 0;
    if (in.readListBegin(&element, &size) < 0 || (size != 0 && element != typeOf<T>())) {
        return false;
    }
    list.clear();
    // The size is only a claim of the file. Do not reserve memory for all of it.
    constexpr qint32 kReserved = 4096;
    list.reserve(static_cast<size_t>(std::min(size, kReserved)));
    for (qint32 i = 0; i < size; ++i) {
        if (!readValue(in, list.emplace_back())) {
            return false;
        }
    }
    return in.readListEnd() >= 0;
}

bool writeValue(CompactWriter &out, bool value)
{
    return out.writeBool(value) >= 0;
}
bool writeValue(CompactWriter &out, qint8 value)
{
    return out.writeByte(value) >= 0;
}
bool writeValue(CompactWriter &out, qint32 value)
{
    return out.writeI32(value) >= 0;
}
bool writeValue(CompactWriter &out, qint64 value)
{
    return out.writeI64(value) >= 0;
}
bool writeValue(CompactWriter &out, const QByteArray &value)
{
    return out.writeBinary(value) >= 0;
}
template <class T> bool writeValue(CompactWriter &out, const std::vector<T> &list);
template <class R> bool writeValue(CompactWriter &out, const R &record);

/// fields() calls it for each member of a record. It writes the members that are set.
struct FieldWriter
{
    CompactWriter &out;
    bool isGood = true;

    template <class M> void operator()(qint16 id, const M &member)
    {
        using Value = typename Slot<M>::Value;
        if (const Value *value = Slot<M>::get(member)) {
            isGood = isGood && out.writeFieldBegin(typeOf<Value>(), id) >= 0 &&
                     writeValue(out, *value) && out.writeFieldEnd() >= 0;
        }
    }
};

template <class R> bool writeValue(CompactWriter &out, const R &record)
{
    out.writeStructBegin();
    FieldWriter writer{out};
    R::fields(record, writer);
    out.writeFieldStop();
    out.writeStructEnd();
    return writer.isGood;
}

template <class T> bool writeValue(CompactWriter &out, const std::vector<T> &list)
{
    return out.writeListBegin(typeOf<T>(), static_cast<qint32>(list.size())) >= 0 &&
           std::all_of(list.begin(), list.end(),
                       [&](const T &value) { return writeValue(out, value); }) &&
           out.writeListEnd() >= 0;
}

/// The bytes that the record takes, because records follow one another without lengths.
template <class R> Result<qint64, Error> readWhole(CompactReader &in, R &record)
{
    const qint64 begin = in.position();
    return readValue(in, record) ? Result<qint64, Error>(in.position() - begin)
                                 : Fault{Error::BadThrift};
}

template <class R> Result<qint64, Error> writeWhole(CompactWriter &out, const R &record)
{
    const qint64 begin = out.bytes().size();
    return writeValue(out, record) ? Result<qint64, Error>(out.bytes().size() - begin)
                                   : Fault{Error::TextTooLong};
}

} // namespace

Result<qint64, Error> readRecord(CompactReader &in, FileMetaData &record)
{
    return readWhole(in, record);
}
Result<qint64, Error> readRecord(CompactReader &in, PageHeader &record)
{
    return readWhole(in, record);
}
Result<qint64, Error> writeRecord(CompactWriter &out, const FileMetaData &record)
{
    return writeWhole(out, record);
}
Result<qint64, Error> writeRecord(CompactWriter &out, const PageHeader &record)
{
    return writeWhole(out, record);
}

} // namespace corvanta::parquet
