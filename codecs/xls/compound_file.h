// Reads compound files (MS-CFB): a small file system in a file, which legacy workbooks are stored
// in.
//
// The reader accepts damaged files as far as their content can be found: a chain of sectors ends
// where it leaves the file or meets itself, and a directory whose tree is broken is searched entry
// by entry. Memory is bounded by the size of the file, never by what its header claims.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"

#include <QString>
#include <QStringView>

#include <memory>
#include <optional>
#include <vector>

namespace corvanta::xls {

/// Why a compound file cannot be opened.
enum class CompoundError : quint8 {
    ReadFailed,  ///< the source failed, or does not know its size
    NotCompound, ///< the signature is missing
    Damaged,     ///< no usable header, or no directory
};

/// A run of bytes of a stream that is contiguous in the file.
struct Extent
{
    qint64 streamOffset = 0;
    qint64 fileOffset = 0;
    qint64 bytes = 0;
};

/// A stream of a compound file. It can seek. Reads that the file refuses return a negative number.
/// Threads: one at a time; streams of one file share its source.
class CompoundStream final : public ByteSource
{
public:
    /// `source` must outlive the stream. `extents` are in the order of the stream, without gaps.
    CompoundStream(ByteSource &source, std::vector<Extent> extents, qint64 claimedBytes);

    /// Reads at most up to the end of an extent. Returns 0 at the end of the stream.
    qint64 read(void *buffer, qint64 n) override;
    /// The bytes that can be found.
    qint64 size() override { return m_bytes; }
    /// Any offset from 0 to size().
    bool seek(qint64 offset) override;
    /// Bytes that the directory promises beyond those that can be found; 0 for an intact file.
    qint64 missingBytes() const { return m_missingBytes; }

private:
    ByteSource &m_source;
    std::vector<Extent> m_extents;
    qint64 m_bytes = 0;
    qint64 m_missingBytes = 0;
    qint64 m_position = 0;
    size_t m_extent = 0; // that holds m_position, unless at the end
};

/// An open compound file. Threads: one at a time.
class CompoundFile
{
public:
    /// Whether the first bytes of a file, at least 8, are the signature.
    static bool hasSignature(QByteArrayView first);

    /// Read the allocation tables and the directory. `source` can seek, knows its size, and must
    /// outlive the file. Errors: all.
    static Result<CompoundFile, CompoundError> open(ByteSource &source);

    /// The stream of the root folder with this name, without regard to letter case. If the folder
    /// has none, one of any folder. Null if there is none at all.
    std::unique_ptr<CompoundStream> stream(QStringView name);

private:
    /// The fields of the header that are used.
    struct Header
    {
        int sectorShift = 9; ///< logarithm of the bytes of a sector
        int miniShift = 6;   ///< the same for mini sectors
        quint32 firstDirectorySector = 0;
        quint32 firstMiniFatSector = 0;
        quint32 firstDifatSector = 0;
        qint64 miniLimitBytes = 4096;    ///< shorter streams are in mini sectors
        std::vector<quint32> fatSectors; // the first 109
    };
    /// An entry of the directory: a stream, a folder, or an unused one. Nothing in it is checked.
    struct Entry
    {
        QString name;
        quint8 type = 0;
        quint32 left = 0;  ///< index of an entry of the same folder; none if out of range
        quint32 right = 0; ///< the same
        quint32 child = 0; ///< index of an entry inside this folder
        quint32 firstSector = 0;
        qint64 bytes = 0; ///< as claimed
    };

    explicit CompoundFile(ByteSource &source)
        : m_source(&source)
    {
    }
    // The steps of open(). Only a bad header is a failure; the others take what the file has.

    /// Returns false for a header that cannot be used.
    bool readHeader(const uchar *bytes);
    /// Find the sectors of the allocation table: 109 are in the header, others in a list (DIFAT).
    void readFatSectors();
    /// Read the allocation table, which has the next sector for each sector.
    void readFat();
    /// Read the same table for the mini sectors of short streams.
    void readMiniFat();
    void readDirectory();
    Entry parseEntry(const uchar *bytes) const;
    std::vector<quint32> readTable(const std::vector<Extent> &extents) const;
    // Where the chain of a stream is in the file: at most `bytes`, fewer if the chain is broken.

    std::vector<Extent> sectorExtents(quint32 first, qint64 bytes) const;
    std::vector<Extent> miniExtents(quint32 first, qint64 bytes);
    // The index of the stream with this name: in the root folder before any other, in the root
    // folder only, or in any folder.

    std::optional<size_t> find(QStringView name) const;
    std::optional<size_t> findInRoot(QStringView name) const;
    std::optional<size_t> findAnywhere(QStringView name) const;
    /// Letter case does not count.
    static bool isStream(const Entry &entry, QStringView name);
    qint64 sectorBytes() const { return qint64(1) << m_header.sectorShift; }
    /// Sectors that begin before the end of the file.
    qint64 sectorCount() const { return (m_fileBytes - 1) / sectorBytes(); }
    /// The header takes the place of one sector, also if sectors are larger than it.
    qint64 offsetOf(quint32 sector) const { return (qint64(sector) + 1) * sectorBytes(); }

    ByteSource *m_source;
    qint64 m_fileBytes = 0;
    Header m_header;
    std::vector<quint32> m_fat; // the sector after each
    std::vector<quint32> m_miniFat;
    std::vector<Entry> m_entries;     // the root is the first
    std::vector<Extent> m_miniStream; // the container of short streams
};

} // namespace corvanta::xls
