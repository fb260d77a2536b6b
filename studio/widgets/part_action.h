// Makes the actions of a part of the window.
//
// Threads: the GUI thread.
#pragma once
#include <QKeySequence>

#include <functional>

class QAction;
class QWidget;

namespace corvanta::studio {

/// An action as a table describes it. Texts are already translated.
struct ActionSpec
{
    QString name;      ///< the object name, for tests and the list of shortcuts
    QString text;      ///< of the button or menu item
    QKeySequence keys; ///< empty: none
    QString tip;       ///< one sentence, for the status bar and the tool tip
    std::function<void()> onTriggered;
};

/// Make the action and add it to `part`, which owns it. Its keys work while the part has the focus
/// (with LocalKeys).
QAction *makeAction(QWidget *part, const ActionSpec &spec);
/// Make a tool tip of a text and the shortcut: a button shows its keys nowhere else.
void showShortcut(QAction *action, const QString &text);

} // namespace corvanta::studio
