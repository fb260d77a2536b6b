// The POSIX implementation. codecs/rar reads the headers and finds archives that must be rejected;
// then stored entries are copied, and libunarr or libarchive unpacks all others. Size and CRC-32
// are compared with the header in each case. Layout of the headers: codecs/rar/rar_entry.cpp.
#include "codecs/deflate/crc32.h"
#include "codecs/rar/rar_entry.h"
#include "corvanta/failure_reason.h"
#include "corvanta/files.h"
#include "io/platform/rar_archive.h"

#include <QFile>

#include <archive.h>
#include <archive_entry.h>
#include <unarr.h>

#include <cerrno>
#include <vector>

namespace corvanta::platform {

namespace {

/// Size of the pieces that the receiver gets, at most.
constexpr size_t kPieceBytes = size_t(256) * 1024;

// Deleters of the libraries' handles.
struct CloseStream
{
    void operator()(ar_stream *s) const noexcept { ar_close(s); }
};
struct CloseUnarr
{
    void operator()(ar_archive *a) const noexcept { ar_close_archive(a); }
};
struct CloseArchive
{
    void operator()(archive *a) const noexcept { archive_read_free(a); }
};

/// A message about an entry.
QString entryMessage(const rar::Entry &entry, const char *what)
{
    return QStringLiteral("the RAR entry '%1' %2").arg(entry.name, QLatin1StringView(what));
}

/// Passes the unpacked bytes on to the receiver and compares them with the entry's header.
class PosixRar : public RarArchive
{
public:
    PosixRar(QString path, const rar::Entry &entry)
        : m_path(std::move(path))
        , m_entry(entry)
    {
    }
    qint64 size() const override { return m_entry.size; }

    Result<void, RarError> unpack(const Receiver &receiver) override
    {
        m_receiver = &receiver;
        if (m_entry.size > 0) {
            auto unpacked = unpackEntry();
            if (!unpacked) {
                return unpacked;
            }
        }
        if (m_done != m_entry.size) {
            return damaged("is shorter than its header says");
        }
        if (m_entry.crc && *m_entry.crc != m_crc) {
            return damaged("does not agree with its checksum");
        }
        return {};
    }

protected:
    /// Pass the entry's bytes to deliver() and return its fault, or the library's. An early end is
    /// no fault here: unpack() compares the size.
    virtual Result<void, RarError> unpackEntry() = 0;

    const QString &path() const { return m_path; }
    const rar::Entry &entry() const { return m_entry; }
    Fault<RarError> damaged(const char *what) const
    {
        return {RarError::Damaged, entryMessage(m_entry, what)};
    }
    qint64 left() const { return m_entry.size - m_done; }
    /// Count and check a piece, and pass it to the receiver. Never passes more bytes than the
    /// header says.
    Result<void, RarError> deliver(std::span<const char> piece)
    {
        if (static_cast<qint64>(piece.size()) > left()) {
            return damaged("is longer than its header says");
        }
        m_crc = deflate::crc32(m_crc, piece);
        m_done += static_cast<qint64>(piece.size());
        if (!(*m_receiver)(piece)) {
            return Fault<RarError>{RarError::Stopped};
        }
        return {};
    }

private:
    QString m_path;
    rar::Entry m_entry;
    const Receiver *m_receiver = nullptr;
    qint64 m_done = 0;
    quint32 m_crc = 0;
};

/// An entry that is not compressed: its bytes are copied from the file.
class StoredRar final : public PosixRar
{
public:
    using PosixRar::PosixRar;

private:
    Fault<RarError> unreadable(const MyReadFile &file) const
    {
        const QString reason = failureReason(path(), FileUse::Read, file.error());
        return reason.isEmpty() ? damaged("is truncated") : Fault{RarError::Damaged, reason};
    }
    Result<void, RarError> unpackEntry() override
    {
        const auto file = MyReadFile::open(path());
        std::vector<char> piece(kPieceBytes);
        if (!file || !(*file)->seek(entry().dataAt)) {
            return damaged("cannot be read");
        }
        while (left() > 0) {
            const qint64 got = (*file)->read(piece.data(), std::min<qint64>(left(), kPieceBytes));
            // 0: the file has become shorter since the archive was opened.
            if (got <= 0) {
                return unreadable(**file);
            }
            auto delivered = deliver({piece.data(), static_cast<size_t>(got)});
            if (!delivered) {
                return delivered;
            }
        }
        return {};
    }
};

/// The compressed entry of a RAR 4 archive, with libunarr.
class Rar4 final : public PosixRar
{
public:
    using PosixRar::PosixRar;

private:
    Result<void, RarError> unpackEntry() override
    {
        const std::unique_ptr<ar_stream, CloseStream> stream(
            ar_open_file(QFile::encodeName(path()).constData()));
        const std::unique_ptr<ar_archive, CloseUnarr> rar(stream ? ar_open_rar_archive(stream.get())
                                                                 : nullptr);
        // The library must agree with our header reader about the entry. It reports folders, too.
        bool isFound = rar && ar_parse_entry(rar.get());
        while (isFound && ar_entry_get_offset(rar.get()) < entry().headerAt) {
            isFound = ar_parse_entry(rar.get());
        }
        if (!isFound || static_cast<qint64>(ar_entry_get_size(rar.get())) != size()) {
            return damaged("cannot be unpacked");
        }
        std::vector<char> piece(kPieceBytes);
        while (left() > 0) {
            const size_t n = static_cast<size_t>(std::min<qint64>(left(), kPieceBytes));
            if (!ar_entry_uncompress(rar.get(), piece.data(), n)) {
                return damaged("is damaged or compressed by an unsupported method");
            }
            auto delivered = deliver({piece.data(), n});
            if (!delivered) {
                return delivered;
            }
        }
        return {};
    }
};

/// The compressed entry of a RAR 5 archive, with libarchive.
class Rar5 final : public PosixRar
{
public:
    using PosixRar::PosixRar;

private:
    Result<void, RarError> unpackEntry() override
    {
        const std::unique_ptr<archive, CloseArchive> rar(archive_read_new());
        archive_entry *entry = nullptr;
        if (!rar || archive_read_support_format_rar5(rar.get()) != ARCHIVE_OK ||
            archive_read_open_filename(rar.get(), QFile::encodeName(path()).constData(),
                                       kPieceBytes) != ARCHIVE_OK) {
            return damaged("cannot be unpacked");
        }
        // Like our header reader, which passes the folders before the first file.
        do {
            if (archive_read_next_header(rar.get(), &entry) != ARCHIVE_OK) {
                return damaged("cannot be unpacked");
            }
        } while (archive_entry_filetype(entry) == AE_IFDIR);
        std::vector<char> piece(kPieceBytes);
        // Read until the end is reported: the library verifies the checksum only then.
        while (true) {
            const la_ssize_t got = archive_read_data(rar.get(), piece.data(), piece.size());
            if (got < 0) {
                return damaged("is damaged or compressed by an unsupported method");
            }
            if (got == 0) {
                return {};
            }
            auto delivered = deliver({piece.data(), static_cast<size_t>(got)});
            if (!delivered) {
                return delivered;
            }
        }
    }
};

} // namespace

Result<std::unique_ptr<RarArchive>, RarError> openRarArchive(const QString &path)
{
    const auto file = MyReadFile::open(path);
    if (!file) {
        return Fault{RarError::CannotOpen, failureReason(path, FileUse::Read, file.fault().code)};
    }
    if ((*file)->size() < 0) {
        return Fault{RarError::Refused, failureReason(path, FileUse::Read, {ESPIPE})};
    }
    auto entry = rar::readFirstEntry(**file);
    if (!entry) {
        const QString reason = failureReason(path, FileUse::Read, (*file)->error());
        return Fault{RarError::Refused, reason.isEmpty() ? entry.fault().detail : reason};
    }
    // Checked here because libunarr writes messages about truncated data to standard error.
    if (entry->packedSize > (*file)->size() - entry->dataAt) {
        return Fault<RarError>{RarError::Refused, entryMessage(*entry, "is truncated")};
    }
    if (entry->isStored) {
        return std::unique_ptr<RarArchive>(std::make_unique<StoredRar>(path, *entry));
    }
    if (entry->format == rar::Format::Rar4) {
        return std::unique_ptr<RarArchive>(std::make_unique<Rar4>(path, *entry));
    }
    return std::unique_ptr<RarArchive>(std::make_unique<Rar5>(path, *entry));
}

} // namespace corvanta::platform
