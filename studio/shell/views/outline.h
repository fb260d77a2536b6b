// The graph as a tree: each action with its inputs and outputs. A screen reader can read it all.
#pragma once
#include "studio/document/content.h"

#include <QPointer>
#include <QTimer>
#include <QTreeWidget>

namespace corvanta::studio {

class GraphDocument;

/// Selecting actions, links and notes here selects them on the canvas. Threads: the GUI thread.
class Outline final : public QTreeWidget
{
    Q_OBJECT

public:
    explicit Outline(QWidget *parent = nullptr);
    /// Show a document; null for none.
    void setDocument(GraphDocument *document);
    /// Show what is selected elsewhere. Emits nothing.
    void setSelected(const QStringList &ids, const QVector<LinkRef> &links,
                     const QVector<int> &notes);

Q_SIGNALS:
    void selectionChosen(const QStringList &ids, const QVector<LinkRef> &links,
                         const QVector<int> &notes);
    /// Enter or a double click: show the action on the canvas.
    void shown(const QString &id);

private:
    /// Make all items; the selection is kept.
    void fill();
    /// Add an action with an item per link.
    void addAction(const QString &id);
    /// Report what the user has selected here.
    void reportSelection();
    /// Of a link the action at its other end; of a note empty.
    static QString idOf(const QTreeWidgetItem &item);

    QPointer<GraphDocument> m_document;
    QTimer m_update; // so that many changes are one update
    // What is selected.

    QStringList m_ids;
    QVector<LinkRef> m_links;
    QVector<int> m_notes;
};

} // namespace corvanta::studio
