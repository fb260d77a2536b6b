// Locates members with minizip and reads their stored bytes. Unpacks them here, and compares size
// and checksum with the directory, so that a damaged member fails however it is read.
//
// Stored bytes are the content (method 0) or a raw deflate stream (method 8, RFC 1951).
#include "codecs/deflate/crc32.h"
#include "codecs/deflate/inflater.h"
#include "io/input/archive_sources.h"

#include <QFile>
#include <QStringDecoder>

#include <minizip/unzip.h>

#include <array>
#include <vector>

namespace corvanta::input {

namespace {

/// Stored bytes that are read in one call.
constexpr size_t kInputBytes = 64 * 1024;
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

// minizip's file functions, implemented with QFile, which accepts any file name on any system. The
// stream is a QFile, owned by minizip between openFile() and closeFile().
voidpf openFile(voidpf, const void *name, int)
{
    auto file = std::make_unique<QFile>(*static_cast<const QString *>(name));
    return file->open(QIODevice::ReadOnly) ? file.release() : nullptr;
}
uLong readFile(voidpf, voidpf stream, void *buffer, uLong n)
{
    const qint64 got =
        static_cast<QFile *>(stream)->read(static_cast<char *>(buffer), static_cast<qint64>(n));
    return got < 0 ? 0 : static_cast<uLong>(got);
}
// Archives are only read.
uLong writeFile(voidpf, voidpf, const void *, uLong)
{
    return 0;
}
ZPOS64_T tellFile(voidpf, voidpf stream)
{
    return static_cast<ZPOS64_T>(static_cast<QFile *>(stream)->pos());
}
long seekFile(voidpf, voidpf stream, ZPOS64_T offset, int origin)
{
    auto *const file = static_cast<QFile *>(stream);
    qint64 base = 0;
    if (origin == ZLIB_FILEFUNC_SEEK_CUR) {
        base = file->pos();
    } else if (origin == ZLIB_FILEFUNC_SEEK_END) {
        base = file->size();
    }
    // Offsets are unsigned, but may be negative numbers in a damaged archive.
    const auto target = static_cast<qint64>(static_cast<quint64>(base) + offset);
    return target >= 0 && target <= file->size() && file->seek(target) ? 0 : -1;
}
int closeFile(voidpf, voidpf stream)
{
    delete static_cast<QFile *>(stream);
    return 0;
}
int fileError(voidpf, voidpf stream)
{
    return static_cast<QFile *>(stream)->error() == QFileDevice::NoError ? 0 : -1;
}

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

/// One member. Its directory entry is trusted for size and checksum only.
class ZipSource final : public InputSource
{
public:
    ZipSource(UnzipHandle archive, const unz_file_info64 &info, const QString &name)
        : m_archive(std::move(archive))
        , m_info(info)
        , m_name(name)
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

    UnzipHandle m_archive;
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
        return fail(QStringLiteral("the zip member '%1' does not agree with its size and checksum")
                        .arg(m_name));
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
        return fail(QStringLiteral("the zip member '%1' is damaged or truncated").arg(m_name));
    }
    // A small archive must not unpack to any size.
    if (got > size() - m_done) {
        return fail(
            QStringLiteral("the zip member '%1' is longer than its header says").arg(m_name));
    }
    m_crc = deflate::crc32(m_crc, {static_cast<const char *>(buffer), static_cast<size_t>(got)});
    m_done += got;
    return got > 0 ? got : atEnd();
}

bool ZipSource::seek(qint64 offset)
{
    unzCloseCurrentFile(m_archive.get());
    clearFailure();
    return start() && skipBytes(*this, offset);
}

/// Move to the wanted entry and get its facts. Returns false if it does not exist or cannot be
/// read.
bool findMember(unzFile archive, const QString &member, unz_file_info64 *info, QString *name)
{
    // Names have at most 65535 bytes; the rest of the buffer stays zero.
    std::array<char, 65536> raw{};
    int found = unzGoToFirstFile(archive);
    while (found == UNZ_OK) {
        found = unzGetCurrentFileInfo64(archive, info, raw.data(), raw.size() - 1, nullptr, 0,
                                        nullptr, 0);
        *name = decodeName(QByteArrayView(raw.data()), info->flag);
        if (found != UNZ_OK || member.isEmpty() ||
            name->compare(member, Qt::CaseInsensitive) == 0) {
            break;
        }
        found = unzGoToNextFile(archive);
    }
    if (found != UNZ_OK) {
        return false;
    }
    const bool isKnownMethod =
        info->compression_method == 0 || info->compression_method == Z_DEFLATED;
    return isKnownMethod && (info->flag & kEncryptedFlag) == 0 &&
           info->uncompressed_size <= static_cast<ZPOS64_T>(std::numeric_limits<qint64>::max());
}

} // namespace

Opened openZipMember(const QString &path, const QString &member)
{
    zlib_filefunc64_def functions{openFile, readFile,  writeFile, tellFile,
                                  seekFile, closeFile, fileError, nullptr};
    UnzipHandle archive(unzOpen2_64(&path, &functions));
    unz_file_info64 info{};
    QString name;
    if (!archive || !findMember(archive.get(), member, &info, &name)) {
        return Fault<OpenError>{OpenError::CannotOpen};
    }
    auto source = std::make_unique<ZipSource>(std::move(archive), info, name);
    if (!source->start()) {
        return Fault<OpenError>{OpenError::CannotOpen};
    }
    return std::unique_ptr<InputSource>(std::move(source));
}

} // namespace corvanta::input
