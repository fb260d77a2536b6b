#include "codecs/markup/path_set.h"

#include <algorithm>

namespace corvanta::markup {

namespace {

/// Children that are remembered by place; elements with more of them are compared by name.
constexpr size_t kShapeChildren = 256;

bool wants(const PathStep &step, const RawText &name)
{
    return step.anyName || nameMatches(name, step.name);
}

} // namespace

PathSet::PathSet()
    : m_nodes(1)
{
}

size_t PathSet::add(const std::vector<PathStep> &steps)
{
    quint32 node = 0;
    for (const PathStep &step : steps) {
        std::vector<Want> &known = m_nodes[node].wants;
        const auto same = std::find_if(known.begin(), known.end(),
                                       [&](const Want &want) { return want.step == step; });
        if (same != known.end()) {
            node = same->node;
            continue;
        }
        const auto next = static_cast<quint32>(m_nodes.size());
        known.push_back({step, next});
        m_nodes[node].attributeWants += step.isAttribute() ? 1 : 0;
        m_nodes.emplace_back();
        node = next;
    }
    m_nodes[node].paths.push_back(m_pathCount);
    m_found.resize(++m_pathCount, MarkupTree::kNone);
    return m_pathCount - 1;
}

bool PathSet::isFirstStep(const RawText &name) const
{
    const std::vector<Want> &first = m_nodes[0].wants;
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
    for (const size_t path : m_nodes[at.node].paths) {
        m_found[path] = at.element;
    }
    if (m_nodes[at.node].wants.empty() || tree.item(at.element).kind != ItemKind::Child) {
        return;
    }
    walkChildren(tree, at);
    if (m_nodes[at.node].attributeWants > 0) {
        findAttributes(tree, at);
    }
}

void PathSet::fulfil(const Node &node, std::span<const quint32> wants, quint32 item)
{
    for (const quint32 want : wants) {
        const quint32 next = node.wants[want].node;
        if (!m_nodes[next].wants.empty()) {
            m_open.push_back({next, item});
            continue;
        }
        for (const size_t path : m_nodes[next].paths) {
            m_found[path] = item;
        }
    }
}

/// Follow the remembered names for as long as they are the names that are there.
void PathSet::walkChildren(const MarkupTree &tree, Visit at)
{
    const Node &node = m_nodes[at.node];
    size_t left = node.wants.size();
    size_t number = 0;
    quint32 child = tree.first(at.element, ItemKind::Child);
    for (; child != MarkupTree::kNone && left > 0; child = tree.sibling(child), ++number) {
        if (number == node.shape.size()) {
            learnChildren(tree, at, child, number, left);
            return;
        }
        const Slot &slot = node.shape[number];
        const RawText name = tree.raw(child);
        if (name.form != slot.form || name.view() != slot.name) {
            learnChildren(tree, at, child, number, left);
            return;
        }
        fulfil(node, slot.wants, child);
        left -= slot.wants.size();
    }
}

/// Compare the children from `child` on by name and remember them; the first `known` are as before.
void PathSet::learnChildren(const MarkupTree &tree, Visit at, quint32 child, size_t known,
                            size_t left)
{
    Node &node = m_nodes[at.node];
    node.shape.resize(known);
    m_left.clear();
    for (const Want &want : node.wants) {
        const auto passed =
            std::count_if(node.shape.begin(), node.shape.end(), [&](const Slot &slot) {
                const RawText name{slot.name.data(), static_cast<quint32>(slot.name.size()),
                                   slot.form};
                return wants(want.step, name);
            });
        const auto before = static_cast<quint32>(passed);
        m_left.push_back(want.step.index >= before ? want.step.index - before : kNoWant);
    }
    for (; child != MarkupTree::kNone && left > 0; child = tree.sibling(child)) {
        const RawText name = tree.raw(child);
        m_matching.clear();
        for (quint32 i = 0; i < node.wants.size(); ++i) {
            if (m_left[i] != kNoWant && wants(node.wants[i].step, name) && m_left[i]-- == 0) {
                m_matching.push_back(i);
            }
        }
        if (node.shape.size() < kShapeChildren) {
            node.shape.push_back({std::string(name.view()), name.form, m_matching});
        }
        fulfil(node, m_matching, child);
        left -= m_matching.size();
    }
}

/// "@name" reaches an attribute before it reaches a child of that name. The visits are made in
/// reverse, after those of the children that end here: the first attribute has the last word.
void PathSet::findAttributes(const MarkupTree &tree, Visit at)
{
    const Node &node = m_nodes[at.node];
    quint32 attribute = tree.first(at.element, ItemKind::Attribute);
    for (; attribute != MarkupTree::kNone; attribute = tree.sibling(attribute)) {
        const RawText name = tree.raw(attribute);
        for (const Want &want : node.wants) {
            if (want.step.isAttribute() &&
                nameMatches(name, std::u16string_view(want.step.name).substr(1))) {
                m_open.push_back({want.node, attribute});
            }
        }
    }
}

} // namespace corvanta::markup
