// Checks a data set before the library reads it.
//
// The library (1.1.8) trusts some sizes and counts of a file: a damaged or hostile one makes it
// read or write beyond its buffers, or allocate memory that the file cannot need. A file that
// passes has no such number. docs/formats/stat.md lists the checks.
// Threads: pure functions.
#pragma once
#include "base/byte_source.h"
#include "codecs/stat/dictionary.h"
#include "codecs/stat/error.h"

namespace corvanta::stat {

/// Check the parts of a data set before its rows. `source` seeks at no cost and knows its size; its
/// position changes. The detail of a fault is the reason in words. Errors: CannotOpen for an empty
/// file, Damaged, Unreadable.
Result<void, Error> checkHeader(ByteSource &source, Format format);

// The checks of the formats; checkHeader() chooses one.

Result<void, Error> checkSav(ByteSource &source);
Result<void, Error> checkStata(ByteSource &source);
Result<void, Error> checkSas(ByteSource &source);

} // namespace corvanta::stat
