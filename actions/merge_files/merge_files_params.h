// The parameters of mergeFiles.
#pragma once
#include "corvanta/params/param_table.h"

namespace corvanta {

// Names of parameters, for problems with them.
inline constexpr char kMergedFile[] = "fileName";
inline constexpr char kMergedParts[] = "parts";

struct MergeFilesParams
{
    /// The file that is written; its extension is the format. Not expanded yet.
    QString fileName;
    /// Names and patterns of the files to join, in order. Not expanded yet.
    QStringList parts;
    /// Columns are joined by name. Off: all parts must have the same columns.
    bool byName = false;
    /// Create the missing folders of the file.
    bool createDir = false;
};

/// Constant; made by the first call.
const ParamTable<MergeFilesParams> &mergeFilesParamTable();

} // namespace corvanta
