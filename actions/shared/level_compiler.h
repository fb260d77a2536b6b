// writers/level_compiler.h
// Turns the levels that a user declared into the operations that write them, for one table's
// columns.
#pragma once
#include "actions/shared/level_composer.h"
#include "actions/shared/write_levels.h"
#include "base/result.h"
#include "corvanta/one_row.h"

#include <functional>

namespace corvanta {

/// Why levels cannot be compiled; the name that goes with it is given in parentheses.
enum class LevelProblem {
    NoPartitionColumn, ///< the table lacks a level's partition column (the column)
    NoColumn,          ///< the table lacks a listed column (the column)
    NoLevel,           ///< a called level does not exist (the level)
    CyclicLevel,       ///< a level leads back to itself (the level)
    NoDictionary,      ///< a comma item follows another item than a dictionary
    NoColumnListed,    ///< an item that needs a column lists none
};

/// What an item's compilation may look up.
class LevelCompiler
{
public:
    using Compiled = Result<ComposeOperation, LevelProblem>;
    using Levels = Result<std::vector<ComposeLevel>, LevelProblem>;
    /// Compiles one item of level number `level`.
    using CompileItem = std::function<Compiled(size_t level, size_t item)>;

    /// Both must outlive the compiler.
    LevelCompiler(const std::vector<WriteLevel> &levels, const OneRow &columns)
        : m_levels(levels)
        , m_columns(columns)
    {
    }

    /// Compile all levels, from the last to the first. The fault's detail is the name that is
    /// missing or wrong, its offset the number of the level.
    Levels compile(const CompileItem &compileItem) const;

    const OneRow &columns() const { return m_columns; }
    /// The columns with these names; NoColumn for one that does not exist.
    Result<std::vector<ComposeOperation::Column>, LevelProblem>
    find(const QStringList &names) const;
    /// All columns in order; also those whose name another column has.
    std::vector<ComposeOperation::Column> findAll() const;
    /// The call of the first level named `name`; NoLevel when there is none.
    Compiled callOf(const QString &name) const;

private:
    Result<ComposeLevel, LevelProblem> compileLevel(size_t index,
                                                    const CompileItem &compileItem) const;
    static int findCyclicLevel(const std::vector<ComposeLevel> &levels);

    const std::vector<WriteLevel> &m_levels;
    const OneRow &m_columns;
};

/// Input columns whose names the operations write or whose values they write, each once.
QVector<int> columnsOf(const std::vector<ComposeLevel> &levels);

/// How many calls (items of type `callType`) lie between level 0 and each level, on the shortest
/// way; 0 also for levels that are never called.
std::vector<int> depthsOf(const std::vector<WriteLevel> &levels, int callType);

} // namespace corvanta
