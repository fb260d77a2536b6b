// What some actions can say about their input files before a run, for commands that divide the work
// on them. An action implements it in addition to ActionParameters.
#pragma once
#include "base/result.h"
#include "corvanta/export.h"

#include <QString>
#include <QVector>

namespace corvanta {

/// The rows of a file, in the blocks in which it stores them.
struct RowBlocks
{
    QVector<qint64> rows;     ///< of each block, in order
    bool isDivisible = false; ///< a reader may begin at any row without reading those before it
};

/// Threads: the owner's. Not during a run.
class CORVANTA_EXPORT FileFacts
{
public:
    virtual ~FileFacts();
    /// The rows of the input file. A reader with this function has the parameters firstRow and
    /// rowCount. The fault is the reason in words, such as "it cannot be opened". By default the
    /// format has no such blocks.
    virtual Result<RowBlocks, QString> rowBlocks();
    /// Why the parts of a merge have to be decoded, and written again as rows: a column has
    /// different types. Empty, as by default, if their bytes can be joined or if they cannot be
    /// read.
    virtual QString reasonToDecode();
};

} // namespace corvanta
