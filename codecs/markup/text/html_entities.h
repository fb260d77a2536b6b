// The named character references of HTML (standard, section 13.5).
#pragma once
#include <array>
#include <optional>
#include <string_view>

namespace corvanta::markup {

/// The characters of a name.
struct NamedReference
{
    std::array<char16_t, 2> units{};
    /// 1 or 2.
    int unitCount = 0;
    /// Also valid without a ";", as in old pages: "&copy 2020".
    bool isFree = false;
};

/// Longest name, and longest one that needs no ";".
inline constexpr size_t kLongestReference = 31;
inline constexpr size_t kLongestFreeReference = 6;

/// The characters of `name`, which is compared with letter case and has neither "&" nor ";". The
/// first call builds the table; any number of threads may call it.
std::optional<NamedReference> findReference(std::string_view name);

} // namespace corvanta::markup
