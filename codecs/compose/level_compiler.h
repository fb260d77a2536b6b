// Compiles the levels that a user declared into the operations that write them, for the columns of
// one table.
#pragma once
#include "base/result.h"
#include "codecs/compose/level_composer.h"
#include "codecs/compose/write_level.h"

#include <functional>

namespace corvanta::compose {

/// Why levels cannot be compiled; the name that goes with it is given in parentheses.
enum class LevelProblem {
    NoPartitionColumn, ///< the table lacks a level's partition column (the column)
    NoColumn,          ///< the table lacks a listed column (the column)
    NoLevel,           ///< a called level does not exist (the level)
    CyclicLevel,       ///< a level leads back to itself (the level)
    NoDictionary,      ///< a comma item follows another item than a dictionary
    NoColumnListed,    ///< an item that needs a column lists none
};

/// Compiles levels, and looks up what their items refer to. Threads: one at a time.
class LevelCompiler
{
public:
    using Compiled = Result<ComposeOperation, LevelProblem>;
    using Levels = Result<std::vector<ComposeLevel>, LevelProblem>;
    /// Compiles the item with index `item` of the level with index `level`.
    using CompileItem = std::function<Compiled(size_t level, size_t item)>;

    /// `levels` and the names and types of `columns` must outlive the compiler.
    LevelCompiler(const std::vector<WriteLevel> &levels, const RowView &columns)
        : m_levels(levels)
        , m_columns(columns)
    {
    }

    /// Compile all levels, from the last to the first. A fault has the name that LevelProblem
    /// describes as its detail, and the index of the level as its offset.
    Levels compile(const CompileItem &compileItem) const;

    const RowView &columns() const { return m_columns; }
    /// The first column of each name. Problems: NoColumn.
    Result<std::vector<ComposeOperation::Column>, LevelProblem>
    find(const QStringList &names) const;
    /// All columns in order, including those with the name of another column.
    std::vector<ComposeOperation::Column> findAll() const;
    /// The call of the first level named `name`. Problems: NoLevel.
    Compiled callOf(const QString &name) const;

private:
    Result<ComposeLevel, LevelProblem> compileLevel(size_t index,
                                                    const CompileItem &compileItem) const;
    static int findCyclicLevel(const std::vector<ComposeLevel> &levels);

    const std::vector<WriteLevel> &m_levels;
    RowView m_columns;
};

/// Indexes of the columns that the operations write, each once, in the order of their first use.
std::vector<int> writtenColumns(const std::vector<ComposeLevel> &levels);

/// The number of calls (items of type `callType`) from level 0 to each level, on the shortest path;
/// 0 also for levels that are never called.
std::vector<int> depthsOf(const std::vector<WriteLevel> &levels, int callType);

} // namespace corvanta::compose
