// readCSV: reads rows from text files with separators (RFC 4180).
//
// Without `types` every column is a text, so that no value of a file is changed. FileSeries joins
// the files; CsvFile delivers the rows of one. The first file is opened in the first call of the
// run function and not in init, so that opening a slow file does not delay the start of the other
// actions.
#pragma once
#include "actions/read_csv/read_csv_params.h"
#include "actions/shared/file_series.h"
#include "corvanta/action_base.h"

#include <optional>

namespace corvanta {

extern const ActionEntry kReadCsvEntry;

/// Errors end the run and name file, line and column.
/// Threads: see ActionItem; computeCompletion() from any.
class ActionReadCsv final : public ParamAction<ActionReadCsv, ReadCsvParams>,
                            private FileSeries::Format
{
public:
    ActionReadCsv(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadCsvParams> &paramTable() { return readCsvParamTable(); }
    /// Pin 0 brings file names.
    static int pinsInFor(const ReadCsvParams &params) { return params.fileNameFromPin ? 1 : 0; }
    QVector<ParameterProblem> problems() const override { return readCsvProblems(m_params); }
    /// The kinds of all columns; none if `types` is set.
    std::optional<QVector<ColumnKind>> columnKinds(KindExtent extent) override;
    bool readColumnsAs(const QVector<ColumnKind> &columns) override;
    QStringList inputs() const override
    {
        return m_params.fileNameFromPin ? QStringList() : ParamAction::inputs();
    }
    /// Negative, unknown, for a pipe.
    float computeCompletion() override { return m_series.fractionDone(); }

private:
    void start() override { m_series.reset(); }
    bool step() override;
    void finish() override { m_series.finish(); }

    // Functions that return a bool return false when the run has failed or ended.
    bool prepare();
    /// The order is declared and not checked: checking would need a comparison per row.
    bool declareSortOrder(const QString &file);

    // Messages of FileSeries. Each file must be readable.
    FileSeries::Opened openFile(const QString &name) override;
    bool reportMissing(const QString &name) override;
    bool reportUnreadable(const QString &name) override { return reportMissing(name); }
    bool reportMismatch(const ColumnMismatch &mismatch) override;

    CsvForm m_form; // of the run; files refer to it
    FileSeries m_series{*this};
};

} // namespace corvanta
