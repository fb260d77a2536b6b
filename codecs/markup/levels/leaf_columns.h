// Finds the items of a level that leaves are, for leaves that do not get into a tree.
#pragma once
#include "codecs/markup/levels/level_state.h"
#include "codecs/markup/text/scan.h"
#include "codecs/markup/tree/tree.h"

#include <string>
#include <utility>
#include <vector>

namespace corvanta::markup {

/// The items whose path is one name that no other path of the level begins with. Threads: one at a
/// time.
class LeafColumns
{
public:
    static constexpr size_t kNone = ~size_t(0);

    /// `inner` is the level in `level`; null: there is none.
    LeafColumns(const LevelState &level, const PathSyntax &syntax, const LevelState *inner);

    /// The number of the item with that name. kNone if there is none, or if it is not among the
    /// next ones: the leaf must then get into the tree, where it is found.
    size_t find(const RawText &name)
    {
        // Most records have the same members in the same order.
        if (!m_columns.empty()) {
            const Column &expected = m_columns.data()[m_expected];
            if (hasBytes(name, expected)) [[likely]] {
                m_last = std::exchange(m_expected, expected.next);
                return expected.item;
            }
        }
        return search(name);
    }

private:
    struct Column
    {
        std::u16string name; // in lower case
        size_t item = 0;
        std::string bytes; // of the last name that matched: most are equal
        size_t next = 0;   // the column that followed it last
    };
    using Paths = std::vector<std::vector<PathStep>>;

    static bool hasBytes(const RawText &name, const Column &column)
    {
        return name.size == column.bytes.size() &&
               equalBytes(name.data, column.bytes.data(), column.bytes.size());
    }
    static bool isName(const std::vector<PathStep> &path);
    static bool isShared(const Column &column, const Paths &paths);
    size_t search(const RawText &name);
    size_t use(size_t column);

    std::vector<Column> m_columns;
    size_t m_last = 0;     // the column of the last leaf
    size_t m_expected = 0; // the column after it
};

/// Keeps leaves of the records of JSON, which need no tree: most of them are members of an object
/// that give one cell each. Threads: one at a time.
class LeafKeeper final : public MarkupTreeBuilder::LeafTaker
{
public:
    LeafKeeper(LeafColumns columns, size_t items)
        : m_columns(std::move(columns))
        , m_kept(items)
    {
    }
    /// Forget the leaves of the record before.
    void beginRecord() { ++m_record; }
    /// The leaf of an item; null if it is in the tree or missing. Its spans are relative to the
    /// pinned place, like those of the tree.
    const MarkupTokenizer::Leaf *leafOf(size_t item) const
    {
        return m_kept[item].record == m_record ? &m_kept[item].leaf : nullptr;
    }
    /// Whether the record has leaves that are not in the tree.
    bool hasAny() const { return m_lastKept == m_record; }

    bool take(const MarkupTokenizer &tokenizer, const MarkupTokenizer::Leaf &leaf) override;

private:
    struct Kept
    {
        qint64 record = 0;
        MarkupTokenizer::Leaf leaf;
    };
    LeafColumns m_columns;
    std::vector<Kept> m_kept; // by item
    qint64 m_record = 0;
    qint64 m_lastKept = 0;
};

} // namespace corvanta::markup
