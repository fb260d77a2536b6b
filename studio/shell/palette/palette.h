// The palette: a search field and the tree of actions that can be added.
#pragma once
#include "studio/canvas/catalogue.h"

#include <QWidget>

class QLineEdit;
class QTreeView;

namespace corvanta {
class ActionRegistry;
}

namespace corvanta::studio {

class PaletteModel;
class Settings;

/// Enter, a double click or a drag adds an action. Enter in the search field adds the first match.
/// The context menu marks favourites. Threads: the GUI thread.
class Palette final : public QWidget
{
    Q_OBJECT

public:
    /// `registry` and `settings` must outlive the palette.
    Palette(const ActionRegistry &registry, Settings &settings, QWidget *parent = nullptr);
    /// Put the keyboard focus into the search field and select its text.
    void startSearch();
    /// Show an action among the recent ones, because it was added to a graph.
    void noteUse(const QString &type);

Q_SIGNALS:
    /// The user wants to add an action of this type to the graph.
    void actionChosen(const QString &type);
    /// The user wants to read about this type.
    void helpRequested(const QString &type);

protected:
    /// Moves from the search field into the tree by the arrow keys, and follows its width.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // Called once, by the constructor.
    void makeSearch();
    void makeTree();
    /// Show what matches the text, with the first match as the current one.
    void search(const QString &text);
    void stretchDescriptions();
    /// The first action that is shown; invalid when nothing matches.
    QModelIndex firstAction() const;
    /// Add the action of a row; a category adds nothing.
    void choose(const QModelIndex &index);
    /// The context menu of the action at a place of the tree.
    void showMenu(const QPoint &position);
    /// Show other favourites or recent actions; the current action stays.
    void refresh();

    Settings &m_settings;
    Catalogue m_catalogue;
    PaletteModel *m_model;
    QLineEdit *m_search;
    QTreeView *m_tree;
};

} // namespace corvanta::studio
