// Recognises the numbers of JSON (RFC 8259, section 6).
//
// Threads: pure functions.
#pragma once
#include <string_view>

namespace corvanta {

namespace detail {

/// Remove the digits at the start, of which there must be one.
template <class Char> constexpr bool takeDigits(std::basic_string_view<Char> *text)
{
    size_t digits = 0;
    while (digits < text->size() && (*text)[digits] >= '0' && (*text)[digits] <= '9') {
        ++digits;
    }
    text->remove_prefix(digits);
    return digits > 0;
}

} // namespace detail

/// Whether the text is a number of JSON. `Char` is char (UTF-8) or char16_t.
template <class Char> constexpr bool isJsonNumber(std::basic_string_view<Char> text)
{
    const auto startsWith = [&](char c) { return !text.empty() && text.front() == Char(c); };
    text.remove_prefix(startsWith('-') ? 1 : 0);
    const bool beginsWithZero = startsWith('0');
    const size_t size = text.size();
    bool isNumber = detail::takeDigits(&text) && (!beginsWithZero || size - text.size() == 1);
    if (startsWith('.')) {
        text.remove_prefix(1);
        isNumber = detail::takeDigits(&text) && isNumber;
    }
    if (startsWith('e') || startsWith('E')) {
        text.remove_prefix(1);
        text.remove_prefix(startsWith('-') || startsWith('+') ? 1 : 0);
        isNumber = detail::takeDigits(&text) && isNumber;
    }
    return isNumber && text.empty();
}

} // namespace corvanta
