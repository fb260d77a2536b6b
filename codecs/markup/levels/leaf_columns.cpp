#include "codecs/markup/levels/leaf_columns.h"

#include "base/bytes.h"

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
            m_columns.push_back({name, i, isWritten ? items[i].path.toStdString() : ""});
        }
    }
    if (inner != nullptr) {
        paths.push_back(inner->initialPath);
    }
    std::erase_if(m_columns, [&](const Column &column) { return isShared(column, paths); });
}

bool LeafColumns::hasBytes(const RawText &name, const Column &column)
{
    return name.view().size() == column.bytes.size() &&
           equalBytes(name.data, column.bytes.data(), column.bytes.size());
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

/// Most records have the same members in the same order. Some lack one, or have one at another
/// place than the sample: then the next member is expected where it was before.
size_t LeafColumns::find(const RawText &name)
{
    constexpr size_t kSkipped = 4;
    constexpr size_t kSearched = 32;
    const size_t count = m_columns.size();
    size_t index = m_next;
    for (size_t i = 0; i < std::min(kSearched, count); ++i, ++index) {
        index = index < count ? index : 0;
        if (hasBytes(name, m_columns[index])) {
            m_next = i < kSkipped ? index + 1 : m_next;
            return m_columns[index].item;
        }
    }
    index = m_next;
    for (size_t i = 0; i < std::min(kSkipped, count); ++i, ++index) {
        index = index < count ? index : 0;
        if (nameMatches(name, m_columns[index].name)) {
            m_columns[index].bytes = name.view();
            return m_columns[index].item;
        }
    }
    return kNone;
}

/// A further leaf of an item goes to the tree, which counts it.
bool LeafKeeper::take(const MarkupTokenizer &tokenizer, const MarkupTokenizer::Leaf &leaf)
{
    const size_t item = m_columns.find(tokenizer.resolve(leaf.name));
    if (item == LeafColumns::kNone || m_kept[item].record == m_record) {
        return false;
    }
    const size_t pinned = tokenizer.pinnedOffset();
    m_kept[item] = {m_record, {leaf.name.movedBy(pinned), leaf.text.movedBy(pinned), leaf.hasText}};
    m_lastKept = m_record;
    return true;
}

} // namespace corvanta::markup
