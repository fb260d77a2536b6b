// Runs a graph up to one pin, for previews and column pickers.
#pragma once
#include "corvanta/export.h"
#include "corvanta/meta_info.h"

#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>
#include <stop_token>

class ActionItem;
class OneRow;
class CorvantaGraph;
class LogSink;

namespace corvanta {
class ActionRegistry;
}

/// Collects the rows of a pin. Threads: one at a time per object. run() blocks until the rows are
/// there.
class CORVANTA_EXPORT EngineRunner
{
public:
    /// Whether a pin number counts the input pins of the action or its output pins.
    enum PinType { PinIn, PinOut };

    EngineRunner() = default;
    /// How a graph is run; the initialisers are the usual values.
    struct Options
    {
        bool wholeTable = false; ///< keep all rows
        bool mayWrite = true;    ///< false: an action that writes files or reads a pipe is an error
        std::stop_token stop;    ///< ends the run soon
        LogSink *log = nullptr;  ///< null: the program's sink
        /// Gets the rows instead of rows() and columns(); see RowListener. Null: keep them.
        std::function<bool(const TableSchema &columns, const OneRow *row)> onRow = nullptr;
    };
    /// Maximum number of rows kept unless the whole table is requested.
    static constexpr int kPreviewRows = 200;

    /// Run the edited graph (MainUI::editedGraph) up to a pin of `action` and keep the first
    /// kPreviewRows rows of the pin, or all. The editor has set the number of the action
    /// (ActionItem::setIdx). Returns false if there is no such action or pin, or the run failed. On
    /// the GUI thread.
    bool run(int pin, ActionItem *action, PinType type, bool wholeTable);
    /// The same for any graph, on any thread. Only the actions that the pin depends on are checked
    /// and run; what is wrong with them is logged. Returns false for a pin that does not exist or,
    /// of an input pin, that has no link, and after a stop. The rows before a failure are kept.
    bool run(const CorvantaGraph &graph, const corvanta::ActionRegistry &registry,
             const QString &id, int pin, PinType type, const Options &options);

    // Valid until the next run() of this object.

    /// The columns of the last run.
    const TableSchema &columns() const { return m_columns; }
    /// The cells of the last run as text; null strings are missing cells.
    const QVector<QStringList> &rows() const { return m_rows; }

private:
    TableSchema m_columns;
    QVector<QStringList> m_rows;
};
