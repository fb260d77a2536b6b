#include "codecs/markup/path_set.h"

#include <algorithm>

namespace corvanta::markup {

namespace {

/// Names of one node that are remembered, and their longest; others are compared with its wants
/// each time.
constexpr size_t kKnownNames = 4096;
constexpr quint32 kKnownNameBytes = 256;

bool wants(const PathStep &step, const RawText &name)
{
    return step.anyName || nameMatches(name, step.name);
}

} // namespace

PathSet::PathSet()
{
    m_nodes.push_back(std::make_unique<Node>());
}

size_t PathSet::add(const std::vector<PathStep> &steps)
{
    quint32 at = 0;
    for (size_t i = 0; i < steps.size(); ++i) {
        Node &node = *m_nodes[at];
        const auto same = std::find_if(node.wants.begin(), node.wants.end(),
                                       [&](const Want &want) { return want.step == steps[i]; });
        if (same != node.wants.end()) {
            same->onlyPath = kNotOnly;
            at = same->node;
            continue;
        }
        if (steps[i].isAttribute()) {
            node.attributeWants.push_back(static_cast<quint32>(node.wants.size()));
        }
        at = static_cast<quint32>(m_nodes.size());
        const bool isLast = i + 1 == steps.size();
        node.wants.push_back({steps[i], at, isLast ? static_cast<quint32>(m_pathCount) : kNotOnly});
        node.indexes.push_back(steps[i].index);
        m_nodes.push_back(std::make_unique<Node>());
    }
    m_nodes[at]->paths.push_back(m_pathCount);
    m_found.resize(++m_pathCount, MarkupTree::kNone);
    return m_pathCount - 1;
}

bool PathSet::isFirstStep(const RawText &name) const
{
    const std::vector<Want> &first = m_nodes[0]->wants;
    return std::any_of(first.begin(), first.end(), [&](const Want &want) {
        return !want.step.anyName && nameMatches(name, want.step.name);
    });
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
        m_found[path] = at.element;
    }
    if (node.wants.empty() || tree.item(at.element).kind != ItemKind::Child) {
        return;
    }
    walkChildren(tree, at);
    if (!node.attributeWants.empty()) {
        findAttributes(tree, at);
    }
}

void PathSet::fulfil(quint32 node, quint32 item)
{
    if (!m_nodes[node]->wants.empty()) {
        m_open.push_back({node, item});
        return;
    }
    for (const size_t path : m_nodes[node]->paths) {
        m_found[path] = item;
    }
}

void PathSet::walkChildren(const MarkupTree &tree, Visit at)
{
    Node &node = *m_nodes[at.node];
    m_left = node.indexes;
    size_t left = node.wants.size();
    KnownName *known = &node.beforeFirst;
    quint32 child = tree.first(at.element, ItemKind::Child);
    for (; child != MarkupTree::kNone && left > 0; child = tree.sibling(child)) {
        const RawText name = tree.raw(child);
        if (known->next == nullptr || known->next->name != name.view()) {
            known->next = findName(node, name);
        }
        known = known->next;
        for (const quint32 number : known->wants) {
            if (m_left[number]-- > 0) {
                continue;
            }
            --left;
            const Want &want = node.wants[number];
            if (want.onlyPath != kNotOnly) {
                m_found[want.onlyPath] = child;
            } else {
                fulfil(want.node, child);
            }
        }
    }
}

/// What is known of a name that is not the expected one.
PathSet::KnownName *PathSet::findName(Node &node, const RawText &name)
{
    const bool isPlain = name.form == TextForm::Plain || name.form == TextForm::Detached;
    if (isPlain) {
        const auto known = node.byName.find(name.view());
        if (known != node.byName.end()) {
            return known->second;
        }
    }
    KnownName *met = &node.notRemembered;
    if (isPlain && name.size <= kKnownNameBytes && node.names.size() < kKnownNames) {
        met = &node.names.emplace_back();
        met->name = name.view();
        node.byName.emplace(met->name, met);
    }
    met->wants.clear();
    for (quint32 i = 0; i < node.wants.size(); ++i) {
        if (wants(node.wants[i].step, name)) {
            met->wants.push_back(i);
        }
    }
    return met;
}

/// "@name" reaches an attribute before it reaches a child of that name. The visits are made in
/// reverse, after those of the children that end here: the first attribute has the last word.
void PathSet::findAttributes(const MarkupTree &tree, Visit at)
{
    const Node &node = *m_nodes[at.node];
    quint32 attribute = tree.first(at.element, ItemKind::Attribute);
    for (; attribute != MarkupTree::kNone; attribute = tree.sibling(attribute)) {
        const RawText name = tree.raw(attribute);
        for (const quint32 number : node.attributeWants) {
            const Want &want = node.wants[number];
            if (nameMatches(name, std::u16string_view(want.step.name).substr(1))) {
                m_open.push_back({want.node, attribute});
            }
        }
    }
}

} // namespace corvanta::markup
