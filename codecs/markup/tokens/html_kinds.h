// What the rules for the tree of a page need to know about an element (HTML standard, section
// 13.2.4.2).
#pragma once
#include <QtGlobal>

#include <string_view>

namespace corvanta::markup {

/// Elements with the same rules for their tags.
enum class HtmlKind : quint8 {
    /// No rules of its own, for example "b", "span" and unknown names.
    Other,
    Html,
    Head,
    Body,
    Table,
    /// "thead" and "tfoot".
    Section,
    Tbody,
    Row,
    /// "td" and "th".
    Cell,
    Caption,
    ColGroup,
    Col,
    /// "p".
    Paragraph,
    /// "li".
    ListItem,
    /// "dd" and "dt".
    Definition,
    /// "h1" to "h6".
    Heading,
    Option,
    OptGroup,
    Button,
    Anchor,
    Form,
    /// "div" and "address", which an item of a list may have around the next item.
    Division,
    /// "ul" and "ol".
    List,
    /// "svg" and "math".
    Foreign,
};

/// Bits of HtmlElement::traits.
namespace html {
/// It has no content and no end tag.
inline constexpr quint8 kVoid = 0x01;
/// Its start tag ends an open "p".
inline constexpr quint8 kEndsParagraph = 0x02;
/// The end tag of an "Other" element outside of it does not end it.
inline constexpr quint8 kSpecial = 0x04;
/// End tags inside it do not end elements outside of it.
inline constexpr quint8 kScope = 0x08;
/// Its content is not markup, and browsers do not show it.
inline constexpr quint8 kHidden = 0x10;
/// Its content is text.
inline constexpr quint8 kText = 0x20;
/// It may be in the head of a page.
inline constexpr quint8 kInHead = 0x40;
} // namespace html

/// One machine word, because a stack of them is searched for many tags.
struct HtmlElement
{
    HtmlKind kind = HtmlKind::Other;
    quint8 traits = 0;

    bool is(quint8 trait) const { return (traits & trait) != 0; }
    /// True for an element whose content can only be rows, cells or the like: everything else that
    /// is written there appears before the table.
    bool isTablePart() const
    {
        return kind == HtmlKind::Table || kind == HtmlKind::Section || kind == HtmlKind::Row;
    }
};

/// The element called `name`, in any letter case.
HtmlElement htmlElement(std::string_view name);

} // namespace corvanta::markup
