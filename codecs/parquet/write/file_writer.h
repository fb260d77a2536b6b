// Writes rows of cells as a Parquet file.
//
// Layout: docs/formats/parquet.md, section "Written".
#pragma once
#include "base/byte_sink.h"
#include "codecs/parquet/metadata/error.h"
#include "codecs/parquet/metadata/records.h"
#include "codecs/parquet/write/column_writer.h"

namespace corvanta::parquet {

/// Call begin(), addRow() for each row, and finish(). After a fault the file is incomplete and
/// cannot be continued.
/// Threads: one thread at a time per object. The compressor may have its own threads; the bytes
/// written do not depend on them.
class FileWriter
{
public:
    /// `sink`, at its start, and `compressor` must outlive the writer.
    FileWriter(ByteSink &sink, const std::vector<WriterColumn> &columns,
               const WriteOptions &options, PageCompressor &compressor);

    /// Write the bytes before the rows. Errors: WriteFailed.
    Result<void, Error> begin();

    /// Add a row. `cells` has the addresses of all its cells (base/cell.h). Errors: TextTooLong,
    /// WrongValue, WriteFailed, NoMemory.
    Result<void, Error> addRow(const uchar *const *cells);

    /// Write the last row group and the footer. Errors: WriteFailed, NoMemory, TextTooLong.
    Result<void, Error> finish();

    /// Number of bytes written so far. Grows by whole row groups.
    qint64 bytesWritten() const { return m_position; }

    /// A column (0-based), which counts what it does not store as it is.
    const ColumnWriter &column(size_t index) const { return m_columns[index]; }

private:
    // The size of the row group, which decides where it ends.
    void addFinishedPages();
    bool isGroupFull();
    void addSizesOfDonePages();
    void addSizesOfAllPages();
    void addFirstSize();
    // Finishes the open row group and writes its chunks, in the order of the columns.
    Result<void, Error> flushGroup();
    Result<void, Error> writeChunk(ColumnWriter &column, RowGroup &group);
    Result<void, Error> writeDictionary(ColumnWriter &column, ColumnMetaData &chunk);
    Result<void, Error> writeDataPages(const ColumnWriter &column, ColumnMetaData &chunk);
    Result<void, Error> writePage(const FinishedPage &page, PageHeader header,
                                  ColumnMetaData &chunk);
    Result<void, Error> put(const void *bytes, qint64 n);

    ByteSink &m_sink;
    PageCompressor &m_compressor;
    const WriteOptions m_options;
    const qint64 m_threshold; // size in bytes of compressed pages that closes a row group
    std::vector<ColumnWriter> m_columns;
    FileMetaData m_metaData;
    // Rows of the open row group, and bytes written to the sink.
    qint64 m_groupRows = 0;
    qint64 m_position = 0;

    // The compressed size of the row group's pages.
    std::vector<size_t> m_seenPages;                 // by column: pages that are counted here
    std::deque<std::shared_ptr<PendingPage>> m_open; // pages whose size is not known yet
    qint64 m_knownBytes = 0;                         // total size of the other pages
    qint64 m_openBytes = 0;                          // maximum total size of the pages in m_open
};

} // namespace corvanta::parquet
