// The levels get most of the room: "Fill from the file" finds them, and the user edits the result.
#include "actions/read_json/read_json_panel.h"

#include "actions/shared/panels/level_editors.h"
#include "actions/shared/panels/text_fields.h"
#include "panels/column_picker.h"
#include "panels/fill/auto_fill.h"
#include "panels/preview/preview.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"),
         {"fromInputPin", "fileName", {"colJSON", editor<ColumnField>}, "oneJSONPerRow"}},
        {QT_TRANSLATE_NOOP("Panels", "Levels and columns"),
         {"autoFillNRows", {"Level", shared::readLevelsEditor}, "readTagsFromInPin"},
         Fold::Open,
         extra<AutoFill>},
        {QT_TRANSLATE_NOOP("Panels", "Values"),
         {{"types", shared::typeLettersField}, "nullIsMissing"},
         Fold::Folded},
        {QT_TRANSLATE_NOOP("Panels", "Added columns"),
         {"outputFilenames", "outputSubTags", "appendToRow"},
         Fold::Folded},
        {QT_TRANSLATE_NOOP("Panels", "Errors"),
         {"permissiveNumbers", "ignoreErrors", "warnUnread", "abortIfMissing", "timeOut"},
         Fold::Folded},
        previewGroup(),
        {kAdvancedGroup, {"bufferSize", "newMode"}, Fold::Folded},
    };
}

} // namespace

Interface_ActionReadJSON::Interface_ActionReadJSON(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
