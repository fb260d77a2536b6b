// Checks a data set before the library reads it.
//
// The library (1.1.8) trusts some sizes and counts of a file: a damaged or hostile one makes it
// read beyond its buffers, or allocate memory that the file cannot need. A file that passes has no
// such number. Layouts: docs/formats/stat.md.
#pragma once
#include "base/byte_source.h"
#include "codecs/stat/dictionary.h"
#include "codecs/stat/error.h"

namespace corvanta::stat {

/// Check the beginning of a data set. `source` seeks at no cost; its position changes. The detail
/// of a fault is the reason in words. Errors: CannotOpen for another kind of file, Damaged,
/// Unreadable.
Result<void, Error> checkHeader(ByteSource &source, Format format);

} // namespace corvanta::stat
