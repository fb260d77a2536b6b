// readParquet: reads the rows of Parquet files.
//
// The action reads the column selection and the file names, and words the messages. FileSeries
// joins the files to one table; ParquetFile delivers the rows of one.
#pragma once
#include "actions/read_parquet/parquet_file.h"
#include "actions/read_parquet/read_parquet_params.h"
#include "actions/shared/file_series.h"
#include "codecs/parquet/read/table_reader.h"
#include "corvanta/action_base.h"
#include "corvanta/params/file_facts.h"
#include "io/input/run_input.h"

#include <optional>

namespace corvanta {

extern const ActionEntry kReadParquetEntry;

/// Threads: the one that runs the action; computeCompletion() and wakeAll() from any.
class ActionReadParquet final : public ParamAction<ActionReadParquet, ReadParquetParams>,
                                public FileFacts,
                                private FileSeries::Format
{
public:
    ActionReadParquet(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadParquetParams> &paramTable() { return readParquetParamTable(); }
    /// Pin 0 brings file names, pin 1 column names.
    static int pinsInFor(const ReadParquetParams &params)
    {
        return params.columnSelection == ColumnSelection::FromPin ? 2
               : params.fileNameFromPin                           ? 1
                                                                  : 0;
    }
    /// Rows delivered of all files, each file weighing the same; 1 while no file is open.
    float computeCompletion() override { return m_series.fractionDone(1.0F); }
    QStringList inputs() const override
    {
        return m_params.fileNameFromPin ? QStringList() : ParamAction::inputs();
    }
    std::optional<QVector<ColumnKind>> columnKinds(KindExtent extent) override;
    /// The row groups of the file.
    Result<RowBlocks, QString> rowBlocks() override;
    /// Ends the waits for the decoders of the open file.
    void wakeAll() override { m_series.stop(); }

private:
    void start() override;
    bool step() override;
    void finish() override;

    // Before the first row. All pins that bring names are read to their end.
    // Functions that return a bool return false when the run has failed or ended.
    bool prepare();
    bool readSelection();
    bool startSeries();
    parquet::ReadOptions readOptions() const;
    /// Types of columns depend on the values. They must be the same in all files.
    void chooseTypes(const QStringList &files, const RunControl &control,
                     parquet::ReadOptions *options) const;

    // Files.
    // A file that exists but cannot be decoded is unreadable; the series skips it. One that can be
    // decoded but has no columns or rows fails the run.
    FileSeries::Opened openFile(const QString &name) override;
    /// Without a message if `report` says so; whether it is open is to be checked.
    std::unique_ptr<RunInput> openInput(const QString &name, InputFile::Report report);
    FileSeries::Opened unreadable(const QString &name, const Fault<parquet::Error> &fault,
                                  const QString &systemReason);
    bool checkContent(const QString &name, const parquet::TableReader &table);
    Result<void, parquet::Error> useSkipped(const QString &name, const parquet::TableReader &table);
    void warnSkipped(const QString &name, const QStringList &columns);
    /// The warning for values that were changed, with places for their count, column and place.
    static QString lossText(parquet::Loss loss);
    void warnLost();

    // Messages of FileSeries. They return true to continue with the next file.
    bool reportMissing(const QString &name) override;
    bool reportUnreadable(const QString &name) override;
    bool reportMismatch(const ColumnMismatch &mismatch) override;

    /// Of the run; the selection is known after prepare().
    parquet::ReadOptions m_options;
    /// Names in the first file.
    QStringList m_columnNames;
    /// By column.
    std::vector<LostColumn> m_lost;
    FileSeries m_series{*this};
};

} // namespace corvanta
