// Reads the rows of a Parquet file as cells.
//
// Opens the file, selects the columns, and assembles rows from the blocks that DecodeAhead decodes.
// Layout: docs/formats/parquet.md. The order of the rows is that of the file.
#pragma once
#include "base/occurrences.h"
#include "codecs/parquet/metadata/footer.h"
#include "codecs/parquet/read/decode_ahead.h"

#include <atomic>

namespace corvanta::parquet {

/// The values of a column that its cells cannot hold; see Column::loss.
struct LostValues
{
    qint64 count = 0;
    /// Row of the first one, from 1; 0 without one.
    qint64 firstRow = 0;
};

/// Threads: next() from one thread; rowsRead(), fractionDone() and stop() from any.
class TableReader
{
public:
    /// Read the metadata of a file and select its columns. Starts `workers` threads, which decode
    /// ahead; with 0, next() decodes everything. `source` must be able to seek and outlive the
    /// reader. Errors: those of readFooter() and selectColumns().
    static Result<std::unique_ptr<TableReader>, Error>
    open(ByteSource &source, const ReadOptions &options, int workers);

    /// The columns that are read, in the file's order.
    const std::vector<Column> &columns() const { return m_columns.columns; }
    /// Names of selected columns that the file does not have.
    const QStringList &missingColumns() const { return m_columns.missing; }
    /// The skipped columns; complete after prepare().
    const std::vector<SkippedColumn> &skippedColumns() const { return m_columns.skipped; }
    /// Column chunks with more values than their row group has rows, as far as blocks were decoded.
    /// The surplus values are not read.
    const Occurrences &longChunks() const { return m_longChunks; }
    /// The values of a column (0-based) that its cells cannot hold, in the blocks so far. Some of
    /// their rows may be ahead of next().
    const LostValues &lostValues(size_t column) const { return m_cursors[column].lost; }
    /// Number of schema elements without the root, whether selected or not.
    size_t schemaColumnCount() const
    {
        return m_metaData.schema.empty() ? 0 : m_metaData.schema.size() - 1;
    }
    /// Number of rows of the file in its metadata, whatever the range that is read.
    qint64 fileRows() const { return m_range.fileRows; }
    /// Number of rows of the range in the metadata. May differ from the rows that next() returns.
    qint64 declaredRows() const { return m_metaData.numRows; }
    /// Number of row groups of the file, whether they have rows or not.
    qint64 rowGroupCount() const { return m_range.fileGroups; }
    /// Number of rows that next() has returned.
    qint64 rowsRead() const { return m_rowsRead.load(std::memory_order_relaxed); }
    /// Progress from 0 to 1, measured in declared rows.
    float fractionDone() const;

    /// Decode the first block of each column, because many faults of a file are in its pages. With
    /// skipsUnreadable the columns that fail are skipped, as long as one is readable: columns() has
    /// fewer afterwards. Call it at most once, before next(). Errors: those of next().
    Result<void, Error> prepare();

    /// Read the next row: store the address of one cell per column in `cells`. The cells stay valid
    /// until the next call. Returns false at the end and after stop(). Errors: BadData,
    /// NeedsExtended, NoMemory; all earlier rows were complete.
    Result<bool, Error> next(const uchar **cells);

    /// End the reading. A next() that waits returns.
    void stop();

private:
    struct Cursor // the position in the current block of a column
    {
        size_t lane = 0; // of the column in m_decoder
        std::unique_ptr<CellBlock> block;
        qsizetype row = 0;
        qsizetype rows = 0;
        qint64 rowsBefore = 0; // in earlier blocks
        LostValues lost;
    };
    /// The range that is read, in the row groups that remain.
    struct Range
    {
        qint64 fileRows = 0;
        qint64 fileGroups = 0;
        qint64 rowsBefore = 0; // in the groups before those that remain
        qint64 skipped = 0;    // rows at the beginning of the first group
        qint64 left = -1;      // rows that next() will return; negative: no limit
    };
    static Range cutToRange(const ReadOptions &options, FileMetaData *metaData);
    TableReader(ByteSource &source, FileMetaData metaData, Columns columns, const Range &range,
                const ReadOptions &options, int workers);
    /// Go to the next row, whether it is in the range or not.
    Result<bool, Error> advance(const uchar **cells);
    Result<bool, Error> refill(size_t column);
    void inspect(Cursor &cursor, const QString &column);
    bool skip(size_t column, const Fault<Error> &fault);

    SharedFile m_file;
    const FileMetaData m_metaData;
    const bool m_skipsUnreadable;
    Columns m_columns; // changed only by prepare()
    Occurrences m_longChunks;
    Range m_range;
    std::atomic<qint64> m_rowsRead = 0;
    std::vector<Cursor> m_cursors; // one per column
    DecodeAhead m_decoder;         // last: its threads use the members above
};

} // namespace corvanta::parquet
