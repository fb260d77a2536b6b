// The input is a list of levels, each a list of items; the output has an operation for each item:
//
//     level: name  partitionCol  items                    level: partition   operations
//     0      -     -             text, sub-level "b"  ->  0      -           Text, SubLevel 1
//     1      "b"   "key"         array of "x", "y"        1      column 0    Values of columns 3, 4
//
// Names of columns become indexes in the row, and names of levels indexes in the list.
#include "codecs/compose/level_compiler.h"

#include <algorithm>
#include <set>

namespace corvanta::compose {

namespace {

using Column = ComposeOperation::Column;

size_t indexOfLevel(const std::vector<WriteLevel> &levels, const QString &name)
{
    const auto found = std::find_if(levels.begin(), levels.end(),
                                    [&](const WriteLevel &level) { return level.name == name; });
    return static_cast<size_t>(found - levels.begin());
}

/// For each level the number of its calls that lead into a cycle.
std::vector<size_t> removeAcyclicLevels(const std::vector<ComposeLevel> &levels)
{
    std::vector<size_t> callsLeft(levels.size());
    std::vector<std::vector<size_t>> callers(levels.size());
    std::vector<size_t> removed;
    for (size_t i = 0; i < levels.size(); ++i) {
        for (const ComposeOperation &operation : levels[i].operations) {
            if (operation.isCall()) {
                ++callsLeft[i];
                callers[operation.subLevel].push_back(i);
            }
        }
        if (callsLeft[i] == 0) {
            removed.push_back(i);
        }
    }
    for (size_t next = 0; next < removed.size(); ++next) {
        for (const size_t caller : callers[removed[next]]) {
            if (--callsLeft[caller] == 0) {
                removed.push_back(caller);
            }
        }
    }
    return callsLeft;
}

} // namespace

std::vector<Column> LevelCompiler::findAll() const
{
    std::vector<Column> found;
    found.reserve(static_cast<size_t>(m_columns.columns));
    for (int i = 0; i < m_columns.columns; ++i) {
        found.push_back({{i, m_columns.type(i)}});
    }
    return found;
}

Result<std::vector<Column>, LevelProblem> LevelCompiler::find(const QStringList &names) const
{
    std::vector<Column> found;
    for (const QString &name : names) {
        const int index = m_columns.indexOf(name);
        if (index < 0) {
            return Fault{LevelProblem::NoColumn, name};
        }
        found.push_back({{index, m_columns.type(index)}});
    }
    return found;
}

LevelCompiler::Compiled LevelCompiler::callOf(const QString &name) const
{
    ComposeOperation call;
    call.kind = ComposeOperation::Kind::SubLevel;
    call.subLevel = indexOfLevel(m_levels, name);
    if (call.subLevel == m_levels.size()) {
        return Fault{LevelProblem::NoLevel, name};
    }
    return call;
}

Result<ComposeLevel, LevelProblem> LevelCompiler::compileLevel(size_t index,
                                                               const CompileItem &compileItem) const
{
    const WriteLevel &declared = m_levels[index];
    ComposeLevel level;
    level.commaSeparated = declared.commaSeparated;
    if (index > 0) {
        const int column = m_columns.indexOf(declared.partitionCol);
        if (column < 0) {
            return Fault{LevelProblem::NoPartitionColumn, declared.partitionCol};
        }
        level.partition = CellColumn{column, m_columns.type(column)};
    }
    for (size_t item = 0; item < declared.items.size(); ++item) {
        auto operation = compileItem(index, item);
        if (!operation) {
            return operation.fault();
        }
        level.operations.push_back(*std::move(operation));
    }
    return level;
}

LevelCompiler::Levels LevelCompiler::compile(const CompileItem &compileItem) const
{
    std::vector<ComposeLevel> levels(m_levels.size());
    for (size_t i = m_levels.size(); i-- > 0;) {
        auto level = compileLevel(i, compileItem);
        if (!level) {
            return Fault{level.fault().code, level.fault().detail, static_cast<qint64>(i)};
        }
        levels[i] = *std::move(level);
    }
    const int cyclic = findCyclicLevel(levels);
    if (cyclic >= 0) {
        return Fault{LevelProblem::CyclicLevel, m_levels[static_cast<size_t>(cyclic)].name, cyclic};
    }
    return levels;
}

/// The index of a level that leads back to itself, or -1. Removes levels that call no remaining
/// level until none is left to remove: the remaining levels lead into a cycle.
int LevelCompiler::findCyclicLevel(const std::vector<ComposeLevel> &levels)
{
    const std::vector<size_t> callsLeft = removeAcyclicLevels(levels);
    const auto remaining =
        std::find_if(callsLeft.begin(), callsLeft.end(), [](size_t calls) { return calls != 0; });
    if (remaining == callsLeft.end()) {
        return -1;
    }
    // Every remaining level calls a remaining level, so that as many steps as there are levels end
    // in a cycle.
    auto at = static_cast<size_t>(remaining - callsLeft.begin());
    for (size_t step = 0; step < levels.size(); ++step) {
        const auto &operations = levels[at].operations;
        at = std::find_if(operations.begin(), operations.end(),
                          [&](const ComposeOperation &operation) {
                              return operation.isCall() && callsLeft[operation.subLevel] != 0;
                          })
                 ->subLevel;
    }
    return static_cast<int>(at);
}

static void addNewColumns(const ComposeOperation &operation, std::set<int> *seen,
                          std::vector<int> *columns)
{
    for (const Column &column : operation.columns) {
        if (seen->insert(column.input).second) {
            columns->push_back(column.input);
        }
    }
}

static void markNeededValues(ComposeLevel &level, const NeedsValue &needsValue)
{
    using Kind = ComposeOperation::Kind;
    std::vector<ComposeOperation> &operations = level.operations;
    // An element without text leaves only the comma before it.
    const bool isAlone = operations.size() == 1 && level.commaSeparated;
    std::u16string before(isAlone ? u"," : u"");
    const ComposeOperation none;
    for (size_t i = 0; i < operations.size(); ++i) {
        ComposeOperation &operation = operations[i];
        const ComposeOperation &next = i + 1 < operations.size() ? operations[i + 1] : none;
        const bool isValue = operation.kind == Kind::Values || operation.kind == Kind::RawValue;
        // A comma that depends on a value may follow any text.
        const bool isRequired = isValue && next.kind != Kind::CommaIfWritten;
        const bool hasText = next.kind == Kind::Text;
        operation.needsValue =
            isRequired && needsValue(before, hasText ? next.text.view() : std::u16string_view());
        operation.followsComma =
            isRequired && i > 0 && operations[i - 1].kind == Kind::CommaIfWritten;
        before += operation.kind == Kind::Text ? operation.text.view() : u"v";
    }
}

void markNeededValues(std::vector<ComposeLevel> &levels, const NeedsValue &needsValue)
{
    for (ComposeLevel &level : levels) {
        markNeededValues(level, needsValue);
    }
}

std::vector<int> writtenColumns(const std::vector<ComposeLevel> &levels)
{
    std::set<int> seen;
    std::vector<int> columns;
    for (const ComposeLevel &level : levels) {
        for (const ComposeOperation &operation : level.operations) {
            addNewColumns(operation, &seen, &columns);
        }
    }
    return columns;
}

std::vector<int> depthsOf(const std::vector<WriteLevel> &levels, int callType)
{
    std::vector<int> depths(levels.size(), 0);
    std::vector<bool> isKnown(levels.size(), false);
    std::vector<size_t> reached{0};
    isKnown[0] = true;
    for (size_t next = 0; next < reached.size(); ++next) {
        const size_t level = reached[next];
        for (const WriteItem &item : levels[level].items) {
            const size_t called =
                item.type == callType ? indexOfLevel(levels, item.calledLevel) : levels.size();
            if (called < levels.size() && !isKnown[called]) {
                isKnown[called] = true;
                depths[called] = depths[level] + 1;
                reached.push_back(called);
            }
        }
    }
    return depths;
}

} // namespace corvanta::compose
