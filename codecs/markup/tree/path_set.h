// codecs/markup/tree/path_set.h
// Many paths looked up together, from the same element of one record after the other.
//
// The paths are merged into a trie; each of its nodes remembers the names that it met.
#pragma once
#include "codecs/markup/tree/name_memory.h"
#include "codecs/markup/tree/path.h"

#include <memory>
#include <span>
#include <vector>

namespace corvanta::markup {

/// Threads: one at a time.
class PathSet
{
public:
    PathSet();

    /// Add a path; its number, counted from 0.
    size_t add(const std::vector<PathStep> &steps);
    size_t size() const { return m_pathCount; }

    /// True when a path of at least one step begins with `name`.
    bool isFirstStep(const RawText &name) const;

    /// Look all paths up from `element`. The answers, by path number, are item indexes (elements or
    /// attributes) or MarkupTree::kNone, and stay valid until the next call.
    std::span<const quint32> resolve(const MarkupTree &tree, quint32 element);

private:
    static constexpr quint32 kNotOnly = ~quint32(0);

    /// A step that leads from one node of the trie to the next.
    struct Want
    {
        PathStep step;
        quint32 node = 0;
        quint32 onlyPath = kNotOnly; ///< the path that ends there, if that is all
    };
    struct Node
    {
        std::vector<size_t> paths; ///< that end here
        std::vector<Want> wants;
        std::vector<quint32> indexes; ///< of the wants' steps
        std::vector<quint32> attributeWants;
        NameMemory children;
        NameMemory attributes;
    };
    struct Visit
    {
        quint32 node;
        quint32 element;
    };

    void visit(const MarkupTree &tree, Visit at);
    void walkChildren(const MarkupTree &tree, Visit at);
    void fulfil(quint32 node, quint32 item);
    void findAttributes(const MarkupTree &tree, Visit at);

    std::vector<std::unique_ptr<Node>> m_nodes;
    size_t m_pathCount = 0;
    std::vector<quint32> m_found;
    std::vector<Visit> m_open;
    std::vector<quint32> m_left; ///< per want of a node: matching children still to pass over
};

} // namespace corvanta::markup
