#include "codecs/markup/tree/element_text.h"

#include "codecs/markup/text/char_class.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace corvanta::markup {

namespace {

/// Elements of HTML that run on in a line. All others part the words before and behind them.
constexpr std::array<std::string_view, 24> kInline{
    "a",    "abbr", "b", "bdi",   "big",  "cite", "code", "em",     "font", "i", "kbd", "mark",
    "nobr", "q",    "s", "small", "span", "sub",  "sup",  "strong", "tt",   "u", "var", "wbr"};

bool isInline(std::string_view name)
{
    std::array<char, 8> lower{};
    if (name.size() > lower.size()) {
        return false;
    }
    std::transform(name.begin(), name.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    const std::string_view wanted(lower.data(), name.size());
    return std::find(kInline.begin(), kInline.end(), wanted) != kInline.end();
}

/// Whether the markup between two pieces of text parts words: it holds a blank between two tags, or
/// the tag of an HTML element that is not inline.
bool partsWords(std::string_view between, bool html)
{
    for (size_t i = 0; i < between.size(); ++i) {
        const bool last = i + 1 == between.size();
        if (isSpace(between[i]) && (i == 0 || between[i - 1] == '>')) {
            return true;
        }
        if (between[i] == '<' && html && !last) {
            const size_t name = i + (between[i + 1] == '/' ? 2 : 1);
            size_t end = name;
            while (end < between.size() && isNameChar(between[end])) {
                ++end;
            }
            if (end > name && !isInline(between.substr(name, end - name))) {
                return true;
            }
        }
    }
    return false;
}

/// Append `text` with every run of blanks as one; none at the start of `out`.
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
    const char *behind = nullptr; // the piece before
    const quint32 end = tree.item(element).next;
    for (quint32 i = element + 1; i < end; i = tree.item(i).next) {
        const TreeItem &item = tree.item(i);
        if (!isTextPiece(item, rule)) {
            continue;
        }
        const RawText text = tree.raw(i);
        const char *blanks = text.data;
        while (behind != nullptr && blanks > behind && item.kind == ItemKind::Text &&
               isSpace(blanks[-1])) {
            --blanks;
        }
        out->append(blanks, text.data);
        *out += decoded(text);
        behind = text.data + text.size;
    }
    return behind != nullptr;
}

bool foldText(const MarkupTree &tree, quint32 element, const TextRule &rule, std::u16string *out)
{
    out->clear();
    const char *behind = nullptr; // the piece before
    for (quint32 i = element + 1; i < tree.item(element).next; ++i) {
        if (!isTextPiece(tree.item(i), rule)) {
            continue;
        }
        const RawText text = tree.raw(i);
        if (behind != nullptr &&
            partsWords({behind, static_cast<size_t>(text.data - behind)}, rule.html)) {
            appendFolded(u" ", out);
        }
        appendFolded(decoded(text), out);
        behind = text.data + text.size;
    }
    if (!out->empty() && out->back() == u' ') {
        out->pop_back();
    }
    return behind != nullptr;
}

} // namespace corvanta::markup
