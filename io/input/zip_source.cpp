// Locates members with minizip and reads their stored bytes. Unpacks them here, and compares size
// and checksum with the directory, so that a damaged member fails however it is read.
//
// Stored bytes are the content (method 0) or a raw deflate stream (method 8, RFC 1951).
#include "base/bytes.h"
#include "codecs/deflate/crc32.h"
#include "codecs/deflate/inflater.h"
#include "corvanta/failure_reason.h"
#include "corvanta/files.h"
#include "io/input/archive_sources.h"

#include <QStringDecoder>

#include <minizip/unzip.h>

#include <cerrno>
#include <vector>

using namespace Qt::StringLiterals;

namespace corvanta::input {

namespace {

/// Stored bytes that are read in one call.
constexpr size_t kInputBytes = size_t(64) * 1024;
// General purpose bit flags of a directory entry.
constexpr uLong kEncryptedFlag = 1;
constexpr uLong kUtf8Flag = 1 << 11;

/// The characters 0x80 to 0xFF of code page 437, for names that are not UTF-8.
constexpr char16_t kCodePage437[] = u"ÇüéâäàåçêëèïîìÄÅÉæÆôöòûùÿÖÜ¢£¥₧ƒ"
                                    u"áíóúñÑªº¿⌐¬½¼¡«»░▒▓│┤╡╢╖╕╣║╗╝╜╛┐"
                                    u"└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
                                    u"αßΓπΣσµτΦΘΩδ∞φε∩≡±≥≤⌠⌡÷≈°∙·√ⁿ²■\u00A0";
static_assert(std::size(kCodePage437) == 128 + 1);

/// Decode a member's name. Some packers write UTF-8 without the flag for it; old packers write the
/// code page of their system.
QString decodeName(QByteArrayView raw, uLong flags)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString name = utf8(raw);
    if ((flags & kUtf8Flag) != 0 || !utf8.hasError()) {
        return name;
    }
    QString inCodePage(raw.size(), Qt::Uninitialized);
    std::transform(raw.begin(), raw.end(), inCodePage.begin(), [](char c) {
        const auto byte = static_cast<uchar>(c);
        return QChar(byte < 0x80 ? char16_t(byte) : kCodePage437[byte - 0x80]);
    });
    return inCodePage;
}

/// The name of an entry in the Unicode path field of `extra`: u16 id 7075, u16 size, then a version
/// (1), the CRC-32 of the stored name and the name in UTF-8. Empty without a valid field: packers
/// that do not know it may have changed the stored name.
QString unicodeName(QByteArrayView extra, QByteArrayView stored)
{
    constexpr quint16 kUnicodePath = 0x7075;
    constexpr qsizetype kHeadBytes = 4;
    constexpr qsizetype kBytesBeforeName = 5;
    while (extra.size() >= kHeadBytes) {
        const auto id = loadLE<quint16>(extra.data());
        const qsizetype size = loadLE<quint16>(extra.data() + 2);
        extra = extra.sliced(kHeadBytes);
        if (size > extra.size()) {
            break;
        }
        const QByteArrayView field = extra.first(size);
        extra = extra.sliced(size);
        if (id == kUnicodePath && size > kBytesBeforeName && field[0] == 1 &&
            loadLE<quint32>(field.data() + 1) ==
                deflate::crc32(0, {stored.data(), static_cast<size_t>(stored.size())})) {
            return QString::fromUtf8(field.sliced(kBytesBeforeName));
        }
    }
    return {};
}

/// The archive, for minizip and for the reason of a failure. Cached, because minizip reads a
/// directory in pieces of a few bytes.
struct ArchiveFile
{
    explicit ArchiveFile(std::unique_ptr<MyReadFile> opened)
        : file(opened.release(), kInputBytes)
        , size(file.size())
    {
    }
    MyReadFileCached file;
    const qint64 size; // -1: a pipe or a device
    bool hasFailed = false;
};

// minizip's file functions. The stream is an ArchiveFile, which the caller owns.
voidpf openFile(voidpf, const void *archive, int)
{
    return const_cast<void *>(archive); // NOLINT(cppcoreguidelines-pro-type-const-cast)
}
uLong readFile(voidpf, voidpf stream, void *buffer, uLong n)
{
    auto *const archive = static_cast<ArchiveFile *>(stream);
    const qint64 got = readFully(archive->file, buffer, static_cast<qint64>(n));
    archive->hasFailed = archive->hasFailed || got < 0;
    return got < 0 ? 0 : static_cast<uLong>(got);
}
// Archives are only read.
uLong writeFile(voidpf, voidpf, const void *, uLong)
{
    return 0;
}
ZPOS64_T tellFile(voidpf, voidpf stream)
{
    return static_cast<ZPOS64_T>(static_cast<ArchiveFile *>(stream)->file.position());
}
long seekFile(voidpf, voidpf stream, ZPOS64_T offset, int origin)
{
    auto *const archive = static_cast<ArchiveFile *>(stream);
    qint64 base = 0;
    if (origin == ZLIB_FILEFUNC_SEEK_CUR) {
        base = archive->file.position();
    } else if (origin == ZLIB_FILEFUNC_SEEK_END) {
        base = archive->size;
    }
    // Offsets are unsigned, but may be negative numbers in a damaged archive.
    const auto target = static_cast<qint64>(static_cast<quint64>(base) + offset);
    return target >= 0 && target <= archive->size && archive->file.seek(target) ? 0 : -1;
}
int closeFile(voidpf, voidpf)
{
    return 0;
}
int fileError(voidpf, voidpf stream)
{
    return static_cast<ArchiveFile *>(stream)->hasFailed ? -1 : 0;
}

/// Closes the archive and a member that is open in it.
struct CloseUnzip
{
    using pointer = unzFile;
    void operator()(unzFile file) const noexcept
    {
        unzCloseCurrentFile(file);
        unzClose(file);
    }
};
using UnzipHandle = std::unique_ptr<unzFile, CloseUnzip>;

/// An entry of the directory.
struct Entry
{
    unz_file_info64 info{};
    QString name;   ///< in Unicode, if the archive has it
    QString stored; ///< as stored; graphs that were saved before may name it

    bool isFolder() const { return name.endsWith(u'/'); }
    bool isNamed(const QString &wanted) const
    {
        return name.compare(wanted, Qt::CaseInsensitive) == 0 ||
               stored.compare(wanted, Qt::CaseInsensitive) == 0;
    }
};

/// One member. Its directory entry is trusted for size and checksum only.
class ZipSource final : public InputSource
{
public:
    ZipSource(const QString &path, std::unique_ptr<ArchiveFile> file, UnzipHandle archive,
              const Entry &entry)
        : m_path(path)
        , m_file(std::move(file))
        , m_archive(std::move(archive))
        , m_info(entry.info)
        , m_name(entry.name)
        , m_input(kInputBytes)
    {
        if (m_info.compression_method == Z_DEFLATED) {
            m_inflater = deflate::makeInflater();
        }
    }

    /// Start at the member's first byte. Returns false if minizip cannot open the member.
    bool start();
    qint64 read(void *buffer, qint64 n) override;
    qint64 size() override { return static_cast<qint64>(m_info.uncompressed_size); }
    bool seek(qint64 offset) override;
    qint64 progressPosition() const override { return m_done; }
    QString memberName() const override { return m_name; }

private:
    // They return the number of bytes, 0 at the end, and a negative number for damaged data.
    // m_ended is set with or after the last bytes.
    qint64 readStored(char *out, qint64 n);
    qint64 inflate(char *out, qint64 n);
    qint64 atEnd();

    const QString m_path;
    std::unique_ptr<ArchiveFile> m_file;
    UnzipHandle m_archive; // reads m_file
    unz_file_info64 m_info;
    QString m_name;
    std::unique_ptr<deflate::Inflater> m_inflater; // null for a stored member
    std::vector<char> m_input; // stored bytes; those from m_at to m_end are not unpacked yet
    size_t m_at = 0;
    size_t m_end = 0;
    bool m_ended = false;
    qint64 m_done = 0; // unpacked bytes that were delivered
    quint32 m_crc = 0; // of them
};

bool ZipSource::start()
{
    int method = 0;
    m_at = m_end = 0;
    m_ended = false;
    m_done = 0;
    m_crc = 0;
    if (m_inflater) {
        m_inflater->reset();
    }
    // The last argument asks for the stored bytes: minizip must not unpack them.
    return unzOpenCurrentFile2(m_archive.get(), &method, nullptr, 1) == UNZ_OK;
}

qint64 ZipSource::readStored(char *out, qint64 n)
{
    const int got = unzReadCurrentFile(m_archive.get(), out,
                                       static_cast<unsigned>(std::min<qint64>(n, 1 << 30)));
    m_ended = got <= 0;
    return got;
}

qint64 ZipSource::inflate(char *out, qint64 n)
{
    while (true) {
        const auto step = m_inflater->inflate({m_input.data() + m_at, m_end - m_at},
                                              {out, static_cast<size_t>(n)});
        m_at = static_cast<size_t>(static_cast<qint64>(m_at) + step.consumed);
        m_ended = step.state == deflate::Inflater::State::End;
        if (step.state == deflate::Inflater::State::Bad) {
            return -1;
        }
        // No output yet is not the end: the unpacker may need more input for its next bytes.
        if (step.produced > 0 || m_ended) {
            return static_cast<qint64>(step.produced);
        }
        if (m_at == m_end) {
            const int got = unzReadCurrentFile(m_archive.get(), m_input.data(),
                                               static_cast<unsigned>(m_input.size()));
            if (got <= 0) {
                return -1;
            }
            m_at = 0;
            m_end = static_cast<size_t>(got);
        }
    }
}

/// The result of a read at the end of the data: 0 if size and checksum are correct.
qint64 ZipSource::atEnd()
{
    if (m_done != size() || m_crc != m_info.crc) {
        return fail(
            u"the zip member '%1' is damaged: it does not match its size and checksum"_s.arg(
                m_name));
    }
    return 0;
}

qint64 ZipSource::read(void *buffer, qint64 n)
{
    if (!failure().isEmpty() || n <= 0) {
        return failure().isEmpty() ? 0 : -1;
    }
    if (m_ended) {
        return atEnd();
    }
    char *const out = static_cast<char *>(buffer);
    const qint64 got = m_inflater ? inflate(out, n) : readStored(out, n);
    if (got < 0) {
        const QString reason = failureReason(m_path, FileUse::Read, m_file->file.error());
        return fail(reason.isEmpty() ? u"the zip member '%1' is damaged or truncated"_s.arg(m_name)
                                     : reason);
    }
    // A small archive must not unpack to any size.
    if (got > size() - m_done) {
        return fail(
            u"the zip member '%1' is damaged: it is longer than its header says"_s.arg(m_name));
    }
    m_crc = deflate::crc32(m_crc, {static_cast<const char *>(buffer), static_cast<size_t>(got)});
    m_done += got;
    return got > 0 ? got : atEnd();
}

/// Packed data has no places to start from: unpack again from the first byte.
bool ZipSource::seek(qint64 offset)
{
    unzCloseCurrentFile(m_archive.get());
    clearFailure();
    return start() && skipBytes(*this, offset);
}

/// The facts of the entry that minizip is at. Returns false if its directory is damaged.
bool readEntry(unzFile archive, Entry *entry)
{
    // Names and extra fields have at most 65535 bytes.
    QByteArray stored(0xFFFF, '\0');
    QByteArray extra(0xFFFF, '\0');
    if (unzGetCurrentFileInfo64(archive, &entry->info, stored.data(),
                                static_cast<uLong>(stored.size()), extra.data(),
                                static_cast<uLong>(extra.size()), nullptr, 0) != UNZ_OK) {
        return false;
    }
    stored.truncate(static_cast<qsizetype>(entry->info.size_filename));
    extra.truncate(static_cast<qsizetype>(entry->info.size_file_extra));
    entry->stored = decodeName(stored, entry->info.flag);
    const QString inUnicode = unicodeName(extra, stored);
    entry->name = inUnicode.isEmpty() ? entry->stored : inUnicode;
    return true;
}

Fault<OpenError> refused(const QString &member, const QString &why)
{
    return {OpenError::Refused, u"the zip member '%1' %2"_s.arg(member, why)};
}

/// Move to the wanted entry; an empty name is the first one that is not a folder.
Result<Entry, OpenError> findEntry(unzFile archive, const QString &member)
{
    Entry entry;
    int found = unzGoToFirstFile(archive);
    while (found == UNZ_OK) {
        if (!readEntry(archive, &entry)) {
            found = UNZ_BADZIPFILE;
        } else if (member.isEmpty() ? !entry.isFolder() : entry.isNamed(member)) {
            return entry;
        } else {
            found = unzGoToNextFile(archive);
        }
    }
    if (found != UNZ_END_OF_LIST_OF_FILE) {
        return Fault{OpenError::Refused, u"the directory of the zip archive is damaged"_s};
    }
    return Fault{OpenError::CannotOpen, member.isEmpty()
                                            ? u"the zip archive has no file in it"_s
                                            : u"the zip archive has no member '%1'"_s.arg(member)};
}

/// Whether this reader can unpack the member.
Result<void, OpenError> checkEntry(const Entry &entry)
{
    if ((entry.info.flag & kEncryptedFlag) != 0) {
        return refused(entry.name, u"is encrypted"_s);
    }
    const uLong method = entry.info.compression_method;
    if (method != 0 && method != Z_DEFLATED) {
        return refused(
            entry.name,
            u"is packed by method %1, which is not supported: pack it with deflate"_s.arg(method));
    }
    if (entry.info.uncompressed_size > static_cast<ZPOS64_T>(std::numeric_limits<qint64>::max())) {
        return refused(entry.name, u"is damaged: its size is not possible"_s);
    }
    return {};
}

Result<std::unique_ptr<ArchiveFile>, OpenError> openArchive(const QString &path)
{
    auto file = MyReadFile::open(path);
    if (!file) {
        return Fault{OpenError::CannotOpen, failureReason(path, FileUse::Read, file.fault().code)};
    }
    auto archive = std::make_unique<ArchiveFile>(*std::move(file));
    // The directory is at the end, so a pipe cannot be read as an archive.
    if (archive->size < 0) {
        return Fault{OpenError::Refused, failureReason(path, FileUse::Read, {ESPIPE})};
    }
    return archive;
}

} // namespace

Opened openZipMember(const QString &path, const QString &member)
{
    auto file = openArchive(path);
    if (!file) {
        return file.fault();
    }
    zlib_filefunc64_def functions{openFile, readFile,  writeFile, tellFile,
                                  seekFile, closeFile, fileError, nullptr};
    UnzipHandle archive(unzOpen2_64(file->get(), &functions));
    if (!archive) {
        const QString reason = failureReason(path, FileUse::Read, (*file)->file.error());
        return Fault{OpenError::Refused,
                     reason.isEmpty() ? u"it is not a zip archive, or it is truncated"_s : reason};
    }
    const auto entry = findEntry(archive.get(), member);
    if (!entry) {
        return entry.fault();
    }
    if (const auto checked = checkEntry(*entry); !checked) {
        return checked.fault();
    }
    auto source = std::make_unique<ZipSource>(path, *std::move(file), std::move(archive), *entry);
    if (!source->start()) {
        return refused(entry->name,
                       u"is damaged: its header does not match the directory of the archive"_s);
    }
    return std::unique_ptr<InputSource>(std::move(source));
}

} // namespace corvanta::input
