#include "actions/write_report/write_report.h"

#include "actions/write_report/chart_folder.h"
#include "actions/write_report/shipped_template.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

QString unknownExtension(const QString &name)
{
    return u"\nERROR: template file %1 has unknown extention type (not .xlsx, .pptx, .docx).\n"_s
        .arg(name);
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
    if (!m_params.templateName.isEmpty() && chartFolderOf(templateFile()).isEmpty()) {
        found.push_back({u"template"_s, u"the extension is not .xlsx, .docx or .pptx"_s});
    }
    std::set<QString> names;
    for (const ReportChart &chart : m_params.charts) {
        if (!names.insert(chart.name).second) {
            found.push_back(
                {u"Chart"_s,
                 u"the tag '%1' has several Charts; only the first is used"_s.arg(chart.name),
                 ParameterProblem::Severity::Warning});
        }
    }
    return found;
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
    m_run.isWritten = pins == Pins::Read && writeDocument();
    return pins == Pins::Interrupted;
}

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

bool ActionWriteReport::startPin(const OneRow &columns)
{
    m_run.isPinStarted = true;
    const QString *missing = m_run.data.startPin(m_run.pin, columns);
    return missing == nullptr || failColumn(*missing, m_run.pin);
}

bool ActionWriteReport::failColumn(const QString &column, int pin)
{
    return fail(
        u"\nERROR: cannot find column '%1' on input pin %2.\n"_s.arg(column, QString::number(pin)));
}

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
    const QByteArray folder = chartFolderOf(name);
    return folder.isEmpty() ? fail(unknownExtension(name)) : writeCopyOf(name, folder);
}

bool ActionWriteReport::writeCopyOf(const QString &name, const QByteArray &folder)
{
    return openTemplate(name) && findParts(folder) && checkTags() && openDocument(documentFile()) &&
           writeMembers();
}

const ReportChart *ActionWriteReport::chartOf(const QString &reference) const
{
    const auto found =
        std::find_if(m_params.charts.begin(), m_params.charts.end(),
                     [&](const ReportChart &chart) { return chart.name == reference; });
    return found == m_params.charts.end() ? nullptr : &*found;
}

bool ActionWriteReport::checkTags()
{
    for (const ChartPart &part : m_run.parts) {
        for (const charts::ChartTag &tag : part.tags) {
            if (!checkTag(tag)) {
                return false;
            }
        }
    }
    if (m_run.parts.empty()) {
        warn(u"\nwarning: couldn't find any tag to replace ([[KOBData <reference>]]) in file %1"_s
                 .arg(templateName()));
    }
    warnUnusedCharts();
    return true;
}

bool ActionWriteReport::checkTag(const charts::ChartTag &tag)
{
    switch (tag.use) {
    case charts::TagUse::NoChart:
        warn(u"\nwarning: couldn't find chart type for tag %1"_s.arg(tag.reference));
        return true;
    case charts::TagUse::NoValues:
        warn(u"\nwarning: couldn't find y-Axis for tag %1"_s.arg(tag.reference));
        return true;
    case charts::TagUse::Split:
        warn(
            u"Warning: the tag '%1' is divided by formatting and is ignored: type it again in one piece\n"_s
                .arg(tag.reference));
        return true;
    case charts::TagUse::Repeated:
        // Series names are often stored twice.
        return true;
    case charts::TagUse::Series:
        break;
    }
    const ReportChart *chart = chartOf(tag.reference);
    if (chart == nullptr) {
        return fail(
            u"\nERROR: The template file '%1' contains a new un-initialized tag named '%2'\n"_s.arg(
                templateName(), tag.reference));
    }
    m_run.found.insert(tag.reference);
    return checkTexts(tag, *chart);
}

bool ActionWriteReport::checkTexts(const charts::ChartTag &tag, const ReportChart &chart)
{
    const charts::SeriesValues values = m_run.data.valuesOf(chart);
    for (const charts::AxisPlace &place : tag.axes) {
        const auto axis = static_cast<size_t>(place.axis);
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

void ActionWriteReport::warnUnusedCharts()
{
    for (const ReportChart &chart : m_params.charts) {
        // Without any tag there is a message already.
        if (!m_run.parts.empty() && !m_run.found.contains(chart.name)) {
            warn(
                u"Warning: the template file '%1' has no tag for the Chart '%2': its data is not written\n"_s
                    .arg(templateName(), chart.name));
        }
    }
}

bool ActionWriteReport::writeMembers()
{
    // Reserved members are left out of the copy: the parts with tags are written after it.
    opc::PackageCopy copy(templateReader(), [this] { return runIsGood(); });
    for (const ChartPart &part : m_run.parts) {
        copy.reserve(part.member);
    }
    const auto copied = copy.copyMembers(document());
    if (!copied) {
        return failPackage(copied.fault(), TemplateProblem::CannotCopyMember);
    }
    for (const ChartPart &part : m_run.parts) {
        if (!writePart(part)) {
            return false;
        }
    }
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
    if (m_params.cleanTags) {
        const auto done = cleanTags(writer, part, index);
        if (!done) {
            return done.fault();
        }
    }
    const charts::ChartTag &tag = part.tags[index];
    const ReportChart &chart = *chartOf(tag.reference);
    const auto found = writer.series(tag, m_run.data.valuesOf(chart));
    if (!found) {
        return found.fault();
    }
    reportAxes(tag, chart);
    reportValues(tag, chart, *found);
    return {};
}

Result<void, opc::Error> ActionWriteReport::cleanTags(charts::SeriesWriter &writer,
                                                      const ChartPart &part, size_t index)
{
    // The name of a series can be there twice: as a formula and as its result.
    const qsizetype end = part.tags[index].axes.front().begin;
    auto done = writer.replaceTag(part.tags[index]);
    for (size_t i = index + 1; done && i < part.tags.size() && part.tags[i].begin < end; ++i) {
        if (part.tags[i].use == charts::TagUse::Repeated) {
            done = writer.replaceTag(part.tags[i]);
        }
    }
    return done;
}

} // namespace corvanta
