// writeParquet: writes rows to one Parquet file, or to several that a table is split into.
#pragma once
#include "actions/shared/row_writer.h"
#include "actions/write_parquet/write_parquet_params.h"
#include "codecs/parquet/write/file_writer.h"

#include <QHash>
#include <QSet>

#include <memory>

namespace corvanta {

extern const ActionEntry kWriteParquetEntry;

class ActionWriteParquet final
    : public ParamAction<ActionWriteParquet, WriteParquetParams, RowWriter>
{
public:
    ActionWriteParquet(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteParquetParams> &paramTable() { return writeParquetParamTable(); }

private:
    /// A file that is being written. The writer is destroyed before its target.
    struct Output
    {
        TargetFile target;
        std::unique_ptr<parquet::FileWriter> writer;
    };
    /// State of one run, recreated by start(). Outputs use the compressor, so they are destroyed
    /// first.
    struct RunState
    {
        int splitColumn = -1;
        bool isSorted = false; // on the split column
        parquet::WriteOptions options;
        std::vector<parquet::WriterColumn> columns;
        QSet<QString> targets; // names given so far
        std::unique_ptr<parquet::PageCompressor> compressor;
        // Open files by split value; one with an empty value when the table is not split by value.
        QHash<QString, std::shared_ptr<Output>> outputs;
        QString value; // of `output`
        std::shared_ptr<Output> output;
    };

    const RowWriterParams &rowParams() const override { return m_params; }
    const QString &fileParameter() const override { return m_params.file; }
    QString message(WriteProblem problem, const QString &name) const override;
    void start() override;
    bool begin(const OneRow &columns) override;
    bool beginWithoutRows(const OneRow &columns) override { return begin(columns); }
    bool writeRow(const OneRow &row) override;
    void complete() override;
    void release(bool wasComplete) override;

    bool findInputs(const OneRow &columns);
    bool findSplitColumn(const OneRow &columns);
    parquet::Storage storageOf(const OneRow &columns, int column) const;
    QString missingColumn(const QString &name, const char *purpose) const;
    QString nextTarget(const QString &value);
    bool chooseOutput(const OneRow &row);
    bool openOutput(const QString &value);
    bool closeOutput(const QString &value);
    bool isSegmentFull() const;
    bool failTarget(const Fault<TargetError> &fault);
    bool failWriter(const Output &output, const Fault<parquet::Error> &fault);

    std::unique_ptr<RunState> m_run;
};

} // namespace corvanta
