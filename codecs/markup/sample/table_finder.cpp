// From shapes to levels:
//
//     document                    repeated shapes outside of other repeated ones: one table each
//      +- orders (repeated)       the first level
//          +- id                  an item
//          +- tags (few scalars)  items tags[0], tags[1] ...
//          +- lines (repeated)    the next level, if it is the most frequent one in an order
//          +- notes (repeated)    left out
#include "codecs/markup/sample/table_finder.h"

#include "codecs/markup/sample/column_names.h"
#include "codecs/markup/tree/path.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::markup {

namespace {

/// A repeated scalar with at most this many values in a record becomes one column per value. With
/// more values it becomes a level.
constexpr qint64 kIndexedValues = 8;

/// Not QString::fromStdU16String(), which takes U+FEFF and U+FFFE at the start as byte-order marks:
/// the name would then not be found in the document.
QString unchanged(std::u16string_view name)
{
    return QStringView(name).toString();
}

/// Threads: objects are constant.
class TableFinder
{
public:
    TableFinder(const Shapes &shapes, bool isXml, bool zeroBased)
        : m_shapes(shapes)
        , m_isXml(isXml)
        , m_zeroBased(zeroBased)
        , m_sameNameIndex(shapes.size())
    {
        for (const Shape &shape : shapes) {
            std::map<std::u16string, qint64> names;
            for (const size_t child : shape.children) {
                const Shape &at = shapes[child];
                qint64 &number = names[toLowerCase(at.name)];
                m_sameNameIndex[child] = number;
                number += std::max<qint64>(at.maxInParent, 1);
            }
        }
    }

    SampledDocument find() const;

private:
    /// An item that does not have its name yet.
    struct Place
    {
        size_t level = 0;
        size_t shape = 0;
        ColumnNameParts name;
    };
    /// A table that is being put together.
    struct Draft
    {
        SampledTable table;
        std::vector<Place> places;
        size_t record = 0; ///< shape of the first level's occurrences
    };

    std::vector<size_t> descendants(size_t top) const;
    std::vector<size_t> findRecords() const;
    bool hasScalars() const;
    bool isTopArray(size_t shape) const;
    std::vector<size_t> valuesOutside(const std::vector<size_t> &records) const;
    size_t findInner(size_t record) const;
    SampledTable tableOf(size_t record) const;
    Level withoutColumns(Level level, size_t top) const;
    LevelItem keyOf(const Draft &draft) const;
    void addRelated(const RelatedTable *parent, size_t container, size_t top, int parentIndex,
                    std::vector<RelatedTable> *tables) const;
    static void nameTables(std::vector<RelatedTable> *tables);
    void addLevel(Draft *draft, size_t container, size_t top, size_t inner) const;
    void addColumns(Draft *draft, size_t top, size_t shape) const;
    void addItem(Draft *draft, size_t top, size_t shape, const QString &path,
                 const QString &suffix) const;
    bool isBesideMembers(size_t shape) const;
    void addIndexed(Draft *draft, size_t top, size_t shape) const;
    QStringList namesTo(const Draft &draft, size_t shape) const;
    static void nameItems(Draft *draft);
    QString index(qint64 number) const;
    QString stepTo(size_t shape) const;
    QString numberedStepTo(size_t shape, qint64 number) const;
    QString pathTo(size_t top, size_t shape) const;

    const Shapes &m_shapes;
    bool m_isXml;
    bool m_zeroBased;
    /// By shape: the number of elements before it whose names differ only in letter case, in a
    /// parent that has all of them.
    std::vector<qint64> m_sameNameIndex;
};

/// `top`, the shapes inside it that are not repeated, and the repeated shapes that these hold, in
/// the order of their first occurrence. Does not descend into repeated shapes.
std::vector<size_t> TableFinder::descendants(size_t top) const
{
    std::vector<size_t> found;
    std::vector<size_t> open{top};
    while (!open.empty()) {
        const size_t at = open.back();
        open.pop_back();
        found.push_back(at);
        if (at == top || !m_shapes[at].isRepeated()) {
            const std::vector<size_t> &children = m_shapes[at].children;
            open.insert(open.end(), children.rbegin(), children.rend());
        }
    }
    return found;
}

/// True when the document has values that are not repeated.
bool TableFinder::hasScalars() const
{
    return std::ranges::any_of(descendants(0), [&](size_t shape) {
        const Shape &at = m_shapes[shape];
        return at.hasText && !at.isRepeated() && !at.isAttribute;
    });
}

/// True for the items of arrays at the top that hold others. The extractor reads such items as
/// records, also next to objects.
bool TableFinder::isTopArray(size_t shape) const
{
    const Shape &at = m_shapes[shape];
    return at.isItem && !at.isNamed && at.name.empty() && at.holdsOthers();
}

/// The shapes whose occurrences can be rows.
std::vector<size_t> TableFinder::findRecords() const
{
    const std::vector<size_t> &top = m_shapes[0].children;
    const bool hasArray =
        std::any_of(top.begin(), top.end(), [&](size_t child) { return isTopArray(child); });
    if (m_shapes[0].count > 1 && !hasArray) {
        return {0}; // a stream of documents: each is a record
    }
    std::vector<size_t> containers;
    std::vector<size_t> scalars;
    for (const size_t shape : descendants(0)) {
        if (shape != 0 && m_shapes[shape].isRepeated()) {
            (m_shapes[shape].holdsOthers() ? containers : scalars).push_back(shape);
        }
    }
    if (!containers.empty()) {
        return containers;
    }
    if (!scalars.empty() && !hasScalars()) {
        return scalars;
    }
    return {m_isXml && m_shapes[0].holdsOthers() ? m_shapes[0].children.front() : 0};
}

/// The repeated shape inside a record that becomes the next level: the most frequent one that holds
/// others, otherwise one with too many values for columns.
size_t TableFinder::findInner(size_t record) const
{
    size_t best = kNoShape;
    for (const size_t shape : descendants(record)) {
        const Shape &at = m_shapes[shape];
        const bool isFit = shape != record && at.isRepeated() &&
                           (at.holdsOthers() || (at.hasText && at.maxInParent > kIndexedValues));
        const auto rank = [&](size_t of) {
            return std::pair(m_shapes[of].holdsOthers(), m_shapes[of].count);
        };
        if (isFit && (best == kNoShape || rank(shape) > rank(best))) {
            best = shape;
        }
    }
    return best;
}

QString TableFinder::index(qint64 number) const
{
    return u'[' + QString::number(m_zeroBased ? number : number + 1) + u']';
}

/// The step from the parent of a shape to the shape. A path ignores letter case, so an index
/// distinguishes names that differ only in it.
QString TableFinder::stepTo(size_t shape) const
{
    const bool isFirst = m_sameNameIndex[shape] == 0 || m_shapes[shape].isAttribute;
    return isFirst ? unchanged(escapedStep(m_shapes[shape].name)) : numberedStepTo(shape, 0);
}

/// The step from the parent of a shape to its occurrence `number`, from 0.
QString TableFinder::numberedStepTo(size_t shape, qint64 number) const
{
    return unchanged(escapedName(m_shapes[shape].name)) + index(m_sameNameIndex[shape] + number);
}

QString TableFinder::pathTo(size_t top, size_t shape) const
{
    QStringList steps;
    for (; shape != top; shape = m_shapes[shape].parent) {
        steps.prepend(stepTo(shape));
    }
    return steps.join(u'/');
}

/// The names that lead from the record of the first level to a shape, the last one first.
QStringList TableFinder::namesTo(const Draft &draft, size_t shape) const
{
    QStringList names;
    const auto add = [&](size_t at) {
        const QString name = unchanged(m_shapes[at].name);
        if (!name.isEmpty()) {
            names << (m_shapes[at].isAttribute ? name.sliced(1) : name);
        }
    };
    for (size_t at = shape; at != draft.record; at = m_shapes[at].parent) {
        add(at);
    }
    for (size_t at = draft.record; at != 0 && names.isEmpty(); at = m_shapes[at].parent) {
        add(at);
    }
    return names.isEmpty() ? QStringList(u"value"_s) : names;
}

void TableFinder::addItem(Draft *draft, size_t top, size_t shape, const QString &path,
                          const QString &suffix) const
{
    draft->places.push_back(
        {draft->table.levels.size() - 1, shape, {namesTo(*draft, shape), suffix}});
    draft->table.levels.back().items.push_back(
        {path.isNull() ? pathTo(top, shape) : path, QString(), false});
}

/// Add a column for each of the first values of a repeated scalar.
void TableFinder::addIndexed(Draft *draft, size_t top, size_t shape) const
{
    const Shape &at = m_shapes[shape];
    const qint64 values = std::min(at.maxInParent, kIndexedValues);
    const QString container = pathTo(top, at.parent);
    const QString between = container.isEmpty() ? QString() : u"/"_s;
    for (qint64 i = 0; i < values; ++i) {
        addItem(draft, top, shape, container + between + numberedStepTo(shape, i),
                u'[' + QString::number(i) + u']');
    }
}

/// Add a level whose occurrences are those of `top`, inside occurrences of `container`. `inner` is
/// the shape of the next level, if any.
void TableFinder::addLevel(Draft *draft, size_t container, size_t top, size_t inner) const
{
    Level level;
    level.initialPath = top == 0 ? QString() : pathTo(container, m_shapes[top].parent);
    level.subtagName = unchanged(m_shapes[top].name);
    draft->table.levels.push_back(std::move(level));
    draft->table.namesAreData = draft->table.namesAreData || m_shapes[top].isNamed;
    for (const size_t shape : descendants(top)) {
        if (shape != inner) {
            addColumns(draft, top, shape);
        }
    }
}

/// Whether a shape is an item of arrays in a place where there are objects, too. An index without a
/// name selects a member of these.
bool TableFinder::isBesideMembers(size_t shape) const
{
    const std::vector<size_t> &siblings = m_shapes[m_shapes[shape].parent].children;
    return m_shapes[shape].isItem && m_shapes[shape].name.empty() &&
           std::any_of(siblings.begin(), siblings.end(),
                       [this](size_t other) { return !m_shapes[other].isItem; });
}

/// Add the columns of one shape inside `top`, or report it as left out.
void TableFinder::addColumns(Draft *draft, size_t top, size_t shape) const
{
    const Shape &at = m_shapes[shape];
    if (shape == top || !at.isRepeated()) {
        if (at.hasText) {
            addItem(draft, top, shape, QString(), QString());
        }
    } else if (isBesideMembers(shape)) {
        draft->table.leftOut << pathTo(draft->record, at.parent) + index(0);
    } else if (at.hasText && !at.holdsOthers() && at.maxInParent <= kIndexedValues) {
        addIndexed(draft, top, shape);
    } else if (at.hasText || at.holdsOthers()) {
        const size_t leftOut = at.isItem ? at.parent : shape;
        draft->table.leftOut << pathTo(draft->record, leftOut);
        draft->table.levels.back().leftOut << pathTo(top, leftOut);
    }
}

/// Name the items of all levels.
void TableFinder::nameItems(Draft *draft)
{
    std::vector<ColumnNameParts> columns;
    for (const Place &place : draft->places) {
        columns.push_back(place.name);
    }
    draft->table.beginning = distinctNames(std::move(columns));
    std::vector<size_t> next(draft->table.levels.size());
    for (size_t i = 0; i < draft->places.size(); ++i) {
        const size_t level = draft->places[i].level;
        draft->table.levels[level].items[next[level]++].name =
            draft->table.beginning[static_cast<qsizetype>(i)];
    }
}

SampledTable TableFinder::tableOf(size_t record) const
{
    Draft draft;
    draft.record = record;
    draft.table.path = pathTo(0, m_shapes[record].isItem ? m_shapes[record].parent : record);
    draft.table.rows = m_shapes[record].count;
    size_t container = 0;
    for (size_t top = record; top != kNoShape;) {
        const size_t inner = findInner(top);
        addLevel(&draft, container, top, inner);
        container = top;
        top = inner;
    }
    if (draft.places.empty()) {
        addItem(&draft, record, record, QString(), QString());
    }
    for (const Place &place : draft.places) {
        draft.table.values += m_shapes[place.shape].count;
    }
    nameItems(&draft);
    return std::move(draft.table);
}

// ---- Related tables.

/// The level of `top` without columns: its values are left out on purpose.
Level TableFinder::withoutColumns(Level level, size_t top) const
{
    level.items.clear();
    level.leftOut.clear();
    for (const size_t shape : descendants(top)) {
        const Shape &at = m_shapes[shape];
        const bool isLeftOut = shape != top && (at.hasText || at.isRepeated());
        // The occurrence itself can hold the items of a list.
        const size_t part = at.isItem ? at.parent : shape;
        if (isLeftOut && part != top) {
            level.leftOut << pathTo(top, part);
        }
    }
    level.leftOut.removeDuplicates();
    return level;
}

/// The first column whose name is usual for identifiers and that no record of the sample lacks.
LevelItem TableFinder::keyOf(const Draft &draft) const
{
    const std::vector<LevelItem> &items = draft.table.levels.back().items;
    for (const QString &usual : {u"id"_s, u"key"_s, u"uuid"_s, u"guid"_s, u"code"_s}) {
        for (size_t i = 0; i < items.size(); ++i) {
            const Shape &shape = m_shapes[draft.places[i].shape];
            const bool isInAll = shape.count == m_shapes[draft.record].count && !shape.isRepeated();
            if (isInAll && items[i].name.compare(usual, Qt::CaseInsensitive) == 0) {
                return items[i];
            }
        }
    }
    return {};
}

/// Add the table of `top`, whose records are inside those of `container`, and the tables inside it.
void TableFinder::addRelated(const RelatedTable *parent, size_t container, size_t top,
                             int parentIndex, std::vector<RelatedTable> *tables) const
{
    Draft draft;
    draft.record = top;
    addLevel(&draft, container, top, kNoShape);
    nameItems(&draft);
    RelatedTable table;
    table.path = pathTo(0, m_shapes[top].isItem ? m_shapes[top].parent : top);
    table.rows = m_shapes[top].count;
    table.parent = parentIndex;
    table.levels = parent != nullptr ? parent->levels : std::vector<Level>();
    if (parent != nullptr) {
        // The parent's own level gives no columns here, apart from the one that joins.
        table.levels.back() = withoutColumns(table.levels.back(), container);
    }
    table.levels.push_back(draft.table.levels.back());
    table.key = keyOf(draft);
    table.namesAreData = draft.table.namesAreData || (parent != nullptr && parent->namesAreData);
    const auto index = static_cast<int>(tables->size());
    tables->push_back(table);
    for (const size_t shape : descendants(top)) {
        const Shape &at = m_shapes[shape];
        const bool isList = at.hasText && at.maxInParent > kIndexedValues;
        if (shape != top && at.isRepeated() && (at.holdsOthers() || isList)) {
            addRelated(&table, top, shape, index, tables);
        }
    }
}

/// Name each table by the last steps of its path, as many as it needs to be distinct.
void TableFinder::nameTables(std::vector<RelatedTable> *tables)
{
    std::vector<ColumnNameParts> parts;
    for (const RelatedTable &table : *tables) {
        QStringList names = table.path.split(u'/');
        std::reverse(names.begin(), names.end());
        parts.push_back({names, {}});
    }
    const QStringList names = distinctNames(std::move(parts));
    for (size_t i = 0; i < tables->size(); ++i) {
        (*tables)[i].name = names[static_cast<qsizetype>(i)];
    }
}

/// The shapes with values that are in none of the records.
std::vector<size_t> TableFinder::valuesOutside(const std::vector<size_t> &records) const
{
    std::vector<size_t> outside;
    std::vector<size_t> open{0};
    while (!open.empty()) {
        const size_t shape = open.back();
        open.pop_back();
        if (std::find(records.begin(), records.end(), shape) != records.end()) {
            continue;
        }
        if (m_shapes[shape].hasText) {
            outside.push_back(shape);
        }
        const std::vector<size_t> &children = m_shapes[shape].children;
        open.insert(open.end(), children.rbegin(), children.rend());
    }
    return outside;
}

SampledDocument TableFinder::find() const
{
    SampledDocument document;
    const std::vector<size_t> records = findRecords();
    for (const size_t record : records) {
        document.add(tableOf(record));
        addRelated(nullptr, 0, record, -1, &document.related);
    }
    for (const size_t shape : valuesOutside(records)) {
        document.outside << pathTo(0, shape);
        // The items of a list outside the records are in no column of a record.
        if (m_shapes[shape].isRepeated() && !m_shapes[shape].holdsOthers()) {
            addRelated(nullptr, 0, shape, -1, &document.related);
        }
    }
    nameTables(&document.related);
    for (size_t shape = 0; shape < m_shapes.size(); ++shape) {
        if (m_sameNameIndex[shape] > 0 && !m_shapes[shape].isAttribute) {
            document.sameNames << QString::fromStdU16String(m_shapes[shape].name);
        }
    }
    document.sameNames.removeDuplicates();
    return document;
}

} // namespace

SampledDocument findTables(const Shapes &shapes, bool isXml, bool zeroBased)
{
    return TableFinder(shapes, isXml, zeroBased).find();
}

} // namespace corvanta::markup
