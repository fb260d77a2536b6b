// Cells of HTML tables that span rows: the value of such a cell is kept as text, and becomes a cell
// of each row that shares it.
#include "base/cell.h"
#include "codecs/markup/levels/level_extractor.h"

#include <cstring>
#include <utility>

namespace corvanta::markup {

/// Make the readers of rows of tables. Their paths are those of LevelState::paths.
void LevelExtractor::addSpans(const PathSyntax &syntax)
{
    for (size_t i = 0; i < m_levels.size(); ++i) {
        LevelState &state = *m_levels[i];
        if (!state.readsRows()) {
            continue;
        }
        state.spans = std::make_unique<SpanCells>();
        for (const LevelItem &item : state.level.items) {
            state.spans->add(parsePath(item.path, syntax));
        }
        if (i + 1 < m_levels.size()) {
            state.spans->add(m_levels[i + 1]->initialPath);
        }
    }
}

/// An occurrence is a row of a table. Returns false when it has no cells, and therefore is not a
/// row of its own.
bool LevelExtractor::beginTableRow(quint32 row)
{
    SpanCells &spans = *m_levels.front()->spans;
    if (std::exchange(m_rowGroup, m_reader->rowGroup()) != m_reader->rowGroup()) {
        spans.beginGroup();
    }
    const bool hasCells = SpanCells::hasCells(tree(), row);
    if (!hasCells) {
        spans.skipRow();
    }
    return hasCells;
}

/// Skip an occurrence of the first level. Rows that are read may share its cells.
void LevelExtractor::skipFirst(quint32 occurrence)
{
    ++m_skipped;
    LevelState &state = *m_levels.front();
    if (state.spans) {
        state.found = state.paths.resolve(tree(), occurrence);
        state.found = state.spans->resolve(tree(), occurrence, state.found);
        keepShared(state);
    }
}

/// Keep the values that later rows share with the current one.
void LevelExtractor::keepShared(LevelState &state)
{
    for (size_t i = 0; i < state.level.items.size(); ++i) {
        if (state.spans->isShared(i)) {
            const LevelItem &item = state.level.items[i];
            const quint32 found = state.found[i];
            m_sharedCells.reset();
            state.spans->keep(i, found != MarkupTree::kNone
                                     ? m_items.cellOf(tree(), item, found, m_sharedCells)
                                     : m_items.absentCell(item, m_sharedCells));
        }
    }
}

/// Use the values that the current row shares with earlier ones.
void LevelExtractor::repeatCells(LevelState &state, CellArena &arena)
{
    const int first = state.firstColumn + (m_options.outputSubTags ? 1 : 0);
    for (size_t i = 0; i < state.level.items.size(); ++i) {
        const size_t column = static_cast<size_t>(first) + i;
        if (!state.spans->isCarried(i)) {
            continue;
        }
        if (!m_scans.empty()) {
            scanCell(state.spans->kept(i), state.occurrence, &m_scans[column]);
        } else {
            m_cells[column] = cellOfKept(state.spans->kept(i), column, arena);
        }
    }
}

const uchar *LevelExtractor::cellOfKept(const uchar *kept, size_t column, CellArena &arena)
{
    if (kept == cell::missingTextCell()) {
        return m_missing[column];
    }
    if (isNumberColumn(column)) {
        const QByteArray text = QStringView(cell::readText(kept).view()).toUtf8();
        return numberCell({text.constData(), static_cast<size_t>(text.size())}, column, arena);
    }
    const auto size = static_cast<size_t>(cell::textCellBytes(kept));
    uchar *const copy = arena.alloc(static_cast<int>(size));
    std::memcpy(copy, kept, size);
    return copy;
}

} // namespace corvanta::markup
