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
    /// Bytes from "&" to ";".
    int length = 0;
    std::array<char16_t, 2> units{};
    /// 1, or 2 for a surrogate pair.
    int unitCount = 0;
};

/// Read the reference at `at` (a "&"); std::nullopt for an unknown name or an invalid number. At
/// least kEntityBytes follow `at`, or `end` is the end of the data.
std::optional<Entity> readEntity(const char *at, const char *end);

} // namespace corvanta::markup
