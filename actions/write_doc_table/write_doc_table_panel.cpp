#include "actions/write_doc_table/write_doc_table_panel.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Files"), {"template", "output"}},
        {QT_TRANSLATE_NOOP("Panels", "Tables"), {"v"}},
        {QT_TRANSLATE_NOOP("Panels", "Options"), {"processCR", "processLF"}},
        {kAdvancedGroup, {"joinRuns", "strictMarkup"}, Fold::Folded},
    };
}

} // namespace

Interface_ActionWriteDocTable::Interface_ActionWriteDocTable(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
