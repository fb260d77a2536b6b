#include "panels/structures/level_paths.h"

#include "base/mapped.h"

#include <algorithm>

namespace corvanta {

namespace {

/// The other members of a level do not change where its elements are.
bool isSamePlace(const markup::Level &a, const markup::Level &b)
{
    return a.initialPath == b.initialPath && a.subtagName == b.subtagName;
}

/// The levels number `depth` of the tables whose levels before it are the first of `levels`.
std::vector<const markup::Level *> levelsAt(const SampledLevels &sample, const LevelPlaces &levels,
                                            size_t depth)
{
    std::vector<const markup::Level *> found;
    for (const std::vector<markup::Level> &table : sample) {
        const auto end = levels.begin() + static_cast<std::ptrdiff_t>(depth);
        if (table.size() > depth && std::equal(levels.begin(), end, table.begin(), isSamePlace)) {
            found.push_back(&table[depth]);
        }
    }
    return found;
}

} // namespace

/// Several tables of a file may have the same levels.
QStringList containersAfter(const SampledLevels &sample, const LevelPlaces &before)
{
    auto paths = mapped<QStringList>(levelsAt(sample, before, before.size()),
                                     [](const auto *level) { return level->initialPath; });
    paths.removeDuplicates();
    return paths;
}

QStringList repeatedIn(const SampledLevels &sample, const LevelPlaces &levels)
{
    QStringList names;
    for (const markup::Level *const level : levelsAt(sample, levels, levels.size() - 1)) {
        if (level->initialPath == levels.back().initialPath) {
            names << level->subtagName;
        }
    }
    names.removeDuplicates();
    return names;
}

/// Also values that the sample left out: the user may want them.
QStringList valuesIn(const SampledLevels &sample, const LevelPlaces &levels)
{
    QStringList paths;
    for (const markup::Level *const level : levelsAt(sample, levels, levels.size() - 1)) {
        if (isSamePlace(*level, levels.back())) {
            for (const markup::LevelItem &item : level->items) {
                paths << item.path;
            }
            paths += level->leftOut;
        }
    }
    paths.removeDuplicates();
    return paths;
}

} // namespace corvanta
