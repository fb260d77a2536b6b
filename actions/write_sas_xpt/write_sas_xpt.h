// writeSASXPT: writes rows to a SAS transport file (.xpt).
//
// codecs/sas/transport_writer.h writes the format. This action chooses the names of the variables
// and words the messages; DataSetOutput does the rest.
#pragma once
#include "actions/shared/data_set_output.h"
#include "actions/write_sas_xpt/write_sas_xpt_params.h"
#include "codecs/sas/transport_writer.h"

namespace corvanta {

extern const ActionEntry kWriteSasXptEntry;

class ActionWriteSASXPT final
    : public ParamAction<ActionWriteSASXPT, WriteSasXptParams, DataSetOutput>
{
public:
    ActionWriteSASXPT(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteSasXptParams> &paramTable() { return writeSasXptParamTable(); }
    QVector<ParameterProblem> problems() const override;
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
    int maxVariables() const override { return sas::kMaxTransportVariables; }
    int maxTextBytes() const override { return limits().text; }
    int maxLabelBytes() const override { return limits().label; }
    int measuredWidth(qsizetype longest) const override { return static_cast<int>(longest); }
    bool chooseEncoding() override;
    bool describe(const QStringList &names, std::vector<sas::Variable> &variables) override;
    bool failUnknownWidth(const QString &column) override;
    bool reportCutText(const QString &column, qsizetype bytes, int width,
                       const QString &text) override;
    std::unique_ptr<sas::TableWriter> makeWriter(ByteSink &sink,
                                                 std::vector<sas::Variable> variables) override;
    bool failWrite(const QString &text, const QString &reason) override;
    void reportRows(const sas::TableWriter &writer) override;

    sas::TransportVersion version() const;
    sas::TransportLimits limits() const { return sas::limitsOf(version()); }
    /// At most as long as a name of a variable, and never empty.
    QByteArray tableName() const;
    // Steps of describe(). define() has failed the run on false.
    void setNames(const QStringList &columns, std::vector<sas::Variable> &variables);
    /// The label of a column in the parameters, else its name where `name` differs from it.
    QString labelOf(const QString &column, const QByteArray &name) const;
    void setLabels(const QStringList &columns, std::vector<sas::Variable> &variables);
    bool define(const QString &column, sas::Variable &variable);
    /// Numbers of the column were stored with fewer digits.
    void warnRounded(const QString &column, const sas::RowCount &rounded);
    /// Numbers of the column became missing.
    void warnTooLarge(const QString &column, const sas::RowCount &tooLarge);
    /// `count` rows at the end of the file have only missing texts.
    void warnBlankRows(qint64 count);
};

} // namespace corvanta
