// The rows of an input file, for the commands that print something about them.
#pragma once
#include "command_line.h"
#include "corvanta/row_listener.h"
#include "input_graph.h"

/// The options and the argument of a command that reads one file.
CommandOptions inputFileOptions();

/// Run the reader of the file of `line` and pass its first `rows` rows, at least one, to `onRow`;
/// all rows for a negative number. `command` is its name, for messages. `facts`, if given, is set
/// before the first row; see addInput().
CommandResult<void> readRows(const QString &command, const CommandLine &line, qint64 rows,
                             ReadExtent extent, const corvanta::RowListener::Callback &onRow,
                             InputFacts *facts = nullptr);

/// What the columns of the rows are, in order: the kinds that the host has found, or else those of
/// their cells.
QVector<ColumnKind> kindsOf(const TableSchema &schema, const InputFacts &facts);
