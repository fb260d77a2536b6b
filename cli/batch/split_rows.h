// Divides an input file into pieces of rows, so that several runs share one large file.
#pragma once
#include "base/result.h"
#include "corvanta/action_registry.h"

#include <QString>
#include <QVector>

/// Rows of a file that follow one another. The pieces of a file have all of its rows, each once.
struct InputPiece
{
    qint64 firstRow = 1; ///< from 1
    qint64 rowCount = 0; ///< 0 for a file without rows
    int part = 1;        ///< number of the piece in its file, from 1
    qint64 fileRows = 0; ///< of the whole file
};

/// Pieces of about `rows` rows, which is at least 1, in order; at least one. Parquet files are
/// divided between row groups, data sets of SAS, SPSS and Stata at any row. The fault is the reason
/// in words why the file cannot be divided or read.
corvanta::Result<QVector<InputPiece>, QString> splitInput(const QString &name, qint64 rows,
                                                          const corvanta::ActionRegistry &registry);
