// The state of one level during the extraction.
#pragma once
#include "codecs/markup/levels/cell_arena.h"
#include "codecs/markup/levels/level.h"
#include "codecs/markup/tree/path_set.h"

#include <string>
#include <vector>

namespace corvanta::markup {

/// What an extractor knows about a level. Threads: one at a time.
struct LevelState
{
    LevelState(const Level &levelToRead, const PathSyntax &syntax)
        : level(levelToRead)
        , initialPath(parsePath(level.initialPath, syntax))
        , subtag(nameInStep(level.subtagName))
    {
        for (const LevelItem &item : level.items) {
            paths.add(parsePath(item.path, syntax));
        }
    }

    /// True for the name of an element that is an occurrence.
    bool isOccurrence(const RawText &name) const
    {
        return subtag.empty() || nameMatches(name, subtag);
    }

    /// Forget what was found in the previous file.
    void beginFile()
    {
        wasFound.assign(paths.size(), false);
        occurred = false;
        containerFound = initialPath.empty();
    }

    Level level;
    std::vector<PathStep> initialPath;
    std::u16string subtag;       ///< lower case; empty: every name
    PathSet paths;               ///< of the items, then the initial path of the next level
    int firstColumn = 0;         ///< of the level's cells
    std::vector<bool> wasFound;  ///< by path: found in the current file
    bool occurred = false;       ///< the file has an occurrence
    bool containerFound = false; ///< the file has the element at the initial path
    BlockArena arena;            ///< of the cells, except those of the last level
    quint32 occurrence = 0;      ///< index of the occurrence in the current row
};

} // namespace corvanta::markup
