// What writeReport finds in a template: the parts with tags, and for "check --template" the tags
// themselves.
#include "actions/write_report/report_problems.h"
#include "actions/write_report/shipped_template.h"
#include "actions/write_report/write_report.h"
#include "base/counted.h"
#include "base/mapped.h"
#include "codecs/document/part_locations.h"
#include "corvanta/main_ui.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// What to do with a tag that a run does not use; empty for one that it does.
QString remedyFor(charts::TagUse use)
{
    switch (use) {
    case charts::TagUse::NoChart:
        return u"make it the name of a series in a chart"_s;
    case charts::TagUse::NoValues:
        return u"make it the name of a series with values"_s;
    case charts::TagUse::Split:
        return u"type it again in one piece"_s;
    case charts::TagUse::Series:
    case charts::TagUse::Repeated:
        break;
    }
    return {};
}

/// " (barChart: cat, val)" for a tag whose series can be filled.
QString axesText(const charts::ChartTag &tag)
{
    if (tag.use != charts::TagUse::Series) {
        return {};
    }
    QStringList names;
    const auto elements = charts::axisElements(tag.type);
    for (size_t i = 0; i < elements.size(); ++i) {
        if (std::any_of(tag.axes.begin(), tag.axes.end(), [&](const charts::AxisPlace &place) {
                return static_cast<size_t>(place.axis) == i;
            })) {
            names << QString::fromLatin1(elements[i]);
        }
    }
    return u" (%1: %2)"_s.arg(QString::fromLatin1(charts::chartElement(tag.type)),
                              names.join(u", "_s));
}

/// What has a chart whose part nothing refers to. `folder` is that of the chart parts.
QString kindOfFile(const QByteArray &folder)
{
    return folder.startsWith("ppt/")    ? u"presentation"_s
           : folder.startsWith("word/") ? u"document"_s
                                        : u"sheet"_s;
}

/// Where the document has a chart: "slide 2 chart", "sheet chart on 'Sales'".
QString placeOf(const document::PartLocations &locations, const QByteArray &chart,
                const QByteArray &folder)
{
    const QString location = locations.ofReference(chart);
    const QString sheet = locations.sheetOf(chart);
    return (location.isEmpty() ? kindOfFile(folder) : location) + u" chart"_s +
           (sheet.isEmpty() ? QString() : u" on '%1'"_s.arg(sheet));
}

} // namespace

/// The sign marks names of templates that are part of the installation.
QStringList ActionWriteReport::includedTemplates() const
{
    return mapped<QStringList>(shippedTemplates(),
                               [](const QString &name) -> QString { return u'>' + name; });
}

bool ActionWriteReport::templateMarks(const QString &file, QVector<TemplateMark> *marks)
{
    const QByteArray folder = chartFolderOf(file);
    // Other files have no charts, which is not a fault of a template.
    if (folder.isEmpty()) {
        return true;
    }
    m_run = {};
    if (!openTemplate(file.startsWith(u'>') ? shippedTemplate(file.sliced(1)) : file) ||
        !findParts(folder)) {
        return false;
    }
    const document::PartLocations locations(templateReader());
    for (const ChartPart &part : m_run.charts.parts) {
        listPart(part, placeOf(locations, part.member, folder), marks);
    }
    closeFiles();
    m_run = {};
    return true;
}

std::optional<std::vector<ReportChart>> ActionWriteReport::templateCharts() const
{
    const QString name = templateFile();
    const QByteArray folder = chartFolderOf(name);
    const auto input = PackageInput::open(globalParameters(), name);
    const auto found = input && !folder.isEmpty()
                           ? readCharts((*input)->reader(), folder)
                           : Result<TemplateCharts, opc::Error>(Fault{opc::Error::Unreadable});
    if (!found) {
        return std::nullopt;
    }
    std::vector<ReportChart> unique;
    for (const ChartPart &part : found->parts) {
        for (const charts::ChartTag &tag : part.tags) {
            // A tag at several series is one Chart, and other tags cannot be filled.
            if (tag.use == charts::TagUse::Series && chartOf(unique, tag.reference) == nullptr) {
                unique.push_back({tag.type, tag.reference, {}});
            }
        }
    }
    return unique;
}

void ActionWriteReport::listPart(const ChartPart &part, const QString &place,
                                 QVector<TemplateMark> *marks)
{
    for (const charts::ChartTag &tag : part.tags) {
        // The name of a series can be there twice.
        if (tag.use != charts::TagUse::Repeated) {
            const int pieces = tag.use == charts::TagUse::Split ? 2 : 1;
            marks->push_back({u"[[KOBData %1]]"_s.arg(tag.reference), place + axesText(tag),
                              QString::fromUtf8(part.member), 1, pieces, remedyFor(tag.use)});
        }
    }
}

bool ActionWriteReport::findParts(const QByteArray &folder)
{
    auto found = readCharts(templateReader(), folder);
    if (!found) {
        return failPackage(found.fault(), TemplateProblem::CannotReadPart);
    }
    m_run.charts = *std::move(found);
    if (m_run.charts.isOfKind) {
        return true;
    }
    const QByteArray top = folder.first(folder.indexOf('/') + 1);
    const QString reason = otherPackageReason();
    return failWith(
        TemplateProblem::CannotReadTemplate, templateName(),
        reason.isEmpty()
            ? u"the package has no folder %1: its extension does not fit its content"_s.arg(
                  QLatin1StringView(top))
            : reason);
}

void ActionWriteReport::reportWorkbooks()
{
    const auto hasWorkbook = [](const ChartPart &part) {
        return part.text.contains("externalData ");
    };
    const auto &parts = m_run.charts.parts;
    // Charts in workbooks have no workbook of their own, so that most reports get no note.
    const auto first = std::find_if(parts.begin(), parts.end(), hasWorkbook);
    if (first == parts.end()) {
        return;
    }
    const document::PartLocations locations(templateReader());
    MainUI::addLog(
        MainUI::Info,
        u"Note: the workbook of the template is kept for %1 of the document '%2', first that with the tag '%3' (%4): \"Edit data\" in an office program shows the data of the template, and not that of the chart. To change the chart, run the graph with other rows\n"_s
            .arg(counted(std::count_if(first, parts.end(), hasWorkbook), u"chart"_s),
                 documentFile(), first->tags.front().reference,
                 placeOf(locations, first->member, chartFolderOf(templateName()))));
}

} // namespace corvanta
