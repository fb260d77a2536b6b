// The members of a package and the errors of its reader and writer.
#pragma once
#include <QByteArray>
#include <QtGlobal>

namespace corvanta::zip {

enum class Error : quint8 {
    // Reported by PackageWriter:
    /// The sink failed, for example on a full disk.
    WriteFailed,
    /// stop() was called.
    Stopped,
    /// There is not enough memory to compress a block.
    NoMemory,
    /// The name is empty, or longer than a zip file can hold.
    BadName,
    /// The package already has a member of this name.
    NameTaken,
    // Reported by PackageReader and its streams:
    /// The source failed, or ended before a record that must be there.
    ReadFailed,
    /// Not a zip file, or a truncated one.
    NotAPackage,
    /// The central directory contradicts itself or the file.
    BadDirectory,
    /// There is no member of this name.
    NoMember,
    /// The member needs a password.
    Encrypted,
    /// The member is neither stored nor deflated.
    UnknownMethod,
    /// The member's local header contradicts the directory.
    BadLocalHeader,
    /// The member's data is not a deflate stream.
    BadData,
    /// The member has more or fewer bytes than declared.
    BadSize,
    /// The content does not have the CRC-32 that the directory declares.
    BadChecksum,
    /// The member is too large to be read in one piece.
    TooLarge,
};

/// One member, as described in the central directory. Sizes and offsets are in bytes.
struct Member
{
    /// As stored: UTF-8 or ASCII with "/"; in foreign packages any bytes.
    QByteArray name = {};
    /// General purpose bit flag.
    quint16 flags = 0;
    /// kStored, kDeflated or any other number.
    quint16 method = 0;
    /// CRC-32 of the content.
    quint32 crc = 0;
    /// Size of the stored data, without the headers.
    qint64 compressedSize = 0;
    /// Size of the content, before compression.
    qint64 size = 0;
    /// Offset of the local header in the file.
    qint64 headerOffset = 0;
    /// When reading: offset where the next record of the file starts.
    qint64 dataLimit = 0;
};

/// Compression methods.
inline constexpr quint16 kStored = 0;
inline constexpr quint16 kDeflated = 8;

} // namespace corvanta::zip
