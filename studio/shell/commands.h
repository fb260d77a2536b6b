// The commands of the window: everything that a menu, a tool bar or a shortcut starts.
//
// One table declares each command with its menu, text, shortcut and explanation. The menus, the
// shortcut editor and tests use the same QActions.
#pragma once
#include <QAction>
#include <QObject>
#include <QPointer>
#include <QVector>

#include <functional>
#include <map>

class QMenu;
class QMenuBar;
class QPalette;
class QToolBar;

namespace corvanta::studio {

class Settings;

/// Threads: the GUI thread.
class Commands final : public QObject
{
    Q_OBJECT

public:
    /// Make the commands with the shortcuts of the user. `window` receives the shortcuts; it and
    /// `settings` must outlive this object.
    Commands(QWidget *window, Settings &settings);

    /// By name, for example "file.save". The name must be in the table.
    QAction *operator[](const QString &name) const;
    /// In the order of the menus.
    const QVector<QAction *> &all() const { return m_actions; }
    /// Give the actions of a part of the window (makeAction()) the shortcuts of the user. They work
    /// while the part has the focus. Several parts may have actions of the same names, as the logs
    /// of two graphs do. `title` names the part for the user.
    void adopt(const QWidget &part, const QString &title);
    /// One action of each name of the parts.
    QVector<QAction *> ofParts() const;
    /// The title of its part; empty for a command of the window.
    static QString partOf(const QAction &action);
    /// Call `function`, a member of `context` or a functor, when the user starts a command.
    template <class Context, class Function>
    void onTrigger(const char *name, Context *context, Function function)
    {
        connect((*this)[QString::fromLatin1(name)], &QAction::triggered, context, function);
    }

    /// Add the menus. Those without an entry in the table stay empty; see menu().
    void fill(QMenuBar *bar);
    /// Add the commands that have an icon, one group per menu.
    void fill(QToolBar *bar) const;
    /// Draw the icons of the tool bar in the colours of a palette.
    void updateIcons(const QPalette &palette);
    /// Let the shortcuts of commands such as Copy work in `widget`, which shows the graph.
    /// Elsewhere they belong to the text or table that has the focus.
    void addGraphShortcuts(QWidget *widget) const;
    /// Add what can be done with the selected actions and links.
    void fillContextMenu(QMenu *menu) const;
    /// A menu or submenu by its name, for example "file.recent"; null before fill().
    QMenu *menu(const QString &name) const;

    /// The shortcut of the table.
    static QKeySequence defaultShortcut(const QAction &action);
    /// Set and save a shortcut; the default is not saved.
    void setShortcut(QAction *action, const QKeySequence &keys);
    /// The other command of the window, or of the same part, that has the shortcut; null if there
    /// is none.
    QAction *findConflict(const QAction *action, const QKeySequence &keys) const;

private:
    /// The commands that have a flag of the table, in its order.
    QVector<QAction *> actionsWith(unsigned flag) const;

    Settings &m_settings;
    QVector<QAction *> m_actions;
    QVector<QPointer<QAction>> m_ofParts;
    std::map<QString, QAction *> m_byName;
    std::map<QString, QMenu *> m_menus;
};

} // namespace corvanta::studio
