// Reads the first records of a document and merges them to shapes.
#pragma once
#include "codecs/markup/sample/document_shape.h"
#include "codecs/markup/tokens/tokenizer.h"
#include "codecs/markup/tree/element_text.h"

namespace corvanta::markup {

/// Read up to `records` records (at least 1), and not more than a few million tokens. The tokenizer
/// must be new. Damaged data ends the sample without an error.
Shapes sampleShapes(MarkupTokenizer &tokenizer, int records, const TextRule &rule);

} // namespace corvanta::markup
