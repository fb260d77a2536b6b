// The members of a package and the errors of its reader and writer.
#pragma once
#include <QByteArray>
#include <QtGlobal>

namespace corvanta::zip {

enum class Error : quint8 {
    // writing
    WriteFailed, ///< The sink failed, for example on a full disk. Nothing is lost; repeat the call.
    Stopped,     ///< stop() was called.
    NoMemory,
    BadName,   ///< The name is empty, or longer than a zip file can hold.
    NameTaken, ///< The package already has a member of this name.
    // reading
    ReadFailed,
    NotAPackage,    ///< Not a zip file, or a truncated one.
    BadDirectory,   ///< The central directory contradicts itself or the file.
    NoMember,       ///< There is no member of this name.
    Encrypted,      ///< The member needs a password.
    UnknownMethod,  ///< The member is neither stored nor deflated.
    BadLocalHeader, ///< The member's local header contradicts the directory.
    BadData,        ///< The member's data is not a deflate stream.
    BadSize,        ///< The member has more or fewer bytes than declared.
    BadChecksum,
    TooLarge, ///< The member is too large to be read in one piece.
};

/// One member, as described in the central directory. Sizes and offsets are in bytes.
struct Member
{
    QByteArray name = {}; ///< As stored: UTF-8 or ASCII with "/"; in foreign packages any bytes.
    quint16 flags = 0;    ///< General purpose bit flag.
    quint16 method = 0;   ///< kStored, kDeflated or any other number.
    quint32 crc = 0;      ///< CRC-32 of the content.
    qint64 compressedSize = 0; ///< Of the stored data.
    qint64 size = 0;           ///< Of the content.
    qint64 headerOffset = 0;   ///< Of the local header in the file.
    qint64 dataLimit = 0;      ///< When reading: offset where the next record of the file starts.
};

/// Compression methods.
inline constexpr quint16 kStored = 0;
inline constexpr quint16 kDeflated = 8;

} // namespace corvanta::zip
