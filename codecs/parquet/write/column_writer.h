// codecs/parquet/column_writer.h
// Builds the pages of one column from cells.
#pragma once
#include "base/cell.h"
#include "codecs/parquet/write/page_compressor.h"
#include "codecs/parquet/write/value_index.h"

#include <QByteArray>

#include <optional>

namespace corvanta::parquet {

/// How the cells of a column are stored.
enum class Storage : quint8 {
    Double,
    KeyAsUint32, ///< INT32 marked UINT_32
    KeyAsInt32,
    KeyAsInt64,
    Text,
};

struct WriteOptions
{
    int pageSizeKiB = 64;
    qint64 rowGroupMiB = 50;
    bool dictionaryPages = false;
    bool statistics = false;
};

struct WriterColumn
{
    QByteArray name; ///< UTF-8
    Storage storage = Storage::Text;
    int cell = 0; ///< index among the cells of a row
};

/// A finished page and what its header says.
struct FinishedPage
{
    std::shared_ptr<PendingPage> bytes;
    qint32 values = 0; ///< rows, nulls too; of a dictionary its entries
    qint32 rawBytes = 0;
    bool isDictionary = false; ///< the values are indexes
};

/// Smallest and largest value of a chunk, in their PLAIN form without a length.
struct ValueRange
{
    std::optional<QByteArray> smallest, largest;
    qint64 nulls = 0;
    bool isKnown = true; ///< false: some value has no place in an order, or is too long
};

/// Threads: one at a time.
class ColumnWriter
{
public:
    ColumnWriter(const WriterColumn &column, const WriteOptions &options,
                 PageCompressor &compressor);

    /// Add the cell of a row. False for a text that does not fit a page.
    bool add(const uchar *cell);

    /// Close the open page, when it has rows.
    void finishPage();

    /// The finished pages of the row group, in order.
    const std::vector<FinishedPage> &pages() const { return m_pages; }

    /// The dictionary of the chunk, when a page uses one.
    std::optional<FinishedPage> finishDictionary();

    /// Be ready for the next row group: forget pages, dictionary and range.
    void startGroup();

    const ValueRange &range() const { return m_range; }
    const WriterColumn &column() const { return m_column; }

private:
    bool addText(const uchar *cell);
    template <class T> void addNumber(T value);
    void addValue(size_t bytes);
    void addNull();
    void addRow(uchar level);
    void note(const char *value, size_t n);
    char *room(size_t bytes);
    bool addToDictionary(const char *plain, size_t n);
    void appendValues(std::vector<char> &page) const;

    const WriterColumn m_column;
    const WriteOptions m_options;
    const size_t m_capacity; // bytes of values in a page
    const size_t m_maxRows;
    PageCompressor &m_compressor;
    std::vector<uchar> m_levels; // one per row of the open page
    std::vector<char> m_values;  // PLAIN, of the open page
    size_t m_used = 0;           // bytes of m_values
    std::vector<FinishedPage> m_pages;
    ValueRange m_range;

    // With dictionary pages.
    ValueIndex m_index;
    std::vector<quint32> m_indexes; // of the open page, instead of m_values
    bool m_usesDictionary;          // for the open page
    bool m_hasDictionaryPages = false;
};

} // namespace corvanta::parquet
