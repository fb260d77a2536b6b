// codecs/rar/rar_entry.h
// Find the first entry of a RAR archive: what it is, how large, and what its bytes must add up to.
//
// Headers only: unpacking is for others. Threads: one at a time.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"

#include <QString>

#include <optional>

namespace corvanta::rar {

enum class Error : quint8 {
    NotRar = 1,  ///< does not start like a RAR archive
    BadHeader,   ///< a header is damaged or cut off
    NoEntry,     ///< an archive without an entry
    Encrypted,   ///< the headers or the first entry need a password
    MultiVolume, ///< the first entry goes on in, or comes from, another volume
    Unsupported, ///< packed in a way that no unpacker here knows
    Unreadable,  ///< the source failed
};

enum class Format : quint8 { Rar4, Rar5 };

struct Entry
{
    Format format = Format::Rar4;
    QString name; ///< for messages
    bool isDirectory = false;
    bool isStored = false; ///< not compressed
    qint64 dataAt = 0;     ///< offset of the packed bytes
    qint64 packedSize = 0;
    qint64 size = 0;            ///< unpacked bytes
    std::optional<quint32> crc; ///< of the unpacked bytes; RAR 5 may use another checksum instead
};

/// Read the headers from the source's start up to the first entry.
Result<Entry, Error> readFirstEntry(ByteSource &source);

} // namespace corvanta::rar
