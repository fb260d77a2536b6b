// What a cell holds, in this order:
//
//     presence                     "1" or "0"
//     attribute                    its value
//     item with tagName            names of the children: "a b[3] c "
//     one piece of text            the text, decoded directly to the cell
//     several pieces, or allText   the pieces, joined or folded first
//     no text, namesForText        names of the children
//     otherwise                    missing
#include "codecs/markup/levels/item_cells.h"

#include "base/cell.h"
#include "base/limits.h"
#include "base/text/json_number.h"
#include "codecs/compose/escape.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

namespace corvanta::markup {

namespace {

/// A name and how often it occurs.
using NameCount = std::pair<std::u16string, qint64>;

/// Whether a value of JSON without quotes is one that JSON has.
bool isBareJson(std::string_view value)
{
    return value == "true" || value == "false" || value == "null" || isJsonNumber(value);
}

/// Whether there are characters that texts of JSON must escape, other than a quote or backslash.
bool hasControls(std::string_view text)
{
    return std::ranges::any_of(text, [](char c) { return static_cast<uchar>(c) < ' '; });
}

/// "a b[3] c ": every name once, with its count if it is not 1.
void writeNames(const std::vector<NameCount> &names, std::u16string *out)
{
    out->clear();
    for (const auto &[name, n] : names) {
        const QString count = n > 1 ? u'[' + QString::number(n) + u']' : QString();
        *out += name + count.toStdU16String() + u' ';
    }
}

} // namespace

const uchar *ItemCells::cellOf(const MarkupTree &tree, const LevelItem &item, quint32 found,
                               CellArena &arena)
{
    const TreeItem &node = tree.item(found);
    if (m_options.presence && !item.tagName) {
        return m_filter.isIgnored(tree, found) ? absentCell(item, arena) : textCell(arena, u"1");
    }
    if (node.kind == ItemKind::Attribute) {
        return rawCell(tree.value(node), arena);
    }
    return item.tagName ? tagNamesOf(tree, found, arena) : textOf(tree, found, arena);
}

const uchar *ItemCells::jsonCellOf(const MarkupTree &tree, const LevelItem &item, quint32 found,
                                   CellArena &arena)
{
    const std::optional<TextSpan> text = singleText(tree, item, found);
    // All that is not plain had quotes, or is a NaN or an infinity, which JSON does not have.
    if (text && text->form() == TextForm::Plain) {
        RawText raw = tree.raw(*text);
        if (!tree.isQuoted(*text) && isBareJson(raw.view())) {
            return isMissingNull(raw.view()) ? cell::missingTextCell() : rawCell(raw, arena);
        }
        if (tree.isQuoted(*text) && raw.data[-1] == '"' && !hasControls(raw.view())) {
            raw.data -= 1; // the quotes are in the data, too
            raw.size += 2;
            return rawCell(raw, arena);
        }
    }
    m_plainCell.reset();
    const uchar *const plain = cellOf(tree, item, found, m_plainCell);
    return plain == cell::missingTextCell() ? plain
                                            : quotedCell(cell::readText(plain).view(), arena);
}

const uchar *ItemCells::quotedCell(std::u16string_view text, CellArena &arena)
{
    using Escapes = compose::JsonStrictEscapes;
    const auto n = static_cast<qsizetype>(text.size());
    m_joined.resize(static_cast<size_t>(compose::escapedSize<Escapes>(text.data(), n)) + 2);
    m_joined.front() = m_joined.back() = u'"';
    compose::putEscaped<Escapes>(text.data(), n, m_joined.data() + 1);
    return joinedCell(arena);
}

std::optional<TextSpan> ItemCells::singleText(const MarkupTree &tree, const LevelItem &item,
                                              quint32 found) const
{
    const TreeItem &node = tree.item(found);
    if (m_options.presence || m_options.allText || item.tagName) {
        return std::nullopt;
    }
    if (node.kind == ItemKind::Attribute) {
        return node.value;
    }
    const bool isSingle = node.count(ItemKind::Text) == 1 &&
                          (!m_options.text.clearIsText || node.count(ItemKind::Clear) == 0);
    return isSingle ? std::optional(tree.item(tree.first(found, ItemKind::Text)).text)
                    : std::nullopt;
}

const uchar *ItemCells::absentCell(const LevelItem &item, CellArena &arena) const
{
    return m_options.presence && !item.tagName ? textCell(arena, u"0") : cell::missingTextCell();
}

const uchar *ItemCells::fail(MarkupError error)
{
    m_error = m_error.value_or(error);
    return cell::missingTextCell();
}

inline const uchar *ItemCells::rawCell(const RawText &text, CellArena &arena)
{
    return text.size > limits::kTextCellUnits ? fail(MarkupError::NoMemory) : textCell(arena, text);
}

const uchar *ItemCells::textCellOf(const MarkupTree &tree, TextSpan text, CellArena &arena)
{
    const RawText raw = tree.raw(text);
    return isMissingNull(raw.view()) && !tree.isQuoted(text) ? cell::missingTextCell()
                                                             : rawCell(raw, arena);
}

/// The text of an element, or its replacement; missing if there is neither.
const uchar *ItemCells::textOf(const MarkupTree &tree, quint32 element, CellArena &arena)
{
    const TreeItem &node = tree.item(element);
    const quint32 texts = node.count(ItemKind::Text);
    const quint32 clears = m_options.text.clearIsText ? node.count(ItemKind::Clear) : 0;
    if (texts == 1 && clears == 0 && !m_options.allText) {
        return textCellOf(tree, tree.item(tree.first(element, ItemKind::Text)).text, arena);
    }
    const auto gather = m_options.allText ? foldText : joinText;
    if ((m_options.allText || texts + clears > 0) &&
        gather(tree, element, m_options.text, &m_joined)) {
        return joinedCell(arena);
    }
    return m_options.namesForText && node.count(ItemKind::Child) > 0
               ? tagNamesOf(tree, element, arena)
               : cell::missingTextCell();
}

const uchar *ItemCells::joinedCell(CellArena &arena)
{
    return static_cast<qint64>(m_joined.size()) > limits::kTextCellUnits
               ? fail(MarkupError::TreeTooLarge)
               : textCell(arena, m_joined);
}

const uchar *ItemCells::tagNamesOf(const MarkupTree &tree, quint32 element, CellArena &arena)
{
    std::vector<NameCount> names;
    std::map<std::u16string, qint64> totals;
    quint32 child = tree.first(element, ItemKind::Child);
    for (; child != MarkupTree::kNone; child = tree.sibling(child)) {
        if (m_filter.isIgnored(tree, child)) {
            continue;
        }
        std::u16string name = decoded(tree.raw(child));
        if (m_options.tagNames == TagNames::Summary) {
            ++totals[std::move(name)];
        } else if (!names.empty() && names.back().first == name) {
            ++names.back().second;
        } else {
            names.emplace_back(std::move(name), 1);
        }
    }
    names.insert(names.end(), totals.begin(), totals.end());
    writeNames(names, &m_joined);
    return textCell(arena, m_joined);
}

} // namespace corvanta::markup
