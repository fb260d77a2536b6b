// codecs/parquet/file_writer.h
// Writes rows as a Parquet file.
#pragma once
#include "base/byte_sink.h"
#include "codecs/parquet/metadata/error.h"
#include "codecs/parquet/metadata/records.h"
#include "codecs/parquet/write/column_writer.h"

namespace corvanta::parquet {

/// Threads: one at a time; the compressor may have threads of its own. The bytes written do not
/// hang on them.
class FileWriter
{
public:
    /// `sink` (at its beginning) and `compressor` must outlive the writer.
    FileWriter(ByteSink &sink, std::vector<WriterColumn> columns, const WriteOptions &options,
               PageCompressor &compressor);

    /// Write what comes before the rows. Errors: WriteFailed.
    Result<void, Error> begin();

    /// Add a row, given all its cells (base/cell.h). Errors: TextTooLong, WriteFailed, NoMemory.
    Result<void, Error> addRow(const uchar *const *cells);

    /// Write what is left and the footer. Errors: WriteFailed, NoMemory.
    Result<void, Error> finish();

    /// So far; grows by whole row groups.
    qint64 bytesWritten() const { return m_position; }

private:
    void noteFinishedPages();
    bool isGroupFull();
    void settle(bool waits);
    Result<void, Error> flushGroup();
    Result<void, Error> writeChunk(ColumnWriter &column, RowGroup &group);
    Result<void, Error> writePage(const FinishedPage &page, PageHeader header,
                                  ColumnMetaData &chunk);
    Result<void, Error> put(const void *bytes, qint64 n);

    ByteSink &m_sink;
    PageCompressor &m_compressor;
    const WriteOptions m_options;
    const qint64 m_threshold; // bytes of compressed pages that close a row group
    std::vector<ColumnWriter> m_columns;
    FileMetaData m_metaData;
    qint64 m_groupRows = 0;
    qint64 m_position = 0;

    // Sizes of the row group's pages: known ones, and the most that the others can become.
    std::vector<size_t> m_seenPages; // by column
    std::deque<std::shared_ptr<PendingPage>> m_open;
    qint64 m_knownBytes = 0;
    qint64 m_openBytes = 0;
};

} // namespace corvanta::parquet
