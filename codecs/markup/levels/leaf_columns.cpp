// Leaves that give a cell each, for the items "id" and "a/b" (RFC 8259, section 4):
//
//     {"id": 1, "a": {"b": 2}}      "id": a leaf of its item; "a": begins another path, in the tree
//     {"id": 1, "id": 2}            the second "id" goes to the tree
#include "codecs/markup/levels/leaf_columns.h"

#include <algorithm>

namespace corvanta::markup {

/// The occurrences of an inner level without an initial path may have any name.
LeafColumns::LeafColumns(const LevelState &level, const PathSyntax &syntax, const LevelState *inner)
{
    const std::vector<LevelItem> &items = level.level.items;
    Paths paths;
    for (const LevelItem &item : items) {
        paths.push_back(parsePath(item.path, syntax));
    }
    for (size_t i = 0; i < items.size(); ++i) {
        if (!items[i].tagName && isName(paths[i])) {
            const std::u16string &name = paths[i].front().name;
            const bool isWritten = QStringView(name) == items[i].path.toLower();
            m_columns.push_back({name, i, isWritten ? items[i].path.toStdString() : "", 0});
        }
    }
    if (inner != nullptr) {
        paths.push_back(inner->initialPath);
    }
    std::erase_if(m_columns, [&](const Column &column) { return isShared(column, paths); });
    // Before the first record, the columns are expected in their order.
    for (size_t i = 0; i < m_columns.size(); ++i) {
        m_columns[i].next = (i + 1) % m_columns.size();
        m_last = i;
    }
}

/// Members without a name are called "_", and that name has no place in the text.
bool LeafColumns::isName(const std::vector<PathStep> &path)
{
    return path.size() == 1 && !path[0].anyName && !path[0].isIndexed && path[0].index == 0 &&
           !path[0].isAttribute() && !path[0].name.empty() && path[0].name != u"_";
}

/// Whether other paths select elements of the name, too.
bool LeafColumns::isShared(const Column &column, const Paths &paths)
{
    const auto begins = [&](const std::vector<PathStep> &path) {
        return path.empty() || path[0].anyName || path[0].name == column.name;
    };
    return std::ranges::count_if(paths, begins) != 1;
}

/// The leaf of a record that lacks a member, or has one at another place than the record before.
size_t LeafColumns::search(const RawText &name)
{
    constexpr size_t kSkipped = 4;
    constexpr size_t kSearched = 32;
    const size_t count = m_columns.size();
    for (size_t i = 1; i <= std::min(kSearched, count); ++i) {
        const size_t column = (m_last + i) % count;
        if (hasBytes(name, m_columns[column])) {
            return use(column);
        }
    }
    for (size_t i = 1; i <= std::min(kSkipped, count); ++i) {
        const size_t column = (m_last + i) % count;
        if (nameMatches(name, m_columns[column].name)) {
            m_columns[column].bytes = name.view();
            return use(column);
        }
    }
    return kNone;
}

/// From now on, the column is expected after the last one.
size_t LeafColumns::use(size_t column)
{
    m_columns[m_last].next = column;
    m_last = column;
    m_expected = m_columns[column].next;
    return m_columns[column].item;
}

/// A further leaf of an item goes to the tree, which counts it.
bool LeafKeeper::take(const MarkupTokenizer &tokenizer, const MarkupTokenizer::Leaf &leaf)
{
    const size_t item = m_columns.find(tokenizer.resolve(leaf.name));
    if (item == LeafColumns::kNone) {
        return false;
    }
    Kept &kept = m_kept[item];
    if (kept.record == m_record) {
        return false;
    }
    const size_t pinned = tokenizer.pinnedOffset();
    // One by one: a copy of the whole waits for the stores of its parts.
    kept.record = m_record;
    kept.leaf.name = leaf.name.movedBy(pinned);
    kept.leaf.text = leaf.text.movedBy(pinned);
    kept.leaf.hasText = leaf.hasText;
    m_lastKept = m_record;
    return true;
}

} // namespace corvanta::markup
