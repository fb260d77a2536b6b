// The rows of two levels, orders and lines, for {"orders":[{"id":1,"lines":[{"s":2},{"s":3}]}]}:
//
//     id | s
//     1  | 2     enterLevels(0): the cells of the order and of its first line
//     1  | 3     advanceInner(): the next line; the cells of the order stay
//
// An order without lines has one row, in which the cells of the line are missing.
#include "codecs/markup/levels/level_extractor.h"

#include "base/cell.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::markup {

LevelExtractor::LevelExtractor(const std::vector<Level> &levels, const ExtractOptions &options)
    : m_options(options)
    , m_filter(options)
    , m_items(options)
{
    const PathSyntax syntax{options.zeroBased, u'/'};
    int column = 0;
    for (const Level &level : levels) {
        auto state = std::make_unique<LevelState>(level, syntax);
        state->firstColumn = column;
        column += static_cast<int>(level.items.size()) + (options.outputSubTags ? 1 : 0);
        if (!m_levels.empty()) {
            m_levels.back()->paths.add(state->initialPath);
        }
        m_levels.push_back(std::move(state));
    }
    m_reader = std::make_unique<OccurrenceReader>(*m_levels.front(), options);
    m_cells.resize(static_cast<size_t>(column), cell::missingTextCell());
    beginFile();
}

QStringList LevelExtractor::columnNames() const
{
    QStringList names;
    for (size_t i = 0; i < m_levels.size(); ++i) {
        if (m_options.outputSubTags) {
            names << u"Level %1 Subtag"_s.arg(i + 1);
        }
        for (const LevelItem &item : m_levels[i]->level.items) {
            names << item.name;
        }
    }
    return names;
}

void LevelExtractor::beginFile()
{
    for (const auto &state : m_levels) {
        state->beginFile();
    }
    m_reader->beginFile();
}

void LevelExtractor::beginDocument(MarkupTokenizer &tokenizer)
{
    m_reader->beginDocument(tokenizer);
    m_failure.reset();
    m_items.clearError();
    m_hasRow = false;
    m_skipped = 0;
}

QStringList LevelExtractor::missingPaths() const
{
    QStringList missing;
    for (const auto &state : m_levels) {
        // Levels inside one that never occurred cannot occur, so their paths are not named.
        if (!state->containerFound) {
            missing << state->level.initialPath;
            break;
        }
        for (size_t i = 0; state->occurred && i < state->level.items.size(); ++i) {
            if (!state->wasFound[i]) {
                missing << state->level.items[i].path;
            }
        }
        if (!state->occurred) {
            break;
        }
    }
    missing.removeDuplicates();
    return missing;
}

Result<bool, MarkupResult> LevelExtractor::next(CellArena &arena)
{
    m_hasRow = !m_failure && ((m_hasRow && advanceInner(arena)) || readFirstLevel(arena));
    if (const auto error = m_items.error(); error && !m_failure) {
        m_failure = m_reader->faultHere(*error).code;
    }
    if (m_failure) {
        m_hasRow = false;
        return Fault{*m_failure};
    }
    return m_hasRow;
}

/// Begin the rows of the next occurrence of the first level; false at the end and after a failure.
bool LevelExtractor::readFirstLevel(CellArena &arena)
{
    for (;; ++m_skipped) {
        const auto found = m_reader->next();
        if (!found) {
            m_failure = found.fault().code;
            return false;
        }
        if (!*found) {
            return false;
        }
        if (m_skipped >= m_options.skip) {
            enterLevels(0, **found, arena);
            return true;
        }
    }
}

/// Fill the cells of `level` from `occurrence`, and those of the levels inside it from their first
/// occurrences.
void LevelExtractor::enterLevels(size_t level, quint32 occurrence, CellArena &lastArena)
{
    for (;; ++level) {
        LevelState &state = *m_levels[level];
        state.occurrence = occurrence;
        state.occurred = true;
        m_deepest = level;
        state.arena.reset();
        const std::span<const quint32> found = state.paths.resolve(tree(), occurrence);
        fillCells(state, found, isLast(level) ? lastArena : state.arena);
        if (isLast(level)) {
            return;
        }
        LevelState &inner = *m_levels[level + 1];
        occurrence = firstInside(inner, found.back());
        if (occurrence == MarkupTree::kNone) {
            std::fill(m_cells.begin() + inner.firstColumn, m_cells.end(), cell::missingTextCell());
            return;
        }
    }
}

inline void LevelExtractor::fillCells(LevelState &state, std::span<const quint32> found,
                                      CellArena &arena)
{
    const uchar **cell = m_cells.data() + state.firstColumn;
    if (m_options.outputSubTags) {
        *cell++ = textCell(arena, tree().raw(state.occurrence));
    }
    for (size_t i = 0; i < state.level.items.size(); ++i) {
        const LevelItem &item = state.level.items[i];
        const bool isFound = found[i] != MarkupTree::kNone;
        *cell++ = isFound ? m_items.cellOf(tree(), item, found[i], arena)
                          : m_items.absentCell(item, arena);
        if (isFound && !state.wasFound[i]) {
            state.wasFound[i] = true;
        }
    }
}

/// The first occurrence of the level `inner` inside `container`, which may be kNone.
quint32 LevelExtractor::firstInside(LevelState &inner, quint32 container) const
{
    if (container == MarkupTree::kNone) {
        return MarkupTree::kNone;
    }
    inner.containerFound = true;
    return m_filter.firstOccurrence(tree(), inner, container + 1, container);
}

/// Continue with the next occurrence of an inner level; false when the record has no more.
bool LevelExtractor::advanceInner(CellArena &arena)
{
    for (size_t level = m_deepest; level > 0; --level) {
        const LevelState &state = *m_levels[level];
        const TreeItem &last = tree().item(state.occurrence);
        const quint32 occurrence = m_filter.firstOccurrence(tree(), state, last.next, last.parent);
        if (occurrence != MarkupTree::kNone) {
            enterLevels(level, occurrence, arena);
            return true;
        }
    }
    return false;
}

} // namespace corvanta::markup
