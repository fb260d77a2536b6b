// "<td>a<b>b</b></td><td>c</td>" is "ab c": inline elements do not separate words, others do.
#include "codecs/markup/tree/element_text.h"

#include "codecs/markup/text/char_class.h"
#include "codecs/markup/tokens/html_elements.h"

#include <algorithm>
#include <string_view>

namespace corvanta::markup {

namespace {

/// The name in the start or end tag at text[open]; empty for "<!" and what is not a tag.
std::string_view tagName(std::string_view text, size_t open)
{
    const std::string_view tag = text.substr(open + (text[open + 1] == '/' ? 2 : 1));
    const auto end = std::find_if_not(tag.begin(), tag.end(), isNameChar);
    return tag.substr(0, static_cast<size_t>(end - tag.begin()));
}

/// Whether a tag at text[open] (a "<") belongs to an HTML element that is not inline.
bool isBlockTag(std::string_view text, size_t open)
{
    // The tag may be cut: the caller passes only what is between two pieces of text.
    const std::string_view name = open + 1 < text.size() ? tagName(text, open) : std::string_view();
    return !name.empty() && !isInlineElement(name);
}

/// Whether the markup between two pieces of text separates words: it has a space between two tags,
/// or the tag of an HTML element that is not inline.
bool separatesWords(std::string_view between, bool html)
{
    for (size_t i = 0; i < between.size(); ++i) {
        const bool isOutsideTag = i == 0 || between[i - 1] == '>';
        if ((isSpace(between[i]) && isOutsideTag) ||
            (html && between[i] == '<' && isBlockTag(between, i))) {
            return true;
        }
    }
    return false;
}

/// Append `text`, with each run of spaces as one space, and without spaces at the start of `out`.
void appendFolded(std::u16string_view text, std::u16string *out)
{
    for (const char16_t c : text) {
        const bool isBlank = c == u' ' || (c >= u'\t' && c <= u'\r');
        if (!isBlank) {
            out->push_back(c);
        } else if (!out->empty() && out->back() != u' ') {
            out->push_back(u' ');
        }
    }
}

} // namespace

bool isTextPiece(const TreeItem &item, const TextRule &rule)
{
    return item.kind == ItemKind::Text ||
           (rule.clearIsText && item.kind == ItemKind::Clear &&
            (item.clearKind == ClearKind::CData || item.clearKind == ClearKind::Pre));
}

bool joinText(const MarkupTree &tree, quint32 element, const TextRule &rule, std::u16string *out)
{
    out->clear();
    const char *pieceEnd = nullptr; // of the piece before
    const quint32 end = tree.item(element).next;
    for (quint32 i = element + 1; i < end; i = tree.item(i).next) {
        const TreeItem &item = tree.item(i);
        if (!isTextPiece(item, rule)) {
            continue;
        }
        // A text begins after its leading spaces; between two pieces they are part of the text.
        const RawText text = tree.raw(i);
        const char *spaces = text.data;
        while (pieceEnd != nullptr && spaces > pieceEnd && item.kind == ItemKind::Text &&
               isSpace(spaces[-1])) {
            --spaces;
        }
        out->append(spaces, text.data);
        *out += decoded(text);
        pieceEnd = text.data + text.size;
    }
    return pieceEnd != nullptr;
}

bool foldText(const MarkupTree &tree, quint32 element, const TextRule &rule, std::u16string *out)
{
    out->clear();
    const char *pieceEnd = nullptr; // of the piece before
    for (quint32 i = element + 1; i < tree.item(element).next; ++i) {
        if (!isTextPiece(tree.item(i), rule)) {
            continue;
        }
        const RawText text = tree.raw(i);
        if (pieceEnd != nullptr &&
            separatesWords({pieceEnd, static_cast<size_t>(text.data - pieceEnd)}, rule.html)) {
            appendFolded(u" ", out);
        }
        appendFolded(decoded(text), out);
        pieceEnd = text.data + text.size;
    }
    if (!out->empty() && out->back() == u' ') {
        out->pop_back();
    }
    return pieceEnd != nullptr;
}

} // namespace corvanta::markup
