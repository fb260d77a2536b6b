// codecs/parquet/thrift_compact.h
// The Thrift compact protocol over memory (thrift-compact-protocol.md of Apache Thrift).
//
// Every operation returns the bytes that it consumed or produced, or -1. After a -1 of a reader
// nothing further can be read from it. Threads: one at a time.
#pragma once
#include <QByteArray>
#include <QtGlobal>

#include <span>
#include <vector>

namespace corvanta::parquet {

/// Types as the protocol's interface has them; on the wire they have other numbers.
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

/// Decodes one value after the other.
///
/// A list cannot have more elements, and a string not more bytes, than there are bytes left; lower
/// limits can be set.
class CompactReader
{
public:
    explicit CompactReader(std::span<const uchar> bytes)
        : m_bytes(bytes)
    {
    }
    /// Limits of elements and of bytes; 0 is no limit of its own.
    void setLimits(qint64 elements, qint64 stringBytes);
    qint64 position() const { return static_cast<qint64>(m_at); }
    qint64 bytesLeft() const { return static_cast<qint64>(m_bytes.size() - m_at); }

    int readStructBegin();
    int readStructEnd();
    /// `type` is Stop behind the last field of a struct.
    int readFieldBegin(ThriftType *type, qint16 *id);
    int readFieldEnd() { return 0; }
    int readListBegin(ThriftType *element, qint32 *size);
    int readListEnd() { return 0; }
    /// The value of a bool field was in its header; elsewhere it takes a byte.
    int readBool(bool *value);
    int readByte(qint8 *value);
    int readI16(qint16 *value);
    int readI32(qint32 *value);
    int readI64(qint64 *value);
    int readDouble(double *value);
    /// A length of zero gives a null array. QByteArray keeps a zero byte behind a string's last
    /// one.
    qint64 readString(QByteArray *value) { return readBinary(value); }
    qint64 readBinary(QByteArray *value);
    int readMessageBegin(QByteArray *name, qint8 *type, qint32 *sequence);
    /// Skip one value of types Bool to List; any other type consumes nothing and succeeds.
    qint64 skip(ThriftType type);

private:
    struct Open
    {
        ThriftType type;       // Struct, List or Map
        quint64 left = 0;      // values to come (not for structs)
        ThriftType element[2]; // of a list; key and value of a map
    };
    int fail();
    int readVarint(quint64 *value);
    bool skipScalar(ThriftType type);
    bool openForSkip(ThriftType type, std::vector<Open> *open);
    bool skipNext(std::vector<Open> *open);

    std::span<const uchar> m_bytes;
    size_t m_at = 0;
    qint64 m_elementLimit = 0;
    qint64 m_stringLimit = 0;
    std::vector<qint16> m_outerIds; // last field ids of the structs around
    qint16 m_lastId = 0;
    enum class PendingBool : qint8 { None = -1, False, True } m_pendingBool = PendingBool::None;
};

/// Encodes into memory that grows as needed.
class CompactWriter
{
public:
    const QByteArray &bytes() const { return m_bytes; }

    int writeStructBegin();
    int writeStructEnd();
    int writeFieldBegin(ThriftType type, qint16 id);
    int writeFieldEnd() { return 0; }
    int writeFieldStop();
    int writeListBegin(ThriftType element, qint32 size);
    int writeListEnd() { return 0; }
    /// Directly behind writeFieldBegin(Bool, ...) the value goes into the field's header.
    int writeBool(bool value);
    int writeByte(qint8 value);
    int writeI16(qint16 value);
    int writeI32(qint32 value);
    int writeI64(qint64 value);
    int writeDouble(double value);
    qint64 writeString(const QByteArray &value) { return writeBinary(value); }
    /// Fails above 2147483647 bytes.
    qint64 writeBinary(const QByteArray &value);
    qint64 writeMessageBegin(const QByteArray &name, qint8 type, qint32 sequence);

private:
    int writeVarint(quint64 value);
    int writeFieldHeader(quint8 wireType, qint16 id);

    QByteArray m_bytes;
    std::vector<qint16> m_outerIds;
    qint16 m_lastId = 0;
    qint16 m_boolId = -1; // of a bool field whose header waits for the value
};

} // namespace corvanta::parquet
