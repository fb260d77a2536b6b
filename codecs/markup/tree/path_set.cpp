// The trie of the paths "a", "a/b", "a/c[1]" and "@x"; an edge is a step, "=" a path that ends:
//
//     root --a--> =0 --b----> =1
//      |           +---c[1]--> =2
//      +-----@x-> =3
#include "codecs/markup/tree/path_set.h"

#include <algorithm>

namespace corvanta::markup {

namespace {

bool selects(const PathStep &step, const RawText &name)
{
    return step.anyName || nameMatches(name, step.name);
}

} // namespace

PathSet::PathSet()
{
    m_nodes.push_back(std::make_unique<Node>());
}

void PathSet::add(const std::vector<PathStep> &steps)
{
    m_steps.emplace_back();
    const quint32 at = addSteps(steps, static_cast<quint32>(m_pathCount), &m_steps.back());
    m_nodes[at]->paths.push_back(m_pathCount);
    m_found.resize(++m_pathCount, MarkupTree::kNone);
}

/// Returns the node at the end of the steps. `path` is the number of the path that ends there, or
/// kNone.
quint32 PathSet::addSteps(const std::vector<PathStep> &steps, quint32 path, Trail *trail)
{
    quint32 at = 0;
    for (size_t i = 0; i < steps.size(); ++i) {
        Node &node = *m_nodes[at];
        const quint32 same = findEdge(node, steps[i]);
        trail->emplace_back(at, same);
        if (same != node.edges.size()) {
            node.edges[same].onlyPath = kNone; // a second path uses the edge
            at = node.edges[same].node;
            continue;
        }
        at = static_cast<quint32>(m_nodes.size());
        addEdge(node, {steps[i], at, i + 1 == steps.size() ? path : kNone});
        m_nodes.push_back(std::make_unique<Node>());
    }
    return at;
}

/// The number of the edge with that step, or that of the next edge to add.
quint32 PathSet::findEdge(const Node &node, const PathStep &step)
{
    const auto named = node.byName.find(step.name);
    if (named != node.byName.end()) {
        for (const quint32 number : named->second) {
            if (node.edges[number].step == step) {
                return number;
            }
        }
    }
    return static_cast<quint32>(node.edges.size());
}

void PathSet::addEdge(Node &node, const Edge &edge)
{
    const auto number = static_cast<quint32>(node.edges.size());
    // Also an edge for children: "@name" selects a child where there is no attribute.
    if (edge.step.isAttribute()) {
        node.attributeEdges.push_back(number);
    }
    node.edges.push_back(edge);
    node.byName[edge.step.name].push_back(number);
    node.indexes.push_back(edge.step.index);
    node.mostRead.push_back(kNone);
    setMostRead(node, edge.step);
}

void PathSet::ignore(const std::vector<PathStep> &steps)
{
    Trail trail;
    m_nodes[addSteps(steps, kNone, &trail)]->isIgnored = true;
    if (!trail.empty()) {
        Node &last = *m_nodes[trail.back().first];
        Edge &edge = last.edges[trail.back().second];
        edge.isIgnored = true;
        setMostRead(last, edge.step);
    }
}

/// For each edge with the name of `changed` but without an index: the highest index of the edges
/// with that name, plus one.
void PathSet::setMostRead(Node &node, const PathStep &changed)
{
    const Numbers &numbers = node.byName[changed.name];
    quint32 most = 1;
    for (const quint32 number : numbers) {
        const PathStep &step = node.edges[number].step;
        most = step.anyName ? most : std::max(most, step.index + 1);
    }
    for (const quint32 number : numbers) {
        const Edge &edge = node.edges[number];
        const bool counts = !edge.step.isIndexed && !edge.step.isAttribute() && !edge.isIgnored;
        node.mostRead[number] = counts ? most : kNone;
    }
}

PathSet::Repeats PathSet::repeatsOf(size_t path) const
{
    Repeats all;
    for (const auto &[node, number] : m_steps[path]) {
        const Edge &edge = m_nodes[node]->edges[number];
        all.first = all.count == 0 ? edge.firstRepeat : all.first;
        all.count += edge.repeats;
    }
    return all;
}

void PathSet::resetCounts()
{
    m_unread = 0;
    m_firstUnread.reset();
    for (const std::unique_ptr<Node> &node : m_nodes) {
        for (Edge &edge : node->edges) {
            edge.repeats = 0;
        }
    }
}

bool PathSet::isFirstStep(const RawText &name) const
{
    return !name.isEmpty() && m_nodes[0]->byName.contains(toLowerCase(decoded(name)));
}

std::span<const quint32> PathSet::resolve(const MarkupTree &tree, quint32 element)
{
    std::fill(m_found.begin(), m_found.end(), MarkupTree::kNone);
    m_open.assign(1, {0, element});
    while (!m_open.empty()) {
        const Visit at = m_open.back();
        m_open.pop_back();
        visit(tree, at);
    }
    return m_found;
}

void PathSet::visit(const MarkupTree &tree, Visit at)
{
    Node &node = *m_nodes[at.node];
    for (const size_t path : node.paths) {
        // An attribute has priority over a child.
        m_found[path] = m_found[path] == MarkupTree::kNone ? at.element : m_found[path];
    }
    const bool counts = m_countsUnread && !node.isIgnored;
    if (node.edges.empty() || tree.item(at.element).kind != ItemKind::Child) {
        return;
    }
    const TreeItem &element = tree.item(at.element);
    if (counts) {
        if (element.count(ItemKind::Text) > 0) {
            addUnreadText(tree, at);
        }
        walkChildren<true>(tree, at);
    } else {
        walkChildren<false>(tree, at);
    }
    if (!node.attributeEdges.empty() || (counts && element.count(ItemKind::Attribute) > 0)) {
        findAttributes(tree, at);
    }
}

/// Whether a child that the edge selects is read or counted elsewhere, as a repeat. Only items of
/// lists have an index: further ones are in no column.
inline bool PathSet::isRead(const Node &node, quint32 edge) const
{
    const Edge &of = node.edges[edge];
    return m_left[edge] == 0 || !of.step.isIndexed || of.isIgnored;
}

/// Count an element or an attribute, if it has a value.
void PathSet::addUnread(const MarkupTree &tree, quint32 item)
{
    const TreeItem &node = tree.item(item);
    if (node.kind == ItemKind::Attribute) {
        if (tree.raw(item).view().starts_with("xmlns")) {
            return; // declares a name space
        }
    } else if (node.count(ItemKind::Child) == 0 && node.count(ItemKind::Attribute) == 0 &&
               node.count(ItemKind::Clear) == 0) {
        const quint32 text = tree.first(item, ItemKind::Text);
        if (text == MarkupTree::kNone || tree.raw(text).view() == "null") {
            return;
        }
    }
    if (m_unread++ == 0) {
        m_firstUnread = item;
    }
}

/// The text of an element that is only a container for the paths. That of the element where they
/// begin counts only next to others: alone it is a value among records, see UnreadParts.
void PathSet::addUnreadText(const MarkupTree &tree, Visit at)
{
    const quint32 text = tree.first(at.element, ItemKind::Text);
    const bool isValue = text != MarkupTree::kNone && tree.raw(text).view() != "null";
    const bool isAlone = tree.item(at.element).count(ItemKind::Child) == 0;
    if (m_nodes[at.node]->paths.empty() && isValue && (at.node != 0 || !isAlone) &&
        m_unread++ == 0) {
        m_firstUnread = at.element;
    }
}

/// All that an element has except its text, which a path reads.
inline void PathSet::addUnreadInside(const MarkupTree &tree, quint32 element)
{
    const TreeItem &node = tree.item(element);
    if (node.kind != ItemKind::Child) {
        return;
    }
    for (const ItemKind kind : {ItemKind::Child, ItemKind::Attribute}) {
        quint32 item = node.count(kind) == 0 ? MarkupTree::kNone : tree.first(element, kind);
        for (; item != MarkupTree::kNone; item = tree.sibling(item)) {
            addUnread(tree, item);
        }
    }
}

/// The path or paths through `node` found `item`.
void PathSet::reach(const MarkupTree &tree, quint32 node, quint32 item)
{
    if (!m_nodes[node]->edges.empty()) {
        m_open.push_back({node, item});
        return;
    }
    for (const size_t path : m_nodes[node]->paths) {
        m_found[path] = item;
    }
    if (m_countsUnread && !m_nodes[node]->isIgnored) {
        addUnreadInside(tree, item);
    }
}

/// Find the edges of a node whose step selects the name.
void PathSet::collectMatches(const Node &node, const RawText &name, NameMemory::Matches *matches)
{
    // A name that is not found again where it was before is rare in records of few names.
    constexpr size_t kManyEdges = 64;
    if (node.edges.size() > kManyEdges) {
        const auto add = [&](const std::u16string &key) {
            const auto named = node.byName.find(key);
            if (named != node.byName.end()) {
                matches->insert(matches->end(), named->second.begin(), named->second.end());
            }
        };
        add({}); // steps for any name
        if (!name.isEmpty()) {
            add(toLowerCase(decoded(name)));
        }
        std::sort(matches->begin(), matches->end());
        return;
    }
    for (quint32 i = 0; i < node.edges.size(); ++i) {
        if (selects(node.edges[i].step, name)) {
            matches->push_back(i);
        }
    }
}

/// The edge selects the child. Most edges end a path, which then needs no visit of its node.
template <bool countsUnread>
inline void PathSet::follow(const MarkupTree &tree, const Edge &edge, quint32 child)
{
    if (edge.onlyPath == kNone) {
        reach(tree, edge.node, child);
        return;
    }
    m_found[edge.onlyPath] = child;
    if constexpr (countsUnread) {
        addUnreadInside(tree, child);
    }
}

/// Compare the children of an element with the edges of a node, until every edge has its child or,
/// to find repeats, to the end.
template <bool countsUnread> void PathSet::walkChildren(const MarkupTree &tree, Visit at)
{
    Node &node = *m_nodes[at.node];
    m_left = node.indexes;
    size_t left = node.edges.size() + (m_countsRepeats ? 1 : 0);
    bool skipped = false;
    node.children.begin();
    const quint32 end = tree.item(at.element).next;
    quint32 child = tree.attributesEnd(at.element);
    for (; child != end && left > 0; child = tree.item(child).next) {
        if (tree.item(child).kind != ItemKind::Child) {
            continue;
        }
        const RawText name = tree.raw(child);
        const auto collect = [&](NameMemory::Matches *matches) {
            collectMatches(node, name, matches);
        };
        bool isReadBySome = false;
        for (const quint32 number : node.children.matchesOf(name, collect)) {
            if constexpr (countsUnread) {
                isReadBySome = isReadBySome || isRead(node, number);
            }
            // The index of the step has not been reached yet. Below zero the count wraps around, so
            // a step selects one child only.
            if (m_left[number]-- > 0) {
                skipped = true;
                continue;
            }
            --left;
            follow<countsUnread>(tree, node.edges[number], child);
        }
        if (countsUnread && !isReadBySome) {
            addUnread(tree, child);
        }
    }
    if (m_countsRepeats && skipped) {
        addRepeats(tree, at);
    }
}

/// Count the matches that no step reads. For a step without an index, what walkChildren() left
/// below zero is the number of its matches.
void PathSet::addRepeats(const MarkupTree &tree, Visit at)
{
    Node &node = *m_nodes[at.node];
    for (quint32 i = 0; i < node.edges.size(); ++i) {
        const quint32 matches = 0U - m_left[i];
        if (matches <= node.mostRead[i]) {
            continue;
        }
        Edge &edge = node.edges[i];
        if (edge.repeats == 0) {
            quint32 before = node.mostRead[i];
            quint32 child = tree.first(at.element, ItemKind::Child);
            while (!selects(edge.step, tree.raw(child)) || before-- > 0) {
                child = tree.sibling(child);
            }
            m_newRepeats.push_back({at.node, i, tree.item(child).text});
        }
        edge.repeats += matches - node.mostRead[i];
    }
}

/// The first one in the record has the place.
void PathSet::addRepeat(size_t path, TextSpan name)
{
    const auto [node, number] = m_steps[path].front();
    const auto isSame = [node = node, number = number](const NewRepeat &repeat) {
        return repeat.node == node && repeat.edge == number;
    };
    const auto known = std::ranges::find_if(m_newRepeats, isSame);
    if (m_nodes[node]->edges[number].repeats++ == 0) {
        m_newRepeats.push_back({node, number, name});
    } else if (known != m_newRepeats.end() && name.offset() < known->name.offset()) {
        known->name = name;
    }
}

/// The edges that select attributes called `name`: those with its letter case if there are any, or
/// else all with its name. So "@A" and "@a" are different columns, and "@ID" alone selects "id".
void PathSet::collectAttributeMatches(const Node &node, const RawText &name,
                                      NameMemory::Matches *matches)
{
    const std::u16string written = u'@' + decoded(name);
    NameMemory::Matches others;
    for (const quint32 i : node.attributeEdges) {
        const PathStep &step = node.edges[i].step;
        if (step.written == written) {
            matches->push_back(i);
        } else if (nameMatches(name, std::u16string_view(step.name).substr(1))) {
            others.push_back(i);
        }
    }
    if (matches->empty()) {
        *matches = std::move(others);
    }
}

/// "@name" selects the first attribute of that name; a child only if there is none.
void PathSet::findAttributes(const MarkupTree &tree, Visit at)
{
    Node &node = *m_nodes[at.node];
    node.attributes.begin();
    const quint32 end = tree.attributesEnd(at.element);
    for (quint32 attribute = at.element + 1; attribute != end; ++attribute) {
        const RawText name = tree.raw(attribute);
        const auto collectMatches = [&](NameMemory::Matches *matches) {
            collectAttributeMatches(node, name, matches);
        };
        const NameMemory::Matches &matches = node.attributes.matchesOf(name, collectMatches);
        if (m_countsUnread && !node.isIgnored && matches.empty()) {
            addUnread(tree, attribute);
        }
        for (const quint32 number : matches) {
            for (const size_t path : m_nodes[node.edges[number].node]->paths) {
                const quint32 found = m_found[path];
                const bool isFirst =
                    found == MarkupTree::kNone || tree.item(found).kind != ItemKind::Attribute;
                m_found[path] = isFirst ? attribute : found;
            }
        }
    }
}

} // namespace corvanta::markup
