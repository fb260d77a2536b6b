// Finds the separator of a text from its beginning.
#pragma once
#include "codecs/csv/dialect.h"

#include <string_view>

namespace corvanta::csv {

/// The separator (comma, semicolon, tab or vertical bar) that gives the records of `beginning` the
/// most regular form: most of them have as many fields as the first one, which has several. Quotes
/// are respected; `dialect` describes everything else. Where several are equally regular, the one
/// with more fields is used. A text of one column has no separator: the result then is one that no
/// record contains.
///
/// `isWhole`: the text ends there; otherwise its last record may be cut and is ignored. UTF-8.
/// Threads: pure function.
char findSeparator(std::string_view beginning, bool isWhole, Dialect dialect);

} // namespace corvanta::csv
