// Finds JSON objects that are used as maps, whose names are data.
#pragma once
#include "codecs/markup/sample/document_shape.h"

namespace corvanta::markup {

/// Treat the members of each map as the items of an array: merge them to one shape without a name
/// (isItem, isNamed).
void mergeMapMembers(Shapes *shapes);

} // namespace corvanta::markup
