// The list of problems of a graph, updated while it is edited.
#pragma once
#include <QPointer>
#include <QTreeWidget>

namespace corvanta::studio {

class GraphDocument;

/// What `corvanta check` finds. Threads: the GUI thread.
class ProblemList final : public QTreeWidget
{
    Q_OBJECT

public:
    explicit ProblemList(QWidget *parent = nullptr);
    /// Show the problems of a document; null for none.
    void setDocument(GraphDocument *document);

Q_SIGNALS:
    /// A click or Enter on a problem of this action.
    void actionChosen(const QString &id);
    /// Number of problems, for the title of the panel.
    void countChanged(int count);

private:
    /// Show the problems that are known now.
    void fill();

    QPointer<GraphDocument> m_document;
};

} // namespace corvanta::studio
