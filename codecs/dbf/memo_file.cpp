// The three formats of memo files. Block 0 is the header. A text starts at the start of a block:
//
//   format            header                         text
//   dBase III (.dbt)  (not used)                     the bytes, ended by 1A; blocks of 512 bytes
//   dBase IV (.dbt)   20: u16 block size             FF FF 08 00, u32 length including these
//                                                    8 bytes, the bytes; little-endian
//   FoxPro (.fpt)     6: u16 block size, big-endian  u32 kind, u32 length, the bytes; big-endian
//
// Sources: the dBase IV and FoxPro file descriptions in the vendors' manuals.
#include "codecs/dbf/memo_file.h"

#include "base/bytes.h"
#include "base/limits.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace corvanta::dbf {

namespace {

constexpr qint64 kHeadBytes = 32;
constexpr qint64 kDefaultBlockBytes = 512;
constexpr qint64 kTextHeaderBytes = 8;
constexpr quint32 kDbase4Mark = 0x0008FFFF;
constexpr char kTextEnd = 0x1A;
/// Maximum length of a dBase III text. The programs that wrote them stop at 64 KiB.
constexpr qint64 kMaxEndedText = qint64(1024) * 1024;
/// Size of one read if the texts are not requested in file order.
constexpr qint64 kRandomReadBytes = qint64(16) * 1024;

constexpr std::optional<QByteArrayView> kNoText;

int foxProBlockBytes(QByteArrayView head)
{
    return head.size() >= 8 ? loadBE<quint16>(head.data() + 6) : 0;
}

int dbase4BlockBytes(QByteArrayView head)
{
    return head.size() >= 22 ? loadLE<quint16>(head.data() + 20) : 0;
}

/// The block size in the header of a memo file; 0 if the format or the file has none.
int storedBlockBytes(MemoFormat format, QByteArrayView head)
{
    if (format == MemoFormat::FoxPro) {
        return foxProBlockBytes(head);
    }
    return format == MemoFormat::Dbase3 ? 0 : dbase4BlockBytes(head);
}

/// The format of a table whose first byte is not one of dBase III.
MemoFormat laterMemoFormat(const TableHeader &header)
{
    if (header.version == 0x03) { // says that there is no memo file
        return MemoFormat::Dbase3Or4;
    }
    return header.isFoxPro ? MemoFormat::FoxPro : MemoFormat::Dbase4;
}

} // namespace

MemoFormat memoFormatOf(const TableHeader &header)
{
    const bool isDbase3 = header.version == 0x83 || header.version == 0x87;
    return isDbase3 ? MemoFormat::Dbase3 : laterMemoFormat(header);
}

MemoFile::MemoFile(ByteSource &source, MemoFormat format, Access access, qint64 bufferBytes)
    : m_source(source)
    , m_format(format)
    , m_access(access)
    , m_bufferBytes(std::max(bufferBytes, kRandomReadBytes))
{
}

/// Read the block size, and the whole file if it is kept in memory.
Result<void, Error> MemoFile::prepare()
{
    m_size = m_source.size();
    if (m_access == Access::InMemory || m_size < 0) {
        auto loaded = load();
        if (!loaded) {
            return loaded;
        }
    }
    auto head = bytesAt(0, std::min(kHeadBytes, m_size));
    if (!head) {
        return head.fault();
    }
    readBlockSize(*head);
    m_isPrepared = true;
    return {};
}

Result<void, Error> MemoFile::load()
{
    constexpr size_t kPiece = size_t(1024) * 1024;
    size_t fill = 0;
    for (qint64 got = 1; got > 0; fill += static_cast<size_t>(std::max<qint64>(got, 0))) {
        if (fill > static_cast<size_t>(limits::kMemberBytes)) {
            return Fault<Error>{Error::MemoTooLarge};
        }
        m_window.resize(fill + kPiece);
        got = m_source.read(m_window.data() + fill, static_cast<qint64>(kPiece));
        if (got < 0) {
            return Fault<Error>{Error::MemoUnreadable, {}, static_cast<qint64>(fill)};
        }
    }
    m_window.resize(fill);
    m_size = m_windowFill = static_cast<qint64>(fill);
    return {};
}

// A size of 0 means the usual one: some programs leave the field empty.
void MemoFile::readBlockSize(QByteArrayView head)
{
    const int stored = storedBlockBytes(m_format, head);
    m_blockBytes = stored != 0 ? stored : kDefaultBlockBytes;
}

/// `n` bytes at `offset`. The range must be inside the file. Valid until the next call.
MemoFile::View MemoFile::bytesAt(qint64 offset, qint64 n)
{
    const qint64 windowEnd = m_windowAt + m_windowFill;
    if (offset < m_windowAt || n > windowEnd - offset) {
        // Most tables refer to texts in file order. Then fill the whole buffer.
        const bool isSequential = offset >= m_windowAt && offset <= windowEnd + m_blockBytes;
        const qint64 wanted = std::max(n, isSequential ? m_bufferBytes : kRandomReadBytes);
        const qint64 take = std::min(wanted, m_size - offset);
        m_window.resize(std::max(m_window.size(), static_cast<size_t>(take)));
        m_windowAt = offset;
        m_windowFill = m_source.seek(offset) ? readFully(m_source, m_window.data(), take) : -1;
        if (m_windowFill < n) {
            m_windowFill = 0;
            return Fault<Error>{Error::MemoUnreadable, {}, offset};
        }
    }
    return QByteArrayView(m_window.data() + (offset - m_windowAt), n);
}

/// A text that ends with 1A. Searches ever longer pieces, starting with one block.
Result<std::optional<QByteArrayView>, Error> MemoFile::endedText(qint64 offset)
{
    qint64 n = std::min(m_blockBytes, m_size - offset);
    while (true) {
        auto bytes = bytesAt(offset, n);
        if (!bytes) {
            return bytes.fault();
        }
        const void *const end = std::memchr(bytes->data(), kTextEnd, static_cast<size_t>(n));
        if (end != nullptr) {
            return std::optional(bytes->first(static_cast<const char *>(end) - bytes->data()));
        }
        const qint64 longer = std::min({n * 2, m_size - offset, kMaxEndedText});
        if (longer == n) {
            return kNoText;
        }
        n = longer;
    }
}

/// Length of the text with this header, or nothing if it cannot be right.
std::optional<qint64> MemoFile::textLength(QByteArrayView header, qint64 offset) const
{
    qint64 length = -1;
    if (m_format == MemoFormat::FoxPro) {
        length = loadBE<quint32>(header.data() + 4);
    } else if (loadLE<quint32>(header.data()) == kDbase4Mark) {
        length = static_cast<qint64>(loadLE<quint32>(header.data() + 4)) - kTextHeaderBytes;
    }
    const bool isValid = length >= 0 && length <= m_size - offset - kTextHeaderBytes &&
                         length <= limits::kTextCellUnits / 2;
    return isValid ? std::optional(length) : std::nullopt;
}

/// A text with its length in a header.
Result<std::optional<QByteArrayView>, Error> MemoFile::countedText(qint64 offset)
{
    if (m_size - offset < kTextHeaderBytes) {
        return kNoText;
    }
    auto header = bytesAt(offset, kTextHeaderBytes);
    if (!header) {
        return header.fault();
    }
    const auto length = textLength(*header, offset);
    if (!length) {
        return kNoText;
    }
    auto whole = bytesAt(offset, kTextHeaderBytes + *length);
    if (!whole) {
        return whole.fault();
    }
    return std::optional(whole->sliced(kTextHeaderBytes));
}

/// Replace Dbase3Or4 by the format of the text in `block`, if that block is in the file.
Result<void, Error> MemoFile::chooseFormat(quint32 block)
{
    const qint64 offset = block * m_blockBytes;
    if (offset <= m_size - kTextHeaderBytes) {
        const auto header = bytesAt(offset, kTextHeaderBytes);
        if (!header) {
            return header.fault();
        }
        if (loadLE<quint32>(header->data()) == kDbase4Mark) {
            m_format = MemoFormat::Dbase4;
            return {};
        }
    }
    if (block * kDefaultBlockBytes < m_size) {
        m_format = MemoFormat::Dbase3;
        m_blockBytes = kDefaultBlockBytes;
    }
    return {};
}

Result<std::optional<QByteArrayView>, Error> MemoFile::text(quint32 block)
{
    if (!m_isPrepared) {
        auto prepared = prepare();
        if (!prepared) {
            return prepared.fault();
        }
    }
    if (m_format == MemoFormat::Dbase3Or4 && block != 0) {
        if (auto chosen = chooseFormat(block); !chosen) {
            return chosen.fault();
        }
    }
    const qint64 offset = block * m_blockBytes; // below 2^48
    if (block == 0 || offset >= m_size) {
        return kNoText;
    }
    return m_format == MemoFormat::Dbase3 ? endedText(offset) : countedText(offset);
}

} // namespace corvanta::dbf
