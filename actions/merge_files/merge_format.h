// The formats of mergeFiles.
#pragma once
#include "codecs/merge/part_merger.h"

#include <QString>

#include <memory>

namespace corvanta {

/// None: the files cannot be joined by their bytes.
enum class MergeFormat : quint8 { None, Parquet, Csv, Tsv, JsonLines, Json };

/// The format of a file by the extension of its name, without a final ".gz".
MergeFormat mergeFormatOf(const QString &name);
/// Its name in messages.
QString nameOf(MergeFormat format);
/// A merger of the format, which is not None.
std::unique_ptr<PartMerger> makeMerger(MergeFormat format, MergeMatch match);

} // namespace corvanta
