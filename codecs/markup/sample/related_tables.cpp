// The column that joins a table to its parent is an item of the level of the parent's records:
//
//   parent with a key      orders[].id   -> "orders_id", the value of the key
//   parent without a key   orders[]      -> "orders_number", in the parent's table too
//
// A name that an item of the table already has gets a number: "orders_id_2".
#include "codecs/markup/sample/related_tables.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::markup {

namespace {

/// The column of the number of a record, in its own table and in those inside it.
QString numberName(const RelatedTable &table)
{
    return (table.name.isEmpty() ? u"record"_s : table.name) + u"_number"_s;
}

/// `name`, with a number if an item of the level has it already.
QString freeName(const Level &level, const QString &name)
{
    QString found = name;
    for (int i = 2; std::ranges::find(level.items, found, &LevelItem::name) != level.items.end();
         ++i) {
        found = name + u'_' + QString::number(i);
    }
    return found;
}

/// Leave out, between the records of table `index`, what other tables read, and what those before
/// it report.
void leaveOutOthers(const std::vector<RelatedTable> &tables, size_t index, Level *first)
{
    for (size_t i = 0; i < tables.size(); ++i) {
        const Level &other = tables[i].levels.front();
        if (i == index) {
            continue;
        }
        if (i < index) {
            first->leftOut << u'/' + other.initialPath + u'/';
        }
        first->leftOut << u'/' + other.initialPath +
                              (other.subtagName.isEmpty() ? QString() : u'/' + other.subtagName);
    }
    first->leftOut.removeDuplicates();
}

} // namespace

std::vector<Level> joinedLevels(const std::vector<RelatedTable> &tables, size_t index,
                                const std::vector<bool> &areKeys)
{
    const RelatedTable &table = tables[index];
    std::vector<Level> levels = table.levels;
    leaveOutOthers(tables, index, &levels.front());
    Level &own = levels.back();
    if (table.parent >= 0) {
        const auto parent = static_cast<size_t>(table.parent);
        const RelatedTable &outer = tables[parent];
        Level &join = levels[levels.size() - 2];
        if (areKeys[parent]) {
            const QString prefix = outer.name.isEmpty() ? u"record"_s : outer.name;
            join.leftOut.removeAll(outer.key.path);
            join.items = {{outer.key.path, freeName(own, prefix + u'_' + outer.key.name)}};
        } else {
            join.items = {{{}, freeName(own, numberName(outer)), false, true}};
        }
        own.isRequired = true;
    }
    const bool isParent =
        std::ranges::find(tables, static_cast<int>(index), &RelatedTable::parent) != tables.end();
    if (isParent && !areKeys[index]) {
        own.items.insert(own.items.begin(), {{}, freeName(own, numberName(table)), false, true});
    }
    return levels;
}

} // namespace corvanta::markup
