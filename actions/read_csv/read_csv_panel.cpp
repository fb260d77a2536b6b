#include "actions/read_csv/read_csv_panel.h"

#include "panels/preview/preview.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"), {"fileName", "fileNameFromPin"}},
        {QT_TRANSLATE_NOOP("Panels", "Columns"), {"separator", "header", "types", "dateFormat"}},
        {QT_TRANSLATE_NOOP("Panels", "Text"),
         {"encoding", "quote", "decimal", "nullValues", "skipRows", "comment", "ragged", "lineEnd"},
         Fold::Folded},
        previewGroup(),
        {kAdvancedGroup, {"sortedOn", "outputFilenames"}, Fold::Folded},
    };
}

} // namespace

Interface_ActionReadCSV::Interface_ActionReadCSV(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
