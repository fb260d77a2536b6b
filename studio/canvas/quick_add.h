// Asks for the type of a new action where the mouse is: a search field and the actions found.
// The search is that of the palette. It is a popup: Enter and a click choose, Escape and a click
// elsewhere close it. Threads: the GUI thread.
#pragma once
#include "corvanta/action_registry.h"
#include "studio/canvas/catalogue.h"

#include <QFrame>

#include <functional>

class QLineEdit;
class QListWidget;

namespace corvanta::studio {

class QuickAdd final : public QFrame
{
    Q_OBJECT

public:
    /// `registry` must outlive the object.
    QuickAdd(const ActionRegistry &registry, QWidget *parent);
    /// Show the popup at a place of the screen, and call `chosen` with the type that the user
    /// chooses. `needsInput`: only actions that get rows.
    void ask(QPoint place, bool needsInput, std::function<void(const QString &)> chosen);

protected:
    /// The arrow keys and Enter of the search field.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// List the actions that fit the text.
    void search();
    /// Close the popup, and pass on the current action.
    void accept();

    const ActionRegistry &m_registry;
    Catalogue m_catalogue;
    QLineEdit *m_field;
    QListWidget *m_list;
    bool m_needsInput = false;
    std::function<void(const QString &)> m_chosen;
};

} // namespace corvanta::studio
