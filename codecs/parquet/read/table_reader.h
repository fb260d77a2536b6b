// codecs/parquet/table_reader.h
// The rows of a Parquet file.
#pragma once
#include "codecs/parquet/metadata/footer.h"
#include "codecs/parquet/read/decode_ahead.h"

#include <atomic>

namespace corvanta::parquet {

/// Threads: one takes rows; fractionDone() and stop() from any.
class TableReader
{
public:
    /// Open a file and choose its columns. `source` must outlive the reader. `workers` threads
    /// decode ahead. Errors: those of readFooter() and selectColumns().
    static Result<std::unique_ptr<TableReader>, Error>
    open(ByteSource &source, const ReadOptions &options, int workers);

    const std::vector<Column> &columns() const { return m_columns.columns; }
    /// Selected columns that the file does not have.
    const QStringList &missingColumns() const { return m_columns.missing; }
    /// What was left out, and why.
    const QStringList &skippedColumns() const { return m_columns.skipped; }
    /// Schema elements behind the root, selected or not.
    size_t schemaColumnCount() const
    {
        return m_metaData.schema.empty() ? 0 : m_metaData.schema.size() - 1;
    }
    /// What the metadata declares.
    qint64 declaredRows() const { return m_metaData.numRows; }
    qint64 rowGroupCount() const { return static_cast<qint64>(m_metaData.rowGroups.size()); }
    qint64 rowsRead() const { return m_rowsRead.load(std::memory_order_relaxed); }
    float fractionDone() const;

    /// Put the cells of the next row to `cells`, one for each column, where they stay until the
    /// next call. False at the end. Errors: BadData, NoMemory; the rows before were right.
    Result<bool, Error> next(const uchar **cells);

    void stop();

private:
    struct Cursor
    {
        std::unique_ptr<CellBlock> block;
        qsizetype row = 0;
        qsizetype rows = 0;
    };
    TableReader(ByteSource &source, FileMetaData metaData, Columns columns,
                const ReadOptions &options, int workers);
    Result<bool, Error> refill(size_t column);

    SharedFile m_file;
    const FileMetaData m_metaData;
    const Columns m_columns;
    qint64 m_rows = 0; // of all row groups
    std::atomic<qint64> m_rowsRead = 0;
    std::vector<Cursor> m_cursors;
    DecodeAhead m_decoder; // last: its threads use what is above
};

} // namespace corvanta::parquet
