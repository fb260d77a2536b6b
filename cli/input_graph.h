// Adds the action that reads the input file of convert, head and schema to a graph.
#pragma once
#include "command_line.h"
#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "file_types.h"

/// Id of that action; of several, a number follows.
inline constexpr char kInputId[] = "input";

/// The options that addInput() uses: --reader, --from, --encoding, --separator, --table and
/// --sheet.
CommandOptions inputOptions();

/// What a command wants to know about the columns of the input.
struct InputFacts
{
    /// How much is examined for `kinds`.
    ActionParameters::KindExtent extent = ActionParameters::KindExtent::Sample;
    QVector<ColumnKind> kinds;
    QStringList longNumbers;    ///< columns of numbers that are texts because of their many digits
    QVector<ColumnNotes> notes; ///< what the file says about its columns
};

/// A new action that reads `fileName`, an argument of the command (see inputFile()), without what
/// depends on its content. The fault is a usage error, or kFailed for a file of another format.
CommandResult<std::unique_ptr<ActionItem>> makeInput(const CommandLine &line,
                                                     const QString &fileName,
                                                     const corvanta::ActionRegistry &registry,
                                                     ReadExtent extent = ReadExtent::Whole);

/// The same with the parameters that depend on the content; they are set from its beginning, and
/// the tables of the file are logged for the action `id`. `writer`, if given, receives the name of
/// the sheet that is copied.
CommandResult<std::unique_ptr<ActionItem>> openInput(const CommandLine &line,
                                                     const QString &fileName,
                                                     const corvanta::ActionRegistry &registry,
                                                     ReadExtent extent, const QString &id,
                                                     ActionParameters *writer = nullptr);

/// What the values of the columns of an open input are, with --types.
CommandResult<QVector<ColumnKind>> inputKinds(const CommandLine &line, const QString &fileName,
                                              ActionItem *input,
                                              ActionParameters::KindExtent extent);

/// Add an open input to a graph, which gives the columns of `numbers` with the letters K and F as
/// numbers: an action `cast` follows where the reader does not. Returns the id of the action whose
/// output pin 0 has the rows.
CommandResult<QString> addReader(const corvanta::ActionRegistry &registry, ActionItem *input,
                                 const QVector<ColumnKind> &numbers, const QString &id,
                                 CorvantaGraph *graph);

/// The character between the digits of decimal numbers in texts, if the reader has a choice; empty
/// otherwise.
QString decimalPointOf(const ActionItem &reader);

/// Open an input and add it to a graph, for commands that only read it. `facts`, if given, is set
/// without changing the rows.
CommandResult<void> addInput(const CommandLine &line, const QString &fileName,
                             const corvanta::ActionRegistry &registry, CorvantaGraph *graph,
                             ReadExtent extent, InputFacts *facts = nullptr);
