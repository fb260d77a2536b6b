// The rows of a table, as the paths [0], [1] and [2] see them:
//
//     <tr><td rowspan=2>a <td colspan=2>b         a b b      two columns select one cell
//     <tr><td>c <td>d                             a c d      "a" is kept from the row before
#include "codecs/markup/levels/span_cells.h"

#include "base/cell.h"
#include "codecs/markup/tokens/html_elements.h"

#include <algorithm>
#include <cstring>

namespace corvanta::markup {

namespace {

/// No table has more columns than this one: a path with a greater index selects nothing.
constexpr quint32 kMaxColumns = 1 << 20;

bool isCell(const MarkupTree &tree, quint32 child)
{
    const std::string_view name = tree.raw(child).view();
    return equalsIgnoringCase(name, "td") || equalsIgnoringCase(name, "th");
}

/// The first cell of a row at or after its child `child`.
quint32 cellFrom(const MarkupTree &tree, quint32 child)
{
    while (child != MarkupTree::kNone && !isCell(tree, child)) {
        child = tree.sibling(child);
    }
    return child;
}

CellSpan spanOf(const MarkupTree &tree, quint32 cell)
{
    CellSpan span;
    for (quint32 i = cell + 1; i < tree.attributesEnd(cell); ++i) {
        span.readAttribute(tree.raw(i), tree.value(tree.item(i)));
    }
    return span;
}

} // namespace

void SpanCells::add(const std::vector<PathStep> &path)
{
    Path &added = m_paths.emplace_back();
    if (path.empty() || !path.front().anyName) {
        return;
    }
    added.column = path.front().index;
    if (path.size() > 1) {
        added.rest = std::make_unique<PathSet>();
        added.rest->add({path.begin() + 1, path.end()});
    }
    const size_t used = std::min(*added.column, kMaxColumns) + size_t(1);
    m_cells.resize(std::max(m_cells.size(), used));
}

bool SpanCells::hasCells(const MarkupTree &tree, quint32 row)
{
    return cellFrom(tree, tree.first(row, ItemKind::Child)) != MarkupTree::kNone;
}

void SpanCells::placeRow(const MarkupTree &tree, quint32 row)
{
    m_grid.beginRow();
    std::fill(m_cells.begin(), m_cells.end(), Cell());
    quint32 cell = cellFrom(tree, tree.first(row, ItemKind::Child));
    while (cell != MarkupTree::kNone) {
        CellSpan span = spanOf(tree, cell);
        const quint32 first = m_grid.place(&span);
        const size_t end = std::min<size_t>(m_cells.size(), size_t(first) + span.columns);
        for (size_t column = first; column < end; ++column) {
            m_cells[column] = {cell, span.rows != 1};
        }
        cell = cellFrom(tree, tree.sibling(cell));
    }
}

/// What a path with a column selects in the row.
quint32 SpanCells::select(Path &path, const MarkupTree &tree) const
{
    const quint32 cell =
        *path.column < m_cells.size() ? m_cells[*path.column].item : MarkupTree::kNone;
    return cell == MarkupTree::kNone || !path.rest ? cell : path.rest->resolve(tree, cell).front();
}

std::span<const quint32> SpanCells::resolve(const MarkupTree &tree, quint32 row,
                                            std::span<const quint32> found)
{
    placeRow(tree, row);
    m_found.assign(found.begin(), found.end());
    for (size_t i = 0; i < m_paths.size(); ++i) {
        if (m_paths[i].column) {
            m_found[i] = select(m_paths[i], tree);
        }
    }
    return m_found;
}

void SpanCells::keep(size_t path, const uchar *cell)
{
    Path &keeper = m_paths[path];
    keeper.keptSize =
        cell::readText(cell).isMissing() ? 0 : static_cast<size_t>(cell::textCellBytes(cell));
    keeper.kept.resize(keeper.keptSize + 1);
    std::memcpy(keeper.kept.data() + keeper.keptSize % 2, cell, keeper.keptSize);
}

const uchar *SpanCells::kept(size_t path) const
{
    const Path &keeper = m_paths[path];
    return keeper.keptSize == 0 ? cell::missingTextCell()
                                : keeper.kept.data() + keeper.keptSize % 2;
}

} // namespace corvanta::markup
