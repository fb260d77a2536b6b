// What decides about the columns is open: a wrong separator or a missing header is the first thing
// that a user sees in the preview. How bytes become texts is folded, because the defaults fit most
// files.
#include "actions/read_csv/read_csv_panel.h"

#include "actions/shared/panels/text_fields.h"
#include "panels/preview/preview.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"), {"fileName", "fileNameFromPin"}},
        {QT_TRANSLATE_NOOP("Panels", "Columns"),
         {{"separator", shared::readSeparatorField},
          "header",
          "uniqueNames",
          {"types", shared::typeLettersField},
          {"dateFormat", shared::dateFormatsField}}},
        {QT_TRANSLATE_NOOP("Panels", "Text"),
         {{"encoding", shared::foundEncodingField},
          {"quote", shared::quoteField},
          {"decimal", shared::decimalSignField},
          "nullValues",
          "skipRows",
          "comment",
          {"ragged", shared::raggedField},
          {"lineEnd", shared::readLineEndField}},
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
