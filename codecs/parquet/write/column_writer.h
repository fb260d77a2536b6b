// Builds the pages of one column of a Parquet file from cells.
#pragma once
#include "base/cell.h"
#include "codecs/parquet/write/page_compressor.h"
#include "codecs/parquet/write/value_index.h"

#include <QByteArray>

#include <optional>

namespace corvanta::parquet {

/// The stored type of a column.
enum class Storage : quint8 {
    Double,      ///< DOUBLE
    KeyAsUint32, ///< INT32 marked UINT_32
    KeyAsInt32,  ///< INT32
    KeyAsInt64,  ///< INT64
    Text,        ///< BYTE_ARRAY marked UTF8
};

struct WriteOptions
{
    int pageSizeKiB = 64;         ///< Maximum size of the values of a page; at least 1.
    qint64 rowGroupMiB = 50;      ///< Compressed size that closes a row group; 0: after each page.
    bool dictionaryPages = false; ///< Use dictionaries while they are smaller than a page.
    bool statistics = false;      ///< Write ranges and null counts of chunks.
};

struct WriterColumn
{
    QByteArray name;                 ///< UTF-8.
    Storage storage = Storage::Text; ///< Must fit the type of the cells.
    int cell = 0;                    ///< 0-based index of the column's cell in a row.
};

/// A finished page and the numbers for its header.
struct FinishedPage
{
    std::shared_ptr<PendingPage> bytes; ///< Perhaps still being compressed.
    qint32 values = 0;                  ///< Number of rows with nulls, or of dictionary entries.
    qint32 rawBytes = 0;                ///< Size before compression.
    bool isDictionary = false;          ///< Whether the values are indexes into the dictionary.
};

/// The range of a chunk's values, in PLAIN form without a length.
struct ValueRange
{
    std::optional<QByteArray> smallest, largest; ///< Not set if all values are null.
    qint64 nulls = 0;
    bool isKnown = true; ///< False after a NaN or a text that is too long for statistics.
};

/// Collects the cells of one row group at a time. Finished pages go to the compressor at once.
/// Threads: one thread at a time per object.
class ColumnWriter
{
public:
    /// `compressor` must outlive the writer.
    ColumnWriter(const WriterColumn &column, const WriteOptions &options,
                 PageCompressor &compressor);

    /// Add the cell of a row. Returns false if a text does not fit a page, the only failure. A bool
    /// and not a Result because it runs once per cell.
    bool add(const uchar *cell);

    /// Finish the open page, if it has rows.
    void finishPage();

    /// The finished pages of the row group, in order.
    const std::vector<FinishedPage> &pages() const { return m_pages; }

    /// Submit the dictionary of the chunk. Call it after the last finishPage(). Returns nothing if
    /// no page uses a dictionary.
    std::optional<FinishedPage> finishDictionary();

    /// Discard pages, dictionary and range, and start the next row group.
    void startGroup();

    /// The range of the row group's values. Maintained only with statistics.
    const ValueRange &range() const { return m_range; }
    const WriterColumn &column() const { return m_column; }

private:
    bool addText(const uchar *cell);
    template <class T> void addNumber(T value);
    void addValue(size_t bytes);
    void addNull();
    void addRow(uchar level);
    void updateRange(const char *value, size_t n);
    char *room(size_t bytes);
    bool addToDictionary(const char *plain, size_t n);
    void appendValues(std::vector<char> &page) const;

    const WriterColumn m_column;
    const WriteOptions m_options;
    const size_t m_capacity; // maximum size in bytes of a page's values
    const size_t m_maxRows;  // of a page
    PageCompressor &m_compressor;
    std::vector<uchar> m_levels; // one per row of the open page: 1 for a value, 0 for a null
    std::vector<char> m_values;  // PLAIN values of the open page; m_used bytes are in use
    size_t m_used = 0;
    std::vector<FinishedPage> m_pages;
    ValueRange m_range;

    // With dictionary pages.
    ValueIndex m_index;
    std::vector<quint32> m_indexes; // of the open page, in place of m_values
    bool m_usesDictionary;          // whether the open page has indexes
    bool m_hasDictionaryPages = false;
};

} // namespace corvanta::parquet
