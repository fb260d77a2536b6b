// The charts are open and the largest group: the template decides which there are, and each needs
// its columns.
#include "actions/write_report/write_report_panel.h"

#include "actions/write_report/write_report.h"
#include "panels/structures/chart_editor.h"
#include "panels/structures/pins.h"

namespace {

using namespace corvanta;

/// The tags of the template.
ChartEditor::Marks marksOf(ActionItem &action)
{
    const auto charts = dynamic_cast<ActionWriteReport &>(action).templateCharts();
    // A template that cannot be read is a problem of its own field.
    if (!charts) {
        return std::nullopt;
    }
    std::vector<ChartMark> marks;
    for (const ReportChart &chart : *charts) {
        marks.push_back({chart.name, static_cast<int>(chart.type)});
    }
    return marks;
}

FieldEditor *chartEditor(const FieldContext &context)
{
    return new ChartEditor(context, marksOf);
}

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Files"), {"template", "output"}},
        {QT_TRANSLATE_NOOP("Panels", "Charts"),
         {{"nPinIn", editor<PinCountField>}, {"Chart", chartEditor}}},
        {QT_TRANSLATE_NOOP("Panels", "Options"), {"cleanTags"}},
    };
}

} // namespace

Interface_ActionWriteReport::Interface_ActionWriteReport(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
