// The levels get most of the room: "Fill from the file" finds them, and the user edits the result.
// What only malformed files need is folded.
#include "actions/read_xml/read_xml_panel.h"

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
         {"fromInputPin",
          "fileName",
          {"colXML", editor<ColumnField>},
          "readHTML",
          "tagSoup",
          {"encoding", shared::foundEncodingField}}},
        {QT_TRANSLATE_NOOP("Panels", "Levels and columns"),
         {"autoFillNRows", {"Level", shared::readLevelsEditor}, "skipRows", "expandSpans"},
         Fold::Open,
         extra<AutoFill>},
        {QT_TRANSLATE_NOOP("Panels", "Values"),
         {"addOnlyText",
          "readClearTags",
          "outputTagNames",
          "tagNameSummary",
          "getTagPresenceFlag",
          "discardNameSpaces",
          "zeroBased",
          {"types", shared::typeLettersField}},
         Fold::Folded},
        {QT_TRANSLATE_NOOP("Panels", "Added columns"),
         {"outputFilenames", "outputSubTags", "addColBefore"},
         Fold::Folded},
        {QT_TRANSLATE_NOOP("Panels", "Errors"),
         {"skipCorruptedFiles", "ignoreUnknownEntities", "ignoreEmptyTag",
          "ignoreInvalidCharInTagName", "iconvDiscardUnconvertible", "warnUnread", "abortIfMissing",
          "timeOut"},
         Fold::Folded},
        previewGroup(),
        {kAdvancedGroup, {"bufferSize"}, Fold::Folded},
    };
}

} // namespace

Interface_ActionReadXML::Interface_ActionReadXML(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
