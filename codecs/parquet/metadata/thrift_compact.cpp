// The bytes of the compact protocol (thrift-compact-protocol.md of Apache Thrift):
//
//   varint   7 bits per byte, least significant group first; the high bit is set in all bytes but
//            the last
//   i16..64  zigzag varint: 0, -1, 1, -2 ... are stored as 0, 1, 2, 3 ...
//   double   8 bytes, little-endian
//   binary   varint length, then the bytes
//   struct   fields, then a zero byte
//   field    1 byte: high nibble id minus previous id (1 to 15), low nibble wire type; if the high
//            nibble is 0, the id follows as zigzag varint; then the value
//   bool     in a field: no bytes, wire type 1 is true and 2 is false; in a list: 1 byte
//   list     1 byte: high nibble size (0 to 14), low nibble element type; if the high nibble is 15,
//            the size follows as varint; then the elements
//   map      varint size; if it is not 0, 1 byte with the key type in the high nibble and the value
//            type in the low nibble; then the pairs
//   message  82, 1 byte: high 3 bits type, low 5 bits version 1; varint sequence number; name
#include "codecs/parquet/metadata/thrift_compact.h"

#include "base/bytes.h"
#include "base/limits.h"

#include <array>
#include <limits>

namespace corvanta::parquet {

namespace {

constexpr int kFailed = -1;
constexpr quint8 kProtocolId = 0x82;
constexpr quint8 kVersion = 1;
constexpr quint8 kVersionMask = 0x1F;
constexpr quint8 kWireTrue = 1;
constexpr quint8 kWireFalse = 2;
/// Largest difference of two field ids that fits the high nibble of a header.
constexpr int kMaxDelta = 15;
/// In the high nibble of a list header: the size does not fit the nibble.
constexpr qint32 kSizeFollows = 15;

/// Interface types by wire type. For wire types above 0, Stop means "no such type".
constexpr std::array<ThriftType, 13> kFromWire{
    ThriftType::Stop, ThriftType::Bool, ThriftType::Bool,   ThriftType::Byte,   ThriftType::I16,
    ThriftType::I32,  ThriftType::I64,  ThriftType::Double, ThriftType::String, ThriftType::List,
    ThriftType::Set,  ThriftType::Map,  ThriftType::Struct};

ThriftType fromWire(quint8 wire)
{
    return wire < kFromWire.size() ? kFromWire[wire] : ThriftType::Stop;
}

quint8 toWire(ThriftType type)
{
    for (size_t wire = kWireTrue; wire < kFromWire.size(); ++wire) {
        if (kFromWire[wire] == type) {
            return static_cast<quint8>(wire);
        }
    }
    return 0;
}

quint64 zigzag(qint64 value)
{
    return static_cast<quint64>(value) << 1 ^ static_cast<quint64>(value >> 63);
}
qint64 unzigzag(quint64 value)
{
    return static_cast<qint64>(value >> 1 ^ (~(value & 1) + 1));
}

} // namespace

void CompactReader::setLimits(qint64 elements, qint64 stringBytes)
{
    m_elementLimit = elements;
    m_stringLimit = stringBytes;
}

int CompactReader::fail()
{
    m_at = m_bytes.size();
    return kFailed;
}

int CompactReader::readVarint(quint64 *value)
{
    constexpr int kMaxBytes = 10;
    *value = 0;
    for (int i = 0; i < kMaxBytes && m_at < m_bytes.size(); ++i) {
        const uchar byte = m_bytes[m_at++];
        *value |= static_cast<quint64>(byte & 0x7F) << (7 * i);
        if (byte < 0x80) {
            return i + 1;
        }
    }
    return fail();
}

int CompactReader::readStructBegin()
{
    if (m_outerIds.size() >= limits::kThriftSkipDepth) {
        return fail();
    }
    m_outerIds.push_back(m_lastId);
    m_lastId = 0;
    return 0;
}

int CompactReader::readStructEnd()
{
    m_lastId = m_outerIds.back();
    m_outerIds.pop_back();
    return 0;
}

int CompactReader::readFieldBegin(ThriftType *type, qint16 *id)
{
    if (m_at == m_bytes.size()) {
        return fail();
    }
    const uchar header = m_bytes[m_at++];
    const quint8 wire = header & 0x0F;
    *type = fromWire(wire);
    if (wire == 0) { // the end of the struct; the other bits have no meaning
        return 1;
    }
    if (*type == ThriftType::Stop) {
        return fail();
    }
    *id = static_cast<qint16>(m_lastId + (header >> 4));
    const int idBytes = header >> 4 == 0 ? readI16(id) : 0;
    if (idBytes < 0) {
        return kFailed;
    }
    m_lastId = *id;
    if (*type == ThriftType::Bool) {
        m_pendingBool = wire == kWireTrue ? PendingBool::True : PendingBool::False;
    }
    return 1 + idBytes;
}

int CompactReader::readListBegin(ThriftType *element, qint32 *size)
{
    if (m_at == m_bytes.size()) {
        return fail();
    }
    const uchar header = m_bytes[m_at++];
    quint64 count = header >> 4;
    constexpr quint64 kSizeFollows = 15;
    const int sizeBytes = count == kSizeFollows ? readVarint(&count) : 0;
    if (sizeBytes < 0) {
        return kFailed;
    }
    *element = fromWire(header & 0x0F);
    const auto limit = static_cast<quint64>(m_elementLimit > 0 ? m_elementLimit : bytesLeft());
    // Every element has at least one byte, so that a longer list cannot be valid. This keeps a few
    // bytes from asking for gigabytes. Some writers give empty lists no element type.
    const bool isTyped = *element != ThriftType::Stop || count == 0;
    if (!isTyped || count > limit || count > static_cast<quint64>(bytesLeft()) ||
        count > std::numeric_limits<qint32>::max()) {
        return fail();
    }
    *size = static_cast<qint32>(count);
    return 1 + sizeBytes;
}

int CompactReader::readBool(bool *value)
{
    return m_pendingBool != PendingBool::None ? takePendingBool(value) : readBoolByte(value);
}

int CompactReader::takePendingBool(bool *value)
{
    *value = m_pendingBool == PendingBool::True;
    m_pendingBool = PendingBool::None;
    return 0;
}

int CompactReader::readBoolByte(bool *value)
{
    qint8 byte = 0;
    const int consumed = readByte(&byte);
    *value = byte == kWireTrue; // every other byte is false, as 0 is in files of some writers
    return consumed;
}

int CompactReader::readByte(qint8 *value)
{
    if (m_at == m_bytes.size()) {
        return fail();
    }
    *value = static_cast<qint8>(m_bytes[m_at++]);
    return 1;
}

int CompactReader::readI16(qint16 *value)
{
    quint64 raw = 0;
    const int consumed = readVarint(&raw);
    *value = static_cast<qint16>(unzigzag(raw));
    return consumed;
}

int CompactReader::readI32(qint32 *value)
{
    quint64 raw = 0;
    const int consumed = readVarint(&raw);
    *value = static_cast<qint32>(unzigzag(raw));
    return consumed;
}

int CompactReader::readI64(qint64 *value)
{
    quint64 raw = 0;
    const int consumed = readVarint(&raw);
    *value = unzigzag(raw);
    return consumed;
}

int CompactReader::readDouble(double *value)
{
    if (bytesLeft() < 8) {
        return fail();
    }
    *value = loadLE<double>(m_bytes.data() + m_at);
    m_at += 8;
    return 8;
}

qint64 CompactReader::readBinary(QByteArray *value)
{
    quint64 length = 0;
    const int lengthBytes = readVarint(&length);
    const auto limit = static_cast<quint64>(m_stringLimit > 0 ? m_stringLimit : bytesLeft());
    if (lengthBytes < 0 || length > limit || length > static_cast<quint64>(bytesLeft())) {
        return fail();
    }
    const auto n = static_cast<qsizetype>(length);
    *value = n == 0 ? QByteArray()
                    : QByteArray(reinterpret_cast<const char *>(m_bytes.data() + m_at), n);
    m_at += static_cast<size_t>(n);
    return lengthBytes + n;
}

int CompactReader::readMessageBegin(QByteArray *name, qint8 *type, qint32 *sequence)
{
    const size_t begin = m_at;
    qint8 protocol = 0;
    qint8 versionAndType = 0;
    quint64 number = 0;
    if (readByte(&protocol) < 0 || readByte(&versionAndType) < 0 ||
        static_cast<quint8>(protocol) != kProtocolId ||
        (static_cast<quint8>(versionAndType) & kVersionMask) != kVersion ||
        readVarint(&number) < 0 || readString(name) < 0) {
        return fail();
    }
    *type = static_cast<qint8>(static_cast<quint8>(versionAndType) >> 5);
    *sequence = static_cast<qint32>(number);
    return static_cast<int>(m_at - begin);
}

bool CompactReader::skipScalar(ThriftType type)
{
    bool flag = false; // the values are not used
    qint8 byte = 0;
    quint64 number = 0;
    double real = 0;
    switch (type) {
    case ThriftType::Bool:
        return readBool(&flag) >= 0;
    case ThriftType::Byte:
        return readByte(&byte) >= 0;
    case ThriftType::Double:
        return readDouble(&real) >= 0;
    case ThriftType::I16:
    case ThriftType::I32:
    case ThriftType::I64:
        return readVarint(&number) >= 0;
    case ThriftType::String:
        if (readVarint(&number) < 0 || number > static_cast<quint64>(bytesLeft())) {
            return false;
        }
        m_at += static_cast<size_t>(number);
        return true;
    default:
        return true;
    }
}

/// Reads the header of a list or set that is to be skipped.
bool CompactReader::openList(Open *added)
{
    ThriftType element = ThriftType::Stop;
    qint32 size = 0;
    const bool isGood = readListBegin(&element, &size) >= 0;
    *added = {ThriftType::List, static_cast<quint64>(size), {element, element}};
    return isGood;
}

/// Reads the header of a map that is to be skipped.
bool CompactReader::openMap(Open *added)
{
    quint64 size = 0;
    qint8 types = 0;
    if (readVarint(&size) < 0 || size > static_cast<quint64>(bytesLeft()) ||
        (size != 0 && readByte(&types) < 0)) {
        return false;
    }
    const auto both = static_cast<quint8>(types);
    *added = {ThriftType::Map, size * 2, {fromWire(both >> 4), fromWire(both & 0x0F)}};
    return true;
}

/// Start to skip a value: skip a scalar, or push a container onto the stack. A stack and not a
/// recursion, so that a deeply nested value cannot exhaust the thread's stack.
bool CompactReader::openForSkip(ThriftType type, std::vector<Open> *open)
{
    Open added{type, 0, {ThriftType::Stop, ThriftType::Stop}};
    bool isGood = false;
    switch (type) {
    case ThriftType::Struct:
        isGood = readStructBegin() >= 0;
        break;
    case ThriftType::List:
    case ThriftType::Set:
        isGood = openList(&added);
        break;
    case ThriftType::Map:
        isGood = openMap(&added);
        break;
    default:
        return skipScalar(type);
    }
    open->push_back(added);
    return isGood && open->size() <= limits::kThriftSkipDepth;
}

/// Skip the next value of the innermost open container, or close the container.
bool CompactReader::skipNext(std::vector<Open> *open)
{
    Open &inner = open->back();
    if (inner.type == ThriftType::Struct) {
        ThriftType type = ThriftType::Stop;
        qint16 id = 0;
        if (readFieldBegin(&type, &id) < 0) {
            return false;
        }
        if (type != ThriftType::Stop) {
            return openForSkip(type, open);
        }
        readStructEnd();
        open->pop_back();
        return true;
    }
    if (inner.left == 0) {
        open->pop_back();
        return true;
    }
    const ThriftType element = inner.element[inner.left & 1]; // a key if the count is even
    --inner.left;
    return openForSkip(element, open);
}

qint64 CompactReader::skip(ThriftType type)
{
    // The loop ends, because each step consumes bytes or closes a container.
    const size_t begin = m_at;
    std::vector<Open> open;
    bool isGood = openForSkip(type, &open);
    while (isGood && !open.empty()) {
        isGood = skipNext(&open);
    }
    return isGood ? static_cast<qint64>(m_at - begin) : fail();
}

int CompactWriter::writeVarint(quint64 value)
{
    int written = 1;
    for (; value >= 0x80; value >>= 7, ++written) {
        m_bytes.append(static_cast<char>(value | 0x80));
    }
    m_bytes.append(static_cast<char>(value));
    return written;
}

int CompactWriter::writeStructBegin()
{
    m_outerIds.push_back(m_lastId);
    m_lastId = 0;
    return 0;
}

int CompactWriter::writeStructEnd()
{
    m_lastId = m_outerIds.back();
    m_outerIds.pop_back();
    return 0;
}

int CompactWriter::writeFieldHeader(quint8 wireType, qint16 id)
{
    const int delta = id - m_lastId;
    m_lastId = id;
    const bool isShort = delta > 0 && delta <= kMaxDelta;
    return isShort ? writeShortHeader(wireType, delta) : writeLongHeader(wireType, id);
}

int CompactWriter::writeShortHeader(quint8 wireType, int delta)
{
    m_bytes.append(static_cast<char>(delta << 4 | wireType));
    return 1;
}

// 0 in the high nibble means that the id follows, and so do negative differences.
int CompactWriter::writeLongHeader(quint8 wireType, qint16 id)
{
    m_bytes.append(static_cast<char>(wireType));
    return 1 + writeI16(id);
}

int CompactWriter::writeFieldBegin(ThriftType type, qint16 id)
{
    // The header of a bool field contains its value, which writeBool() gets.
    if (type == ThriftType::Bool) {
        m_boolId = id;
        return 0;
    }
    return writeFieldHeader(toWire(type), id);
}

int CompactWriter::writeFieldStop()
{
    m_bytes.append('\0');
    return 1;
}

int CompactWriter::writeListBegin(ThriftType element, qint32 size)
{
    return size < 0 ? kFailed : writeListHeader(element, size);
}

int CompactWriter::writeListHeader(ThriftType element, qint32 size)
{
    const qint32 nibble = qMin(size, kSizeFollows);
    m_bytes.append(static_cast<char>(nibble << 4 | toWire(element)));
    return nibble < kSizeFollows ? 1 : 1 + writeVarint(static_cast<quint64>(size));
}

/// In a field the value is a part of the header; in a list it is a byte.
int CompactWriter::writeBool(bool value)
{
    const quint8 wire = value ? kWireTrue : kWireFalse;
    return m_boolId ? writeFieldHeader(wire, *std::exchange(m_boolId, std::nullopt))
                    : writeByte(static_cast<qint8>(wire));
}

int CompactWriter::writeByte(qint8 value)
{
    m_bytes.append(static_cast<char>(value));
    return 1;
}

int CompactWriter::writeI16(qint16 value)
{
    return writeVarint(zigzag(value));
}
int CompactWriter::writeI32(qint32 value)
{
    return writeVarint(zigzag(value));
}
int CompactWriter::writeI64(qint64 value)
{
    return writeVarint(zigzag(value));
}

int CompactWriter::writeDouble(double value)
{
    char bytes[sizeof value];
    storeLE(value, bytes);
    m_bytes.append(bytes, sizeof bytes);
    return sizeof bytes;
}

qint64 CompactWriter::writeBinary(const QByteArray &value)
{
    if (value.size() > std::numeric_limits<qint32>::max()) {
        return kFailed;
    }
    const int lengthBytes = writeVarint(static_cast<quint64>(value.size()));
    m_bytes.append(value);
    return lengthBytes + value.size();
}

qint64 CompactWriter::writeEncoded(const QByteArray &value)
{
    m_bytes.append(value);
    return value.size();
}

qint64 CompactWriter::writeMessageBegin(const QByteArray &name, qint8 type, qint32 sequence)
{
    m_bytes.append(static_cast<char>(kProtocolId));
    m_bytes.append(static_cast<char>(static_cast<quint8>(type) << 5 | kVersion));
    const int numberBytes = writeVarint(static_cast<quint32>(sequence));
    const qint64 nameBytes = writeString(name);
    return nameBytes < 0 ? kFailed : 2 + numberBytes + nameBytes;
}

} // namespace corvanta::parquet
