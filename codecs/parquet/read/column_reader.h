// codecs/parquet/column_reader.h
// Decodes one column of a file, from its first row group to its last, a block of rows at a time.
#pragma once
#include "codecs/parquet/encoding/rle_hybrid.h"
#include "codecs/parquet/read/page_reader.h"

namespace corvanta::parquet {

/// Rows of a block at most. Bounds the memory of a column whatever its pages claim.
inline constexpr qsizetype kBlockRows = 8192;

/// Threads: one at a time; readers share nothing but the file, which is locked.
class ColumnReader
{
public:
    /// `metaData` and the file must outlive the reader.
    ColumnReader(SharedFile &file, const FileMetaData &metaData, Column column,
                 const ReadOptions &options);

    /// Decode the next block: false at the end of the column. A block has at least one row and
    /// never spans pages. Errors: BadData.
    Result<bool, Error> next(CellBlock &block);

    const Column &column() const { return m_column; }

private:
    using Failure = std::optional<Fault<Error>>;

    /// Where the values of the page come from.
    enum class Values : quint8 { Plain, Booleans, BooleanRuns, Dictionary };

    bool startGroup();
    Failure nextPage();
    Failure startDataPage(const Page &page);
    Failure startLevels(const Page &page, std::span<const uchar> &data);
    Failure startValues(qint32 encoding, std::span<const uchar> data);
    Failure readDictionary(const Page &page);
    Failure decodeBlock(qsizetype rows, CellBlock &block);
    Failure decodeLevels(qsizetype rows, qsizetype &values);
    Failure decodeValues(qsizetype n, CellBlock &block);
    Failure decodePlain(qsizetype n, CellBlock &block);
    Failure decodeIndexes(qsizetype n, CellBlock &block);
    Failure decodeBooleans(qsizetype n, CellBlock &block);
    bool takeTexts(qsizetype n);
    Fault<Error> bad(const QString &why) const;

    const FileMetaData &m_metaData;
    const Column m_column;
    const bool m_extended;
    PageReader m_pages;
    size_t m_group = 0;     // the next row group
    qint64 m_groupRows = 0; // rows of the current one that are still to come
    std::shared_ptr<const CellBlock> m_dictionary;

    // The current page.
    qint64 m_pageRows = 0; // still to come
    bool m_hasLevels = false;
    bool m_levelsAreBits = false;
    std::span<const uchar> m_levelBits;
    qsizetype m_levelAt = 0;
    HybridDecoder m_levelRuns;
    Values m_values = Values::Plain;
    std::span<const uchar> m_data; // PLAIN bytes and bits still to come
    qsizetype m_bit = 0;           // of PLAIN booleans
    HybridDecoder m_runs;          // indexes, or booleans
    std::vector<uchar> m_plain;    // made from another encoding

    std::vector<uchar> m_levels; // of the block
    std::vector<quint32> m_indexes;
    std::vector<std::string_view> m_texts;
};

} // namespace corvanta::parquet
