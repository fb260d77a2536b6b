// The records of a zip file (APPNOTE.TXT 6.3). Numbers are little-endian:
//
//   local header (4.3.7)   directory entry (4.3.12)
//   offset  bytes          offset  bytes  content
//        0      4               0      4  signature
//                               4      2  version made by
//        4      2               6      2  version needed
//        6      2               8      2  flags
//        8      2              10      2  method
//       10    2+2              12    2+2  time and date
//       14      4              16      4  CRC-32
//       18      4              20      4  compressed size
//       22      4              24      4  size
//       26      2              28      2  name length
//       28      2              30      2  extra field length
//                              32      2  comment length
//                              34      2  disk
//                              36    2+4  internal and external attributes
//                              42      4  offset of the local header
//       30                     46         name, extra field, (directory only) comment
//
//   zip64 extra field (4.5.3)  u16 id 1, u16 length; then size, compressed size and offset, 8 bytes
//                              each, but only those whose own field is all ones
//   data descriptor (4.3.9)    u32 signature, u32 CRC-32, u64 compressed size, u64 size
//
// The end records are drawn in zip_directory.cpp.
#include "codecs/zip/zip_format.h"

#include "base/bytes.h"

namespace corvanta::zip {

namespace {

constexpr quint16 kVersionDeflate = 20;
constexpr quint16 kVersionZip64 = 45;

template <class T> void put(QByteArray &bytes, T value)
{
    char buffer[sizeof(T)];
    storeLE(value, buffer);
    bytes.append(buffer, sizeof buffer);
}

quint32 saturated(qint64 value)
{
    return value >= kSaturated32 ? kSaturated32 : static_cast<quint32>(value);
}

quint16 versionOf(const Member &member)
{
    const bool isLarge = hasLargeSize(member) || member.headerOffset >= kSaturated32;
    return isLarge ? kVersionZip64 : kVersionDeflate;
}

QByteArray zip64Extra(std::initializer_list<qint64> values)
{
    QByteArray numbers;
    for (const qint64 value : values) {
        if (value >= kSaturated32) {
            put(numbers, static_cast<quint64>(value));
        }
    }
    QByteArray extra;
    if (!numbers.isEmpty()) {
        put(extra, kExtraZip64);
        put(extra, static_cast<quint16>(numbers.size()));
    }
    return extra + numbers;
}

// The fields from "version needed" to "extra field length", which are the same in both records.
void putCommon(QByteArray &bytes, const Member &member, quint32 crc, quint32 compressedSize,
               quint32 size, qsizetype extraBytes)
{
    put(bytes, versionOf(member));
    put(bytes, member.flags);
    put(bytes, member.method);
    put(bytes, quint32(0)); // time and date
    put(bytes, crc);
    put(bytes, compressedSize);
    put(bytes, size);
    put(bytes, static_cast<quint16>(member.name.size()));
    put(bytes, static_cast<quint16>(extraBytes));
}

} // namespace

bool hasLargeSize(const Member &member)
{
    return member.size >= kSaturated32 || member.compressedSize >= kSaturated32;
}

QByteArray localHeader(const Member &member)
{
    QByteArray bytes;
    put(bytes, kLocalSignature);
    if (member.flags & kFlagDescriptor) {
        putCommon(bytes, member, 0, 0, 0, 0);
        return bytes + member.name;
    }
    if (!hasLargeSize(member)) {
        putCommon(bytes, member, member.crc, static_cast<quint32>(member.compressedSize),
                  static_cast<quint32>(member.size), 0);
        return bytes + member.name;
    }
    QByteArray extra; // a local header always has both sizes
    put(extra, kExtraZip64);
    put(extra, quint16(2 * sizeof(quint64)));
    put(extra, static_cast<quint64>(member.size));
    put(extra, static_cast<quint64>(member.compressedSize));
    putCommon(bytes, member, member.crc, kSaturated32, kSaturated32, extra.size());
    return bytes + member.name + extra;
}

QByteArray dataDescriptor64(const Member &member)
{
    QByteArray bytes;
    put(bytes, kDescriptorSignature);
    put(bytes, member.crc);
    put(bytes, static_cast<quint64>(member.compressedSize));
    put(bytes, static_cast<quint64>(member.size));
    return bytes;
}

void appendCentralEntry(const Member &member, QByteArray &directory)
{
    const QByteArray extra = zip64Extra({member.size, member.compressedSize, member.headerOffset});
    put(directory, kCentralSignature);
    put(directory, versionOf(member)); // made by: the same version, on no particular system
    putCommon(directory, member, member.crc, saturated(member.compressedSize),
              saturated(member.size), extra.size());
    put(directory, quint16(0)); // comment
    put(directory, quint16(0)); // disk
    put(directory, quint16(0)); // internal attributes
    put(directory, quint32(0)); // external attributes
    put(directory, saturated(member.headerOffset));
    directory += member.name + extra;
}

namespace {

// The zip64 end record (4.3.14) and its locator (4.3.15).
void putEnd64(QByteArray &bytes, quint64 count, qint64 directoryOffset, qint64 directoryBytes)
{
    put(bytes, kEnd64Signature);
    put(bytes, quint64(kEnd64Bytes - 12)); // number of bytes after this field
    put(bytes, kVersionZip64);
    put(bytes, kVersionZip64);
    put(bytes, quint32(0)); // this disk
    put(bytes, quint32(0)); // disk of the directory
    put(bytes, count);      // on this disk
    put(bytes, count);      // in total
    put(bytes, static_cast<quint64>(directoryBytes));
    put(bytes, static_cast<quint64>(directoryOffset));
    put(bytes, kLocator64Signature);
    put(bytes, quint32(0)); // disk of the zip64 end record
    put(bytes, static_cast<quint64>(directoryOffset + directoryBytes));
    put(bytes, quint32(1)); // number of disks
}

} // namespace

QByteArray endRecords(qint64 memberCount, qint64 directoryOffset, qint64 directoryBytes)
{
    QByteArray bytes;
    const auto count = static_cast<quint64>(memberCount);
    if (count >= kSaturated16 || directoryOffset >= kSaturated32 ||
        directoryBytes >= kSaturated32) {
        putEnd64(bytes, count, directoryOffset, directoryBytes);
    }
    const auto shortCount = static_cast<quint16>(qMin<quint64>(count, kSaturated16));
    put(bytes, kEndSignature);
    put(bytes, quint32(0)); // disk numbers
    put(bytes, shortCount);
    put(bytes, shortCount);
    put(bytes, saturated(directoryBytes));
    put(bytes, saturated(directoryOffset));
    put(bytes, quint16(0)); // comment
    return bytes;
}

} // namespace corvanta::zip
