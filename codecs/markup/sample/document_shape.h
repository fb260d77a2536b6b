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
    std::u16string name;                     ///< "@name" for an attribute
    size_t parent = 0;                       ///< number of the shape that holds it
    std::vector<size_t> children;            ///< numbers, in the order of their first occurrence
    std::map<std::u16string, size_t> byName; ///< the children
    qint64 count = 0;                        ///< occurrences in the sample
    qint64 inParent = 0;                     ///< occurrences in the current parent
    qint64 maxInParent = 0;                  ///< the highest inParent
    bool isItem = false;                     ///< an item of an array, or of a map
    bool isNamed = false;                    ///< an item of a map
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
