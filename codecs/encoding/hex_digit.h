// The value of a hexadecimal digit.
#pragma once

namespace corvanta {

/// 0 to 15, in any letter case; -1 for any other character. An int is cheaper than a Result here.
constexpr int hexDigit(char32_t c)
{
    const char32_t lower = c | 0x20;
    return c >= U'0' && c <= U'9'           ? static_cast<int>(c - U'0')
           : lower >= U'a' && lower <= U'f' ? static_cast<int>(lower - U'a') + 10
                                            : -1;
}

} // namespace corvanta
