// Runs the part of a graph that an action depends on, for the rows of a preview.
#pragma once
#include "corvanta/corvanta_graph.h"
#include "corvanta/engine_runner.h"
#include "panels/background/log_lines.h"

#include <memory>
#include <stop_token>

namespace corvanta {

class ActionRegistry;

/// What is run: a copy that later edits do not change. Threads: any.
struct PreviewRequest
{
    CorvantaGraph graph; ///< the edited graph; if the action is of no graph, one with only it
    QString action;      ///< id
    std::shared_ptr<const ActionRegistry> registry;
};

/// For an action with its current parameters. On the GUI thread.
PreviewRequest requestOf(ActionItem &action);

struct PreviewRows
{
    TableSchema columns;
    QVector<QStringList> rows; ///< at most EngineRunner::kPreviewRows; null: a missing cell
    Note problem;              ///< the rows before an error are kept
};

/// The first rows of pin 0, as far as they are known. Blocks until they are there or a stop is
/// requested. Runs no action that writes files.
PreviewRows previewRows(const PreviewRequest &request, EngineRunner::PinType pin,
                        const std::stop_token &stop);

} // namespace corvanta
