// The table is a hash table with open addressing: names are looked up for every tag of a page. The
// hash is the length, the first and the last letter, which distinguish nearly all names.
#include "codecs/markup/tokens/html_kinds.h"

#include "codecs/markup/tokens/html_elements.h"

#include <array>

namespace corvanta::markup {

namespace {

using namespace html;
using Kind = HtmlKind;

struct ElementEntry
{
    std::string_view name; ///< in lower case; empty: a free place
    HtmlElement element = {};
};

constexpr quint8 kBlockElement = kSpecial | kEndsParagraph;
constexpr quint8 kVoidBlock = kSpecial | kVoid;
constexpr quint8 kHeadVoid = kVoidBlock | kInHead;

constexpr ElementEntry kElements[] = {
    {"html", {Kind::Html, kSpecial | kScope}},
    {"head", {Kind::Head, kSpecial}},
    {"body", {Kind::Body, kSpecial}},
    {"frameset", {Kind::Body, kSpecial}},
    {"table", {Kind::Table, kSpecial | kScope}},
    {"thead", {Kind::Section, kSpecial}},
    {"tfoot", {Kind::Section, kSpecial}},
    {"tbody", {Kind::Tbody, kSpecial}},
    {"tr", {Kind::Row, kSpecial}},
    {"td", {Kind::Cell, kSpecial | kScope}},
    {"th", {Kind::Cell, kSpecial | kScope}},
    {"caption", {Kind::Caption, kSpecial | kScope}},
    {"colgroup", {Kind::ColGroup, kSpecial}},
    {"col", {Kind::Col, kVoidBlock}},
    {"p", {Kind::Paragraph, kBlockElement}},
    {"li", {Kind::ListItem, kBlockElement}},
    {"dd", {Kind::Definition, kBlockElement}},
    {"dt", {Kind::Definition, kBlockElement}},
    {"h1", {Kind::Heading, kBlockElement}},
    {"h2", {Kind::Heading, kBlockElement}},
    {"h3", {Kind::Heading, kBlockElement}},
    {"h4", {Kind::Heading, kBlockElement}},
    {"h5", {Kind::Heading, kBlockElement}},
    {"h6", {Kind::Heading, kBlockElement}},
    {"option", {Kind::Option, 0}},
    {"optgroup", {Kind::OptGroup, 0}},
    {"button", {Kind::Button, kSpecial}},
    {"a", {Kind::Anchor, 0}},
    {"form", {Kind::Form, kBlockElement}},
    {"div", {Kind::Division, kBlockElement}},
    {"address", {Kind::Division, kBlockElement}},
    {"svg", {Kind::Foreign, 0}},
    {"math", {Kind::Foreign, 0}},
    // Elements without rules of their own.
    {"article", {Kind::Other, kBlockElement}},
    {"aside", {Kind::Other, kBlockElement}},
    {"blockquote", {Kind::Other, kBlockElement}},
    {"center", {Kind::Other, kBlockElement}},
    {"details", {Kind::Other, kBlockElement}},
    {"dialog", {Kind::Other, kEndsParagraph}},
    {"dir", {Kind::Other, kBlockElement}},
    {"dl", {Kind::Other, kBlockElement}},
    {"fieldset", {Kind::Other, kBlockElement}},
    {"figcaption", {Kind::Other, kBlockElement}},
    {"figure", {Kind::Other, kBlockElement}},
    {"footer", {Kind::Other, kBlockElement}},
    {"header", {Kind::Other, kBlockElement}},
    {"hgroup", {Kind::Other, kBlockElement}},
    {"hr", {Kind::Other, kBlockElement | kVoid}},
    {"listing", {Kind::Other, kBlockElement}},
    {"main", {Kind::Other, kBlockElement}},
    {"menu", {Kind::Other, kBlockElement}},
    {"nav", {Kind::Other, kBlockElement}},
    {"ol", {Kind::List, kBlockElement}},
    {"pre", {Kind::Other, kBlockElement}},
    {"search", {Kind::Other, kBlockElement}},
    {"section", {Kind::Other, kBlockElement}},
    {"select", {Kind::Other, kSpecial}},
    {"summary", {Kind::Other, kBlockElement}},
    {"ul", {Kind::List, kBlockElement}},
    {"applet", {Kind::Other, kSpecial | kScope}},
    {"marquee", {Kind::Other, kSpecial | kScope}},
    {"object", {Kind::Other, kSpecial | kScope}},
    {"template", {Kind::Other, kSpecial | kScope | kInHead}},
    {"noscript", {Kind::Other, kSpecial | kInHead}},
    // Elements without content.
    {"area", {Kind::Other, kVoidBlock}},
    {"base", {Kind::Other, kHeadVoid}},
    {"basefont", {Kind::Other, kHeadVoid}},
    {"bgsound", {Kind::Other, kHeadVoid}},
    {"br", {Kind::Other, kVoidBlock}},
    {"command", {Kind::Other, kHeadVoid}},
    {"embed", {Kind::Other, kVoidBlock}},
    {"frame", {Kind::Other, kVoidBlock}},
    {"img", {Kind::Other, kVoidBlock}},
    {"input", {Kind::Other, kVoidBlock}},
    {"keygen", {Kind::Other, kVoidBlock}},
    {"link", {Kind::Other, kHeadVoid}},
    {"menuitem", {Kind::Other, kVoidBlock}},
    {"meta", {Kind::Other, kHeadVoid}},
    {"param", {Kind::Other, kVoidBlock}},
    {"source", {Kind::Other, kVoidBlock}},
    {"track", {Kind::Other, kVoidBlock}},
    {"wbr", {Kind::Other, kVoidBlock}},
    // Elements whose content is not markup.
    {"iframe", {Kind::Other, kSpecial | kHidden}},
    {"noembed", {Kind::Other, kSpecial | kHidden}},
    {"noframes", {Kind::Other, kSpecial | kHidden | kInHead}},
    {"script", {Kind::Other, kSpecial | kHidden | kInHead}},
    {"style", {Kind::Other, kSpecial | kHidden | kInHead}},
    {"plaintext", {Kind::Other, kBlockElement | kText}},
    {"textarea", {Kind::Other, kSpecial | kText}},
    {"title", {Kind::Other, kSpecial | kText | kInHead}},
    {"xmp", {Kind::Other, kBlockElement | kText}},
};

constexpr size_t kPlaces = 256;
constexpr size_t kLongestName = 10;

/// A place for a name that is not empty; the same for both letter cases.
constexpr size_t placeOf(std::string_view name)
{
    const auto letter = [](char c) { return static_cast<size_t>(static_cast<uchar>(c) % 32); };
    return (letter(name.front()) * 7 + letter(name.back()) * 31 + name.size() * 53) % kPlaces;
}

constexpr std::array<ElementEntry, kPlaces> makeTable()
{
    std::array<ElementEntry, kPlaces> table{};
    for (const ElementEntry &entry : kElements) {
        size_t place = placeOf(entry.name);
        while (!table.at(place).name.empty()) {
            place = (place + 1) % kPlaces;
        }
        table.at(place) = entry;
    }
    return table;
}

constexpr std::array<ElementEntry, kPlaces> kTable = makeTable();

} // namespace

HtmlElement htmlElement(std::string_view name)
{
    if (name.empty() || name.size() > kLongestName) {
        return {};
    }
    for (size_t place = placeOf(name); !kTable[place].name.empty(); place = (place + 1) % kPlaces) {
        if (equalsIgnoringCase(kTable[place].name, name)) {
            return kTable[place].element;
        }
    }
    return {};
}

} // namespace corvanta::markup
