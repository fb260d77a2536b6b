// The elements of HTML that the XML tokenizer and the joining of texts treat specially.
//
// Names are compared without letter case.
#pragma once
#include <string_view>

namespace corvanta::markup {

/// True for equal names; only the case of ASCII letters is ignored.
bool equalsIgnoringCase(std::string_view a, std::string_view b);

/// True for "tbody": its tags are not tokens, because browsers add it to every table.
bool isDroppedElement(std::string_view name);

/// True for an element without content, which has no end tag ("br", "img" and others).
bool isVoidElement(std::string_view name);

/// True for an element whose end tag is ignored.
bool hasDroppedEndTag(std::string_view name);

/// True for an element that does not separate the words before and after it ("b", "span" and
/// others). All other elements do.
bool isInlineElement(std::string_view name);

} // namespace corvanta::markup
