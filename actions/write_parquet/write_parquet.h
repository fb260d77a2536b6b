// writeParquet: writes rows to one Parquet file, or to several that a table is split into.
//
// A file is written as "NAME_TMP" and renamed when it is complete (TargetMode::ReplaceByTmp).
//
// - One file, or segments: begin() opens the file; a full segment is closed, and the next
//   row opens another file with a number in its name.
// - By value: a file per value, opened with the first row of the value. On a table sorted on the
//   split column only one file is open; otherwise all are, until the end.
//
// After an error of this action the unfinished "_TMP" files stay, for inspection. After a stop, or
// an error of another action, they are removed.
#pragma once
#include "actions/shared/row_writer.h"
#include "actions/write_parquet/write_parquet_params.h"
#include "codecs/parquet/write/file_writer.h"

#include <memory>
#include <unordered_map>
#include <unordered_set>

namespace corvanta {

extern const ActionEntry kWriteParquetEntry;

/// Parameters, files and messages; `codecs/parquet/write` writes the format.
class ActionWriteParquet final
    : public ParamAction<ActionWriteParquet, WriteParquetParams, RowWriter>
{
public:
    ActionWriteParquet(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteParquetParams> &paramTable() { return writeParquetParamTable(); }
    QVector<TargetUse> targets() const override;
    /// With logicalTypes, as long as no list has columns.
    bool needsColumnKinds() const override;
    void setColumnKinds(const QVector<ColumnKind> &columns) override;

private:
    /// A file that is being written. The writer is destroyed before its target.
    struct Output
    {
        TargetFile target;
        std::unique_ptr<parquet::FileWriter> writer;
    };
    /// Values of a column that are not stored as they are, in all files of the run.
    struct ChangedColumn
    {
        qint64 count = 0;
        QString first = {};
        void add(const parquet::ChangedValues &found, const QString &file);
    };
    /// State of one run, recreated by start(). Outputs use the compressor, so they are destroyed
    /// first.
    struct RunState
    {
        // Index in the input; -1: the table is not split by value.
        int splitColumn = -1;
        // The table is sorted on the split column.
        bool isSorted = false;
        parquet::WriteOptions options;
        std::vector<parquet::WriterColumn> columns;
        // Names given so far: a later file of the run must not replace an earlier one.
        std::unordered_set<QString> targets;
        // By column; the place is row and file.
        std::vector<ChangedColumn> negativeKeys;
        std::vector<ChangedColumn> replacedTexts;
        // Its threads are shared by all open files.
        std::unique_ptr<parquet::PageCompressor> compressor;
        // Open files by split value; one with an empty value when the table is not split by value.
        std::unordered_map<QString, std::shared_ptr<Output>> outputs;
        // The file of the current row, and its key in `outputs`; null after it is closed.
        QString value;
        std::shared_ptr<Output> output;
    };

    const RowWriterParams &rowParams() const override { return m_params; }
    const QString &fileParameter() const override { return m_params.file; }
    QString message(WriteProblem problem, const QString &name) const override;
    void start() override;
    bool begin(const OneRow &columns) override;
    bool beginWithoutRows(const OneRow &columns) override { return open(columns); }
    bool writeRow(const OneRow &row) override;
    void complete() override;
    void release(bool wasComplete) override;

    // Functions that return bool return true for success; otherwise they have failed the run.
    /// Find the columns and open the file of a table that is not split by value.
    bool open(const OneRow &columns);
    /// Find the columns to write and choose how each is stored.
    bool findInputs(const OneRow &columns);
    bool findSplitColumn(const OneRow &columns);
    /// Warn that a table to split needs memory for all of its files.
    void warnUnsorted();
    /// Take what the writers of all files need from the parameters.
    void setOptions();
    parquet::Storage storageOf(const OneRow &columns, int column) const;
    /// The type of a column that one of the lists names; nothing for others.
    std::optional<parquet::Storage> listedStorage(const QString &column) const;
    /// Fail the run for a column of numbers that is listed as texts.
    bool checkTyped(const parquet::WriterColumn &column);
    /// Report names in the lists that the input does not have.
    void warnUnknown(const OneRow &columns);
    QString missingColumn(const QString &name, const char *purpose) const;
    /// The name of the next file for a split value, different from all names before.
    QString nextTarget(const QString &value);
    /// Make `output` the file that the row belongs to.
    bool chooseOutput(const OneRow &row);
    /// Open a file for a split value and make it the current one.
    bool openOutput(const QString &value);
    /// Write the footer of the file of a split value, rename it to its target, and forget it.
    bool closeOutput(const QString &value);
    bool isSegmentFull() const;
    /// The existing files that have the names of further segments of those that were written.
    QStringList oldSegments() const;
    void warnOldSegments();
    /// Count the values that the file has lost, by column.
    void addChanged(const Output &output);
    /// Report the counts, once per column and cause.
    void warnChanged();
    void warnNegativeKeys(const QString &name, const ChangedColumn &keys);
    void warnReplacedTexts(const QString &name, const ChangedColumn &texts);
    /// Leave the "_TMP" files of the files that are open.
    void keepUnfinished();
    // Fail the run with the message for a fault.
    bool failTarget(const Output &output, const Fault<TargetError> &fault);
    bool failWriter(const Output &output, const Fault<parquet::Error> &fault);
    bool failValue(const OneRow &row, size_t column);

    std::unique_ptr<RunState> m_run;
};

} // namespace corvanta
