// {"p":{"k1":{"v":1},"k2":{"v":2},"k3":{"v":3},"k4":{"v":4}}}: the members of "p" are similar, so
// "p" is a map, and is read as if it were "p":[{"v":1},{"v":2},{"v":3},{"v":4}].
#include "codecs/markup/sample/map_finder.h"

#include <algorithm>
#include <utility>

namespace corvanta::markup {

namespace {

/// Similar members that make an object a map: in the document, and in one of its records.
constexpr size_t kMapMembers = 4;
constexpr size_t kInnerMapMembers = 16;
/// Members that make an object a map even if they are not similar.
constexpr size_t kManyMembers = 32;

/// Threads: one at a time.
class MapFinder
{
public:
    explicit MapFinder(Shapes &shapes)
        : m_shapes(shapes)
    {
    }

    void find()
    {
        for (size_t i = 0; i < m_shapes.size(); ++i) {
            if (isMap(i)) {
                convertToArray(i);
            }
        }
    }

private:
    bool isMap(size_t shape) const;
    bool isInRecord(size_t shape) const;
    void convertToArray(size_t map);
    void merge(size_t from, size_t into);

    Shapes &m_shapes;
};

/// True for a shape that occurs in records, where maps are less likely than in the document.
bool MapFinder::isInRecord(size_t shape) const
{
    while (shape != 0 && !m_shapes[shape].isRepeated()) {
        shape = m_shapes[shape].parent;
    }
    return m_shapes[shape].isRepeated() || m_shapes[0].count > 1;
}

/// True when all members are objects that have, on average, half of all names.
bool MapFinder::isMap(size_t shape) const
{
    const std::vector<size_t> &members = m_shapes[shape].children;
    if (members.size() < (isInRecord(shape) ? kInnerMapMembers : kMapMembers)) {
        return false;
    }
    std::map<std::u16string, size_t> names;
    size_t named = 0;
    for (const size_t member : members) {
        const Shape &at = m_shapes[member];
        if (at.isRepeated() || at.hasText || !at.holdsOthers()) {
            return false;
        }
        for (const size_t inner : at.children) {
            if (m_shapes[inner].isItem && !m_shapes[inner].isNamed) {
                return false;
            }
            ++names[m_shapes[inner].name];
            ++named;
        }
    }
    return 2 * named >= names.size() * members.size() || members.size() >= kManyMembers;
}

/// Replace the members of a map by one item that merges them all.
void MapFinder::convertToArray(size_t map)
{
    const std::vector<size_t> members = std::exchange(m_shapes[map].children, {m_shapes.size()});
    m_shapes[map].byName.clear();
    const size_t item = m_shapes.size();
    m_shapes.emplace_back();
    m_shapes[item].parent = map;
    for (const size_t member : members) {
        merge(member, item);
    }
    m_shapes[item].isItem = m_shapes[item].isNamed = true;
    m_shapes[item].maxInParent = static_cast<qint64>(members.size());
}

/// Add the counts and children of the shape `from` to the shape `into`.
void MapFinder::merge(size_t from, size_t into)
{
    m_shapes[into].count += m_shapes[from].count;
    m_shapes[into].maxInParent = std::max(m_shapes[into].maxInParent, m_shapes[from].maxInParent);
    m_shapes[into].isItem = m_shapes[into].isItem || m_shapes[from].isItem;
    m_shapes[into].hasText = m_shapes[into].hasText || m_shapes[from].hasText;
    for (const size_t child : m_shapes[from].children) {
        const auto [known, isNew] =
            m_shapes[into].byName.try_emplace(m_shapes[child].name, m_shapes.size());
        const size_t target = known->second;
        if (isNew) {
            m_shapes.emplace_back();
            m_shapes[target].name = m_shapes[child].name;
            m_shapes[target].parent = into;
            m_shapes[into].children.push_back(target);
        }
        merge(child, target);
    }
}

} // namespace

void mergeMapMembers(Shapes *shapes)
{
    MapFinder(*shapes).find();
}

} // namespace corvanta::markup
