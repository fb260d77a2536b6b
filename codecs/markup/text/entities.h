// codecs/markup/text/entities.h
// The character entities of XML text and attribute values.
#pragma once
#include <QtGlobal>

#include <array>

namespace corvanta::markup {

/// Longest entity that is looked at, from "&" to ";".
inline constexpr int kEntityBytes = 64;

struct Entity
{
    enum class Kind : quint8 { Character, Unknown, BadNumber };
    Kind kind = Kind::Unknown;
    int length = 0; ///< bytes from "&" to ";" of a Character
    std::array<char16_t, 2> units{};
    int unitCount = 0;
};

/// Read the entity at `at` (a "&"). At least kEntityBytes follow, or `end` is the end of the data.
Entity readEntity(const char *at, const char *end);

} // namespace corvanta::markup
