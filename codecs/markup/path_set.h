// codecs/markup/path_set.h
// Many paths looked up together, from the same element of one record after the other.
//
// The paths are merged into a trie. Records repeat the same names in the same order: each trie node
// remembers the names that it met and which of its wishes each fulfilled, so that a lookup is one
// comparison of bytes per child.
#pragma once
#include "codecs/markup/path.h"

#include <span>
#include <string>
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
    static constexpr quint32 kNoWant = ~quint32(0);

    /// A step that leads from one node of the trie to the next.
    struct Want
    {
        PathStep step;
        quint32 node = 0;
    };
    /// What was learned about the n-th child: its name, and the wants that it fulfils.
    struct Slot
    {
        std::string name;
        TextForm form = TextForm::Plain;
        std::vector<quint32> wants;
    };
    struct Node
    {
        std::vector<size_t> paths; ///< that end here
        std::vector<Want> wants;
        std::vector<Slot> shape;
        size_t attributeWants = 0;
    };
    struct Visit
    {
        quint32 node;
        quint32 element;
    };

    void visit(const MarkupTree &tree, Visit at);
    void walkChildren(const MarkupTree &tree, Visit at);
    void learnChildren(const MarkupTree &tree, Visit at, quint32 child, size_t known, size_t left);
    void findAttributes(const MarkupTree &tree, Visit at);
    void fulfil(const Node &node, std::span<const quint32> wants, quint32 item);

    std::vector<Node> m_nodes;
    size_t m_pathCount = 0;
    std::vector<quint32> m_found;
    std::vector<Visit> m_open;
    std::vector<quint32> m_left;     ///< per want of a node: matching children still to pass over
    std::vector<quint32> m_matching; ///< scratch of learnChildren()
};

} // namespace corvanta::markup
