// Adds the action that reads the input file of convert, head and schema to a graph.
#pragma once
#include "command_line.h"
#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "file_types.h"

/// Id of that action.
inline constexpr char kInputId[] = "input";

/// The options that addInput() uses: --reader, --table and --sheet.
CommandOptions inputOptions();

/// Add the action that reads `fileName`; parameters that depend on the content of the file are set
/// from its beginning. `writer`, if given, receives the columns that are dates and the name of the
/// sheet that is copied; `notes`, if given, is set to what the file says about its columns.
CommandResult<void> addInput(const CommandLine &line, const QString &fileName,
                             const corvanta::ActionRegistry &registry, CorvantaGraph *graph,
                             ReadExtent extent = ReadExtent::Whole,
                             ActionParameters *writer = nullptr,
                             QVector<ColumnNotes> *notes = nullptr);
