// Encodes and decodes the Thrift compact protocol in memory (thrift-compact-protocol.md of Apache
// Thrift).
//
// Every operation returns the number of bytes that it consumed or produced, or -1 after a failure.
// A reader that has returned -1 fails in every later operation. The compact status is deliberate:
// the operations run once per value, all failures mean the same ("malformed record"), and
// readRecord() turns them into a fault.
// Threads: one thread at a time per object.
#pragma once
#include <QByteArray>
#include <QtGlobal>

#include <optional>
#include <span>
#include <vector>

namespace corvanta::parquet {

/// The types of the protocol's interface. Their numbers in the encoded bytes are different.
enum class ThriftType : quint8 {
    Stop = 0,
    Bool = 2,
    Byte = 3,
    Double = 4,
    I16 = 6,
    I32 = 8,
    I64 = 10,
    String = 11,
    Struct = 12,
    Map = 13,
    Set = 14,
    List = 15,
};

/// Decodes values in sequence. Rejects lists with more elements, and strings with more bytes, than
/// there are unread bytes. setLimits() sets lower limits.
class CompactReader
{
public:
    /// `bytes` must outlive the reader.
    explicit CompactReader(std::span<const uchar> bytes)
        : m_bytes(bytes)
    {
    }
    /// Limit the number of elements of a list and of bytes of a string. 0 means no extra limit.
    void setLimits(qint64 elements, qint64 stringBytes);
    /// Number of bytes consumed so far. After a failure it is the number of all bytes.
    qint64 position() const { return static_cast<qint64>(m_at); }
    qint64 bytesLeft() const { return static_cast<qint64>(m_bytes.size() - m_at); }

    /// A struct is readStructBegin(), its fields, and readStructEnd(). Fails if structs are nested
    /// too deep.
    int readStructBegin();
    int readStructEnd();
    /// Read the header of a field. `type` is Stop after the last field of a struct; `id` is then
    /// unchanged.
    int readFieldBegin(ThriftType *type, qint16 *id);
    /// The protocol has no bytes for the ends of fields and lists. These functions exist so that
    /// callers read like the interface that Thrift defines.
    int readFieldEnd() { return 0; }
    /// Read the header of a list: the type and the number of its elements.
    int readListBegin(ThriftType *element, qint32 *size);
    int readListEnd() { return 0; }
    /// The value of a bool field is in the field's header and consumes nothing. A bool in a list is
    /// one byte.
    int readBool(bool *value);
    int readByte(qint8 *value);
    /// Zigzag varints of up to 10 bytes. Higher bits than the type has are dropped.
    int readI16(qint16 *value);
    int readI32(qint32 *value);
    int readI64(qint64 *value);
    int readDouble(double *value);
    /// An empty string becomes a null array. As in every QByteArray, a zero byte follows the last
    /// byte of the string.
    qint64 readString(QByteArray *value) { return readBinary(value); }
    qint64 readBinary(QByteArray *value);
    /// Read the header of a message: its name, type and sequence number.
    int readMessageBegin(QByteArray *name, qint8 *type, qint32 *sequence);
    /// Skip one value of the types Bool to List. Any other type consumes nothing and succeeds.
    qint64 skip(ThriftType type);

private:
    struct Open // a container whose content is being skipped
    {
        ThriftType type;       // Struct, List or Map
        quint64 left = 0;      // remaining values; not used for structs
        ThriftType element[2]; // element type of a list, twice; key and value types of a map
    };
    // Consumes all bytes, so that every later operation fails too. Returns -1.
    int fail();
    int readVarint(quint64 *value);
    // Steps of skip(). They return false after a failure.
    bool skipScalar(ThriftType type);
    /// The value that the header of a bool field contained; it takes no bytes of its own.
    int takePendingBool(bool *value);
    /// An element of a list, which has no header of its own.
    int readBoolByte(bool *value);
    bool openList(Open *added);
    bool openMap(Open *added);
    bool openForSkip(ThriftType type, std::vector<Open> *open);
    bool skipNext(std::vector<Open> *open);

    std::span<const uchar> m_bytes;
    size_t m_at = 0;
    // 0: only the number of unread bytes limits a size.
    qint64 m_elementLimit = 0;
    qint64 m_stringLimit = 0;
    std::vector<qint16> m_outerIds; // last field ids of the enclosing structs
    qint16 m_lastId = 0;
    enum class PendingBool : qint8 { None = -1, False, True } m_pendingBool = PendingBool::None;
};

/// Encodes values in sequence into a buffer that grows. The calls mirror those of CompactReader.
class CompactWriter
{
public:
    /// All bytes written so far.
    const QByteArray &bytes() const { return m_bytes; }

    /// A struct is writeStructBegin(), its fields, writeFieldStop(), and writeStructEnd(). Fields
    /// in ascending order of ids need fewer bytes; any order is valid.
    int writeStructBegin();
    int writeStructEnd();
    /// Write the header of a field. The header of a bool field is written with its value.
    int writeFieldBegin(ThriftType type, qint16 id);
    int writeFieldEnd() { return 0; }
    /// Write the end of a struct's fields.
    int writeFieldStop();
    /// Fails for a negative size.
    int writeListBegin(ThriftType element, qint32 size);
    int writeListEnd() { return 0; }
    /// Directly after writeFieldBegin(Bool, ...) the value becomes part of the field's header.
    int writeBool(bool value);
    int writeByte(qint8 value);
    int writeI16(qint16 value);
    int writeI32(qint32 value);
    int writeI64(qint64 value);
    int writeDouble(double value);
    qint64 writeString(const QByteArray &value) { return writeBinary(value); }
    /// Fails above 2147483647 bytes.
    qint64 writeBinary(const QByteArray &value);
    /// Write a value, or the elements of a list, that are already encoded. Not for bool fields.
    qint64 writeEncoded(const QByteArray &value);
    /// Write the header of a message. `type` is a number below 8.
    qint64 writeMessageBegin(const QByteArray &name, qint8 type, qint32 sequence);

private:
    int writeVarint(quint64 value);
    int writeFieldHeader(quint8 wireType, qint16 id);
    /// `delta`: the id minus that of the field before, 1 to 15.
    int writeShortHeader(quint8 wireType, int delta);
    /// For every other difference: the id itself follows.
    int writeLongHeader(quint8 wireType, qint16 id);
    /// `size`: not negative.
    int writeListHeader(ThriftType element, qint32 size);

    QByteArray m_bytes;
    std::vector<qint16> m_outerIds;
    qint16 m_lastId = 0;
    std::optional<qint16> m_boolId; // of a bool field whose header is not written yet
};

} // namespace corvanta::parquet
