// Builds the text cells of items: texts, attributes, names of children, or whether an item exists.
#pragma once
#include "base/result.h"
#include "codecs/markup/levels/cell_arena.h"
#include "codecs/markup/levels/element_filter.h"

#include <optional>
#include <string>

namespace corvanta::markup {

/// Threads: one at a time.
class ItemCells
{
public:
    /// Uses the options for texts, names of children and presence. Keeps a copy of them.
    explicit ItemCells(const ExtractOptions &options)
        : m_options(options)
        , m_filter(options)
    {
    }

    /// The cell of `item`, for which the path lookup found the item `found` of `tree`. The cell is
    /// in `arena`, or the shared missing cell.
    const uchar *cellOf(const MarkupTree &tree, const LevelItem &item, quint32 found,
                        CellArena &arena);
    /// The cell of an element that has one piece of text, which is `text`, and nothing else.
    const uchar *textCellOf(const MarkupTree &tree, TextSpan text, CellArena &arena);
    /// As cellOf(), with the value as a text of JSON. Only for JSON.
    const uchar *jsonCellOf(const MarkupTree &tree, const LevelItem &item, quint32 found,
                            CellArena &arena);
    /// The cell of a text with the quotes and escapes of JSON.
    const uchar *quotedCell(std::u16string_view text, CellArena &arena);
    /// The text of that item if it is one piece; nothing if its cell must be built to know it, or
    /// if it has no cell.
    std::optional<TextSpan> singleText(const MarkupTree &tree, const LevelItem &item,
                                       quint32 found) const;
    /// Whether a text without quotes is a null of JSON that gives a missing cell.
    bool isMissingNull(std::string_view text) const
    {
        return m_options.nullIsMissing && text == "null";
    }
    /// The cell of an item for which nothing was found: "0" where presence is asked for, else
    /// missing.
    const uchar *absentCell(const LevelItem &item, CellArena &arena) const;

    /// The first error since the last call of clearError(): NoMemory or TreeTooLarge for a text
    /// longer than limits::kTextCellUnits, whose cell is missing. For a check per row: cells are
    /// built by the ten million.
    Result<void, MarkupError> status() const
    {
        if (m_error) {
            return Fault{*m_error};
        }
        return {};
    }
    /// Call at the start of each document.
    void clearError() { m_error.reset(); }

private:
    // Each of these returns a cell in `arena`, or the shared missing cell.
    const uchar *rawCell(const RawText &text, CellArena &arena);
    const uchar *textOf(const MarkupTree &tree, quint32 element, CellArena &arena);
    const uchar *joinedCell(CellArena &arena);
    const uchar *tagNamesOf(const MarkupTree &tree, quint32 element, CellArena &arena);
    /// Remember the first error; returns the missing cell.
    const uchar *fail(MarkupError error);

    ExtractOptions m_options;
    ElementFilter m_filter;
    std::optional<MarkupError> m_error;
    /// Reused for texts that consist of several pieces, or get quotes.
    std::u16string m_joined;
    /// Of one cell that becomes a text of JSON.
    BlockArena m_plainCell;
};

} // namespace corvanta::markup
