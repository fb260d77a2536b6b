// The table is a hash table with open addressing: names are looked up for every tag of a page. The
// hash is the length, the first and the last letter, which distinguish nearly all names.
#include "codecs/markup/tokens/html_kinds.h"

#include "codecs/markup/tokens/html_elements.h"

#include <array>

namespace corvanta::markup {

namespace {

using namespace html;
using Kind = HtmlKind;

struct Entry
{
    std::string_view name; ///< in lower case; empty: a free place
    HtmlElement element = {};
};

constexpr quint8 kBlock = kSpecial | kEndsParagraph;
constexpr quint8 kVoidBlock = kSpecial | kVoid;
constexpr quint8 kHeadVoid = kVoidBlock | kInHead;

constexpr Entry kElements[] = {
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
    {"p", {Kind::Paragraph, kBlock}},
    {"li", {Kind::ListItem, kBlock}},
    {"dd", {Kind::Definition, kBlock}},
    {"dt", {Kind::Definition, kBlock}},
    {"h1", {Kind::Heading, kBlock}},
    {"h2", {Kind::Heading, kBlock}},
    {"h3", {Kind::Heading, kBlock}},
    {"h4", {Kind::Heading, kBlock}},
    {"h5", {Kind::Heading, kBlock}},
    {"h6", {Kind::Heading, kBlock}},
    {"option", {Kind::Option, 0}},
    {"optgroup", {Kind::OptGroup, 0}},
    {"button", {Kind::Button, kSpecial}},
    {"a", {Kind::Anchor, 0}},
    {"form", {Kind::Form, kBlock}},
    {"div", {Kind::Division, kBlock}},
    {"address", {Kind::Division, kBlock}},
    {"svg", {Kind::Foreign, 0}},
    {"math", {Kind::Foreign, 0}},
    // Elements without rules of their own.
    {"article", {Kind::Other, kBlock}},
    {"aside", {Kind::Other, kBlock}},
    {"blockquote", {Kind::Other, kBlock}},
    {"center", {Kind::Other, kBlock}},
    {"details", {Kind::Other, kBlock}},
    {"dialog", {Kind::Other, kEndsParagraph}},
    {"dir", {Kind::Other, kBlock}},
    {"dl", {Kind::Other, kBlock}},
    {"fieldset", {Kind::Other, kBlock}},
    {"figcaption", {Kind::Other, kBlock}},
    {"figure", {Kind::Other, kBlock}},
    {"footer", {Kind::Other, kBlock}},
    {"header", {Kind::Other, kBlock}},
    {"hgroup", {Kind::Other, kBlock}},
    {"hr", {Kind::Other, kBlock | kVoid}},
    {"listing", {Kind::Other, kBlock}},
    {"main", {Kind::Other, kBlock}},
    {"menu", {Kind::Other, kBlock}},
    {"nav", {Kind::Other, kBlock}},
    {"ol", {Kind::List, kBlock}},
    {"pre", {Kind::Other, kBlock}},
    {"search", {Kind::Other, kBlock}},
    {"section", {Kind::Other, kBlock}},
    {"select", {Kind::Other, kSpecial}},
    {"summary", {Kind::Other, kBlock}},
    {"ul", {Kind::List, kBlock}},
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
    {"plaintext", {Kind::Other, kBlock | kText}},
    {"textarea", {Kind::Other, kSpecial | kText}},
    {"title", {Kind::Other, kSpecial | kText | kInHead}},
    {"xmp", {Kind::Other, kBlock | kText}},
};

constexpr size_t kPlaces = 256;
constexpr size_t kLongestName = 10;

/// A place for a name that is not empty; the same for both letter cases.
constexpr size_t placeOf(std::string_view name)
{
    const auto letter = [](char c) { return static_cast<size_t>(static_cast<uchar>(c) % 32); };
    return (letter(name.front()) * 7 + letter(name.back()) * 31 + name.size() * 53) % kPlaces;
}

constexpr std::array<Entry, kPlaces> makeTable()
{
    std::array<Entry, kPlaces> table{};
    for (const Entry &entry : kElements) {
        size_t place = placeOf(entry.name);
        while (!table.at(place).name.empty()) {
            place = (place + 1) % kPlaces;
        }
        table.at(place) = entry;
    }
    return table;
}

constexpr std::array<Entry, kPlaces> kTable = makeTable();

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
