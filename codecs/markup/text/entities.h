// Reads the character references of XML text and attribute values.
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
    int length = 0; ///< bytes from "&" to ";"
    std::array<char16_t, 2> units{};
    int unitCount = 0; ///< 1, or 2 for a surrogate pair
};

/// Read the reference at `at` (a "&"); std::nullopt for an unknown name or an invalid number. At
/// least kEntityBytes follow `at`, or `end` is the end of the data.
std::optional<Entity> readEntity(const char *at, const char *end);

} // namespace corvanta::markup
