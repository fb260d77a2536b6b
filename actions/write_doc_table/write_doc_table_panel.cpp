#include "actions/write_doc_table/write_doc_table_panel.h"

#include "actions/write_doc_table/write_doc_table.h"
#include "panels/structures/doc_tables_editor.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

FieldEditor *tablesEditor(const FieldContext &context)
{
    return new DocTablesEditor(context, [](ActionItem &action) {
        const auto &table = dynamic_cast<ActionWriteDocTable &>(action);
        return DocTablesEditor::Offers{table.templateMarkers(), table.templateStyles()};
    });
}

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Files"), {"template", "output"}},
        {QT_TRANSLATE_NOOP("Panels", "Tables"), {{"v", tablesEditor}}},
        {QT_TRANSLATE_NOOP("Panels", "Options"), {"processCR", "processLF"}},
        {kAdvancedGroup, {"joinRuns", "strictMarkup"}, Fold::Folded},
    };
}

} // namespace

Interface_ActionWriteDocTable::Interface_ActionWriteDocTable(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
