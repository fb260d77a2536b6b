// Compiles the levels that a user declared into the operations that write them, for the columns of
// one table.
//
// Names of columns and levels become indexes, so that a row is written without a look-up. What the
// items of the two syntaxes mean is the part of the CompileItem functions of json_levels.cpp and
// xml_levels.cpp; everything about levels is here.
//
// Levels may share a sub-level, and a level may call several, or one of them twice. They may not
// form a cycle. The compiler reports one problem at a time and words no message.
#pragma once
#include "base/result.h"
#include "codecs/compose/level_composer.h"
#include "codecs/compose/write_level.h"

#include <functional>

namespace corvanta::compose {

/// Why levels cannot be compiled; the name that goes with it is given in parentheses. The problem
/// of the last level is reported first, and of one level that of the first item; a missing
/// partition column precedes all problems of the items.
enum class LevelProblem {
    NoPartitionColumn, ///< the table lacks a level's partition column (the column)
    NoColumn,          ///< the table lacks a listed column (the column)
    NoLevel,           ///< a called level does not exist (the level)
    CyclicLevel,       ///< a level leads back to itself (the level)
    NoDictionary,      ///< a comma item follows another item than a dictionary
    NoColumnListed,    ///< an item that needs a column lists none
};

/// Compiles levels, and looks up what their items refer to. Constant after construction, so any
/// number of threads may use one.
class LevelCompiler
{
public:
    /// The operation of an item, or why it has none.
    using Compiled = Result<ComposeOperation, LevelProblem>;
    /// All levels, in the order of the declared ones.
    using Levels = Result<std::vector<ComposeLevel>, LevelProblem>;
    /// Compiles the item with index `item` (from 0) of the level with index `level` (from 0). Its
    /// fault ends the compilation.
    using CompileItem = std::function<Compiled(size_t level, size_t item)>;

    /// `levels` and the names and types of `columns` must outlive the compiler. The cells of
    /// `columns` are not read, so a view of any row of the table will do.
    LevelCompiler(const std::vector<WriteLevel> &levels, const RowView &columns)
        : m_levels(levels)
        , m_columns(columns)
    {
    }

    /// Compile all levels, from the last to the first; level i of the result is level i of the
    /// input. Levels that are never called are compiled too, so that their problems are found. A
    /// fault has the name that LevelProblem describes as its detail, and the index of the level as
    /// its offset. Problems: NoPartitionColumn, CyclicLevel and those of `compileItem`.
    Levels compile(const CompileItem &compileItem) const;

    /// The table; its names are those that find() looks up.
    const RowView &columns() const { return m_columns; }
    /// The first column of each name, in the order of `names`; a name that is listed twice gives
    /// two columns. Letter case counts. Problems: NoColumn.
    Result<std::vector<ComposeOperation::Column>, LevelProblem>
    find(const QStringList &names) const;
    /// All columns in order, including those with the name of another column.
    std::vector<ComposeOperation::Column> findAll() const;
    /// The call of the first level named `name`, also of a level that is not compiled yet.
    /// Problems: NoLevel.
    Compiled callOf(const QString &name) const;

private:
    // One level; its calls may form cycles, which only the whole list shows.
    Result<ComposeLevel, LevelProblem> compileLevel(size_t index,
                                                    const CompileItem &compileItem) const;
    /// Sub-levels of sub-levels that return to a level would write without end.
    static int findCyclicLevel(const std::vector<ComposeLevel> &levels);

    const std::vector<WriteLevel> &m_levels;
    RowView m_columns; // a view: its names and types are the caller's
};

/// Whether a value may not be missing between two texts of an element. `before` is all text from
/// its beginning, with "v" in place of values and sub-levels; `after` is the text directly after.
/// Of the only value of an element that commas separate, `before` is the comma.
using NeedsValue = std::function<bool(std::u16string_view before, std::u16string_view after)>;

/// Set needsValue and followsComma of all operations.
void markNeededValues(std::vector<ComposeLevel> &levels, const NeedsValue &needsValue);

/// Indexes of the columns that the operations write, each once, in the order of their first use.
/// Columns that only partition are not among them.
std::vector<int> writtenColumns(const std::vector<ComposeLevel> &levels);

/// The number of calls (items of type `callType`) from level 0 to each level, on the shortest path;
/// 0 also for levels that are never called. `levels` has at least one level; cycles, and calls of
/// levels that do not exist, are allowed. For the indent of readable files.
std::vector<int> depthsOf(const std::vector<WriteLevel> &levels, int callType);

} // namespace corvanta::compose
