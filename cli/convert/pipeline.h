// Builds the graph of a conversion: readers, actions on their rows, and the writer.
#pragma once
#include "cli/command_line.h"
#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"

/// The options of a conversion that choose inputs, rows and columns.
CommandOptions pipelineOptions();

/// The graph that reads all arguments of `line` but the last one and writes the last one, with the
/// options of pipelineOptions(). The fault is a usage error, or kFailed after a message.
CommandResult<CorvantaGraph> makePipeline(const CommandLine &line,
                                          const corvanta::ActionRegistry &registry);
