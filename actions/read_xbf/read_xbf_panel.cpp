#include "actions/read_xbf/read_xbf_panel.h"

#include "actions/shared/panels/text_fields.h"
#include "panels/preview/preview.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"), {"fileName", "encoding", "declaredEncoding"}},
        {QT_TRANSLATE_NOOP("Panels", "Memo fields"), {"useDBT", "dbtInRam"}},
        previewGroup(),
        {kAdvancedGroup,
         {"level7",
          "readAllTypes",
          "isoValues",
          {"types", shared::typeLettersField},
          "outputFilenames",
          "bufferSize"},
         Fold::Folded},
    };
}

} // namespace

Interface_ActionReadXBF::Interface_ActionReadXBF(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
