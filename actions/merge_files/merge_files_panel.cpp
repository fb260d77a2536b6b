#include "actions/merge_files/merge_files_panel.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"), {"parts"}},
        {QT_TRANSLATE_NOOP("Panels", "Columns"), {"byName"}},
        {QT_TRANSLATE_NOOP("Panels", "Target"), {"fileName", "createDir"}},
    };
}

} // namespace

Interface_ActionMergeFiles::Interface_ActionMergeFiles(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
