#include "actions/shared/level_compiler.h"

#include <QSet>

#include <algorithm>

namespace corvanta {

namespace {

using Column = ComposeOperation::Column;

bool isCall(const ComposeOperation &operation)
{
    return operation.kind == ComposeOperation::Kind::SubLevel;
}

size_t indexOfLevel(const std::vector<WriteLevel> &levels, const QString &name)
{
    const auto found = std::find_if(levels.begin(), levels.end(),
                                    [&](const WriteLevel &level) { return level.name == name; });
    return static_cast<size_t>(found - levels.begin());
}

} // namespace

std::vector<Column> LevelCompiler::findAll() const
{
    std::vector<Column> found;
    for (int i = 0; i < m_columns.numberOfColumns(); ++i) {
        found.push_back({i, m_columns.getMetaType(i).type()});
    }
    return found;
}

Result<std::vector<Column>, LevelProblem> LevelCompiler::find(const QStringList &names) const
{
    std::vector<Column> found;
    for (const QString &name : names) {
        const int index = m_columns.getIndexOfColumn(name);
        if (index < 0) {
            return Fault{LevelProblem::NoColumn, name};
        }
        found.push_back({index, m_columns.getMetaType(index).type()});
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
        level.partitionColumn = m_columns.getIndexOfColumn(declared.partitionCol);
        if (level.partitionColumn < 0) {
            return Fault{LevelProblem::NoPartitionColumn, declared.partitionCol};
        }
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

/// A level that its own sub-levels lead back to; -1 when there is none. Levels without calls to
/// levels that are still there are taken away again and again: what stays leads into a circle.
int LevelCompiler::findCyclicLevel(const std::vector<ComposeLevel> &levels)
{
    std::vector<size_t> callsLeft(levels.size());
    std::vector<std::vector<size_t>> callers(levels.size());
    std::vector<size_t> done;
    for (size_t i = 0; i < levels.size(); ++i) {
        for (const ComposeOperation &operation : levels[i].operations) {
            if (isCall(operation)) {
                ++callsLeft[i];
                callers[operation.subLevel].push_back(i);
            }
        }
        if (callsLeft[i] == 0) {
            done.push_back(i);
        }
    }
    for (size_t next = 0; next < done.size(); ++next) {
        for (const size_t caller : callers[done[next]]) {
            if (--callsLeft[caller] == 0) {
                done.push_back(caller);
            }
        }
    }
    // From a level that is left, calls to levels that are left come back to one of them in the end.
    auto at = static_cast<size_t>(
        std::find_if(callsLeft.begin(), callsLeft.end(), [](size_t calls) { return calls != 0; }) -
        callsLeft.begin());
    for (size_t step = 0; at < levels.size() && step < levels.size(); ++step) {
        const auto &operations = levels[at].operations;
        at = std::find_if(operations.begin(), operations.end(),
                          [&](const ComposeOperation &operation) {
                              return isCall(operation) && callsLeft[operation.subLevel] != 0;
                          })
                 ->subLevel;
    }
    return at < levels.size() ? static_cast<int>(at) : -1;
}

QVector<int> columnsOf(const std::vector<ComposeLevel> &levels)
{
    QSet<int> seen;
    QVector<int> columns;
    for (const ComposeLevel &level : levels) {
        for (const ComposeOperation &operation : level.operations) {
            for (const Column &column : operation.columns) {
                if (!seen.contains(column.input)) {
                    seen.insert(column.input);
                    columns << column.input;
                }
            }
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

} // namespace corvanta
