// Encodes the records of a zip file (PKWARE APPNOTE.TXT 6.3, section 4.3).
#pragma once
#include "codecs/zip/member.h"

namespace corvanta::zip {

/// The first four bytes of each record, as a little-endian number.
inline constexpr quint32 kLocalSignature = 0x04034b50;
inline constexpr quint32 kDescriptorSignature = 0x08074b50;
inline constexpr quint32 kCentralSignature = 0x02014b50;
inline constexpr quint32 kEndSignature = 0x06054b50;
inline constexpr quint32 kEnd64Signature = 0x06064b50;
inline constexpr quint32 kLocator64Signature = 0x07064b50;

/// Sizes of the fixed parts of the records.
inline constexpr qint64 kLocalHeaderBytes = 30;
inline constexpr qint64 kCentralHeaderBytes = 46;
inline constexpr qint64 kEndBytes = 22;
inline constexpr qint64 kEnd64Bytes = 56;
inline constexpr qint64 kLocator64Bytes = 20;

/// Bits of Member::flags.
inline constexpr quint16 kFlagEncrypted = 1U << 0;
inline constexpr quint16 kFlagDescriptor = 1U << 3;
inline constexpr quint16 kFlagStrongEncryption = 1U << 6;
inline constexpr quint16 kFlagUtf8 = 1U << 11;

/// Id of the extra field with 64-bit numbers.
inline constexpr quint16 kExtraZip64 = 1;
/// A 16- or 32-bit field with this value means: a zip64 record has the real value.
inline constexpr quint16 kSaturated16 = 0xFFFF;
inline constexpr quint32 kSaturated32 = 0xFFFFFFFF;

/// Whether a size of the member does not fit 32 bits.
bool hasLargeSize(const Member &member);

/// The local header. Sizes above 32 bits are in a zip64 extra field. With kFlagDescriptor the
/// header has no sizes and no extra field, and therefore the same length as the header of a small
/// member.
QByteArray localHeader(const Member &member);
/// The data descriptor with 64-bit sizes.
QByteArray dataDescriptor64(const Member &member);
/// Append the member's entry of the central directory.
void appendCentralEntry(const Member &member, QByteArray &directory);
/// The end of the file, with zip64 records only if a value needs them.
QByteArray endRecords(qint64 memberCount, qint64 directoryOffset, qint64 directoryBytes);

} // namespace corvanta::zip
