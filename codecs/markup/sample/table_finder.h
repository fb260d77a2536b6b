// Finds the tables of a document in its shapes, and the levels that read them.
#pragma once
#include "codecs/markup/sample/document_shape.h"
#include "codecs/markup/sample/sample_levels.h"

namespace corvanta::markup {

/// Find the tables; there is always at least one. `isXml`: without repeated elements, the root
/// element is the record. `zeroBased` is the base of indexes in paths.
SampledDocument findTables(const Shapes &shapes, bool isXml, bool zeroBased);

} // namespace corvanta::markup
