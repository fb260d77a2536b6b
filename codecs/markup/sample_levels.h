// codecs/markup/sample_levels.h
// Derive levels and items from the first records of a document.
#pragma once
#include "codecs/markup/level.h"
#include "codecs/markup/tokenizer.h"

namespace corvanta::markup {

/// Look at up to `records` records and say how to read the document: the shallowest repeated
/// element that holds others becomes the first level, the arrays in it inner levels, scalars and
/// attributes items with unique names. Damaged data is judged by what comes before the damage.
/// There is always one level and one item. The tokenizer must be new; array items must have the
/// empty name.
std::vector<Level> deriveLevels(MarkupTokenizer &tokenizer, int records);

} // namespace corvanta::markup
