#include "actions/write_report/write_report.h"

#include "actions/write_report/report_problems.h"
#include "actions/write_report/shipped_template.h"
#include "base/counted.h"
#include "base/nearest_name.h"

#include <QCoreApplication>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

QString unknownExtension(const QString &name)
{
    return u"\nERROR: template file %1 has unknown extention type (not .xlsx, .pptx, .docx).\n"_s
        .arg(name);
}

/// A problem of a run in the form of "check": without the severity, and in lower case.
ParameterProblem problemOf(const ReportProblem &problem, const QString &parameter)
{
    // French has a space before the colon.
    QString text = problem.shown.trimmed().section(u": "_s, 1);
    text[0] = text[0].toLower();
    return {parameter, text,
            problem.isError ? ParameterProblem::Severity::Error
                            : ParameterProblem::Severity::Warning};
}

} // namespace

ActionWriteReport::ActionWriteReport(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteReportEntry, saved, parameters)
{
}

void ActionWriteReport::addPinIn()
{
    ActionItem::addPinIn();
    // The host decides whether there is another pin.
    m_params.nPinIn = pinInCount();
}

void ActionWriteReport::removePinIn()
{
    // The parameter allows no action without a pin.
    if (m_params.nPinIn == 1) {
        return;
    }
    ActionItem::removePinIn();
    --m_params.nPinIn;
    // An axis without a column has no data; the chart itself stays.
    for (ReportChart &chart : m_params.charts) {
        for (ChartAxis &axis : chart.axes) {
            if (axis.pinIdx >= m_params.nPinIn) {
                axis = {};
            }
        }
    }
}

QStringList ActionWriteReport::inputs() const
{
    return m_params.templateName.isEmpty() ? QStringList() : QStringList(templateFile());
}

QVector<ParameterProblem> ActionWriteReport::problems() const
{
    QVector<ParameterProblem> found;
    if (!m_params.templateName.isEmpty()) {
        findTemplateProblems(&found);
        addOwnTemplateProblem(documentFile(), templateFile(), &found);
    }
    for (const auto &problems :
         {repeatedCharts(m_params.charts), unknownPins(m_params.charts, pinInCount())}) {
        for (const ReportProblem &problem : problems) {
            found.push_back(problemOf(problem, u"Chart"_s));
        }
    }
    return found;
}

void ActionWriteReport::findTemplateProblems(QVector<ParameterProblem> *found) const
{
    const QString parameter = u"template"_s;
    const QString name = templateFile();
    const QByteArray folder = chartFolderOf(name);
    if (folder.isEmpty()) {
        found->push_back(
            {parameter, QCoreApplication::translate("Problems",
                                                    "the extension is not .xlsx, .docx or .pptx")});
        return;
    }
    if (!QFileInfo(name).isFile()) {
        // Other names are looked up by the check itself.
        if (m_params.templateName.startsWith(u'>')) {
            found->push_back(
                {parameter, QCoreApplication::translate(
                                "Problems", "the file '%1' of 'template' does not exist")
                                .arg(name)});
        }
        return;
    }
    const auto input = PackageInput::open(globalParameters(), name);
    const auto charts = input ? readCharts((*input)->reader(), folder)
                              : Result<TemplateCharts, opc::Error>(Fault{opc::Error::Unreadable});
    if (!charts || !charts->isOfKind) {
        found->push_back({parameter, QCoreApplication::translate(
                                         "Problems", "cannot read Report Template file %1")
                                         .arg(name)});
        return;
    }
    for (const ReportProblem &problem : tagProblems(*charts, m_params.charts, name)) {
        found->push_back(problemOf(problem, parameter));
    }
}

QString ActionWriteReport::message(TemplateProblem problem, const QString &name) const
{
    switch (problem) {
    case TemplateProblem::CannotReadTemplate:
        return u"\nERROR: cannot read Report Template file %1\n"_s.arg(name);
    case TemplateProblem::EmptyTemplate:
        return u"\nERROR: template file %1 is empty.\n"_s.arg(name);
    case TemplateProblem::CannotCreate:
        return u"\nERROR: Cannot write Report file '%1'.\n"_s.arg(name);
    case TemplateProblem::CannotWrite:
        // Of the document and not of the member: the cause is the disk.
        return message(TemplateProblem::CannotCreate, documentFile());
    case TemplateProblem::CannotAddMember:
        return u"\nERROR: cannot open file '%1' in the zipfile for write"_s.arg(name);
    case TemplateProblem::CannotClose:
        return u"\nWARNING: problem closing the output file %1\n"_s.arg(name);
    case TemplateProblem::CannotOpenMember:
    case TemplateProblem::CannotReadPart:
    case TemplateProblem::CannotCopyMember:
        break;
    }
    return u"\nERROR: cannot open file '%1' in the zipfile for read"_s.arg(name);
}

void ActionWriteReport::start()
{
    m_run = {};
    m_run.data = ReportData(m_params.charts);
}

bool ActionWriteReport::step()
{
    const Pins pins = readPins();
    // The document is complete then, but gets its name only when the whole run is good.
    m_run.isWritten = pins == Pins::Read && writeDocument();
    return pins == Pins::Interrupted;
}

/// A document of a failed run is not committed: the old one stays.
void ActionWriteReport::finish()
{
    if (m_run.isWritten && runIsGood()) {
        commitDocument();
    }
    closeFiles();
    m_run = {};
}

ActionWriteReport::Pins ActionWriteReport::readPins()
{
    // One after the other: the rows of later pins wait in the engine, and not here.
    for (; m_run.pin < pinInCount(); ++m_run.pin) {
        const Pins pin = readPin();
        if (pin != Pins::Read) {
            return pin;
        }
        m_run.isPinStarted = false;
    }
    return checkPins() ? Pins::Read : Pins::Failed;
}

bool ActionWriteReport::checkPins()
{
    for (const ReportChart &chart : m_params.charts) {
        for (const ChartAxis &axis : chart.axes) {
            // A pin that the action does not have is never read, so its columns are missing.
            const bool isThere = axis.pinIdx >= 0 && axis.pinIdx < pinInCount();
            if (!axis.column.isEmpty() && !isThere) {
                return failColumn(axis.column, axis.pinIdx);
            }
        }
    }
    return true;
}

ActionWriteReport::Pins ActionWriteReport::readPin()
{
    while (const OneRow *row = getNextRowFromInPin(m_run.pin)) {
        if (!m_run.isPinStarted && !startPin(*row)) {
            return Pins::Failed;
        }
        m_run.data.addRow(*row);
        if (yieldRequested()) {
            return Pins::Interrupted;
        }
    }
    if (!runIsGood()) {
        return Pins::Failed;
    }
    // A pin without rows has columns all the same.
    const bool isGood = m_run.isPinStarted || startPin(*getInputColumns(m_run.pin));
    return isGood ? Pins::Read : Pins::Failed;
}

/// A pin is started by its columns, with or without rows.
bool ActionWriteReport::startPin(const OneRow &columns)
{
    m_run.isPinStarted = true;
    const QString *missing = m_run.data.startPin(m_run.pin, columns);
    return missing == nullptr ||
           failColumn(*missing, m_run.pin, missingColumnReason(*missing, columns.schema().names));
}

/// The reason may be a similar name, which the user probably meant.
bool ActionWriteReport::failColumn(const QString &column, int pin, const QString &reason)
{
    return fail(
        u"\nERROR: cannot find column '%1' on input pin %2.\n"_s.arg(column, QString::number(pin)),
        reason);
}

/// A name after ">" is that of a template that is installed with the program.
QString ActionWriteReport::templateFile() const
{
    return m_params.templateName.startsWith(u'>')
               ? expandFile(shippedTemplate(m_params.templateName.sliced(1)))
               : expandFile(m_params.templateName);
}

QString ActionWriteReport::documentFile() const
{
    return expandOutputFile(m_params.output, {});
}

bool ActionWriteReport::writeDocument()
{
    const QString name = templateFile();
    // The extension decides where charts are, before any file is opened.
    const QByteArray folder = chartFolderOf(name);
    return folder.isEmpty()
               ? fail(unknownExtension(name), u"save the template as one of these first"_s)
               : writeCopyOf(name, folder);
}

bool ActionWriteReport::writeCopyOf(const QString &name, const QByteArray &folder)
{
    // Tags are checked first: no document with charts of old data may appear.
    if (!openTemplate(name) || !findParts(folder) || !checkTags() ||
        !openDocument(documentFile())) {
        return false;
    }
    if (hasOtherKind(documentFile())) {
        warn(
            u"Warning: the name of the document '%1' does not end like that of its template: Office programs may refuse to open it.\n"_s
                .arg(documentFile()));
    }
    return writeMembers();
}

bool ActionWriteReport::checkTags()
{
    std::vector<ReportProblem> problems = repeatedCharts(m_params.charts);
    const auto ofTags = tagProblems(m_run.charts, m_params.charts, templateName());
    problems.insert(problems.end(), ofTags.begin(), ofTags.end());
    for (const ReportProblem &problem : problems) {
        if (problem.isError) {
            return fail(problem.text);
        }
        warn(problem.text);
    }
    for (const ChartPart &part : m_run.charts.parts) {
        for (const charts::ChartTag &tag : part.tags) {
            if (tag.use == charts::TagUse::Series && !checkTexts(tag)) {
                return false;
            }
        }
    }
    return true;
}

/// Texts of a chart are stored in XML, which does not have all characters.
bool ActionWriteReport::checkTexts(const charts::ChartTag &tag)
{
    const ReportChart &chart = *chartOf(m_params.charts, tag.reference);
    const charts::SeriesValues values = m_run.data.valuesOf(chart, tag.type);
    for (const charts::AxisPlace &place : tag.axes) {
        const auto axis = static_cast<size_t>(place.axis);
        // In an axis of numbers such a text is not a number, and so 0 with a warning.
        const auto row = values[axis] == nullptr ? std::nullopt : values[axis]->firstForbidden();
        if (row && place.kind == charts::AxisKind::Text) {
            return fail(
                u"Error: the column '%1' of input pin %2 has in row %3 a character that XML does not allow: the chart of the tag '%4' cannot be written\n"_s
                    .arg(chart.axes[axis].column, QString::number(chart.axes[axis].pinIdx),
                         QString::number(*row + 1), tag.reference));
        }
    }
    return true;
}

bool ActionWriteReport::writeMembers()
{
    // Reserved members are left out of the copy: the parts with tags are written after it.
    opc::PackageCopy copy(templateReader(), [this] { return runIsGood(); });
    for (const ChartPart &part : m_run.charts.parts) {
        copy.reserve(part.member);
    }
    const auto copied = copy.copyMembers(document());
    if (!copied) {
        return failPackage(copied.fault(), TemplateProblem::CannotCopyMember);
    }
    for (const ChartPart &part : m_run.charts.parts) {
        if (!writePart(part)) {
            return false;
        }
    }
    reportWorkbooks();
    return true;
}

Result<void, opc::Error> ActionWriteReport::putBlock(QByteArrayView block, const QByteArray &member)
{
    if (!runIsGood()) {
        return Fault{opc::Error::Stopped};
    }
    const auto written = document().output().write(block);
    return written ? Result<void, opc::Error>() : opc::memberFault(written.fault().code, member);
}

bool ActionWriteReport::writePart(const ChartPart &part)
{
    charts::SeriesWriter writer(part.text,
                                [&](QByteArrayView block) { return putBlock(block, part.member); });
    // The tags are in the order of the part, so that it is copied once from its beginning to its
    // end.
    auto done = document().open(part.member);
    for (size_t i = 0; i < part.tags.size() && done; ++i) {
        if (part.tags[i].use == charts::TagUse::Series) {
            done = writeSeries(writer, part, i);
        }
    }
    if (done) {
        done = writer.finish();
    }
    if (done) {
        done = document().close();
    }
    return done || failPackage(done.fault(), TemplateProblem::CannotReadPart);
}

Result<void, opc::Error> ActionWriteReport::writeSeries(charts::SeriesWriter &writer,
                                                        const ChartPart &part, size_t index)
{
    // The tag is before the data, and the part is copied in its order.
    if (m_params.cleanTags) {
        const auto done = cleanTags(writer, part, index);
        if (!done) {
            return done.fault();
        }
    }
    const charts::ChartTag &tag = part.tags[index];
    const ReportChart &chart = *chartOf(m_params.charts, tag.reference);
    const auto found = writer.series(tag, m_run.data.valuesOf(chart, tag.type));
    if (!found) {
        return found.fault();
    }
    reportValues(tag, chart, *found);
    return {};
}

Result<void, opc::Error> ActionWriteReport::cleanTags(charts::SeriesWriter &writer,
                                                      const ChartPart &part, size_t index)
{
    // The tag can be there several times before the data.
    const qsizetype end = part.tags[index].axes.front().begin;
    auto done = writer.replaceTag(part.tags[index]);
    for (size_t i = index + 1; done && i < part.tags.size() && part.tags[i].begin < end; ++i) {
        if (part.tags[i].use == charts::TagUse::Repeated) {
            done = writer.replaceTag(part.tags[i]);
        }
    }
    return done;
}

void ActionWriteReport::reportValues(const charts::ChartTag &tag, const ReportChart &chart,
                                     const charts::SeriesReport &found)
{
    // Programs draw a gap there, which looks like a value that was never measured.
    if (found.gaps.count > 0) {
        warn(
            u"Warning: %1 of the tag '%2' %4 left out, because another cell of the row is empty; the first is in row %3\n"_s
                .arg(counted(found.gaps.count, u"point"_s), tag.reference,
                     QString::number(found.gaps.firstIndex + 1), isOrAre(found.gaps.count)));
    }
    for (size_t axis = 0; axis < found.notNumbers.size(); ++axis) {
        const charts::ValueCount &bad = found.notNumbers[axis];
        if (bad.count > 0) {
            warn(
                u"Warning: %1 of the column '%2' %5 not numeric and written as 0 to the chart of the tag '%3'; the first is in row %4. Give the series texts in the template to keep texts\n"_s
                    .arg(counted(bad.count, u"value"_s), chart.axes[axis].column, tag.reference,
                         QString::number(bad.firstIndex + 1), isOrAre(bad.count)));
        }
    }
}

} // namespace corvanta
