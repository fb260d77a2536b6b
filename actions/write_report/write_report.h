// writeReport: writes data of the input pins to the charts of an Office template.
//
// All pins are read first, one after the other; only then the template is opened, because an
// earlier action of the graph may write it. Each tag of the template names a Chart of the
// parameters, whose columns become the data of the tag's series. The number of pins is a parameter.
#pragma once
#include "actions/shared/template_writer.h"
#include "actions/write_report/chart_parts.h"
#include "actions/write_report/report_data.h"
#include "actions/write_report/write_report_params.h"
#include "codecs/charts/series_writer.h"
#include "codecs/opc/package_copy.h"

namespace corvanta {

extern const ActionEntry kWriteReportEntry;

class ActionWriteReport final
    : public ParamAction<ActionWriteReport, WriteReportParams, TemplateWriter>
{
public:
    ActionWriteReport(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteReportParams> &paramTable() { return writeReportParamTable(); }
    static int pinsInFor(const WriteReportParams &params) { return params.nPinIn; }

    /// Add a pin, if the action may have another one.
    void addPinIn() override;
    /// Remove the last pin and reset the axes that use its data. One pin always stays.
    void removePinIn() override;
    /// The template, under the name that is opened.
    QStringList inputs() const override;
    /// The tags in the charts.
    bool templateMarks(const QString &file, QVector<TemplateMark> *marks) override;
    QStringList includedTemplates() const override;
    QVector<ParameterProblem> problems() const override;
    /// A chart without data for each tag of the template, in its order; nothing if the template
    /// cannot be read. Logs nothing. Not during a run.
    std::optional<std::vector<ReportChart>> templateCharts() const;

protected:
    QString message(TemplateProblem problem, const QString &name) const override;

private:
    /// What is reset at the start of a run.
    struct RunState
    {
        ReportData data;
        int pin = 0; // that is read
        bool isPinStarted = false;
        TemplateCharts charts;
        bool isWritten = false; // the document waits for its name
    };

    void start() override;
    bool step() override;
    void finish() override;

    // The data. Functions of type bool return false after a failure.

    /// Interrupted: the run function will be called again.
    enum class Pins { Failed, Interrupted, Read };
    Pins readPins();
    Pins readPin();
    /// Fail for an axis that uses a pin without a link.
    bool checkPins();
    /// Find the columns that charts use of the current pin.
    bool startPin(const OneRow &columns);
    /// Always false.
    bool failColumn(const QString &column, int pin, const QString &reason = {});

    // The template.

    /// The expanded name. A name that starts with ">" is searched in the application's folders.
    QString templateFile() const;
    /// Read the parts with tags. `folder` is that of the chart parts.
    bool findParts(const QByteArray &folder);
    /// Add the tags of a part for templateMarks(). `place` is where the document has the chart.
    static void listPart(const ChartPart &part, const QString &place, QVector<TemplateMark> *marks);
    /// Warn of, or fail for, what does not fit between tags and Charts.
    bool checkTags();
    /// Fail for texts that XML cannot hold.
    bool checkTexts(const charts::ChartTag &tag);
    /// Add what a run would say about the template as it is now.
    void findTemplateProblems(QVector<ParameterProblem> *found) const;

    // The document.

    /// The expanded name.
    QString documentFile() const;
    bool writeDocument();
    /// Write the document from the template with this name. `folder` is that of the chart parts.
    bool writeCopyOf(const QString &name, const QByteArray &folder);
    /// Write all members; those with tags come last.
    bool writeMembers();
    bool writePart(const ChartPart &part);
    /// Write a piece of a part, unless the run is stopped.
    Result<void, opc::Error> putBlock(QByteArrayView block, const QByteArray &member);
    Result<void, opc::Error> writeSeries(charts::SeriesWriter &writer, const ChartPart &part,
                                         size_t index);
    /// Write the reference as the name of a tag's series.
    Result<void, opc::Error> cleanTags(charts::SeriesWriter &writer, const ChartPart &part,
                                       size_t index);
    /// Warn of data that is not, or not unchanged, in the chart.
    void reportValues(const charts::ChartTag &tag, const ReportChart &chart,
                      const charts::SeriesReport &found);
    /// Log how many charts have a workbook with other data.
    void reportWorkbooks();

    RunState m_run;
};

} // namespace corvanta
