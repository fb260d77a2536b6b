// Reads the value labels of a data set, or those of a SAS catalogue.
//
// Stata files have their value labels after the rows, so rows with labels need a pass of its own
// before. It skips the rows.
#pragma once
#include "base/byte_source.h"
#include "codecs/stat/dictionary.h"
#include "codecs/stat/error.h"

namespace corvanta::stat {

/// The value labels of a data set. `source` seeks at no cost. Errors: Library, Unreadable,
/// UnknownEncoding, NoMemory.
Result<LabelSets, Error> readLabelSets(ByteSource &source, Format format, const QString &encoding);

/// Whether a Stata file before version 117, which has no end tag, ends inside its value labels. The
/// library silently leaves out the labels that are not complete. `source` seeks at no cost.
bool endsInLabels(ByteSource &source);

/// The value labels of a SAS catalogue (.sas7bcat). Errors: the same.
Result<LabelSets, Error> readCatalogue(ByteSource &source, const QString &encoding);

} // namespace corvanta::stat
