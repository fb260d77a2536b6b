// The graph as a tree: each action with its inputs and outputs. A screen reader can read it all.
#pragma once
#include <QPointer>
#include <QTimer>
#include <QTreeWidget>

namespace corvanta::studio {

class GraphDocument;

/// Selecting actions here selects them on the canvas. Threads: the GUI thread.
class Outline final : public QTreeWidget
{
    Q_OBJECT

public:
    explicit Outline(QWidget *parent = nullptr);
    /// Show a document; null for none.
    void setDocument(GraphDocument *document);
    /// Show which actions are selected elsewhere. Emits nothing.
    void setSelected(const QStringList &ids);

Q_SIGNALS:
    void selectionChosen(const QStringList &ids);
    /// Enter or a double click: show the action on the canvas.
    void shown(const QString &id);

private:
    /// Make all items; the selection is kept.
    void fill();
    /// Add an action with an item per link.
    void addAction(const QString &id);
    /// Report which actions the user has selected here.
    void reportSelection();
    /// Of a link the action at its other end.
    static QString idOf(const QTreeWidgetItem &item);

    QPointer<GraphDocument> m_document;
    QTimer m_update; // so that many changes are one update
    QStringList m_selected;
};

} // namespace corvanta::studio
