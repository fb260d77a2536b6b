// Reads the first records of a document and merges them to shapes.
#pragma once
#include "base/occurrences.h"
#include "codecs/markup/sample/document_shape.h"
#include "codecs/markup/tokens/tokenizer.h"
#include "codecs/markup/tree/element_text.h"

namespace corvanta::markup {

/// The shapes, and what has none.
struct ShapeSample
{
    Shapes shapes;
    /// Elements whose names a path cannot express; the place is the first name.
    Occurrences unnameable;
    /// Elements of further names when there are too many, or too deep; the place is the first name.
    Occurrences beyondLimits;
};

/// Read up to `records` records (at least 1), and not more than a few million tokens. The tokenizer
/// must be new. Damaged data ends the sample without an error.
ShapeSample sampleShapes(MarkupTokenizer &tokenizer, int records, const TextRule &rule);

} // namespace corvanta::markup
