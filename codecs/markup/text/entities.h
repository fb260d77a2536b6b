// Reads the character references of text and attribute values.
#pragma once
#include <QtGlobal>

#include <array>
#include <optional>

namespace corvanta::markup {

/// Longest reference that is read, in bytes from "&" to ";".
inline constexpr int kEntityBytes = 64;

/// A reference to a character.
struct Entity
{
    /// Bytes from "&" to its end.
    int length = 0;
    std::array<char16_t, 2> units{};
    /// 1, or 2 for a surrogate pair.
    int unitCount = 0;
};

/// Read the reference at `at` (a "&"); std::nullopt for an unknown name or an invalid number. At
/// least kEntityBytes follow `at`, or `end` is the end of the data.
std::optional<Entity> readEntity(const char *at, const char *end);

/// Where a reference of HTML is. In attributes, which often are addresses with "&" between their
/// parts, a name without ";" before a letter, a digit or "=" is not a reference.
enum class HtmlPlace : quint8 { Text, Attribute };

/// Read the reference at `at` (a "&") as HTML defines it: all names, without ";" where old pages
/// omit it, and numbers of windows-1252. The names that readEntity() knows have precedence.
/// std::nullopt when it is text. `end` is the end of the text or value.
std::optional<Entity> readHtmlEntity(const char *at, const char *end, HtmlPlace place);

} // namespace corvanta::markup
