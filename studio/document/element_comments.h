// Keeps the comments in an element of a graph file when the element is written again.
//
// The host's tree of parameters has no comments. So they are taken from the text of the file and
// put into the new text, next to the elements next to which they were. Threads: plain functions.
#pragma once
#include <QString>

namespace corvanta::studio {

/// `after` with the comments and processing instructions inside `before`, the same element until
/// now. Both texts are one well-formed element. A comment moves with the element after it, or with
/// the one before it in its line. If that element has been removed, the comment stays in the place;
/// only comments inside a removed element are removed with it.
QString withComments(const QString &before, const QString &after);

} // namespace corvanta::studio
