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
    /// DOUBLE. A missing double becomes a null; every other NaN is stored.
    Double,
    /// INT32 marked UINT_32.
    KeyAsUint32,
    /// INT32 without a mark. Keys of 2^31 and above read back as negative numbers.
    KeyAsInt32,
    /// INT64. Every key reads back as its unsigned value.
    KeyAsInt64,
    /// BYTE_ARRAY marked UTF8.
    Text,
    // The cells of the other types may be of any type that can hold such values. A value that is
    // not of the type is an error; an empty text is a null.

    /// BOOLEAN: true, false in any letter case, or 0 and 1.
    Boolean,
    /// INT64 marked as a signed integer, so that it is not read as a key.
    Integer,
    /// INT32 marked as a date: texts such as 2026-01-31.
    Date,
    /// INT64 marked as microseconds since 1970: dates, with a time such as 2026-01-31T04:30:05.25.
    /// All of them end with Z, or none.
    Timestamp,
    /// INT64 marked as microseconds since midnight: texts such as 04:30:05.
    Time,
};

/// How a file is written. All columns share the options.
struct WriteOptions
{
    /// Maximum size of the values of a page; at least 1.
    int pageSizeKiB = 64;
    /// Compressed size that closes a row group; 0: after each page.
    qint64 rowGroupMiB = 50;
    /// Use dictionaries while they are smaller than a page.
    bool dictionaryPages = false;
    /// Write ranges and null counts of chunks.
    bool statistics = false;
};

/// A column of the file. All columns may have nulls.
struct WriterColumn
{
    /// UTF-8. Names should be unique: many readers find columns by name.
    QByteArray name;
    /// Must fit the type of the cells.
    Storage storage = Storage::Text;
    /// 0-based index of the column's cell in a row.
    int cell = 0;
    /// Of the cells. Used by Boolean and the types after it; the others have only one.
    cell::Type cellType = cell::Type::Text;
};

/// A finished page and the numbers for its header.
struct FinishedPage
{
    /// Perhaps still being compressed.
    std::shared_ptr<PendingPage> bytes;
    /// Number of rows with nulls, or of dictionary entries.
    qint32 values = 0;
    /// Size in bytes before compression.
    qint32 rawBytes = 0;
    /// Whether the values are indexes into the dictionary.
    bool isDictionary = false;
};

/// The range of a chunk's values, in PLAIN form without a length.
struct ValueRange
{
    /// Not set if all values are null.
    std::optional<QByteArray> smallest, largest;
    /// Number of null rows.
    qint64 nulls = 0;
    /// False after a NaN or a text that is too long for statistics.
    bool isKnown = true;
};

/// Values that are not stored as they are.
struct ChangedValues
{
    qint64 count = 0;
    /// Row of the first one in the file, from 1; 0 without one.
    qint64 firstRow = 0;
};

/// Collects the cells of one row group at a time. Finished pages go to the compressor immediately.
/// Threads: one thread at a time per object.
class ColumnWriter
{
public:
    /// `compressor` must outlive the writer.
    ColumnWriter(const WriterColumn &column, const WriteOptions &options,
                 PageCompressor &compressor);

    /// What became of a cell. Not a Result because add() runs once per cell.
    enum class Added : quint8 {
        Yes,
        TextTooLong, ///< for a page
        WrongValue,  ///< not of the stored type
    };
    /// Add the cell of a row. After a failure nothing more can be added.
    Added add(const uchar *cell);

    /// Finish the open page, if it has rows. add() also calls it when the page is full.
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
    /// Whether the timestamps so far end with Z.
    bool isUtc() const { return m_isUtc.value_or(false); }
    // Of all row groups so far.

    /// Keys that are stored as negative numbers: with KeyAsInt32 those from 2^31 on.
    const ChangedValues &negativeKeys() const { return m_negativeKeys; }
    /// Texts with lone surrogates, which UTF-8 does not have: U+FFFD is stored for each.
    const ChangedValues &replacedTexts() const { return m_replacedTexts; }

private:
    void addKey(quint32 key);
    Added addTyped(const uchar *cell);
    // addNumber() and addText() store the PLAIN value after the used bytes of m_values. addValue()
    // keeps it there, or replaces it with an index into the dictionary. Its first `prefix` bytes
    // are not part of the value.
    Added addText(const uchar *cell);
    template <class T> void addNumber(T value);
    void addValue(size_t bytes, size_t prefix);
    void addNull();
    void count(ChangedValues *changed) const;
    void addRow(uchar level);
    void updateRange(const char *value, size_t n);
    char *room(size_t bytes);
    bool addToDictionary(const char *plain, size_t n);
    // Appends the values of the open page in their stored form.
    void appendValues(std::vector<char> &page) const;

    const WriterColumn m_column;
    const WriteOptions m_options;
    const size_t m_capacity;          // maximum size in bytes of a page's values
    const size_t m_maxRows;           // of a page
    const quint32 m_firstNegativeKey; // see negativeKeys()
    const bool m_hasDictionary;       // booleans have none
    std::optional<bool> m_isUtc;      // of the timestamps; not set before the first one
    ChangedValues m_negativeKeys;
    ChangedValues m_replacedTexts;
    qint64 m_finishedRows = 0; // in finished pages, of all row groups
    PageCompressor &m_compressor;
    std::vector<uchar> m_levels; // one per row of the open page: 1 for a value, 0 for a null
    std::vector<char> m_values;  // PLAIN values of the open page; m_used bytes are in use
    size_t m_used = 0;
    // Of the current row group.
    std::vector<FinishedPage> m_pages;
    ValueRange m_range;

    // With dictionary pages.
    ValueIndex m_index;
    std::vector<quint32> m_indexes; // of the open page, in place of m_values
    bool m_usesDictionary;          // whether the open page has indexes
    bool m_hasDictionaryPages = false;
};

} // namespace corvanta::parquet
