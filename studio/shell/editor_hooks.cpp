// The panels know only MainUI; an action leads to its document by its address.
#include "studio/shell/editor_hooks.h"

#include "corvanta/main_ui.h"
#include "studio/document/graph_document.h"
#include "studio/shell/document_tab.h"
#include "studio/shell/workspace.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QListWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// The document that has the action; null for an action of none.
GraphDocument *documentOf(const Workspace &workspace, const ActionItem *action)
{
    // A panel may report an edit that it made in the background, when another tab is shown.
    for (const DocumentTab *const tab : workspace.tabs()) {
        if (!tab->document()->idOf(action).isEmpty()) {
            return tab->document();
        }
    }
    return nullptr;
}

/// An empty table for an action of no document.
TableSchema columnsOf(const Workspace &workspace, const ActionItem *action, int pin)
{
    GraphDocument *const document = documentOf(workspace, action);
    return document != nullptr ? document->inputColumns(document->idOf(action), pin)
                               : TableSchema();
}

/// The rows of the list that are selected, as texts.
QStringList chooseFrom(const QStringList &names, bool several, QWidget *parent)
{
    QDialog dialog(parent);
    dialog.setObjectName(u"chooseColumns"_s);
    dialog.setWindowTitle(Workspace::tr("Columns"));
    auto *const list = new QListWidget(&dialog);
    list->addItems(names);
    // A parameter for one column must not get two.
    list->setSelectionMode(several ? QAbstractItemView::ExtendedSelection
                                   : QAbstractItemView::SingleSelection);
    auto *const buttons =
        new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    // A double click is a choice, as in a dialog for files.
    QObject::connect(list, &QListWidget::itemActivated, &dialog, &QDialog::accept);
    auto *const layout = new QVBoxLayout(&dialog);
    layout->addWidget(list);
    layout->addWidget(buttons);
    QStringList chosen;
    if (dialog.exec() == QDialog::Accepted) {
        for (const QListWidgetItem *const item : list->selectedItems()) {
            chosen << item->text();
        }
    }
    return chosen;
}

} // namespace

void setEditorHooks(Workspace &workspace)
{
    MainUI::EditorHooks hooks;
    // Asked when a panel needs it: the current tab may be another one by then.
    hooks.editedGraph = [&workspace]() -> CorvantaGraph * {
        const DocumentTab *const tab = workspace.current();
        return tab != nullptr ? &tab->document()->graph() : nullptr;
    };
    hooks.edited = [&workspace](ActionItem *action, const ParameterEdit &edit) {
        // Null if the action was removed before its panel reports.
        if (GraphDocument *const document = documentOf(workspace, action)) {
            document->recordEdit(action, edit);
        }
    };
    hooks.inputColumns = [&workspace](ActionItem *action, int pin) {
        return columnsOf(workspace, action, pin);
    };
    hooks.chooseColumns = [&workspace](QWidget *parent, ActionItem *action, int pin, bool several) {
        return chooseFrom(columnsOf(workspace, action, pin).names, several, parent);
    };
    MainUI::setEditorHooks(std::move(hooks));
}

void resetEditorHooks()
{
    // The functions refer to the workspace, which ends before the program does.
    MainUI::setEditorHooks({});
}

} // namespace corvanta::studio
