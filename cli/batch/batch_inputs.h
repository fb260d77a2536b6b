// The inputs of a batch, in its folder: whole files, or pieces of them.
#pragma once
#include "cli/batch/input_list.h"

/// Whether the word of --inputs is the folder of a batch.
bool isBatchFolder(const QString &word);

/// The inputs of the batch in a folder, with their sizes and times when it began. The fault is
/// a usage error: their file is missing or damaged.
CommandResult<QVector<InputFile>> inputsOfBatch(const QString &folder);

/// The file with the inputs of the batch in a folder, and its content.
QString inputsFileOf(const QString &folder);
QByteArray batchLines(const QVector<InputFile> &inputs);
