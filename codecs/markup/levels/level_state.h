// The state of one level during the extraction.
//
// The paths of a level and the initial path of the next one are looked up together, because they
// all start at the occurrence.
#pragma once
#include "codecs/markup/levels/cell_arena.h"
#include "codecs/markup/levels/level.h"
#include "codecs/markup/levels/span_cells.h"
#include "codecs/markup/tree/path_set.h"

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace corvanta::markup {

/// What an extractor knows about a level. Threads: one at a time.
struct LevelState
{
    /// Parse the paths of a level. `syntax` is the syntax of all its paths.
    LevelState(const Level &levelToRead, const PathSyntax &syntax)
        : level(levelToRead)
        , initialPath(parsePath(level.initialPath, syntax))
        , subtag(nameInStep(level.subtagName))
    {
        for (const LevelItem &item : level.items) {
            paths.add(parsePath(item.path, syntax));
        }
        const auto counted = std::ranges::find_if(level.items, &LevelItem::isNumber);
        numberItem = counted == level.items.end() ? -1 : int(counted - level.items.begin());
    }

    /// True when an item is the text of the occurrence itself: single values then are data.
    bool readsOwnText() const
    {
        return std::any_of(level.items.begin(), level.items.end(), [](const LevelItem &item) {
            return !item.tagName && !item.isNumber && (item.path.isEmpty() || item.path == u"/");
        });
    }

    /// True for the name of an element that is an occurrence.
    bool isOccurrence(const RawText &name) const
    {
        return subtag.empty() || nameMatches(name, subtag);
    }

    /// True when the occurrences are rows of HTML tables.
    bool readsRows() const { return subtag == u"tr"; }

    /// Forget what was found in the previous file.
    void beginFile()
    {
        wasFound.assign(paths.size(), false);
        occurred = false;
        paths.resetCounts();
        containerFound = initialPath.empty();
    }

    /// The level as given.
    Level level;
    /// level.initialPath, parsed.
    std::vector<PathStep> initialPath;
    /// Lower case; empty: every name.
    std::u16string subtag;
    /// Of the items, then the initial path of the next level.
    PathSet paths;
    /// Of rows of HTML tables, with ExtractOptions::expandSpans; otherwise null.
    std::unique_ptr<SpanCells> spans;
    /// Of the level's cells.
    int firstColumn = 0;
    /// Of the item that is the number of the occurrence; -1: none.
    int numberItem = -1;
    /// Occurrences in all files.
    qint64 number = 0;
    /// By path: found in the current file.
    std::vector<bool> wasFound;
    /// The file has an occurrence.
    bool occurred = false;
    /// The file has the element at the initial path.
    bool containerFound = false;
    /// Of the cells, except those of the last level.
    BlockArena arena;
    /// Index of the occurrence in the current row.
    quint32 occurrence = 0;
    /// By path: what was found in the occurrence, or MarkupTree::kNone.
    std::span<const quint32> found;
};

} // namespace corvanta::markup
