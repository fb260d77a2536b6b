// Adds the action that reads the input file of convert, head and schema to a graph.
#pragma once
#include "command_line.h"
#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "file_types.h"

/// Id of that action.
inline constexpr char kInputId[] = "input";

/// The options that addInput() uses: --reader, --table, --sheet and --types.
CommandOptions inputOptions();

/// What a command wants to know about the columns of the input.
struct InputFacts
{
    /// How much is examined for `kinds`.
    ActionParameters::KindExtent extent = ActionParameters::KindExtent::Sample;
    QVector<ColumnKind> kinds;
    QVector<ColumnNotes> notes; ///< what the file says about its columns
};

/// Add the action that reads `fileName`; parameters that depend on the content of the file are set
/// from its beginning. If `writer` has types of columns, it receives the kinds of the columns, and
/// the rows have numbers: an action `cast` follows where the reader has none. It also receives the
/// name of the sheet that is copied. `facts`, if given, is set without changing the rows. Returns
/// the id of the action whose output pin 0 has the rows.
CommandResult<QString> addInput(const CommandLine &line, const QString &fileName,
                                const corvanta::ActionRegistry &registry, CorvantaGraph *graph,
                                ReadExtent extent = ReadExtent::Whole,
                                ActionParameters *writer = nullptr, InputFacts *facts = nullptr);
