// The value labels of a SAS catalogue (.sas7bcat). Offsets in (parentheses) are those of files of
// 64 bits; files with shifted offsets add 4 to those marked *.
//
//   index    page 1 from 856 (1000, twice *) on, and pages that have "XLSR" at 16: entries of 212*
//            (284) bytes: "XLSR", page at 4 (8), position at 8 (16), 'O' at 50* (74) for labels
//   link     next page (4), next position (2) at 4 (8), bytes (2) at 6 (10); 16 (32) bytes; then
//            the piece of the block
//   block    106 (138) bytes, with the flags at 2 and the numbers of entries at 38 and 42 (42 and
//            50), 4 more with the flag 8; 16 more then; 32 more for a long name
//   value    n at 2, index at 10*; 6 + n bytes, the number at 22, or 16 bytes of text at the end
//   label    8 bytes, n (2), n bytes, 1 byte
//
// Found by reading files; there is no public description of the format.
#include "codecs/stat/check/header_check.h"
#include "codecs/stat/check/sas_header.h"

#include <vector>

namespace corvanta::stat {

namespace {

constexpr qint64 kMaxBlockBytes = qint64(16) * 1024 * 1024;

/// A block begins here.
struct BlockStart
{
    quint32 page = 0; // from 1
    quint32 position = 0;
};

class CatalogueCheck
{
public:
    CatalogueCheck(ByteSource &source, const SasHeader &header)
        : m_in(source)
        , m_header(header)
    {
        m_in.setBigEndian(header.isBigEndian);
    }
    Result<void, Error> run();

private:
    qint64 shift() const { return m_header.isShifted ? 4 : 0; }
    qint64 pageAt(quint64 page) const
    {
        return m_header.bytes + static_cast<qint64>(page) * m_header.pageBytes;
    }
    void readIndexes();
    void readIndex(qint64 from, qint64 to);
    bool isMarkedAt(qint64 at);
    bool readBlock(const BlockStart &start, QByteArray *block);
    bool isBlockGood(const QByteArray &block) const;
    bool isFormatGood(CheckedReader &in, qint64 at, qint32 capacity, qint32 used,
                      bool isText) const;
    qint64 valuesAt(CheckedReader &in, int flags, bool *isText) const;

    CheckedReader m_in;
    const SasHeader m_header;
    qint64 m_blockBytes = 0; // of all blocks
    std::vector<BlockStart> m_starts;
};

Result<void, Error> CatalogueCheck::run()
{
    readIndexes();
    bool isGood = true;
    for (size_t i = 0; isGood && i < m_starts.size() && !m_in.hasFailed(); ++i) {
        QByteArray block;
        isGood = readBlock(m_starts[i], &block) && isBlockGood(block);
    }
    if (m_in.hasFailed()) {
        return Fault{Error::Unreadable};
    }
    return isGood
               ? Result<void, Error>()
               : Fault{Error::Damaged, QStringLiteral("the lengths of its value labels are wrong")};
}

// ---- Where the blocks are.

void CatalogueCheck::readIndexes()
{
    constexpr quint64 kIndexPage = 1;
    constexpr quint64 kFirstLaterPage = 3;
    constexpr qint64 kLaterIndexAt = 16;
    readIndex(pageAt(kIndexPage) + (m_header.isWide ? 1000 : 856) + 2 * shift(),
              pageAt(kIndexPage + 1));
    for (quint64 page = kFirstLaterPage; page < m_header.pages; ++page) {
        const qint64 at = pageAt(page) + kLaterIndexAt;
        if (isMarkedAt(at)) {
            readIndex(at, pageAt(page + 1));
        }
    }
}

bool CatalogueCheck::isMarkedAt(qint64 at)
{
    m_in.seek(at);
    return m_in.bytes(4) == "XLSR";
}

void CatalogueCheck::readIndex(qint64 from, qint64 to)
{
    const qint64 entryBytes = (m_header.isWide ? 284 : 212) + shift();
    const qint64 typeAt = (m_header.isWide ? 74 : 50) + shift();
    constexpr qint64 kGap = 8; // some entries have it before them
    for (qint64 at = from; at + entryBytes <= to; at += entryBytes) {
        at += isMarkedAt(at) ? 0 : kGap;
        if (!isMarkedAt(at)) {
            return;
        }
        m_in.seek(at + typeAt);
        if (m_in.number<quint8>() == 'O') {
            BlockStart start;
            m_in.seek(at + (m_header.isWide ? 8 : 4));
            start.page = m_header.isWide ? m_in.number<quint32>() : m_in.number<quint16>();
            m_in.seek(at + (m_header.isWide ? 16 : 8));
            start.position = (m_header.isWide ? m_in.number<quint32>() : m_in.number<quint16>());
            m_starts.push_back(start);
        }
    }
}

/// Join the pieces of a block. Returns false if they cannot all be different parts of the file.
bool CatalogueCheck::readBlock(const BlockStart &start, QByteArray *block)
{
    const qint64 linkBytes = m_header.isWide ? 32 : 16;
    quint32 page = start.page;
    quint32 position = start.position & 0xFFFFU;
    while (page > 0 && position > 0 && page <= m_header.pages) {
        const qint64 at = pageAt(page - 1) + position;
        m_in.seek(at);
        page = m_in.number<quint32>();
        m_in.seek(at + (m_header.isWide ? 8 : 4));
        position = m_in.number<quint16>();
        const qint64 bytes = m_in.number<quint16>();
        m_in.seek(at + linkBytes);
        block->append(m_in.bytes(bytes));
        m_blockBytes += linkBytes + bytes;
        if (!m_in.isGood() || block->size() > kMaxBlockBytes ||
            m_blockBytes > m_in.position() + m_in.remaining()) {
            return false;
        }
    }
    return true;
}

// ---- Blocks.

/// The library skips a block that is too short for its header.
bool CatalogueCheck::isBlockGood(const QByteArray &block) const
{
    constexpr qint64 kShortest = 106;
    constexpr qint64 kPaddedShortest = 106 + 16;
    MemorySource source(block);
    CheckedReader in(source);
    in.setBigEndian(m_header.isBigEndian);
    if (block.size() < kShortest) {
        return true;
    }
    const int flags = static_cast<uchar>(block[2]);
    const qint64 pad = (flags & 8) != 0 ? 4 : 0;
    in.seek((m_header.isWide ? 42 : 38) + pad);
    const auto capacity = in.number<qint32>();
    in.seek((m_header.isWide ? 50 : 42) + pad);
    const auto used = in.number<qint32>();
    if (used == 0) {
        return true;
    }
    bool isText = false;
    const qint64 values = valuesAt(in, flags, &isText);
    if (values < 0) {
        return true;
    }
    return block.size() >= kPaddedShortest && isFormatGood(in, values, capacity, used, isText);
}

/// The offset of the values; negative for a block that the library skips. The name of the format
/// of texts begins with "$".
qint64 CatalogueCheck::valuesAt(CheckedReader &in, int flags, bool *isText) const
{
    constexpr qint64 kNameAt = 8;
    constexpr qint64 kLongNameBytes = 32;
    qint64 at = (m_header.isWide ? 138 : 106) + ((flags & 8) != 0 ? 20 : 0);
    const bool hasLongName = (flags & (m_header.isWide ? 0x20 : 0x80)) != 0;
    in.seek(hasLongName ? at : kNameAt);
    *isText = in.number<quint8>() == '$';
    at += hasLongName ? kLongNameBytes : 0;
    return in.isGood() && at <= in.position() + in.remaining() ? at : -1;
}

/// Every value and label is inside the block, and every value belongs to a label.
bool CatalogueCheck::isFormatGood(CheckedReader &in, qint64 at, qint32 capacity, qint32 used,
                                  bool isText) const
{
    constexpr qint64 kValueHead = 6;
    constexpr qint64 kShortestValue = 30;
    constexpr qint64 kTextBytes = 16;
    if (used < 0 || capacity < used) {
        return false;
    }
    const qint64 end = in.position() + in.remaining();
    for (qint32 i = 0; i < capacity; ++i) {
        in.seek(at + 2);
        const qint64 bytes = kValueHead + in.number<qint8>();
        in.seek(at + 10 + shift());
        const quint32 label = i < used ? in.number<quint32>() : 0;
        const bool isInside =
            i >= used || (at + kShortestValue <= end && label < static_cast<quint32>(used));
        if (!in.isGood() || bytes < (isText && i < used ? kTextBytes : kValueHead) || !isInside) {
            return false;
        }
        at += bytes;
    }
    for (qint32 i = 0; i < used; ++i) {
        in.seek(at + 8);
        const qint64 bytes = in.number<quint16>();
        in.skip(bytes);
        at = in.position() + 1;
        if (!in.isGood()) {
            return false;
        }
    }
    return true;
}

} // namespace

Result<void, Error> checkCatalogue(ByteSource &source)
{
    if (auto checked = checkSas(source); !checked) {
        return checked;
    }
    CheckedReader in(source);
    const auto header = readSasHeader(in);
    if (!header) { // the library reports that it is not a catalogue
        return {};
    }
    return CatalogueCheck(source, *header).run();
}

} // namespace corvanta::stat
