// An empty list of columns means all of them, so the columns of the file are offered and not filled
// in.
#include "actions/read_stat/read_stat_panel.h"

#include "actions/shared/panels/text_fields.h"
#include "panels/fill/file_columns.h"
#include "panels/preview/preview.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"), {"fileName", "fileNameFromPin", "fileFormat"}},
        {QT_TRANSLATE_NOOP("Panels", "Columns"),
         {{"ColumnsToRead", editor<FileColumnPicker>}, "columnNamefromLabel", "outputFilenames"}},
        {QT_TRANSLATE_NOOP("Panels", "Values"),
         {"formatDates",
          "extractLabels",
          "catalogFile",
          {"encoding", shared::declaredEncodingField}}},
        previewGroup(),
        {kAdvancedGroup,
         {"maxRows", "firstRow", "rowCount", "fileNameColumn", "bufferSize"},
         Fold::Folded},
    };
}

} // namespace

Interface_ActionReadStat::Interface_ActionReadStat(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
