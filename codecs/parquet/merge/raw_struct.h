// A Thrift struct whose values stay encoded, so that a program can change some fields of a record
// and keep all others, also those that it does not know.
//
// The encoding of a value does not depend on what is around it, except that of a bool field, which
// is in the header of the field. Threads: plain data.
#pragma once
#include "codecs/parquet/metadata/thrift_compact.h"

#include <QByteArray>

#include <optional>
#include <span>
#include <vector>

namespace corvanta::parquet {

/// The ids of fields are those of the record's definition; parquet.thrift has those of Parquet.
class RawStruct
{
public:
    /// Split the struct at the beginning of `bytes` into its fields, which are copied. Nothing if
    /// it is malformed. `size`, unless null, is set to the number of its bytes.
    static std::optional<RawStruct> parse(std::span<const uchar> bytes, qint64 *size = nullptr);
    static std::optional<RawStruct> parse(const QByteArray &bytes);

    // A field of another type than the function's is absent.

    bool has(qint16 id) const { return find(id) != nullptr; }
    /// The encoded value, to compare it; empty if there is none. Of a bool: one byte.
    QByteArray encoded(qint16 id) const;
    /// An integer of 16, 32 or 64 bits.
    std::optional<qint64> number(qint16 id) const;
    /// A string; empty if there is none.
    QByteArray text(qint16 id) const;
    std::optional<RawStruct> record(qint16 id) const;
    /// The encoded elements of a list of structs. Nothing if it is malformed or absent.
    std::optional<std::vector<QByteArray>> list(qint16 id) const;
    /// The elements of a list of 32-bit integers; empty if it is malformed or absent.
    std::vector<qint32> numbers(qint16 id) const;

    // Set or replace a field.

    // The fields stay in ascending order of ids. The types of Thrift are not checked: a reader
    // ignores a field of another type than it expects.
    void setI16(qint16 id, qint16 value);
    void setI32(qint16 id, qint32 value);
    void setI64(qint16 id, qint64 value);
    void setBool(qint16 id, bool value);
    void setText(qint16 id, const QByteArray &value);
    void setRecord(qint16 id, const RawStruct &value);
    /// `elements`: `count` structs, one after the other.
    void setList(qint16 id, qint32 count, const QByteArray &elements);
    void setList(qint16 id, const std::vector<QByteArray> &elements);
    /// An encoded list.
    void setEncodedList(qint16 id, const QByteArray &value);
    /// Without effect if there is no such field.
    void remove(qint16 id);

    /// The encoded struct.
    QByteArray bytes() const;

private:
    struct Field
    {
        qint16 id = 0;
        ThriftType type = ThriftType::Stop;
        QByteArray value; // encoded; of a bool: one byte, 0 or 1
    };
    static bool readField(CompactReader *reader, std::span<const uchar> bytes, Field *field);
    const Field *find(qint16 id) const;
    void set(qint16 id, ThriftType type, const QByteArray &value);

    std::vector<Field> m_fields; // in ascending order of ids
};

/// The encoded list of these numbers, for RawStruct::setEncodedList().
QByteArray encodedNumbers(std::span<const qint32> numbers);

} // namespace corvanta::parquet
