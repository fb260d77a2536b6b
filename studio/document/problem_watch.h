// Keeps the list of problems of a document up to date: what `corvanta check` finds.
//
// The text that would be saved is checked in the background, a short time after the last edit.
// Threads: the GUI thread.
#pragma once
#include "corvanta/edit/worker.h"
#include "studio/document/graph_document.h"

#include <QTimer>

namespace corvanta::studio {

class ProblemWatch final : public QObject
{
public:
    /// `changed` is called when the list differs.
    ProblemWatch(GraphDocument &document, std::function<void()> changed);
    const QVector<GraphProblem> &problems() const { return m_problems; }
    /// Check after a short time.
    void schedule() { m_timer.start(); }

    static constexpr int kDelayMs = 250;

private:
    void check();
    void show(const QVector<GraphProblem> &problems);

    GraphDocument &m_document;
    std::function<void()> m_changed;
    QVector<GraphProblem> m_problems;
    QTimer m_timer;
    Worker m_background;
};

} // namespace corvanta::studio
