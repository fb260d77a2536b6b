// Holds one record-sized part of a document as a tree.
//
// The nodes are a flat list of items in document order. Names and texts refer to the tokenizer's
// buffer, which is pinned while the tree exists. Both memories are reused for the next tree, so
// that reading a long list of records does not allocate.
#pragma once
#include "codecs/markup/tokens/tokenizer.h"

#include <array>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>

namespace corvanta::markup {

/// Kinds of items. The first four index TreeItem::counts.
enum class ItemKind : quint8 { Child, Text, Clear, Attribute, Instruction };

/// One entry of the list: an element, or a part of one.
struct TreeItem
{
    /// Name or text, relative to the pinned place.
    TextSpan text;
    /// Index of the first item after this one and everything inside it.
    quint32 next = 0;
    /// Index of the element that holds it.
    quint32 parent = 0;
    /// Attribute only.
    TextSpan value;
    /// Child only: number of its items by kind, without those of its sub-elements; instructions are
    /// not counted.
    std::array<quint32, 4> counts{};
    ItemKind kind = ItemKind::Child;
    /// Clear only.
    ClearKind clearKind = ClearKind::Other;

    quint32 count(ItemKind of) const { return counts[static_cast<size_t>(of)]; }
};

class MarkupTree;

/// A handle of an element. An empty handle returns zeros and empty values. Valid until the next
/// tree is built or the tokenizer reads on.
class MarkupNode
{
public:
    MarkupNode() = default;
    MarkupNode(const MarkupTree *tree, quint32 index)
        : m_tree(tree)
        , m_index(index)
    {
    }

    /// True for a handle without an element, as child() returns it for an index out of range.
    bool isEmpty() const { return m_tree == nullptr; }
    /// Name of the element.
    std::u16string name() const;
    // The number of items of each kind directly in the element.
    qsizetype childCount() const { return count(ItemKind::Child); }
    qsizetype textCount() const { return count(ItemKind::Text); }
    qsizetype clearCount() const { return count(ItemKind::Clear); }
    qsizetype attributeCount() const { return count(ItemKind::Attribute); }
    /// The sum of the four counts.
    qsizetype elementCount() const;

    /// The i-th item of its kind, from 0; empty if `i` is out of range. Loops over i are linear.
    MarkupNode child(qsizetype i) const;
    /// One piece of text; an element with sub-elements between its texts has several.
    std::u16string text(qsizetype i) const;
    /// The content of a section: CDATA, comment, script and the like, without its delimiters.
    std::u16string clear(qsizetype i) const;
    /// A decoded attribute.
    struct Attribute
    {
        std::u16string name;
        std::u16string value;
    };
    Attribute attribute(qsizetype i) const;

    /// The tree of the element; null for an empty handle.
    const MarkupTree *tree() const { return m_tree; }
    /// Index of the element in that tree.
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
    /// The index that means "no item".
    static constexpr quint32 kNone = ~quint32(0);

    /// All items, in document order.
    std::span<const TreeItem> items() const { return {m_items.get(), m_size}; }
    const TreeItem &item(quint32 index) const { return m_items[index]; }
    /// The text at a span of one of the items.
    RawText raw(TextSpan span) const
    {
        if (span.isExternal()) {
            return m_tokenizer->externalText(span.offset());
        }
        return {m_bytes + span.offset(), span.size(), span.form()};
    }
    /// Whether the text at a span of one of the items is in quotes, which are not part of it: in
    /// JSON, it is a string.
    bool isQuoted(TextSpan span) const
    {
        // The tree begins at the quote or before it.
        const char before = span.offset() > 0 ? m_bytes[span.offset() - 1] : ' ';
        return before == '"' || before == '\'';
    }
    /// Name or text of an item.
    RawText raw(quint32 index) const { return raw(m_items[index].text); }
    /// Value of an Attribute.
    RawText value(const TreeItem &attribute) const { return raw(attribute.value); }
    /// The artificial root, which holds the elements of the tree.
    MarkupNode root() const { return {this, 0}; }

    /// The attributes of an element follow it, one by one; this is the index after the last of
    /// them.
    quint32 attributesEnd(quint32 element) const
    {
        return element + 1 + m_items[element].count(ItemKind::Attribute);
    }
    /// The first item of `kind` at or after `index` directly inside `parent`, or kNone.
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
    /// The first item of `kind` directly inside `parent`, or kNone.
    quint32 first(quint32 parent, ItemKind kind) const { return next(parent + 1, parent, kind); }
    /// The next item of the same kind and parent, or kNone.
    quint32 sibling(quint32 child) const
    {
        return next(m_items[child].next, m_items[child].parent, m_items[child].kind);
    }

private:
    friend class MarkupTreeBuilder;
    friend class MarkupNode;
    /// An item that was found by number; the search for the next number starts there.
    struct Hint
    {
        quint32 parent = kNone;
        ItemKind kind = ItemKind::Child;
        qsizetype number = 0;
        quint32 index = 0;
    };

    /// Frees what realloc() returned.
    struct Free
    {
        // NOLINTNEXTLINE(cppcoreguidelines-no-malloc): see MarkupTreeBuilder::reserve()
        void operator()(TreeItem *items) const { std::free(items); }
    };

    /// Room for m_capacity items, of which m_size are used.
    std::unique_ptr<TreeItem[], Free> m_items;
    size_t m_size = 0;
    size_t m_capacity = 0;
    const MarkupTokenizer *m_tokenizer = nullptr;
    const char *m_bytes = nullptr;
    /// The last item that MarkupNode found by number.
    mutable Hint m_hint;
};

/// Where parsing stopped and why; None: it did not fail. (Not a Result: parseNext() returns the
/// tree of the data before a failure together with it.)
struct MarkupResult
{
    MarkupError error = MarkupError::None;
    /// From 1.
    qint64 line = 1;
    /// From 0, in UTF-16 units.
    qint64 column = 0;
};

class XMLTokenizer;

/// Builds trees, one after the other, from a tokenizer. Threads: one at a time.
class MarkupTreeBuilder
{
public:
    MarkupTreeBuilder();

    /// When on (the default), parseNext() returns the only child of the artificial root, if there
    /// is just one item, instead of the root.
    void setReturnSingleChild(bool on) { m_returnSingleChild = on; }
    /// Set the initial size of the tree's memory, in bytes.
    void setBlockSize(qint64 bytes) { m_blockBytes = bytes; }

    /// Build the tree of the next element (`nextElement`) or of the next top-level value, and
    /// return its root. Frees the previous tree. `result` holds the failure, if any; the root then
    /// holds the data before it. Without any element: NoTagFound and an empty handle.
    MarkupNode parseNext(MarkupTokenizer &tokenizer, MarkupResult &result, bool nextElement);

    // The steps of parseNext(), for callers that read the tokens themselves.

    /// Free the previous tree and begin one at the current token of the tokenizer.
    void begin(MarkupTokenizer &tokenizer);
    /// Add the current token (Start, End, Text, Clear or Instruction). Returns false when the tree
    /// becomes too large (limits::kTreeArenaBytes), its only failure.
    bool add(Token token);
    /// Takes leaves instead of the tree.
    class LeafTaker
    {
    public:
        LeafTaker() = default;
        LeafTaker(const LeafTaker &) = delete;
        LeafTaker &operator=(const LeafTaker &) = delete;
        virtual ~LeafTaker() = default;
        /// Returns false for a leaf that is to be added to the tree. Its spans are relative to the
        /// current token.
        virtual bool take(const MarkupTokenizer &tokenizer, const MarkupTokenizer::Leaf &leaf) = 0;
    };
    /// Add the leaves that come next, if any, without a token for each part; first `taker`, if
    /// given, may take each. Returns false when the tree becomes too large.
    bool addLeaves(LeafTaker *taker = nullptr);
    /// Number of open elements below the artificial root.
    qint64 depth() const { return m_depth; }
    /// The tree of the tokens added so far. Call again after the tokenizer read on.
    const MarkupTree &tree();

    static constexpr qint64 kDefaultBlockBytes = 1'048'576;

private:
    bool reserve(size_t capacity);
    /// False when the tree would become too large.
    bool makeRoom(size_t items);
    /// The rare part of makeRoom(): room for the items is missing.
    bool grow(size_t items);
    // The functions that add items return false, or null, when the tree becomes too large.
    TreeItem &put(quint32 parent, ItemKind kind, TextSpan text);
    TreeItem *push(ItemKind kind, TextSpan text);
    bool addStart(TextSpan name, size_t pinned);
    bool addAttributes(size_t pinned);
    bool addClear(TextSpan text);
    bool addLeaf(const MarkupTokenizer::Leaf &leaf);
    Token pull(bool nextElement);
    MarkupNode finish(MarkupResult &result, Token last);

    MarkupTree m_tree;
    MarkupTokenizer *m_tokenizer = nullptr;
    const XMLTokenizer *m_xml = nullptr;
    /// Index of the innermost open element.
    quint32 m_current = 0;
    qint64 m_depth = 0;
    qint64 m_blockBytes = kDefaultBlockBytes;
    bool m_returnSingleChild = true;
    bool m_tooLarge = false;
};

} // namespace corvanta::markup
