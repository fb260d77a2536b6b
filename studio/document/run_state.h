// What the canvas shows of the last run of an action.
//
// The run sets it with GraphDocument::setRunState(); it is not part of the file or of undo.
#pragma once
#include <QMetaType>
#include <QVector>

namespace corvanta::studio {

/// The order is that of a run, then of its results.
enum class NodeState { Idle, Waiting, Running, Done, Warning, Failed, Stopped };

/// A plain value.
struct RunState
{
    NodeState state = NodeState::Idle;
    QVector<qint64> rows; ///< sent so far, by output pin; empty: not known
    qint64 rowsIn = -1;   ///< taken so far; negative: not known
    double fraction = -1; ///< done, 0 to 1; negative: not known
    bool operator==(const RunState &) const = default;
};

} // namespace corvanta::studio
