// codecs/markup/tree/path.h
// Paths to elements: "orders/lines[2]/price", "[0]", "a\/b".
#pragma once
#include "codecs/markup/tree/tree.h"

#include <QStringView>

#include <string>
#include <vector>

namespace corvanta::markup {

/// One step of a path, taken apart.
struct PathStep
{
    std::u16string name;  ///< in lower case
    quint32 index = 0;    ///< counted from 0, whatever the path's base
    bool anyName = false; ///< a step "[i]"
    bool operator==(const PathStep &) const = default;
    /// "@name": reaches an attribute (or, where there is none, a child of that name).
    bool isAttribute() const { return !anyName && !name.empty() && name[0] == u'@'; }
};

struct PathSyntax
{
    bool zeroBased = true;
    char16_t separator = u'/';
};

/// Cut a path into steps. A leading separator is skipped; an empty path has no steps.
std::vector<PathStep> parsePath(QStringView path, const PathSyntax &syntax);

/// `name` as one step of a path, with backslashes where they are needed.
std::u16string escapedStep(std::u16string_view name);

/// True when an element called `name` is one that a step called `lowerCase` asks for: equal
/// character by character in lower case.
bool nameMatches(const RawText &name, std::u16string_view lowerCase);
/// A name in the form that nameMatches() compares with.
std::u16string toLowerCase(QStringView name);
/// The same for a name as it is written in a path, with its backslashes.
std::u16string nameInStep(QStringView text);

/// Find a descendant. A null path, and a step that finds nothing, give the empty handle; an empty
/// path gives the node itself.
MarkupNode getChildNodeByPath(const MarkupNode &node, QStringView path, bool zeroBased,
                              char16_t separator);

} // namespace corvanta::markup
