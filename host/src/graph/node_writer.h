// Writes elements of saved graphs as text. Threads: pure functions.
#pragma once
#include "corvanta/xml_node.h"

namespace corvanta {

/// Write the attributes of `node` as in its document, escaped, each with a space before it.
void writeAttributes(const XMLNode &node, std::wostream &out);
/// Write `node` at the current place of a line that is indented by `depth` steps. Elements that
/// hold only elements get one line each; text is kept unchanged. No line feed follows the element.
void writeNode(const XMLNode &node, int depth, std::wostream &out);

} // namespace corvanta
