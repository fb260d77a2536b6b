// Looks up many paths together, starting at one element per record.
//
// The paths are merged into a trie. Each node of the trie remembers which of its steps select the
// names that it has seen (NameMemory), because records repeat the same names.
#pragma once
#include "codecs/markup/tree/name_memory.h"
#include "codecs/markup/tree/path.h"

#include <QString>

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace corvanta::markup {

/// Threads: one at a time.
class PathSet
{
public:
    PathSet();

    /// Add a path. Paths are numbered from 0 in the order of these calls.
    void add(const std::vector<PathStep> &steps);
    /// Number of paths.
    size_t size() const { return m_pathCount; }

    /// True when the first step of a path names `name`.
    bool isFirstStep(const RawText &name) const;

    /// Look up all paths from `element`. Returns, by path number, the index of the item found (an
    /// element or attribute) or MarkupTree::kNone. The result is valid until the next call.
    std::span<const quint32> resolve(const MarkupTree &tree, quint32 element);

    // Further matches of steps without an index, which no path of the set reads.

    /// Count them in later lookups. Off by default: it costs a comparison of each child.
    void countRepeats(bool on) { m_countsRepeats = on; }
    /// True when the last lookup found the first one of a step: call placeRepeats() then.
    bool hasNewRepeats() const { return !m_newRepeats.empty(); }
    /// Count a match of a path of one step that is not in the tree. `name` is where it is.
    void addRepeat(size_t path, TextSpan name);
    /// Store where they are. `placeOf(name)` returns the place of an item of the tree with that
    /// name as text.
    template <class PlaceOf> void placeRepeats(PlaceOf placeOf)
    {
        for (const NewRepeat &repeat : std::exchange(m_newRepeats, {})) {
            m_nodes[repeat.node]->edges[repeat.edge].firstRepeat = placeOf(repeat.name);
        }
    }
    /// How many there are, and the place of the first.
    struct Repeats
    {
        qint64 count = 0;
        QString first = {};
    };
    /// Of all steps of the path with this number.
    Repeats repeatsOf(size_t path) const;
    /// Count from 0 again, for the next file.
    void resetCounts();

    // Elements, attributes and texts that lookups pass by. A part inside another one that is passed
    // by does not count.

    /// Count them in later lookups. Off by default.
    void countUnread(bool on) { m_countsUnread = on; }
    /// What is at this path, and all inside it, does not count.
    void ignore(const std::vector<PathStep> &steps);
    qint64 unread() const { return m_unread; }
    /// The first item that counted, if it was found since the last call.
    std::optional<quint32> takeFirstUnread() { return std::exchange(m_firstUnread, std::nullopt); }

private:
    static constexpr quint32 kNone = ~quint32(0);

    /// A step from one node of the trie to the next.
    struct Edge
    {
        PathStep step;
        quint32 node = 0;
        /// The only path through `node`, which ends there.
        quint32 onlyPath = kNone;
        /// The node is an ignored one.
        bool isIgnored = false;
        qint64 repeats = 0;
        QString firstRepeat = {};
    };
    /// The first repeat of an edge, whose place is not known yet.
    struct NewRepeat
    {
        quint32 node;
        quint32 edge;
        TextSpan name;
    };
    using Numbers = std::vector<quint32>;
    /// A node of the trie. The root, number 0, is the element where all paths start.
    struct Node
    {
        /// Numbers of the paths that end here.
        std::vector<size_t> paths;
        std::vector<Edge> edges;
        /// Numbers of the edges by the name of their step, ascending; of those for any name, by an
        /// empty one.
        std::unordered_map<std::u16string, Numbers> byName;
        /// Step.index by edge.
        std::vector<quint32> indexes;
        /// By edge: the number of matches of its name that steps read; kNone for steps with an
        /// index, whose further matches do not count.
        std::vector<quint32> mostRead;
        /// Numbers of the edges whose step is "@name".
        std::vector<quint32> attributeEdges;
        /// What is here and inside does not count as unread.
        bool isIgnored = false;
        NameMemory children;
        NameMemory attributes;
    };
    /// A node of the trie that an element reached.
    struct Visit
    {
        quint32 node;
        quint32 element;
    };

    // Each of these continues the lookup from a node that an element reached.
    void visit(const MarkupTree &tree, Visit at);
    template <bool countsUnread> void walkChildren(const MarkupTree &tree, Visit at);
    template <bool countsUnread>
    void follow(const MarkupTree &tree, const Edge &edge, quint32 child);
    static void collectMatches(const Node &node, const RawText &name, NameMemory::Matches *matches);
    void addRepeats(const MarkupTree &tree, Visit at);
    static quint32 findEdge(const Node &node, const PathStep &step);
    static void addEdge(Node &node, const Edge &edge);
    static void setMostRead(Node &node, const PathStep &step);
    void reach(const MarkupTree &tree, quint32 node, quint32 item);
    void findAttributes(const MarkupTree &tree, Visit at);
    static void collectAttributeMatches(const Node &node, const RawText &name,
                                        NameMemory::Matches *matches);

    using Trail = std::vector<std::pair<quint32, quint32>>;
    quint32 addSteps(const std::vector<PathStep> &steps, quint32 path, Trail *trail);
    bool isRead(const Node &node, quint32 edge) const;
    void addUnread(const MarkupTree &tree, quint32 item);
    void addUnreadText(const MarkupTree &tree, Visit at);
    void addUnreadInside(const MarkupTree &tree, quint32 element);

    std::vector<std::unique_ptr<Node>> m_nodes;
    /// By path: the node and the edge of each step.
    std::vector<Trail> m_steps;
    bool m_countsUnread = false;
    qint64 m_unread = 0;
    std::optional<quint32> m_firstUnread;
    bool m_countsRepeats = false;
    std::vector<NewRepeat> m_newRepeats;
    size_t m_pathCount = 0;
    std::vector<quint32> m_found;
    /// Nodes that were reached and not yet visited.
    std::vector<Visit> m_open;
    /// By edge of a node: matching children still to skip.
    std::vector<quint32> m_left;
};

} // namespace corvanta::markup
