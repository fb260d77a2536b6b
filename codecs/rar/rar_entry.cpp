// RAR 4 (technote of RAR 3 and 4): marker, then blocks
//
//   0  u16 CRC (low half of CRC-32 over the rest of the header)    7  u32 added size, if flag 8000
//   2  u8  type: 73 archive, 74 file, others are skipped
//   3  u16 flags        5  u16 header size
//
//   file:  7 u32 packed size   11 u32 size   15 u8 system   16 u32 CRC-32   20 u32 time
//          24 u8 unpacker   25 u8 method (30: stored)   26 u16 name size   28 u32 attributes
//          32 u32 + u32 high halves of packed size and size, if flag 100; name
//
// RAR 5 (RAR 5.0 archive format): marker, then blocks of
//
//   u32 CRC-32 over the rest, v size of what follows, v type, v flags, [v extra size],
//   [v data size]
//
//   file:  v flags, v size, v attributes, [u32 time], [u32 CRC-32], v method, v system,
//          v name size, name
//   extra area at the end: records of v size, v type (1: encryption), data
//
// with v a number of 7 bits a byte, least significant first, the high bit marking that more follow.
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
/// What the RAR 5 format allows for a header; RAR 4 has 16 bits.
constexpr quint64 kMaxHeaderBytes = 2 * 1024 * 1024;
/// Blocks in front of the first entry: real archives have one or two.
constexpr int kMaxBlocks = 1000;

Fault<Error> damaged(qint64 offset)
{
    return {Error::BadHeader, QStringLiteral("a header of the archive is damaged or cut off"),
            offset};
}

Result<QByteArray, Error> readBytes(ByteSource &source, qint64 offset, qint64 n)
{
    QByteArray bytes(n, '\0');
    if (!source.seek(offset)) {
        return damaged(offset);
    }
    const qint64 got = readFully(source, bytes.data(), n);
    if (got < 0) {
        return Fault<Error>{Error::Unreadable, QStringLiteral("it cannot be read"), offset};
    }
    bytes.truncate(got);
    return bytes;
}

/// A name for messages: not longer than they should be, and without what follows a NUL, which is a
/// packed form of the same in Unicode.
QString shownName(QByteArrayView stored)
{
    constexpr qsizetype kMaxBytes = 255;
    const QByteArrayView shown = stored.first(std::min(stored.size(), kMaxBytes));
    return QString::fromUtf8(shown.first(qsizetype(qstrnlen(shown.data(), size_t(shown.size())))));
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

/// How far the header's CRC reaches: not over a comment, which older archives keep inside the
/// header.
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

Result<Block, Error> readBlock(ByteSource &source, qint64 offset)
{
    auto base = readBytes(source, offset, kBaseBytes);
    if (!base) {
        return base.fault();
    }
    if (base->isEmpty()) {
        return Fault<Error>{Error::NoEntry, QStringLiteral("the archive is empty"), offset};
    }
    if (base->size() < kBaseBytes) {
        return damaged(offset);
    }
    const auto headerBytes = loadLE<quint16>(base->constData() + 5);
    auto header = readBytes(source, offset, headerBytes);
    if (!header) {
        return header.fault();
    }
    if (headerBytes < kBaseBytes || header->size() < headerBytes) {
        return damaged(offset);
    }
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

Result<Entry, Error> readEntry(const Block &block, qint64 offset)
{
    const char *const bytes = block.header.constData();
    const bool large = (block.flags & LargeSizes) != 0;
    if (block.header.size() < kFileBytes + (large ? 8 : 0)) {
        return damaged(offset);
    }
    Entry entry;
    entry.name =
        shownName(block.header.mid(kFileBytes + (large ? 8 : 0), loadLE<quint16>(bytes + 26)));
    if ((block.flags & Encrypted) != 0) {
        return encrypted(entry, offset);
    }
    if ((block.flags & (SplitBefore | SplitAfter)) != 0) {
        return split(entry, offset);
    }
    const quint64 packedHigh = large ? loadLE<quint32>(bytes + kFileBytes) : 0;
    const quint64 high = large ? loadLE<quint32>(bytes + kFileBytes + 4) : 0;
    if (packedHigh > 0x7FFFFFFF || high > 0x7FFFFFFF) {
        return damaged(offset);
    }
    const auto unpacker = static_cast<uchar>(bytes[24]);
    const auto method = static_cast<uchar>(bytes[25]);
    if (method != kStored && (unpacker < kFirstUnpacker || unpacker > kLastUnpacker)) {
        return Fault<Error>{
            Error::Unsupported,
            QStringLiteral("its entry '%1' is packed with the method of RAR %2.%3, which is not "
                           "supported")
                .arg(entry.name, QString::number(unpacker / 10), QString::number(unpacker % 10)),
            offset};
    }
    entry.format = Format::Rar4;
    entry.isDirectory = (block.flags & Directory) == Directory;
    entry.isStored = method == kStored;
    entry.dataAt = offset + block.header.size();
    entry.packedSize = static_cast<qint64>(packedHigh << 32 | loadLE<quint32>(bytes + 7));
    entry.size = static_cast<qint64>(high << 32 | loadLE<quint32>(bytes + 11));
    entry.crc = loadLE<quint32>(bytes + 16);
    return entry;
}

Result<Entry, Error> firstEntry(ByteSource &source)
{
    qint64 offset = kMarker4Bytes;
    for (int i = 0; i < kMaxBlocks; ++i) {
        auto block = readBlock(source, offset);
        if (!block) {
            return block.fault();
        }
        if (block->type == ArchiveBlock && (block->flags & HeadersEncrypted) != 0) {
            return Fault<Error>{Error::Encrypted, QStringLiteral("it is encrypted"), offset};
        }
        if (block->type == FileBlock) {
            return readEntry(*block, offset);
        }
        if (block->type == EndBlock) {
            return Fault<Error>{Error::NoEntry, QStringLiteral("the archive is empty"), offset};
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
constexpr qint64 kLongestSize = 3;      // bytes of a header's own size

/// Takes numbers from the front of some bytes; once something is missing all that follows is 0.
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
    QByteArray bytes; // from the type on
    qint64 end = 0;
};

struct Block
{
    QByteArray header; // from the type on
    quint64 type = 0;
    quint64 flags = 0;
    quint64 extraBytes = 0;
    qsizetype fieldsAt = 0; // where the fields of the type begin
    qint64 dataAt = 0;
    qint64 end = 0;
};

Result<Header, Error> readHeader(ByteSource &source, qint64 offset)
{
    auto front = readBytes(source, offset, 4 + kLongestSize);
    if (!front) {
        return front.fault();
    }
    if (front->isEmpty()) {
        return Fault<Error>{Error::NoEntry, QStringLiteral("the archive is empty"), offset};
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

Result<Entry, Error> readEntry(const Block &block, qint64 offset)
{
    Cursor cursor(QByteArrayView(block.header).sliced(block.fieldsAt));
    Entry entry;
    entry.format = Format::Rar5;
    entry.dataAt = block.dataAt;
    entry.packedSize = block.end - block.dataAt;
    const quint64 flags = cursor.number();
    const quint64 size = cursor.number();
    cursor.number(); // attributes
    cursor.skip((flags & HasTime) != 0 ? 4 : 0);
    if ((flags & HasCrc) != 0) {
        entry.crc = cursor.fixed32();
    }
    entry.isStored = (cursor.number() & kMethodBits) == 0;
    cursor.number(); // system
    entry.name = shownName(cursor.bytes(cursor.number()));
    if (cursor.isBroken() || size > static_cast<quint64>(std::numeric_limits<qint64>::max())) {
        return damaged(offset);
    }
    if (hasEncryptionRecord(block)) {
        return encrypted(entry, offset);
    }
    if ((block.flags & (SplitBefore | SplitAfter)) != 0) {
        return split(entry, offset);
    }
    if ((flags & UnknownSize) != 0) {
        return Fault<Error>{
            Error::Unsupported,
            QStringLiteral("the size of its entry '%1' is not stored").arg(entry.name), offset};
    }
    entry.isDirectory = (flags & Directory) != 0;
    entry.size = static_cast<qint64>(size);
    return entry;
}

Result<Entry, Error> firstEntry(ByteSource &source)
{
    qint64 offset = kMarker5Bytes;
    for (int i = 0; i < kMaxBlocks; ++i) {
        auto block = readBlock(source, offset);
        if (!block) {
            return block.fault();
        }
        switch (block->type) {
        case FileBlock:
            return readEntry(*block, offset);
        case EncryptionBlock:
            return Fault<Error>{Error::Encrypted, QStringLiteral("it is encrypted"), offset};
        case EndBlock:
            return Fault<Error>{Error::NoEntry, QStringLiteral("the archive is empty"), offset};
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
        return v5::firstEntry(source);
    }
    if (marker->size() >= kMarker4Bytes &&
        std::memcmp(marker->constData(), kMarker4, kMarker4Bytes) == 0) {
        return v4::firstEntry(source);
    }
    return Fault<Error>{Error::NotRar, QStringLiteral("it does not start like a RAR archive"), 0};
}

} // namespace corvanta::rar
