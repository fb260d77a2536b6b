// readStat: reads the rows of SAS, SPSS and Stata data sets.
//
// The action lists the files and words the messages about them. FileSeries joins the files to one
// table; StatFile delivers the rows of one, which a thread of its own parses.
#pragma once
#include "actions/read_stat/read_stat_params.h"
#include "actions/shared/file_series.h"
#include "corvanta/action_base.h"
#include "corvanta/params/file_facts.h"

#include <optional>

namespace corvanta {

extern const ActionEntry kReadStatEntry;

/// Threads: the one that runs the action; computeCompletion() and wakeAll() from any.
class ActionReadStat final : public ParamAction<ActionReadStat, ReadStatParams>,
                             public FileFacts,
                             private FileSeries::Format
{
public:
    ActionReadStat(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadStatParams> &paramTable() { return readStatParamTable(); }
    /// Pin 0 brings the file names.
    static int pinsInFor(const ReadStatParams &params) { return params.fileNameFromPin ? 1 : 0; }
    /// Rows of all files, each file weighing the same.
    float computeCompletion() override { return m_series.fractionDone(); }
    QStringList inputs() const override;
    QVector<ParameterProblem> problems() const override;
    /// Those of the first file.
    QVector<ColumnNotes> columnNotes() override;
    /// Those of the first file, too.
    std::optional<QVector<ColumnKind>> columnKinds(KindExtent extent) override;
    /// Ends the waits of both threads.
    void wakeAll() override { m_series.stop(); }

    /// All rows of the file: the library begins at any row.
    Result<RowBlocks, QString> rowBlocks() override;

private:
    void start() override;
    bool step() override;
    void finish() override { m_series.finish(); }

    // Functions that return a bool return false when the run has failed or ended.
    bool prepare();
    /// Open the first file.
    bool startSeries(const QStringList &files);
    /// The names of all rows of pin 0, expanded.
    bool readNamesFromPin(QStringList *names);

    /// The files of the parameter `fileName`; none when the pin brings the names.
    QStringList namedFiles() const;

    // For FileSeries. Every file that cannot be read fails the run.
    FileSeries::Opened openFile(const QString &name) override;
    bool reportMissing(const QString &name) override;
    bool reportUnreadable(const QString &name) override { return reportMissing(name); }
    bool reportMismatch(const ColumnMismatch &mismatch) override;

    shared::RowRange m_range; // set before a file is opened
    FileSeries m_series{*this};
};

} // namespace corvanta
