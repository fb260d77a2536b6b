// io/platform/rar_archive.h
// Unpack the first entry of a RAR archive with what the platform has.
//
// POSIX: libunarr for RAR 4 and libarchive for RAR 5 (each reads the other's format not at all, or
// wrongly). Windows: unrar64.dll, loaded when the first archive is opened.
#pragma once
#include "base/result.h"

#include <QString>

#include <functional>
#include <memory>
#include <span>

namespace corvanta::platform {

enum class RarError : quint8 {
    CannotOpen = 1, ///< the system does not open the file
    NoUnpacker,     ///< the unpacking library is missing: the detail is the message to log
    Refused,        ///< no RAR archive, or of an unsupported kind: see the detail
    Damaged,        ///< the entry does not unpack, or not to what its header promises
    Stopped,        ///< the receiver asked for the end
};

/// Threads: one at a time, not always the same; archives share nothing.
class RarArchive
{
public:
    /// Takes a piece of unpacked data; false ends the unpacking.
    using Receiver = std::function<bool(std::span<const char>)>;

    RarArchive() = default;
    RarArchive(const RarArchive &) = delete;
    RarArchive &operator=(const RarArchive &) = delete;
    virtual ~RarArchive() = default;

    /// Unpacked bytes of the first entry, as its header says.
    virtual qint64 size() const = 0;

    /// Unpack the first entry, once. Success means that size and checksum agree.
    /// Errors: Damaged, Stopped.
    virtual Result<void, RarError> unpack(const Receiver &receiver) = 0;
};

/// Open the archive `path` and read up to its first entry. Errors: CannotOpen, NoUnpacker, Refused.
Result<std::unique_ptr<RarArchive>, RarError> openRarArchive(const QString &path);

} // namespace corvanta::platform
