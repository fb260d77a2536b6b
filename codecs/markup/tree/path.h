// Parses paths to elements, for example "orders/lines[2]/price", "[0]" and "a\/b".
#pragma once
#include "codecs/markup/tree/tree.h"

#include <QStringView>

#include <string>
#include <vector>

namespace corvanta::markup {

/// One parsed step of a path.
struct PathStep
{
    /// Lower case, without escapes.
    std::u16string name;
    /// Of an attribute: the name with its letter case, which distinguishes the attributes that
    /// several paths of a PathSet select. Empty for an element.
    std::u16string written;
    /// 0-based among the elements of that name, whatever the path's base.
    quint32 index = 0;
    /// The step is "[i]": any name.
    bool anyName = false;
    /// The step ends with an index, which may be "[]".
    bool isIndexed = false;
    bool operator==(const PathStep &) const = default;
    /// True for "@name", which selects an attribute, or a child of that name if there is none.
    bool isAttribute() const { return !anyName && !name.empty() && name[0] == u'@'; }
};

struct PathSyntax
{
    /// Base of the indexes.
    bool zeroBased = true;
    char16_t separator = u'/';
};

/// Split a path into steps. Skips a leading separator; an empty path has no steps.
std::vector<PathStep> parsePath(QStringView path, const PathSyntax &syntax);

/// Write `name` with the backslashes that it needs in a path. An index must follow a name that ends
/// with "]".
std::u16string escapedName(std::u16string_view name);
/// Write `name` as one step of a path, which selects the first element of that name.
std::u16string escapedStep(std::u16string_view name);

/// True when a step called `lowerCase` selects an element called `name`: the names are equal,
/// character by character, in lower case.
bool nameMatches(const RawText &name, std::u16string_view lowerCase);
/// A name in lower case, as nameMatches() needs it.
std::u16string toLowerCase(QStringView name);
/// Like toLowerCase(), for a name that is escaped as in a path.
std::u16string nameInStep(QStringView text);

/// Find a descendant. Returns the empty handle for a null path and if a step selects nothing, and
/// the node itself for an empty path.
MarkupNode getChildNodeByPath(const MarkupNode &node, QStringView path, bool zeroBased,
                              char16_t separator);

} // namespace corvanta::markup
