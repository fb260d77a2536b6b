// The shape of a document: its elements, merged by name and place.
//
// The sampler counts how often each element occurs. From these counts, the table finder decides
// which elements repeat and so can be rows.
#pragma once
#include <QtGlobal>

#include <map>
#include <string>
#include <vector>

namespace corvanta::markup {

/// All elements of one name at one place of the document.
struct Shape
{
    /// "@name" for an attribute.
    std::u16string name;
    /// Number of the shape that holds it.
    size_t parent = 0;
    /// Numbers, in the order of their first occurrence.
    std::vector<size_t> children;
    /// The children.
    std::map<std::u16string, size_t> byName;
    /// Occurrences in the sample.
    qint64 count = 0;
    /// Occurrences in the current parent.
    qint64 inParent = 0;
    /// The highest inParent.
    qint64 maxInParent = 0;
    /// An item of an array, or of a map.
    bool isItem = false;
    /// An item of a map.
    bool isNamed = false;
    bool isAttribute = false;
    bool hasText = false;

    bool isRepeated() const { return isItem || maxInParent > 1; }
    bool holdsOthers() const { return !children.empty(); }
};

/// Shapes by number. Number 0 is the document. A parent comes before its children.
using Shapes = std::vector<Shape>;

/// The number that means "no shape".
inline constexpr size_t kNoShape = ~size_t(0);

} // namespace corvanta::markup
