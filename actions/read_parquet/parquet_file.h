// One open Parquet file of readParquet: its columns and rows.
#pragma once
#include "actions/shared/file_series.h"
#include "codecs/parquet/read/table_reader.h"
#include "io/input/whole_input.h"

#include <memory>
#include <vector>

namespace corvanta {

/// The values of one column of a run that its cells cannot hold.
struct LostColumn
{
    qint64 count = 0;
    QString column = {};
    parquet::Loss loss = parquet::Loss::None; ///< in the file of the first one
    QString first = {};                       ///< row and file
};

/// Delivers the decoder's cells without copying them. Threads: see SeriesFile.
class ParquetFile final : public SeriesFile
{
public:
    /// `reader` reads from `source`; its prepare() has succeeded. `lost` has an entry per column of
    /// the run, or is empty while there are no rows; it outlives the file.
    ParquetFile(ActionBase &action, const QString &name, std::unique_ptr<ByteSource> source,
                std::unique_ptr<parquet::TableReader> reader, std::vector<LostColumn> &lost);
    /// Why the system refused a read, in words; empty if it refused none.
    QString systemReason() const { return readFailure(*m_source); }

    /// The selected columns, in the order of the file.
    TableSchema columns() const override;
    bool next(OneRow &row, Found *found) override;
    /// Warns when the file has fewer or more rows than it declares.
    bool finish() override;
    /// Reports values that are not read, and adds those that are changed to `lost`.
    void beforeClose() override;
    float fractionDone() const override { return m_reader->fractionDone(); }
    void stop() override { m_reader->stop(); }

    /// Why a file cannot be read, in the words of the action's parameters.
    static QString describe(const Fault<parquet::Error> &fault);

private:
    bool fail(const Fault<parquet::Error> &fault);
    void addLost();

    ActionBase &m_action;
    const QString m_name;
    // Members are destroyed in reverse order: each uses those above it.
    std::unique_ptr<ByteSource> m_source;
    std::unique_ptr<parquet::TableReader> m_reader;
    std::vector<const uchar *> m_cells; // of the current row
    std::vector<LostColumn> &m_lost;
};

} // namespace corvanta
