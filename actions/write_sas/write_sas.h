// writeSAS: writes rows to a SAS data set (.sas7bdat).
//
// The ReadStat library writes the format (codecs/sas/data_set_writer.h). This action chooses the
// names of the variables and words the messages; DataSetOutput does the rest.
#pragma once
#include "actions/shared/data_set_output.h"
#include "actions/write_sas/write_sas_params.h"

namespace corvanta {

extern const ActionEntry kWriteSasEntry;

class ActionWriteSAS final : public ParamAction<ActionWriteSAS, WriteSasParams, DataSetOutput>
{
public:
    ActionWriteSAS(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteSasParams> &paramTable() { return writeSasParamTable(); }
    bool needsColumnKinds() const override { return true; }
    void setColumnKinds(const QVector<ColumnKind> &columns) override
    {
        addKinds(columns, &m_params);
    }
    bool needsColumnLabels() const override { return true; }
    void setColumnLabels(const QVector<ColumnNotes> &notes) override { addNotes(notes, &m_params); }

private:
    // For DataSetOutput.
    const DataSetParams &dataSetParams() const override { return m_params; }
    QString message(WriteProblem problem, const QString &name) const override;
    QString fileKind() const override;
    int maxVariables() const override;
    int maxTextBytes() const override { return sas::kMaxTextBytes; }
    int maxLabelBytes() const override { return sas::kMaxLabelBytes; }
    int measuredWidth(qsizetype longest) const override;
    bool describe(const QStringList &names, std::vector<sas::Variable> &variables) override;
    bool failUnknownWidth(const QString &column) override;
    bool reportCutText(const QString &column, qsizetype bytes, int width,
                       const QString &text) override;
    std::unique_ptr<sas::TableWriter> makeWriter(ByteSink &sink,
                                                 std::vector<sas::Variable> variables) override;
    bool failWrite(const QString &text, const QString &reason) override;
    void start() override;

    // Names of the variables; the functions that return bool have failed the run on false.
    /// Names as columnNameMode makes them; they may be empty or equal.
    std::vector<QByteArray> chooseNames(const QStringList &columns);
    /// Refuse names that are too long where they must stay whole.
    bool checkLengths(const QStringList &columns);
    void makeDifferent(const QStringList &columns, std::vector<QByteArray> *names);
    void reportOddNames(const std::vector<QByteArray> &names);
    /// Empty for no label.
    QString labelOf(const QString &column) const;
    /// Empty for no format.
    QByteArray formatOf(const QString &column) const;

    int m_cutWarnings = 0; // of this run
};

} // namespace corvanta
