// Numbers are little-endian. Public sources: technote.txt of RAR 3 and 4, "RAR 5.0 archive format".
//
// RAR 4: marker "Rar!" 1A 07 00, then blocks. A block is a header and the added size:
//
//   offset  bytes  block header
//        0      2  low half of the CRC-32 of the rest of the header
//        2      1  type: 73 archive, 74 file, 7B end; others are skipped
//        3      2  flags
//        5      2  header size
//        7      4  added size, if flag 8000 is set
//
//   offset  bytes  file header
//        7      4  packed size
//       11      4  size
//       15      1  operating system
//       16      4  CRC-32
//       20      4  time
//       24      1  version needed to unpack
//       25      1  method; 30 is stored
//       26      2  name size
//       28      4  attributes
//       32    4+4  high halves of packed size and size, if flag 100 is set
//                  name
//
// RAR 5: marker "Rar!" 1A 07 01 00, then blocks. A v is a number with 7 bits per byte, least
// significant group first; the high bit means that more bytes follow. [] is optional, by flags:
//
//   block  u32 CRC-32 of the rest of the header, v size of the rest, v type, v flags,
//          [v extra size], [v data size], fields of the type, extra area; then the data
//   file   v flags, v size, v attributes, [u32 time], [u32 CRC-32], v method, v operating system,
//          v name size, name
//   extra  records of v size, v type (1: encryption), data
#include "codecs/rar/rar_entry.h"

#include "base/bytes.h"
#include "codecs/deflate/crc32.h"

#include <QByteArray>

#include <algorithm>
#include <cstring>
#include <limits>

namespace corvanta::rar {

namespace {

constexpr char kMarker4[] = "Rar!\x1A\x07";     // and a NUL
constexpr char kMarker5[] = "Rar!\x1A\x07\x01"; // and a NUL
constexpr qint64 kMarker4Bytes = 7;
constexpr qint64 kMarker5Bytes = 8;
/// Maximum size of a RAR 5 header. The size of a RAR 4 header has 16 bits.
constexpr quint64 kMaxHeaderBytes = quint64(2) * 1024 * 1024;
/// Maximum number of blocks before the first entry. Real archives have one or two.
constexpr int kMaxBlocks = 1000;

Fault<Error> damaged(qint64 offset)
{
    return {Error::BadHeader, QStringLiteral("a header of the archive is damaged or truncated"),
            offset};
}

/// Read up to `n` bytes at `offset`; fewer only at the end of the file.
Result<QByteArray, Error> readBytes(ByteSource &source, qint64 offset, qint64 n)
{
    QByteArray bytes(n, '\0');
    if (offset > source.size() || !source.seek(offset)) {
        return damaged(offset);
    }
    const qint64 got = readFully(source, bytes.data(), n);
    if (got < 0) {
        return Fault<Error>{Error::Unreadable, QStringLiteral("it cannot be read"), offset};
    }
    bytes.truncate(got);
    return bytes;
}

/// A name for messages, with a limited length. RAR 4 stores a packed Unicode form of the name after
/// a NUL; it is not used.
QString shownName(QByteArrayView stored)
{
    constexpr qsizetype kMaxBytes = 255;
    const QByteArrayView shown = stored.first(std::min(stored.size(), kMaxBytes));
    return QString::fromUtf8(shown.first(qsizetype(qstrnlen(shown.data(), size_t(shown.size())))));
}

Fault<Error> emptyArchive(qint64 offset)
{
    return {Error::NoEntry, QStringLiteral("the archive is empty"), offset};
}

Fault<Error> encryptedArchive(qint64 offset)
{
    return {Error::Encrypted, QStringLiteral("it is encrypted"), offset};
}

Fault<Error> encrypted(const Entry &entry, qint64 offset)
{
    return {Error::Encrypted, QStringLiteral("its entry '%1' is encrypted").arg(entry.name),
            offset};
}

Fault<Error> split(const Entry &entry, qint64 offset)
{
    return {Error::MultiVolume,
            QStringLiteral("its entry '%1' is spread over several volumes").arg(entry.name),
            offset};
}

namespace v4 {

constexpr qint64 kBaseBytes = 7;
constexpr quint16 kHasAddedSize = 0x8000;
enum BlockType : uchar { ArchiveBlock = 0x73, FileBlock = 0x74, EndBlock = 0x7B };
enum ArchiveFlag : quint16 { ArchiveComment = 0x0002, HeadersEncrypted = 0x0080 };
enum FileFlag : quint16 {
    SplitBefore = 0x0001,
    SplitAfter = 0x0002,
    Encrypted = 0x0004,
    FileComment = 0x0008,
    Directory = 0x00E0,
    LargeSizes = 0x0100
};
constexpr qsizetype kArchiveBytes = 13;
constexpr qsizetype kFileBytes = 32;
constexpr uchar kStored = 0x30;
constexpr uchar kFirstUnpacker = 20; // RAR 2.0
constexpr uchar kLastUnpacker = 36;

struct Block
{
    QByteArray header;
    uchar type = 0;
    quint16 flags = 0;
    qint64 end = 0; // offset of the next block
};

/// Number of header bytes that the CRC covers. It does not cover a comment, which older archives
/// store inside the header.
size_t checkedBytes(const Block &block)
{
    qsizetype bytes = block.header.size();
    if (block.type == ArchiveBlock && (block.flags & ArchiveComment) != 0) {
        bytes = std::min(bytes, kArchiveBytes);
    } else if (block.type == FileBlock && (block.flags & FileComment) != 0 && bytes >= kFileBytes) {
        bytes = std::min(bytes, kFileBytes + loadLE<quint16>(block.header.constData() + 26));
    }
    return static_cast<size_t>(bytes);
}

/// Read the header of a block, as many bytes as its own size says.
Result<QByteArray, Error> readHeader(ByteSource &source, qint64 offset)
{
    auto base = readBytes(source, offset, kBaseBytes);
    if (!base) {
        return base.fault();
    }
    if (base->isEmpty()) {
        return emptyArchive(offset);
    }
    if (base->size() < kBaseBytes) {
        return damaged(offset);
    }
    const auto headerBytes = loadLE<quint16>(base->constData() + 5);
    auto header = readBytes(source, offset, headerBytes);
    if (header && (headerBytes < kBaseBytes || header->size() < headerBytes)) {
        return damaged(offset);
    }
    return header;
}

Result<Block, Error> readBlock(ByteSource &source, qint64 offset)
{
    auto header = readHeader(source, offset);
    if (!header) {
        return header.fault();
    }
    const qsizetype headerBytes = header->size();
    Block block{*header, static_cast<uchar>(header->at(2)),
                loadLE<quint16>(header->constData() + 3), 0};
    const quint32 crc = deflate::crc32(0, {header->constData() + 2, checkedBytes(block) - 2});
    if ((crc & 0xFFFF) != loadLE<quint16>(header->constData())) {
        return damaged(offset);
    }
    block.end = offset + headerBytes;
    if ((block.flags & kHasAddedSize) != 0) {
        if (headerBytes < kBaseBytes + 4) {
            return damaged(offset);
        }
        block.end += loadLE<quint32>(header->constData() + kBaseBytes);
    }
    return block;
}

/// Read the two sizes of a file header. Returns false if they do not fit 62 bits: with the position
/// of the data they must fit a position, too.
bool readSizes(const char *bytes, bool isLarge, Entry *entry)
{
    const quint64 packedHigh = isLarge ? loadLE<quint32>(bytes + kFileBytes) : 0;
    const quint64 high = isLarge ? loadLE<quint32>(bytes + kFileBytes + 4) : 0;
    entry->packedSize = static_cast<qint64>(packedHigh << 32 | loadLE<quint32>(bytes + 7));
    entry->size = static_cast<qint64>(high << 32 | loadLE<quint32>(bytes + 11));
    return entry->packedSize >> 62 == 0 && entry->size >> 62 == 0;
}

Fault<Error> unsupported(const Entry &entry, uchar unpacker, qint64 offset)
{
    return {Error::Unsupported,
            QStringLiteral("its entry '%1' is packed with the method of RAR %2.%3, which is not "
                           "supported")
                .arg(entry.name, QString::number(unpacker / 10), QString::number(unpacker % 10)),
            offset};
}

Result<Entry, Error> readEntry(const Block &block, qint64 offset)
{
    const char *const bytes = block.header.constData();
    const bool isLarge = (block.flags & LargeSizes) != 0;
    const qsizetype nameAt = kFileBytes + (isLarge ? 8 : 0);
    if (block.header.size() < nameAt) {
        return damaged(offset);
    }
    Entry entry;
    entry.name = shownName(block.header.mid(nameAt, loadLE<quint16>(bytes + 26)));
    if ((block.flags & Encrypted) != 0) {
        return encrypted(entry, offset);
    }
    if ((block.flags & (SplitBefore | SplitAfter)) != 0) {
        return split(entry, offset);
    }
    if (!readSizes(bytes, isLarge, &entry)) {
        return damaged(offset);
    }
    const auto unpacker = static_cast<uchar>(bytes[24]);
    const auto method = static_cast<uchar>(bytes[25]);
    if (method != kStored && (unpacker < kFirstUnpacker || unpacker > kLastUnpacker)) {
        return unsupported(entry, unpacker, offset);
    }
    entry.format = Format::Rar4;
    entry.headerAt = offset;
    entry.isStored = method == kStored;
    entry.dataAt = offset + block.header.size();
    entry.crc = loadLE<quint32>(bytes + 16);
    return entry;
}

/// The first entry at `offset`, the start of a block, or after it.
Result<Entry, Error> nextEntry(ByteSource &source, qint64 offset)
{
    for (int i = 0; i < kMaxBlocks; ++i) {
        auto block = readBlock(source, offset);
        if (!block) {
            return block.fault();
        }
        if (block->type == ArchiveBlock && (block->flags & HeadersEncrypted) != 0) {
            return encryptedArchive(offset);
        }
        if (block->type == FileBlock && (block->flags & Directory) != Directory) {
            return readEntry(*block, offset);
        }
        if (block->type == EndBlock) {
            return emptyArchive(offset);
        }
        offset = block->end;
    }
    return damaged(offset);
}

} // namespace v4

namespace v5 {

enum BlockType : quint64 { FileBlock = 2, EncryptionBlock = 4, EndBlock = 5 };
enum BlockFlag : quint64 { HasExtra = 0x1, HasData = 0x2, SplitBefore = 0x8, SplitAfter = 0x10 };
enum FileFlag : quint64 { Directory = 0x1, HasTime = 0x2, HasCrc = 0x4, UnknownSize = 0x8 };
constexpr quint64 kEncryptionRecord = 1;
constexpr quint64 kMethodBits = 7 << 7; // of the compression information
constexpr qint64 kMaxSizeBytes = 3;     // of a header's own size

/// Reads numbers from the start of a byte sequence. Once a number is missing, it and all later ones
/// are 0 and isBroken() is true: one check after several reads is enough.
class Cursor
{
public:
    explicit Cursor(QByteArrayView bytes)
        : m_bytes(bytes)
    {
    }
    bool isBroken() const { return m_broken; }
    qsizetype position() const { return m_at; }
    qsizetype left() const { return m_bytes.size() - m_at; }
    void skip(quint64 n)
    {
        m_broken |= n > static_cast<quint64>(left());
        m_at += m_broken ? 0 : static_cast<qsizetype>(n);
    }
    quint64 number()
    {
        quint64 value = 0;
        for (int shift = 0; shift < 64 && left() > 0; shift += 7) {
            const auto byte = static_cast<uchar>(m_bytes[m_at++]);
            value |= static_cast<quint64>(byte & 0x7F) << shift;
            if ((byte & 0x80) == 0) {
                return value;
            }
        }
        m_broken = true;
        return 0;
    }
    quint32 fixed32()
    {
        const QByteArrayView four = bytes(4);
        return m_broken ? 0 : loadLE<quint32>(four.data());
    }
    QByteArrayView bytes(quint64 n)
    {
        const qsizetype at = m_at;
        skip(n);
        return m_broken ? QByteArrayView() : m_bytes.sliced(at, static_cast<qsizetype>(n));
    }

private:
    QByteArrayView m_bytes;
    qsizetype m_at = 0;
    bool m_broken = false;
};

struct Header
{
    QByteArray bytes; // starting with the type
    qint64 end = 0;   // offset of the data
};

struct Block
{
    QByteArray header; // starting with the type
    quint64 type = 0;
    quint64 flags = 0;
    quint64 extraBytes = 0;
    qsizetype fieldsAt = 0; // offset of the type's fields in the header
    qint64 dataAt = 0;
    qint64 end = 0;
};

Result<Header, Error> readHeader(ByteSource &source, qint64 offset)
{
    auto front = readBytes(source, offset, 4 + kMaxSizeBytes);
    if (!front) {
        return front.fault();
    }
    if (front->isEmpty()) {
        return emptyArchive(offset);
    }
    Cursor cursor(*front);
    const quint32 crc = cursor.fixed32();
    const quint64 size = cursor.number();
    if (cursor.isBroken() || size == 0 || size > kMaxHeaderBytes) {
        return damaged(offset);
    }
    const qsizetype sizeBytes = cursor.position() - 4;
    auto header = readBytes(source, offset + 4, sizeBytes + static_cast<qint64>(size));
    if (!header) {
        return header.fault();
    }
    if (header->size() < sizeBytes + static_cast<qsizetype>(size) ||
        deflate::crc32(0, {header->constData(), static_cast<size_t>(header->size())}) != crc) {
        return damaged(offset);
    }
    return Header{header->mid(sizeBytes), offset + 4 + header->size()};
}

Result<Block, Error> readBlock(ByteSource &source, qint64 offset)
{
    auto header = readHeader(source, offset);
    if (!header) {
        return header.fault();
    }
    Block block;
    block.header = header->bytes;
    Cursor cursor(block.header);
    block.type = cursor.number();
    block.flags = cursor.number();
    block.extraBytes = (block.flags & HasExtra) != 0 ? cursor.number() : 0;
    const quint64 dataBytes = (block.flags & HasData) != 0 ? cursor.number() : 0;
    block.fieldsAt = cursor.position();
    constexpr auto kMaxOffset = static_cast<quint64>(std::numeric_limits<qint64>::max()) / 2;
    if (cursor.isBroken() || dataBytes > kMaxOffset - static_cast<quint64>(header->end) ||
        block.extraBytes > static_cast<quint64>(cursor.left())) {
        return damaged(offset);
    }
    block.dataAt = header->end;
    block.end = header->end + static_cast<qint64>(dataBytes);
    return block;
}

bool hasEncryptionRecord(const Block &block)
{
    const auto extraBytes = static_cast<qsizetype>(block.extraBytes);
    Cursor cursor(QByteArrayView(block.header).last(extraBytes));
    while (cursor.left() > 0 && !cursor.isBroken()) {
        const quint64 size = cursor.number();
        Cursor record(QByteArrayView(block.header).last(cursor.left()));
        if (record.number() == kEncryptionRecord && !cursor.isBroken()) {
            return true;
        }
        cursor.skip(size);
    }
    return false;
}

bool isFolder(const Block &block)
{
    Cursor cursor(QByteArrayView(block.header).sliced(block.fieldsAt));
    return (cursor.number() & Directory) != 0;
}

/// Read the fields of a file header. Returns its flags, or nothing if it is damaged.
std::optional<quint64> readFields(const Block &block, Entry *entry)
{
    Cursor cursor(QByteArrayView(block.header).sliced(block.fieldsAt));
    const quint64 flags = cursor.number();
    const quint64 size = cursor.number();
    cursor.number(); // attributes
    cursor.skip((flags & HasTime) != 0 ? 4 : 0);
    if ((flags & HasCrc) != 0) {
        entry->crc = cursor.fixed32();
    }
    entry->isStored = (cursor.number() & kMethodBits) == 0;
    cursor.number(); // operating system
    entry->name = shownName(cursor.bytes(cursor.number()));
    entry->size = static_cast<qint64>(size);
    return cursor.isBroken() || entry->size < 0 ? std::nullopt : std::optional(flags);
}

Result<Entry, Error> readEntry(const Block &block, qint64 offset)
{
    Entry entry;
    entry.format = Format::Rar5;
    entry.headerAt = offset;
    entry.dataAt = block.dataAt;
    entry.packedSize = block.end - block.dataAt;
    const auto flags = readFields(block, &entry);
    if (!flags) {
        return damaged(offset);
    }
    if (hasEncryptionRecord(block)) {
        return encrypted(entry, offset);
    }
    if ((block.flags & (SplitBefore | SplitAfter)) != 0) {
        return split(entry, offset);
    }
    if ((*flags & UnknownSize) != 0) {
        return Fault<Error>{
            Error::Unsupported,
            QStringLiteral("the size of its entry '%1' is not stored").arg(entry.name), offset};
    }
    return entry;
}

/// The first entry at `offset`, the start of a block, or after it.
Result<Entry, Error> nextEntry(ByteSource &source, qint64 offset)
{
    for (int i = 0; i < kMaxBlocks; ++i) {
        auto block = readBlock(source, offset);
        if (!block) {
            return block.fault();
        }
        switch (block->type) {
        case FileBlock:
            if (!isFolder(*block)) {
                return readEntry(*block, offset);
            }
            offset = block->end;
            break;
        case EncryptionBlock:
            return encryptedArchive(offset);
        case EndBlock:
            return emptyArchive(offset);
        default:
            offset = block->end;
        }
    }
    return damaged(offset);
}

} // namespace v5

} // namespace

Result<Entry, Error> readFirstEntry(ByteSource &source)
{
    auto marker = readBytes(source, 0, kMarker5Bytes);
    if (!marker) {
        return marker.fault();
    }
    if (marker->size() == kMarker5Bytes &&
        std::memcmp(marker->constData(), kMarker5, kMarker5Bytes) == 0) {
        return v5::nextEntry(source, kMarker5Bytes);
    }
    if (marker->size() >= kMarker4Bytes &&
        std::memcmp(marker->constData(), kMarker4, kMarker4Bytes) == 0) {
        return v4::nextEntry(source, kMarker4Bytes);
    }
    return Fault<Error>{Error::NotRar, QStringLiteral("it does not start like a RAR archive"), 0};
}

Result<QStringList, Error> entryNames(ByteSource &source)
{
    QStringList names;
    auto entry = readFirstEntry(source);
    if (!entry) {
        return entry.fault();
    }
    while (entry) {
        names << entry->name;
        const qint64 end = entry->dataAt + entry->packedSize;
        entry =
            entry->format == Format::Rar4 ? v4::nextEntry(source, end) : v5::nextEntry(source, end);
    }
    return names;
}

} // namespace corvanta::rar
