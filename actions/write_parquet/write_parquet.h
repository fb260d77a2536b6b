// writers/write_parquet.h
// writeParquet: rows into Parquet files.
#pragma once
#include "actions/write_parquet/parquet_output.h"
#include "actions/write_parquet/write_parquet_params.h"
#include "corvanta/action_base.h"

#include <QHash>
#include <QSet>

#include <memory>

namespace corvanta {

class ActionWriteParquet final : public ParamAction<ActionWriteParquet, WriteParquetParams>
{
public:
    ActionWriteParquet(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteParquetParams> &paramTable() { return writeParquetParamTable(); }

private:
    /// State of one run; made anew by start(). Members go in reverse order: outputs use the
    /// compressor.
    struct RunState
    {
        QString file; // the expanded target
        bool isFirst = true;
        bool isComplete = false; // all rows are taken
        RowFilter filter;
        int splitColumn = -1;
        bool isSorted = false; // on the split column
        parquet::WriteOptions options;
        std::vector<parquet::WriterColumn> columns;
        QSet<QString> targets; // of a split table, so far
        std::unique_ptr<parquet::PageCompressor> compressor;
        // Open files by split value; one file with the empty value when the table is not split by
        // one.
        QHash<QString, std::shared_ptr<ParquetOutput>> outputs;
        QString value; // of `output`
        std::shared_ptr<ParquetOutput> output;
    };

    void start() override;
    bool step() override;
    void finish() override;

    bool begin(const OneRow *row);
    bool findColumns(const OneRow *row);
    bool failWithoutColumn(const QString &name, const char *purpose);
    parquet::Storage storageOf(const OneRow *row, int column) const;
    bool chooseOutput(const OneRow *row);
    QString nextTarget(const QString &value);
    bool openOutput(const QString &value);
    bool closeOutput(const QString &value);
    bool writeRow(const OneRow *row);
    bool isSplit() const { return m_params.split != 0; }

    std::unique_ptr<RunState> m_run;
};

} // namespace corvanta
