// One open Parquet file of readParquet: its columns and rows.
#pragma once
#include "actions/shared/file_series.h"
#include "codecs/parquet/read/table_reader.h"

#include <memory>
#include <vector>

namespace corvanta {

/// Delivers the decoder's cells without copying them. Threads: see SeriesFile.
class ParquetFile final : public SeriesFile
{
public:
    /// `reader` reads from `source`.
    ParquetFile(ActionBase &action, const QString &name, std::unique_ptr<ByteSource> source,
                std::unique_ptr<parquet::TableReader> reader);

    /// Decode the first row, before the first next(): many faults of a file are in its pages, and
    /// an unreadable file is reported differently from one that is damaged later. Errors: those of
    /// TableReader::next().
    Result<void, parquet::Error> fetchFirst();

    /// Columns that were left out, and why.
    const QStringList &skippedColumns() const { return m_reader->skippedColumns(); }

    /// The selected columns, in the order of the file.
    TableSchema columns() const override;
    bool next(OneRow &row, Found *found) override;
    /// Warns when the file has fewer or more rows than it declares.
    bool finish() override;
    float fractionDone() const override { return m_reader->fractionDone(); }
    void stop() override { m_reader->stop(); }

private:
    bool fail(const Fault<parquet::Error> &fault);

    ActionBase &m_action;
    const QString m_name;
    // Members are destroyed in reverse order: each uses those above it.
    std::unique_ptr<ByteSource> m_source;
    std::unique_ptr<parquet::TableReader> m_reader;
    std::vector<const uchar *> m_cells; // of the current row
    bool m_hasFirst = false;            // m_cells hold the first row, which next() will deliver
};

} // namespace corvanta
