// codecs/markup/tree/tree.h
// The tree of one record-sized piece of a document.
//
// Nodes are a flat list of items in document order; names and texts are places in the tokenizer's
// buffer, which is pinned while the tree lives. Both memories are used again for the next tree, so
// that reading a long list of records allocates nothing in steady state.
#pragma once
#include "codecs/markup/tokens/tokenizer.h"

#include <array>
#include <memory>
#include <span>
#include <string>

namespace corvanta::markup {

enum class ItemKind : quint8 { Child, Text, Clear, Attribute, Instruction };

/// One entry of the list: an element or what stands in one.
struct TreeItem
{
    TextSpan text;    ///< name or text, counted from the pinned place
    quint32 next = 0; ///< index of the item behind this one and all inside it
    quint32 parent = 0;
    TextSpan value;                  ///< of an Attribute
    std::array<quint32, 4> counts{}; ///< of a Child: its items by kind
    ItemKind kind = ItemKind::Child;
    ClearKind clearKind = ClearKind::Other;
};

class MarkupTree;

/// A handle of an element; may be empty, and then answers with zeros and empty values. Valid until
/// the next tree is built or the tokenizer goes on.
class MarkupNode
{
public:
    MarkupNode() = default;
    MarkupNode(const MarkupTree *tree, quint32 index)
        : m_tree(tree)
        , m_index(index)
    {
    }

    bool isEmpty() const { return m_tree == nullptr; }
    std::u16string name() const;
    qsizetype childCount() const { return count(ItemKind::Child); }
    qsizetype textCount() const { return count(ItemKind::Text); }
    qsizetype clearCount() const { return count(ItemKind::Clear); }
    qsizetype attributeCount() const { return count(ItemKind::Attribute); }
    /// The sum of the four.
    qsizetype elementCount() const;

    /// The i-th of its kind, from 0; empty when there is none. Going through them in order is
    /// cheap.
    MarkupNode child(qsizetype i) const;
    std::u16string text(qsizetype i) const;
    std::u16string clear(qsizetype i) const;
    struct Attribute
    {
        std::u16string name;
        std::u16string value;
    };
    Attribute attribute(qsizetype i) const;

    const MarkupTree *tree() const { return m_tree; }
    quint32 index() const { return m_index; }

private:
    qsizetype count(ItemKind kind) const;
    quint32 find(ItemKind kind, qsizetype i) const;

    const MarkupTree *m_tree = nullptr;
    quint32 m_index = 0;
};

/// The items of a tree. Item 0 is the artificial root. Threads: one at a time.
class MarkupTree
{
public:
    static constexpr quint32 kNone = ~quint32(0);

    std::span<const TreeItem> items() const { return {m_items.get(), m_size}; }
    const TreeItem &item(quint32 index) const { return m_items[index]; }
    RawText raw(TextSpan span) const
    {
        if (span.isExternal()) {
            return m_tokenizer->externalText(span.offset());
        }
        return {m_bytes + span.offset(), span.size(), span.form()};
    }
    RawText raw(quint32 index) const { return raw(m_items[index].text); }
    RawText value(const TreeItem &attribute) const { return raw(attribute.value); }
    MarkupNode root() const { return {this, 0}; }

    /// The first item at or behind `index` inside `parent` that is of `kind`; kNone when there is
    /// none.
    quint32 next(quint32 index, quint32 parent, ItemKind kind) const
    {
        const quint32 end = m_items[parent].next;
        while (index < end) {
            if (m_items[index].kind == kind) {
                return index;
            }
            index = m_items[index].next;
        }
        return kNone;
    }
    quint32 first(quint32 parent, ItemKind kind) const { return next(parent + 1, parent, kind); }
    quint32 sibling(quint32 child) const
    {
        return next(m_items[child].next, m_items[child].parent, m_items[child].kind);
    }

private:
    friend class MarkupTreeBuilder;
    friend class MarkupNode;
    struct Hint
    {
        quint32 parent = kNone;
        ItemKind kind = ItemKind::Child;
        qsizetype number = 0;
        quint32 index = 0;
    };

    std::unique_ptr<TreeItem[]> m_items; ///< m_size of them are the tree's, the others room
    size_t m_size = 0;
    size_t m_capacity = 0;
    const MarkupTokenizer *m_tokenizer = nullptr;
    const char *m_bytes = nullptr;
    mutable Hint m_hint; ///< the last item that was asked for by number
};

/// Where parsing stopped and why.
struct MarkupResult
{
    MarkupError error = MarkupError::None;
    qint64 line = 1;
    qint64 column = 0;
};

class XMLTokenizer;

/// Builds one tree after the other from a tokenizer. Threads: one at a time.
class MarkupTreeBuilder
{
public:
    MarkupTreeBuilder();

    /// Give the only child of the artificial root instead of the root (on by default).
    void setReturnSingleChild(bool on) { m_returnSingleChild = on; }
    /// Bytes of the first block of the tree's memory.
    void setBlockSize(qint64 bytes) { m_blockBytes = bytes; }
    /// Bytes by which it grows at least.
    void setGrowthSize(qint64 bytes) { m_growthBytes = bytes; }

    /// Build the tree of the next element, `nextElement` on, or of the next whole value at the top
    /// of the stream, and give its root. The tree before is gone. Every failure is in `result`;
    /// NoTagFound and an empty handle when there was no element.
    MarkupNode parseNext(MarkupTokenizer &tokenizer, MarkupResult &result, bool nextElement);

    // The steps of it, for callers that pull the tokens themselves.

    /// Forget the tree before and begin one at the tokenizer's current token.
    void begin(MarkupTokenizer &tokenizer);
    /// Add the current token (Start, End, Text, Clear or Instruction). False when the tree became
    /// too large.
    bool add(Token token);
    /// Add the leaves that come next, if any, without making tokens of them. False when the tree
    /// became too large.
    bool addLeaves();
    /// Elements that are open below the artificial root.
    qint64 depth() const { return m_depth; }
    /// Make the tree readable after the tokenizer went on.
    const MarkupTree &tree();

    static constexpr qint64 kDefaultBlockBytes = 1'048'576;

private:
    void reserve(size_t capacity);
    bool grow();
    TreeItem *push(ItemKind kind, TextSpan text);
    bool addAttributes(size_t pinned);
    Token pull(bool nextElement);
    MarkupNode finish(MarkupResult &result, Token last);

    MarkupTree m_tree;
    MarkupTokenizer *m_tokenizer = nullptr;
    const XMLTokenizer *m_xml = nullptr;
    quint32 m_current = 0;
    qint64 m_depth = 0;
    qint64 m_blockBytes = kDefaultBlockBytes;
    qint64 m_growthBytes = kDefaultBlockBytes;
    bool m_returnSingleChild = true;
    bool m_tooLarge = false;
};

} // namespace corvanta::markup
