// Element names of the HTML standard: void elements (section 13.1.2), with some of older standards,
// and the phrasing content that formats text (section 3.2.5.2.5).
#include "codecs/markup/tokens/html_elements.h"

#include <algorithm>
#include <array>

namespace corvanta::markup {

namespace {

/// Their end tags are ignored everywhere.
constexpr std::array<std::string_view, 7> kDroppedEnds{"tbody", "img",   "br",  "link",
                                                       "meta",  "input", "area"};
/// They have no content and no end tag.
constexpr std::array<std::string_view, 17> kVoidElements{
    "img",   "br",    "link",     "meta",    "hr",     "input",  "col",   "base", "area",
    "param", "embed", "menuitem", "command", "keygen", "source", "track", "wbr"};
/// They do not separate words: "a<b>b</b>" is one word.
constexpr std::array<std::string_view, 24> kInline{
    "a",    "abbr", "b", "bdi",   "big",  "cite", "code", "em",     "font", "i", "kbd", "mark",
    "nobr", "q",    "s", "small", "span", "sub",  "sup",  "strong", "tt",   "u", "var", "wbr"};

template <size_t N>
bool isOneOf(std::string_view name, const std::array<std::string_view, N> &names)
{
    return std::any_of(names.begin(), names.end(),
                       [&](std::string_view known) { return equalsIgnoringCase(name, known); });
}

} // namespace

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(),
                                              [&](char x, char y) { return lower(x) == lower(y); });
}

bool isDroppedElement(std::string_view name)
{
    return equalsIgnoringCase(name, "tbody");
}

bool isVoidElement(std::string_view name)
{
    return isOneOf(name, kVoidElements);
}

bool hasDroppedEndTag(std::string_view name)
{
    return isOneOf(name, kDroppedEnds);
}

bool isInlineElement(std::string_view name)
{
    return isOneOf(name, kInline);
}

} // namespace corvanta::markup
