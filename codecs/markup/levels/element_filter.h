// Finds the occurrences of a level in a tree, without the empty elements that do not count.
//
// Empty elements are left out here only: indexes of paths count them, so that the columns of a
// table keep their places.
#pragma once
#include "codecs/markup/levels/extract_options.h"
#include "codecs/markup/levels/level_state.h"

namespace corvanta::markup {

/// Threads: objects are constant, so any number of threads may use one.
class ElementFilter
{
public:
    /// Uses `ignoreEmpty` and `text` of the options: `text` decides whether a section such as CDATA
    /// counts as text, and an element with only that section as empty.
    explicit ElementFilter(const ExtractOptions &options)
        : m_text(options.text)
        , m_ignoreEmpty(options.ignoreEmpty)
    {
    }

    /// True for an element that ExtractOptions::ignoreEmpty excludes.
    bool isIgnored(const MarkupTree &tree, quint32 element) const
    {
        return m_ignoreEmpty && isEmpty(tree, element);
    }

    /// The first occurrence of `level` at or after the item `from` directly inside `container`;
    /// MarkupTree::kNone if there is none.
    quint32 firstOccurrence(const MarkupTree &tree, const LevelState &level, quint32 from,
                            quint32 container) const;

private:
    /// Whether the element has no text, no sub-elements and no attributes.
    bool isEmpty(const MarkupTree &tree, quint32 element) const;

    TextRule m_text;
    bool m_ignoreEmpty;
};

} // namespace corvanta::markup
