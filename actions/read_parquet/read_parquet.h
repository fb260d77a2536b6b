// readParquet: reads the rows of Parquet files.
#pragma once
#include "actions/read_parquet/read_parquet_params.h"
#include "actions/shared/file_series.h"
#include "codecs/parquet/table_reader.h"
#include "corvanta/action_base.h"

namespace corvanta {

class ActionReadParquet final : public ParamAction<ActionReadParquet, ReadParquetParams>,
                                private FileSeries::Format
{
public:
    ActionReadParquet(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadParquetParams> &paramTable() { return readParquetParamTable(); }
    static int pinsInFor(const ReadParquetParams &params)
    {
        return params.columnSelection == 2 ? 2 : params.fileNameFromPin ? 1 : 0;
    }
    float computeCompletion() override { return m_series.fractionDone(1.0F); }
    void wakeAll() override { m_series.stop(); }

private:
    void start() override;
    bool step() override;
    void finish() override { m_series.finish(); }

    bool prepare();
    bool readSelection();
    bool startSeries();

    FileSeries::Opened openFile(const QString &name) override;
    FileSeries::Opened unreadable(const QString &name, const Fault<parquet::Error> &fault);
    bool checkContent(const QString &name, const parquet::TableReader &table);
    void warnSkipped(const QString &name, const QStringList &columns);
    bool reportMissing(const QString &name) override;
    bool reportUnreadable(const QString &name) override;
    bool reportMismatch(const ColumnMismatch &mismatch) override;

    parquet::ReadOptions m_options;
    FileSeries m_series{*this};
};

} // namespace corvanta
