// corvanta/engine_runner.h
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

class CORVANTA_EXPORT EngineRunner
{
public:
    enum PinType { PinIn, PinOut };

    EngineRunner() = default;
    /// Rows kept at most when not the whole table is asked for.
    static constexpr int kPreviewRows = 200;

    /// Run the edited graph (MainUI::editedGraph) up to the pin of `action` and keep its rows: the
    /// first kPreviewRows, or all. False when there is no such pin or the run failed.
    bool run(int pin, ActionItem *action, PinType type, bool wholeTable);
    /// The same for any graph.
    bool run(const CorvantaGraph &graph, const corvanta::ActionRegistry &registry,
             const QString &id, int pin, PinType type, bool wholeTable);

    const TableSchema &columns() const { return m_columns; }
    /// Cells as text; null strings are missing cells.
    const QVector<QStringList> &rows() const { return m_rows; }

private:
    TableSchema m_columns;
    QVector<QStringList> m_rows;
};
