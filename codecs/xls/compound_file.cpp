// A compound file (MS-CFB, 2.1 to 2.6) is a header and sectors; numbers are little-endian. Sector n
// is at (n + 1) * sector size.
//
//   header 512: signature 8, class id 16, minor 2, major 2, byte order 2, sector shift 2, mini
//               shift 2, 6 + 8 unused, first directory sector 4, 4 unused, mini limit 4, first mini
//               FAT sector 4, count 4, first DIFAT sector 4, count 4, 109 FAT sectors of 4
//   DIFAT sector: numbers of FAT sectors, the last number is the next DIFAT sector
//   FAT: the number of the sector after each sector of a chain; FFFFFFFE ends one
//   directory entry 128: name in UTF-16LE 64, bytes of the name with its NUL 2, type 1, colour 1,
//               left 4, right 4, child 4, class id 16, state 4, times 16, first sector 4, size 8
//
// Streams below the mini limit are stored in mini sectors of 64 bytes, in the stream of the root
// entry, with a FAT of their own.
#include "codecs/xls/compound_file.h"

#include "base/bytes.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace corvanta::xls {

namespace {

constexpr std::array<uchar, 8> kSignature = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
constexpr qint64 kHeaderBytes = 512;
constexpr qint64 kHeaderFatSectors = 109;
constexpr qint64 kEntryBytes = 128;
constexpr qsizetype kNameUnits = 32;
constexpr quint32 kLastSector = 0xFFFFFFFA; // larger numbers are marks, such as the end of a chain
constexpr quint32 kNoEntry = 0xFFFFFFFF;
constexpr quint8 kStreamType = 2;
// The standard has 9 and 12, and 6 for mini sectors; other writers use other sizes.
constexpr int kMinShift = 7;
constexpr int kMaxShift = 16;
constexpr int kMaxMiniShift = 12;

/// The length of a stream.
qint64 bytesOf(const std::vector<Extent> &extents)
{
    return extents.empty() ? 0 : extents.back().streamOffset + extents.back().bytes;
}

/// Where the next piece of a stream must be in the file to extend this one.
qint64 endInFile(const Extent &extent)
{
    return extent.fileOffset + extent.bytes;
}

/// Append a piece to the extents of a stream, as one extent with the last piece where they touch.
void append(std::vector<Extent> &extents, qint64 fileOffset, qint64 bytes)
{
    if (extents.empty() || endInFile(extents.back()) != fileOffset) {
        extents.push_back({bytesOf(extents), fileOffset, 0});
    }
    extents.back().bytes += bytes;
}

/// The extent that holds a byte of the stream, which must be inside it.
size_t extentAt(const std::vector<Extent> &extents, qint64 offset)
{
    const auto after =
        std::upper_bound(extents.begin(), extents.end(), offset,
                         [](qint64 at, const Extent &extent) { return at < extent.streamOffset; });
    return static_cast<size_t>(after - extents.begin()) - 1;
}

} // namespace

CompoundStream::CompoundStream(ByteSource &source, std::vector<Extent> extents, qint64 claimedBytes)
    : m_source(source)
    , m_extents(std::move(extents))
    , m_bytes(bytesOf(m_extents))
    , m_missingBytes(std::max<qint64>(0, claimedBytes - m_bytes))
{
}

qint64 CompoundStream::read(void *buffer, qint64 n)
{
    if (m_position >= m_bytes || n <= 0) {
        return 0;
    }
    const Extent &extent = m_extents[m_extent];
    const qint64 inExtent = m_position - extent.streamOffset;
    const qint64 take = std::min(n, extent.bytes - inExtent);
    if (!m_source.seek(extent.fileOffset + inExtent)) {
        return -1;
    }
    const qint64 got = m_source.read(buffer, take);
    if (got > 0) {
        m_position += got;
        m_extent += m_position == extent.streamOffset + extent.bytes ? 1 : 0;
    }
    return got;
}

bool CompoundStream::seek(qint64 offset)
{
    if (offset < 0 || offset > m_bytes) {
        return false;
    }
    m_position = offset;
    m_extent = offset < m_bytes ? extentAt(m_extents, offset) : m_extents.size();
    return true;
}

bool CompoundFile::hasSignature(QByteArrayView first)
{
    return first.size() >= static_cast<qsizetype>(kSignature.size()) &&
           std::memcmp(first.data(), kSignature.data(), kSignature.size()) == 0;
}

Result<CompoundFile, CompoundError> CompoundFile::open(ByteSource &source)
{
    CompoundFile file(source);
    file.m_fileBytes = source.size();
    std::array<uchar, kHeaderBytes> bytes{};
    if (file.m_fileBytes < 0 || !source.seek(0)) {
        return Fault{CompoundError::ReadFailed};
    }
    const qint64 got = readFully(source, bytes.data(), kHeaderBytes);
    if (got < 0) {
        return Fault{CompoundError::ReadFailed, {}, 0};
    }
    if (!hasSignature({bytes.data(), static_cast<qsizetype>(got)})) {
        return Fault{CompoundError::NotCompound, {}, 0};
    }
    if (got < kHeaderBytes) {
        return Fault{CompoundError::Damaged, {}, got};
    }
    if (!file.readHeader(bytes.data())) {
        return Fault{CompoundError::Damaged, {}, 0};
    }
    // From here on a damaged table only shortens the streams.
    file.readFatSectors();
    file.readFat();
    file.readDirectory();
    if (file.m_entries.empty()) {
        return Fault{CompoundError::Damaged, {}, file.offsetOf(file.m_header.firstDirectorySector)};
    }
    return file;
}

bool CompoundFile::readHeader(const uchar *bytes)
{
    m_header.sectorShift = loadLE<quint16>(bytes + 30);
    m_header.miniShift = loadLE<quint16>(bytes + 32);
    m_header.firstDirectorySector = loadLE<quint32>(bytes + 48);
    m_header.miniLimitBytes = loadLE<quint32>(bytes + 56);
    m_header.firstMiniFatSector = loadLE<quint32>(bytes + 60);
    m_header.firstDifatSector = loadLE<quint32>(bytes + 68);
    for (qint64 i = 0; i < kHeaderFatSectors; ++i) {
        m_header.fatSectors.push_back(loadLE<quint32>(bytes + 76 + 4 * i));
    }
    return m_header.sectorShift >= kMinShift && m_header.sectorShift <= kMaxShift &&
           m_header.miniShift >= 1 &&
           m_header.miniShift <= std::min(kMaxMiniShift, m_header.sectorShift);
}

/// Follow the DIFAT. It ends when the listed sectors describe the whole file, so that a chain that
/// meets itself ends too.
void CompoundFile::readFatSectors()
{
    const qint64 perSector = sectorBytes() / 4;
    const qint64 needed = sectorCount() / perSector + 1;
    std::vector<uchar> bytes(static_cast<size_t>(sectorBytes()));
    quint32 sector = m_header.firstDifatSector;
    for (qint64 i = 0; i < needed && sector < sectorCount(); ++i) {
        if (!m_source->seek(offsetOf(sector)) ||
            readFully(*m_source, bytes.data(), sectorBytes()) != sectorBytes()) {
            break;
        }
        for (qint64 n = 0; n + 1 < perSector; ++n) {
            m_header.fatSectors.push_back(loadLE<quint32>(bytes.data() + 4 * n));
        }
        sector = loadLE<quint32>(bytes.data() + 4 * (perSector - 1));
        if (static_cast<qint64>(m_header.fatSectors.size()) >= needed + kHeaderFatSectors) {
            break;
        }
    }
}

/// Read the numbers in a table. What the file does not have is not the number of a sector.
std::vector<quint32> CompoundFile::readTable(const std::vector<Extent> &extents) const
{
    std::vector<quint32> table;
    std::vector<uchar> bytes;
    for (const Extent &extent : extents) {
        bytes.assign(static_cast<size_t>(extent.bytes), 0xFF);
        if (m_source->seek(extent.fileOffset)) {
            readFully(*m_source, bytes.data(), extent.bytes);
        }
        for (qint64 at = 0; at + 4 <= extent.bytes; at += 4) {
            table.push_back(loadLE<quint32>(bytes.data() + at));
        }
    }
    return table;
}

void CompoundFile::readFat()
{
    const qint64 perSector = sectorBytes() / 4;
    for (const quint32 sector : m_header.fatSectors) {
        if (static_cast<qint64>(m_fat.size()) >= sectorCount()) {
            break;
        }
        if (sector < sectorCount()) {
            const auto part = readTable({{0, offsetOf(sector), sectorBytes()}});
            m_fat.insert(m_fat.end(), part.begin(), part.end());
        } else if (sector <= kLastSector) { // beyond a file that was truncated
            m_fat.insert(m_fat.end(), static_cast<size_t>(perSector), kNoEntry);
        }
    }
}

/// The chain from `first`, at most `bytes` long. It ends early at a number that is not a sector of
/// the file, and where it meets itself.
std::vector<Extent> CompoundFile::sectorExtents(quint32 first, qint64 bytes) const
{
    std::vector<Extent> extents;
    std::vector<bool> isUsed(m_fat.size());
    quint32 sector = first;
    for (qint64 left = bytes; left > 0 && sector < sectorCount();) {
        const qint64 inFile = std::min(sectorBytes(), m_fileBytes - offsetOf(sector));
        append(extents, offsetOf(sector), std::min(left, inFile));
        left -= inFile;
        if (inFile < sectorBytes() || sector >= m_fat.size() || isUsed[sector]) {
            break;
        }
        isUsed[sector] = true;
        sector = m_fat[sector];
        if (sector < isUsed.size() && isUsed[sector]) {
            break;
        }
    }
    return extents;
}

/// As sectorExtents() for a short stream, through the stream that holds its mini sectors.
std::vector<Extent> CompoundFile::miniExtents(quint32 first, qint64 bytes)
{
    readMiniFat();
    const qint64 miniBytes = qint64(1) << m_header.miniShift;
    const qint64 containerBytes = bytesOf(m_miniStream);
    std::vector<Extent> extents;
    std::vector<bool> isUsed(m_miniFat.size());
    quint32 sector = first;
    for (qint64 left = bytes; left > 0 && sector < m_miniFat.size() && !isUsed[sector];) {
        const qint64 at = qint64(sector) * miniBytes;
        if (at + miniBytes > containerBytes) {
            break;
        }
        const Extent &holder = m_miniStream[extentAt(m_miniStream, at)];
        append(extents, holder.fileOffset + at - holder.streamOffset, std::min(left, miniBytes));
        left -= miniBytes;
        isUsed[sector] = true;
        sector = m_miniFat[sector];
    }
    return extents;
}

/// Read what short streams need. Done when the first one is opened: workbooks are rarely short.
void CompoundFile::readMiniFat()
{
    if (m_miniFat.empty()) {
        m_miniFat = readTable(sectorExtents(m_header.firstMiniFatSector, m_fileBytes));
        // The size of the root entry is not trusted: some writers leave it at 0.
        m_miniStream = sectorExtents(m_entries.front().firstSector, m_fileBytes);
    }
}

CompoundFile::Entry CompoundFile::parseEntry(const uchar *bytes) const
{
    Entry entry;
    const qsizetype nameUnits =
        std::clamp<qsizetype>(loadLE<quint16>(bytes + 64) / 2 - 1, 0, kNameUnits);
    for (qsizetype i = 0; i < nameUnits; ++i) {
        entry.name += QChar(loadLE<quint16>(bytes + 2 * i));
    }
    entry.type = bytes[66];
    entry.left = loadLE<quint32>(bytes + 68);
    entry.right = loadLE<quint32>(bytes + 72);
    entry.child = loadLE<quint32>(bytes + 76);
    entry.firstSector = loadLE<quint32>(bytes + 116);
    // Files with sectors of 512 bytes have no more than 32 bits; the others may hold anything.
    entry.bytes = loadLE<quint32>(bytes + 120);
    return entry;
}

/// Entries up to the first part that cannot be read.
void CompoundFile::readDirectory()
{
    const auto extents = sectorExtents(m_header.firstDirectorySector, m_fileBytes);
    std::vector<uchar> bytes;
    for (const Extent &extent : extents) {
        bytes.resize(static_cast<size_t>(extent.bytes));
        if (!m_source->seek(extent.fileOffset) ||
            readFully(*m_source, bytes.data(), extent.bytes) != extent.bytes) {
            return;
        }
        for (qint64 at = 0; at + kEntryBytes <= extent.bytes; at += kEntryBytes) {
            m_entries.push_back(parseEntry(bytes.data() + at));
        }
    }
}

bool CompoundFile::isStream(const Entry &entry, QStringView name)
{
    return entry.type == kStreamType && entry.name.compare(name, Qt::CaseInsensitive) == 0;
}

/// Walk the tree of the root folder, whose nodes are in no useful order in damaged files.
std::optional<size_t> CompoundFile::findInRoot(QStringView name) const
{
    std::vector<bool> isSeen(m_entries.size());
    std::vector<quint32> open = {m_entries.front().child};
    while (!open.empty()) {
        const size_t at = open.back();
        open.pop_back();
        if (at >= m_entries.size() || isSeen[at]) {
            continue;
        }
        isSeen[at] = true;
        const Entry &entry = m_entries[at];
        if (isStream(entry, name)) {
            return at;
        }
        open.insert(open.end(), {entry.left, entry.right});
    }
    return std::nullopt;
}

std::optional<size_t> CompoundFile::find(QStringView name) const
{
    const auto found = findInRoot(name);
    return found ? found : findAnywhere(name);
}

/// The first one in the order of the directory: its tree may be broken.
std::optional<size_t> CompoundFile::findAnywhere(QStringView name) const
{
    const auto isIt = [name](const Entry &entry) { return isStream(entry, name); };
    const auto at = std::find_if(m_entries.begin(), m_entries.end(), isIt);
    return at == m_entries.end() ? std::nullopt
                                 : std::optional(static_cast<size_t>(at - m_entries.begin()));
}

std::unique_ptr<CompoundStream> CompoundFile::stream(QStringView name)
{
    const auto at = find(name);
    if (!at) {
        return nullptr;
    }
    const Entry &entry = m_entries[*at];
    auto extents = entry.bytes < m_header.miniLimitBytes
                       ? miniExtents(entry.firstSector, entry.bytes)
                       : sectorExtents(entry.firstSector, entry.bytes);
    return std::make_unique<CompoundStream>(*m_source, std::move(extents), entry.bytes);
}

} // namespace corvanta::xls
