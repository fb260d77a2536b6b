#include "base/text/text_order.h"

#include "base/time/iso_time.h"

#include <algorithm>

namespace corvanta {

namespace {

/// A UTF-16 unit as a number in the order of code points: the surrogates, which stand for code
/// points above U+FFFF, come after all other units.
quint32 orderOf(char16_t unit)
{
    if (unit < 0xD800) {
        return unit;
    }
    return unit >= 0xE000 ? unit - 0x800U : unit + 0x2000U;
}

} // namespace

std::optional<Moment> parseMoment(std::u16string_view text)
{
    if (const auto dateTime = parseIsoDateTime(text)) {
        return Moment{dateTime->day, dateTime->nanoseconds};
    }
    const auto time = parseIsoTime(text);
    return time ? std::optional(Moment{0, *time}) : std::nullopt;
}

std::weak_ordering compareTexts(std::u16string_view a, std::u16string_view b)
{
    const size_t n = std::min(a.size(), b.size());
    const auto differ =
        std::mismatch(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(n), b.begin());
    if (differ.first != a.begin() + static_cast<std::ptrdiff_t>(n)) {
        return orderOf(*differ.first) <=> orderOf(*differ.second);
    }
    return a.size() <=> b.size();
}

/// A part of a date or time, such as 2026-01-31T04 in an expression, is compared as a word.
std::weak_ordering compareWords(std::u16string_view a, std::u16string_view b)
{
    const auto first = parseMoment(a);
    const auto second = first ? parseMoment(b) : std::nullopt;
    if (second) {
        return *first <=> *second;
    }
    const auto folded = [](char16_t unit) { return unit == u' ' ? u't' : foldedUnit(unit); };
    return std::lexicographical_compare_three_way(
        a.begin(), a.end(), b.begin(), b.end(),
        [&](char16_t x, char16_t y) { return folded(x) <=> folded(y); });
}

} // namespace corvanta
