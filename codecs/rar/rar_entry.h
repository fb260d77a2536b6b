// Reads the headers of a RAR archive up to its first entry: name, size, checksum and method.
//
// Does not unpack anything. Formats: RAR 4 and RAR 5, docs/formats/input-files.md.
// Threads: one thread at a time per source.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace corvanta::rar {

/// Why the first entry cannot be unpacked.
enum class Error : quint8 {
    /// The file does not start with a RAR marker.
    NotRar = 1,
    /// A header is damaged or truncated.
    BadHeader,
    /// The archive has no file in it.
    NoEntry,
    /// The headers or the first entry need a password.
    Encrypted,
    /// A part of the first entry is in another volume.
    MultiVolume,
    /// No available library can unpack the method.
    Unsupported,
    /// The source failed.
    Unreadable,
};

/// The two generations of the format. Their headers have different layouts.
enum class Format : quint8 { Rar4, Rar5 };

/// The first entry that is not a folder. Sizes and offsets are in bytes and not negative; the data
/// may be truncated.
struct Entry
{
    Format format = Format::Rar4;
    /// For messages; not a file name.
    QString name;
    /// Offset of the header in the archive. Folders may come before it.
    qint64 headerAt = 0;
    /// Whether the data is not compressed.
    bool isStored = false;
    /// Offset of the packed data in the archive.
    qint64 dataAt = 0;
    /// Size of the packed data.
    qint64 packedSize = 0;
    /// Size of the unpacked data.
    qint64 size = 0;
    /// CRC-32 of the unpacked data; RAR 5 may have another checksum.
    std::optional<quint32> crc;
};

/// Read the headers from the start of `source`, which must be able to seek. A fault's detail is a
/// text for the user. Errors: all of Error.
Result<Entry, Error> readFirstEntry(ByteSource &source);

/// The names of all entries that are not folders, in order, up to one that cannot be unpacked.
/// There is at least one; errors as readFirstEntry().
Result<QStringList, Error> entryNames(ByteSource &source);

} // namespace corvanta::rar
