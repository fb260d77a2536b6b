// Element names of the HTML standard: void elements (section 13.1.2), with some of older standards,
// and the phrasing content that formats text (section 3.2.5.2.5).
#include "codecs/markup/tokens/html_elements.h"

#include <algorithm>
#include <array>

namespace corvanta::markup {

namespace {

/// The bit of a letter in either case; bits are shared with few other characters.
constexpr quint32 letterBit(char c)
{
    return 1U << (static_cast<uchar>(c) % 32);
}

/// Names in lower case. Every tag of a page is searched in some of these sets and few are found, so
/// the length and the first letter decide before any name is compared.
template <size_t N> class NameSet
{
public:
    constexpr explicit NameSet(const std::array<std::string_view, N> &names)
        : m_names(names)
    {
        for (const std::string_view name : names) {
            m_initials.at(name.size()) |= letterBit(name.front());
        }
    }
    bool contains(std::string_view name) const
    {
        return !name.empty() && name.size() < m_initials.size() &&
               (m_initials[name.size()] & letterBit(name.front())) != 0 &&
               std::any_of(m_names.begin(), m_names.end(),
                           [&](std::string_view known) { return equalsIgnoringCase(name, known); });
    }

private:
    std::array<std::string_view, N> m_names;
    std::array<quint32, 16> m_initials{}; // by length
};
template <typename... Names> constexpr auto nameSet(const Names &...names)
{
    return NameSet(std::array<std::string_view, sizeof...(Names)>{names...});
}

/// Their end tags are ignored everywhere.
constexpr auto kDroppedEnds = nameSet("tbody", "img", "br", "link", "meta", "input", "area");
/// They have no content and no end tag.
constexpr auto kVoidElements =
    nameSet("img", "br", "link", "meta", "hr", "input", "col", "base", "area", "param", "embed",
            "menuitem", "command", "keygen", "source", "track", "wbr");
/// They do not separate words: "a<b>b</b>" is one word.
constexpr auto kInline =
    nameSet("a", "abbr", "b", "bdi", "big", "cite", "code", "em", "font", "i", "kbd", "mark",
            "nobr", "q", "s", "small", "span", "sub", "sup", "strong", "tt", "u", "var", "wbr");

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
    return kVoidElements.contains(name);
}

bool hasDroppedEndTag(std::string_view name)
{
    return kDroppedEnds.contains(name);
}

bool isInlineElement(std::string_view name)
{
    return kInline.contains(name);
}

} // namespace corvanta::markup
