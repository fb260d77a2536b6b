// The items of "<a x='1'>t<b/></a>", each with the index after its content (next) and its parent:
//
//     index  kind       text  next  parent
//     0      Child            5     0        the artificial root
//     1      Child      a     5     0
//     2      Attribute  x     3     1        value: 1
//     3      Text       t     4     1
//     4      Child      b     5     1
#include "codecs/markup/tree/tree.h"

#include "base/limits.h"
#include "codecs/markup/tokens/xml_tokenizer.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <tuple>
#include <type_traits>

namespace corvanta::markup {

namespace {

constexpr size_t kMaxItems = static_cast<size_t>(limits::kTreeArenaBytes) / sizeof(TreeItem);

} // namespace

qsizetype MarkupNode::count(ItemKind kind) const
{
    return isEmpty() ? 0 : m_tree->item(m_index).count(kind);
}

qsizetype MarkupNode::elementCount() const
{
    return childCount() + textCount() + clearCount() + attributeCount();
}

// Decoded on request: most names of a tree are only compared, in their stored form.
std::u16string MarkupNode::name() const
{
    return isEmpty() ? std::u16string() : decoded(m_tree->raw(m_index));
}

/// The i-th item of a kind. The tree remembers the last one found, so that loops over i are linear.
quint32 MarkupNode::find(ItemKind kind, qsizetype i) const
{
    if (i < 0 || i >= count(kind)) {
        return MarkupTree::kNone;
    }
    MarkupTree::Hint &hint = m_tree->m_hint;
    const bool known = hint.parent == m_index && hint.kind == kind && hint.number <= i;
    quint32 index = known ? hint.index : m_tree->first(m_index, kind);
    for (qsizetype at = known ? hint.number : 0; at < i; ++at) {
        index = m_tree->sibling(index);
    }
    hint = {m_index, kind, i, index};
    return index;
}

// A node that does not exist is an empty node, so that calls can be chained without checks.
MarkupNode MarkupNode::child(qsizetype i) const
{
    const quint32 index = find(ItemKind::Child, i);
    return index == MarkupTree::kNone ? MarkupNode() : MarkupNode(m_tree, index);
}

std::u16string MarkupNode::text(qsizetype i) const
{
    const quint32 index = find(ItemKind::Text, i);
    return index == MarkupTree::kNone ? std::u16string() : decoded(m_tree->raw(index));
}

std::u16string MarkupNode::clear(qsizetype i) const
{
    const quint32 index = find(ItemKind::Clear, i);
    return index == MarkupTree::kNone ? std::u16string() : decoded(m_tree->raw(index));
}

MarkupNode::Attribute MarkupNode::attribute(qsizetype i) const
{
    const quint32 index = find(ItemKind::Attribute, i);
    return index == MarkupTree::kNone ? Attribute()
                                      : Attribute{decoded(m_tree->raw(index)),
                                                  decoded(m_tree->value(m_tree->item(index)))};
}

MarkupTreeBuilder::MarkupTreeBuilder() = default;

void MarkupTreeBuilder::begin(MarkupTokenizer &tokenizer)
{
    m_tokenizer = &tokenizer;
    m_tree.m_tokenizer = &tokenizer;
    m_xml = tokenizer.asXml();
    m_tooLarge = false;
    m_tree.m_size = 0;
    if (m_tree.m_capacity == 0 &&
        !reserve(static_cast<size_t>(m_blockBytes) / sizeof(TreeItem) + 1)) {
        throw std::bad_alloc();
    }
    m_tree.m_items[m_tree.m_size++] = {};
    m_tree.m_hint = {};
    m_current = 0;
    m_depth = 0;
    tokenizer.pin();
}

/// Make room for `capacity` items, at most kMaxItems; false without memory. The items are trivial:
/// realloc() can move their pages instead of copying them, and touches no page that is not used.
bool MarkupTreeBuilder::reserve(size_t capacity)
{
    static_assert(std::is_trivially_copyable_v<TreeItem>);
    capacity = std::min(capacity, kMaxItems);
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): there is no other way to grow without a copy
    void *const larger = std::realloc(m_tree.m_items.get(), capacity * sizeof(TreeItem));
    if (larger != nullptr) {
        std::ignore = m_tree.m_items.release();
        m_tree.m_items.reset(static_cast<TreeItem *>(larger));
        m_tree.m_capacity = capacity;
    }
    return larger != nullptr;
}

/// Make room for one or two more items; false when the tree would become too large.
inline bool MarkupTreeBuilder::makeRoom(size_t items)
{
    return m_tree.m_capacity - m_tree.m_size >= items || grow(items);
}

// At least doubles the room, so that the copies of a growing tree stay proportional to its size.
bool MarkupTreeBuilder::grow(size_t items)
{
    m_tooLarge = kMaxItems - m_tree.m_size < items ||
                 !reserve(m_tree.m_size * 2 + kDefaultBlockBytes / sizeof(TreeItem) + 1);
    return !m_tooLarge;
}

/// Write the next item, for which there is room. Field by field: an assignment of a whole item
/// builds it in another place and copies it, and each copy waits for the narrow stores before it.
inline TreeItem &MarkupTreeBuilder::put(quint32 parent, ItemKind kind, TextSpan text)
{
    TreeItem &item = m_tree.m_items[m_tree.m_size++];
    item.text = text;
    item.next = static_cast<quint32>(m_tree.m_size);
    item.parent = parent;
    item.value = {};
    item.counts = {};
    item.kind = kind;
    item.clearKind = ClearKind::Other;
    return item;
}

/// Append an item with the text at `text`; null when the tree would become too large.
inline TreeItem *MarkupTreeBuilder::push(ItemKind kind, TextSpan text)
{
    if (!makeRoom(1)) {
        return nullptr;
    }
    if (kind != ItemKind::Instruction) {
        ++m_tree.m_items[m_current].counts[static_cast<size_t>(kind)];
    }
    return &put(m_current, kind, text);
}

inline bool MarkupTreeBuilder::addAttributes(size_t pinned)
{
    for (const XMLTokenizer::Attribute &attribute : m_xml->attributes()) {
        TreeItem *const item = push(ItemKind::Attribute, attribute.name.movedBy(pinned));
        if (item == nullptr) {
            return false;
        }
        item->value = attribute.value.movedBy(pinned);
    }
    return true;
}

// The order of the cases is the order of their frequency: an End has no item of its own.
bool MarkupTreeBuilder::add(Token token)
{
    if (token == Token::End) {
        TreeItem &ended = m_tree.m_items[m_current];
        ended.next = static_cast<quint32>(m_tree.m_size);
        m_current = ended.parent;
        --m_depth;
        return true;
    }
    const size_t pinned = m_tokenizer->pinnedOffset();
    const TextSpan text = m_tokenizer->textSpan().movedBy(pinned);
    switch (token) {
    case Token::Start:
        return addStart(text, pinned);
    case Token::Text:
        return push(ItemKind::Text, text) != nullptr;
    case Token::Clear:
        return addClear(text);
    case Token::Instruction:
        return push(ItemKind::Instruction, text) != nullptr;
    default:
        return true;
    }
}

inline bool MarkupTreeBuilder::addStart(TextSpan name, size_t pinned)
{
    const TreeItem *const item = push(ItemKind::Child, name);
    m_current = static_cast<quint32>(m_tree.m_size - 1);
    ++m_depth;
    return item != nullptr && (m_xml == nullptr || addAttributes(pinned));
}

bool MarkupTreeBuilder::addClear(TextSpan text)
{
    TreeItem *const item = push(ItemKind::Clear, text);
    if (item != nullptr) {
        item->clearKind = m_xml->clearKind();
    }
    return item != nullptr;
}

bool MarkupTreeBuilder::addLeaves(LeafTaker *taker)
{
    MarkupTokenizer::Leaf leaf;
    while (m_tokenizer->takeLeaf(&leaf)) {
        const bool isTaken = taker != nullptr && taker->take(*m_tokenizer, leaf);
        if (!isTaken && !addLeaf(leaf)) {
            return false;
        }
    }
    return true;
}

/// Add an element with at most one text; it is complete immediately.
inline bool MarkupTreeBuilder::addLeaf(const MarkupTokenizer::Leaf &leaf)
{
    if (!makeRoom(2)) {
        return false;
    }
    const size_t pinned = m_tokenizer->pinnedOffset();
    const auto index = static_cast<quint32>(m_tree.m_size);
    TreeItem &element = put(m_current, ItemKind::Child, leaf.name.movedBy(pinned));
    ++m_tree.m_items[m_current].counts[static_cast<size_t>(ItemKind::Child)];
    if (leaf.hasText) {
        put(index, ItemKind::Text, leaf.text.movedBy(pinned));
        element.counts[static_cast<size_t>(ItemKind::Text)] = 1;
        element.next = index + 2;
    }
    return true;
}

const MarkupTree &MarkupTreeBuilder::tree()
{
    // Elements that are still open end at the end of the tree for now.
    for (quint32 open = m_current;; open = m_tree.m_items[open].parent) {
        m_tree.m_items[open].next = static_cast<quint32>(m_tree.m_size);
        if (open == 0) {
            break;
        }
    }
    m_tree.m_bytes = m_tokenizer->pinnedBytes();
    return m_tree;
}

/// Add tokens until the element or value is complete; returns the token that ended it.
Token MarkupTreeBuilder::pull(bool nextElement)
{
    bool inDocument = false;
    for (;;) {
        const Token token = m_tokenizer->nextToken();
        inDocument = inDocument || token == Token::DocumentStart;
        const bool closesParent = token == Token::End && m_depth == 0;
        if (token == Token::EndOfData || token == Token::Error || token == Token::DocumentEnd ||
            closesParent || !add(token)) {
            return token;
        }
        if (token == Token::End && m_depth == 0 && (nextElement || !inDocument)) {
            return token;
        }
    }
}

MarkupNode MarkupTreeBuilder::parseNext(MarkupTokenizer &tokenizer, MarkupResult &result,
                                        bool nextElement)
{
    begin(tokenizer);
    tokenizer.setDocumentMarks(!nextElement);
    const Token last = pull(nextElement);
    const MarkupNode node = finish(result, last);
    tokenizer.unpin();
    return node;
}

/// The root to return, with the error in `result`. `last` is the token that ended the tree.
MarkupNode MarkupTreeBuilder::finish(MarkupResult &result, Token last)
{
    result.error = m_tooLarge ? MarkupError::TreeTooLarge : m_tokenizer->errorCode();
    result.line = m_tokenizer->line();
    result.column = m_tokenizer->column();
    if (last == Token::EndOfData && m_depth > 0 && result.error == MarkupError::None) {
        result.error = MarkupError::UnmatchedEndTag;
    }
    const MarkupNode root = tree().root();
    if (root.childCount() == 0) {
        result.error = result.error == MarkupError::None ? MarkupError::NoTagFound : result.error;
        return {};
    }
    const bool isSingle = root.childCount() == 1 && root.elementCount() == 1;
    return m_returnSingleChild && isSingle ? root.child(0) : root;
}

} // namespace corvanta::markup
