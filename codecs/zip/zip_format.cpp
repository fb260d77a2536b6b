// Local header (4.3.7), widths in bytes, little-endian:
//   signature 4 | version needed 2 | flags 2 | method 2 | time 2 | date 2 | crc 4 | compressed size
//   4 | size 4 | name length 2 | extra length 2 | name | extra
// Central directory entry (4.3.12):
//   signature 4 | version made by 2 | then as the local header from "version needed" to "extra
//   length" | comment length 2 | disk 2 | internal attributes 2 | external attributes 4 | local
//   header offset 4 | name | extra | comment
// Zip64 extra field (4.5.3): id 2 | length 2 | then of size, compressed size, offset those, 8 bytes
// each,
//   whose own field is all ones.
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

// From "version needed" to "extra length", the same in both headers.
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
    QByteArray extra; // in a local header always both sizes
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
    put(directory, versionOf(member)); // made by: the same, on no particular system
    putCommon(directory, member, member.crc, saturated(member.compressedSize),
              saturated(member.size), extra.size());
    put(directory, quint16(0)); // comment
    put(directory, quint16(0)); // disk
    put(directory, quint16(0)); // internal attributes
    put(directory, quint32(0)); // external attributes
    put(directory, saturated(member.headerOffset));
    directory += member.name + extra;
}

// Zip64 end record (4.3.14) and its locator (4.3.15), then the end record (4.3.16).
QByteArray endRecords(qint64 memberCount, qint64 directoryOffset, qint64 directoryBytes)
{
    QByteArray bytes;
    const auto count = static_cast<quint64>(memberCount);
    if (count >= kSaturated16 || directoryOffset >= kSaturated32 ||
        directoryBytes >= kSaturated32) {
        put(bytes, kEnd64Signature);
        put(bytes, quint64(kEnd64Bytes - 12)); // of what follows this number
        put(bytes, kVersionZip64);
        put(bytes, kVersionZip64);
        put(bytes, quint32(0)); // this disk
        put(bytes, quint32(0)); // the directory's disk
        put(bytes, count);
        put(bytes, count);
        put(bytes, static_cast<quint64>(directoryBytes));
        put(bytes, static_cast<quint64>(directoryOffset));
        put(bytes, kLocator64Signature);
        put(bytes, quint32(0)); // the zip64 end record's disk
        put(bytes, static_cast<quint64>(directoryOffset + directoryBytes));
        put(bytes, quint32(1)); // disks
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
