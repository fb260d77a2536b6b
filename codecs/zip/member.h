// io/package/member.h
// What reader and writer of Office packages share: one member's facts, and what can go wrong.
#pragma once
#include <QByteArray>
#include <QtGlobal>

namespace corvanta::zip {

enum class Error : quint8 {
    // writing
    WriteFailed, ///< the sink refused (a full disk): nothing is lost, repeat the call
    Stopped,     ///< stop() was called
    NoMemory,
    BadName,   ///< a name that is empty or longer than a zip can hold
    NameTaken, ///< the package has this member already
    // reading
    ReadFailed,
    NotAPackage,    ///< no zip file, or one that was cut off
    BadDirectory,   ///< the central directory contradicts itself or the file
    NoMember,       ///< no member of this name
    Encrypted,      ///< a member that needs a password
    UnknownMethod,  ///< a member that is neither stored nor deflated
    BadLocalHeader, ///< a member whose own header is not what the directory says
    BadData,        ///< no deflate stream
    BadSize,        ///< more or fewer bytes than declared
    BadChecksum,
    TooLarge, ///< a member that is not read whole because of its size
};

/// One member as the central directory tells it.
struct Member
{
    QByteArray name = {}; ///< as stored: UTF-8 or ASCII with "/", in foreign packages anything
    quint16 flags = 0;    ///< general purpose bit flag
    quint16 method = 0;
    quint32 crc = 0;
    qint64 compressedSize = 0;
    qint64 size = 0;
    qint64 headerOffset = 0; ///< of the local header in the file
    qint64 dataLimit = 0;    ///< when reading: where something else begins in the file
};

inline constexpr quint16 kStored = 0;
inline constexpr quint16 kDeflated = 8;

} // namespace corvanta::zip
