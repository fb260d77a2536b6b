// Templates and documents come from columns of the input, so the first group has no file field.
#include "actions/write_doc/write_doc_panel.h"

#include "panels/column_picker.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Files"),
         {{"template", editor<ColumnField>}, {"output", editor<ColumnField>}}},
        {QT_TRANSLATE_NOOP("Panels", "Columns"),
         {{"text", editor<ColumnPicker>}, {"image", editor<ColumnPicker>}}},
        {QT_TRANSLATE_NOOP("Panels", "Options"),
         {"processCR", "processLF", "inlineImg", "fitImages"},
         Fold::Folded},
        {kAdvancedGroup, {"joinRuns", "allParts", "strictMarkup"}, Fold::Folded},
    };
}

} // namespace

Interface_ActionWriteDoc::Interface_ActionWriteDoc(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
