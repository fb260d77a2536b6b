#include "actions/read_stat/read_stat_panel.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"), {"fileName", "fileNameFromPin", "fileFormat"}},
        {QT_TRANSLATE_NOOP("Panels", "Columns"),
         {"ColumnsToRead", "columnNamefromLabel", "outputFilenames"}},
        {QT_TRANSLATE_NOOP("Panels", "Values"),
         {"formatDates", "extractLabels", "catalogFile", "encoding"}},
        {kAdvancedGroup, {"maxRows", "bufferSize"}, Fold::Folded},
    };
}

} // namespace

Interface_ActionReadStat::Interface_ActionReadStat(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
