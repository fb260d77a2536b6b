// The input files of a graph that is run once for each of them.
#pragma once
#include "cli/batch/file_state.h"
#include "cli/batch/split_rows.h"
#include "cli/command_line.h"

#include <QMap>
#include <QString>
#include <QVector>

#include <optional>

/// A file for which the graph is run.
struct InputFile
{
    FileState file;
    qsizetype index = 0; ///< place in the whole list, from 1, whatever the shard

    std::optional<InputPiece> piece = {}; ///< the rows of the file; none: all of them

    /// The name and, of a piece, its rows, for messages.
    QString label() const;
    /// The size of the file, or the share of a piece in it.
    qint64 bytes() const;
    /// The variables input, inputStem (stemOf(); with the archive of a member) and inputIndex; of a
    /// piece also inputFirstRow, inputRowCount and inputPart.
    QMap<QString, QString> variables() const;
};

/// The names of the variables that an InputFile has.
QStringList inputVariables();

/// The inputs of `--inputs WORD`: of a pattern (a word with * or ? that is not the name of a file)
/// the files that match, else those that the list file WORD names, one per line; "-" reads the
/// list from standard input. Relative names are relative to the current folder. Each file exists
/// and is listed once. The fault is a usage error.
CommandResult<QVector<InputFile>> readInputs(const QString &word);

/// Each input in pieces of about `rows` rows; the indexes count the pieces. The fault is a usage
/// error: `rows` is not a positive number, or an input cannot be divided.
CommandResult<QVector<InputFile>> inPieces(const QVector<InputFile> &inputs, const QString &rows);
