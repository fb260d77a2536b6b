// Unpacks the first file of a RAR archive with the libraries of the platform.
//
// POSIX: libunarr for RAR 4 and libarchive for RAR 5, because each of them reads the other format
// wrongly or not at all. Windows: unrar64.dll, loaded when the first archive is opened.
#pragma once
#include "base/result.h"

#include <QString>

#include <functional>
#include <memory>
#include <span>

namespace corvanta::platform {

enum class RarError : quint8 {
    CannotOpen = 1, ///< The system cannot open the file.
    NoUnpacker,     ///< The unpacking library is missing. The detail is the message to log.
    Refused,        ///< Not a RAR archive, or of an unsupported kind. See the detail.
    Damaged,        ///< The entry cannot be unpacked, or does not match its header.
    Stopped,        ///< The receiver returned false.
};

/// An open archive. Threads: one thread at a time per object, not always the same one; separate
/// objects are independent.
class RarArchive
{
public:
    /// Receives a piece of unpacked data. Returns false to end the unpacking.
    using Receiver = std::function<bool(std::span<const char>)>;

    RarArchive() = default;
    RarArchive(const RarArchive &) = delete;
    RarArchive &operator=(const RarArchive &) = delete;
    virtual ~RarArchive() = default;

    /// Unpacked size of the first file in bytes, from its header.
    virtual qint64 size() const = 0;

    /// Unpack the first file. Call it only once. Success means that size and checksum are correct.
    /// Errors: Damaged, Stopped.
    virtual Result<void, RarError> unpack(const Receiver &receiver) = 0;
};

/// Open the archive `path` and read its headers up to the first entry that is not a folder. The
/// detail of a fault is the reason in words. Errors: CannotOpen, NoUnpacker, Refused.
Result<std::unique_ptr<RarArchive>, RarError> openRarArchive(const QString &path);

} // namespace corvanta::platform
