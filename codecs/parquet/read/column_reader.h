// Decodes one column of a file in blocks of rows, from its first row group to its last.
//
// Call order inside: next() -> startGroup(), nextPage() -> startLevels(), startValues(), then
// decodeBlock() until the page is used up. The start functions only set up decoders; values are
// decoded block by block, so that a page that claims many rows needs little memory.
#pragma once
#include "codecs/parquet/encoding/rle_hybrid.h"
#include "codecs/parquet/read/page_reader.h"

namespace corvanta::parquet {

/// Maximum number of rows of a block. Limits the memory of a column, whatever its pages claim.
inline constexpr qsizetype kBlockRows = 8192;

/// Threads: one thread at a time per reader. Readers share only the file, which has a lock.
class ColumnReader
{
public:
    /// `column` comes from selectColumns(). `metaData` and `file` must outlive the reader.
    ColumnReader(SharedFile &file, const FileMetaData &metaData, Column column,
                 const ReadOptions &options);

    /// Decode the next block. Returns false at the end of the column. A block has at least one row
    /// and never spans two pages. Errors: BadData, NeedsExtended; the detail names the column.
    Result<bool, Error> next(CellBlock &block);

    /// The column that was given to the constructor.
    const Column &column() const { return m_column; }

private:
    using Done = Result<void, Error>;

    /// The form of the values in the current page.
    enum class Values : quint8 { Plain, Booleans, BooleanRuns, Dictionary };

    // Moves to the next row group that has rows. Returns false after the last one.
    bool startGroup();
    // Reads the next page of any type; a dictionary page sets m_dictionary.
    Done nextPage();
    Done startDataPage(const Page &page);
    // Removes the levels from the start of `data` if the page has them there.
    Done startLevels(const Page &page, std::span<const uchar> &data);
    Done startLevelBits(const Page &page, std::span<const uchar> &data);
    Done startValues(qint32 encoding, std::span<const uchar> data);
    Done startBooleanRuns(std::span<const uchar> data);
    Done startIndexes(std::span<const uchar> data);
    Done startExtended(qint32 encoding, std::span<const uchar> data);
    Done readDictionary(const Page &page);
    Done decodeBlock(qsizetype rows, CellBlock &block);
    // Fills m_levels and counts the rows that are not null.
    Done decodeLevels(qsizetype rows, qsizetype &values);
    Done decodeValues(qsizetype n, CellBlock &block);
    Done decodePlain(qsizetype n, CellBlock &block);
    Done decodeIndexes(qsizetype n, CellBlock &block);
    Done decodeBooleans(qsizetype n, CellBlock &block);
    // These return false if the page has fewer values; the caller words the fault.
    bool takeBooleans(std::span<uchar> values);
    bool takeTexts(qsizetype n);
    Fault<Error> bad(const QString &why, Error code = Error::BadData) const;

    const FileMetaData &m_metaData;
    const Column m_column;
    const bool m_extended;
    PageReader m_pages;
    size_t m_group = 0;     // index of the next row group
    qint64 m_groupRows = 0; // undecoded rows of the current row group
    // Values of the current chunk in pages not read, as its metadata says. Writers exist that store
    // too small a number there.
    qint64 m_chunkValues = 0;
    bool m_hasDataPage = false; // one of the chunk has been read
    // Of the current row group. Blocks share it, because their text cells point into it.
    std::shared_ptr<const CellBlock> m_dictionary;

    // The current page.
    qint64 m_pageRows = 0; // undecoded rows
    // A page without levels has no nulls. Levels are bits in m_levelBits, or runs in m_levelRuns.
    bool m_hasLevels = false;
    bool m_levelsAreBits = false;
    std::span<const uchar> m_levelBits;
    // Index of the next level in m_levelBits.
    qsizetype m_levelAt = 0;
    HybridDecoder m_levelRuns;
    Values m_values = Values::Plain;
    std::span<const uchar> m_data; // undecoded PLAIN values
    qsizetype m_bit = 0;           // offset of the next PLAIN boolean in m_data
    HybridDecoder m_runs;          // dictionary indexes or booleans
    std::vector<uchar> m_plain;    // PLAIN values converted from another encoding

    // The current block; members only to reuse their memory.
    std::vector<uchar> m_levels;
    std::vector<quint32> m_indexes;
    std::vector<std::string_view> m_texts;
};

} // namespace corvanta::parquet
