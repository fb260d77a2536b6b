// The columns that reach the input pins of a document's actions, for panels.
//
// They are computed by running the part of the graph before the pin for its first rows, in the
// background, and kept until something in that part changes. Threads: the GUI thread.
#pragma once
#include "corvanta/edit/worker.h"
#include "corvanta/meta_info.h"
#include "studio/document/content.h"

#include <QHash>
#include <QPair>
#include <QSet>

#include <functional>

namespace corvanta {
class ActionRegistry;
}

namespace corvanta::studio {

class InputColumns final
{
public:
    /// `known` is called with the id of an action when columns of one of its pins become known.
    InputColumns(const ActionRegistry &registry, std::function<void(const QString &)> known);
    /// The columns of a pin, or none while they are computed or cannot be known.
    TableSchema columns(const CorvantaGraph &graph, const QString &id, int pin);
    /// Forget the columns of the pins of these actions.
    void forget(const QSet<QString> &ids);
    /// Forget everything, because the graph is another one.
    void clear();

private:
    using Pin = QPair<QString, int>;
    void computeNext(const CorvantaGraph &graph);

    const ActionRegistry &m_registry;
    std::function<void(const QString &)> m_known;
    QHash<Pin, TableSchema> m_columns;
    QVector<Pin> m_wanted; // the first one is being computed
    CorvantaGraph m_graph; // of the last request
    Worker m_background;
};

} // namespace corvanta::studio
