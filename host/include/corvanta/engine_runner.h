// Runs a graph up to one pin, for previews and column pickers.
#pragma once
#include "corvanta/export.h"
#include "corvanta/meta_info.h"

#include <QString>
#include <QStringList>
#include <QVector>

class ActionItem;
class CorvantaGraph;

namespace corvanta {
class ActionRegistry;
}

/// Collects the rows of a pin. Threads: the GUI thread; run() blocks until the rows are there.
class CORVANTA_EXPORT EngineRunner
{
public:
    /// Whether a pin number counts the input pins of the action or its output pins.
    enum PinType { PinIn, PinOut };

    EngineRunner() = default;
    /// Maximum number of rows kept unless the whole table is requested.
    static constexpr int kPreviewRows = 200;

    /// Run the edited graph (MainUI::editedGraph) up to a pin of `action` and keep the first
    /// kPreviewRows rows of the pin, or all. The editor has set the number of the action
    /// (ActionItem::setIdx). Returns false if there is no such action or pin, or the run failed.
    bool run(int pin, ActionItem *action, PinType type, bool wholeTable);
    /// The same for any graph. Only the actions that the pin depends on are checked and run; their
    /// messages go to the program's log. Returns false for a pin that does not exist or, of an
    /// input pin, that has no link.
    bool run(const CorvantaGraph &graph, const corvanta::ActionRegistry &registry,
             const QString &id, int pin, PinType type, bool wholeTable);

    // Valid until the next run() of this object.

    /// The columns of the last run.
    const TableSchema &columns() const { return m_columns; }
    /// The cells of the last run as text; null strings are missing cells.
    const QVector<QStringList> &rows() const { return m_rows; }

private:
    TableSchema m_columns;
    QVector<QStringList> m_rows;
};
