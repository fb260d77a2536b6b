// cli/input_graph.h
// The front of a graph: the action that reads the file of convert, head and schema.
#pragma once
#include "command_line.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"

/// Id of that action.
inline constexpr char kInputId[] = "input";

/// --reader and --table, which addInput() looks at.
CommandOptions inputOptions();

/// Add the action that reads `fileName`, filled from what the file holds. kDone, or the exit
/// status, after the messages or with `usage` filled.
int addInput(const CommandLine &line, const QString &fileName,
             const corvanta::ActionRegistry &registry, CorvantaGraph *graph, QString *usage);
