// References (XML 1.0, sections 4.1 and 4.6):
//
//     "&" name ";"        amp, lt, gt, quot, apos, and nbsp of HTML; in any letter case
//     "&#" digits ";"     decimal code point, at most 10FFFF hexadecimal
//     "&#x" digits ";"    hexadecimal code point
#include "codecs/markup/text/entities.h"

#include <QChar>

#include <algorithm>
#include <string_view>

namespace corvanta::markup {

namespace {

struct Named
{
    std::string_view name; ///< lower case, with the ";"
    char16_t unit;
};

// Kept for saved graphs: "nbsp;" is a plain space, because saved graphs compare cells with plain
// spaces (XmlTokenizer.ReadsEveryNotation).
constexpr std::array<Named, 6> kNamed{{
    {"amp;", u'&'},
    {"lt;", u'<'},
    {"gt;", u'>'},
    {"quot;", u'"'},
    {"apos;", u'\''},
    {"nbsp;", u' '},
}};

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

/// The value of a digit, or -1. Not a Result, because it runs for every digit.
int digitValue(char c, int base)
{
    const char l = lower(c);
    if (l >= '0' && l <= '9') {
        return l - '0';
    }
    return base == 16 && l >= 'a' && l <= 'f' ? l - 'a' + 10 : -1;
}

Entity entityOf(quint32 c, int length)
{
    // Kept for saved graphs: the number of a lone surrogate becomes two units as well
    // (XmlTokenizer.ReadsSurrogateReferencesAsPairs).
    if (QChar::requiresSurrogates(c) || QChar::isSurrogate(c)) {
        return {length, {QChar::highSurrogate(c), QChar::lowSurrogate(c)}, 2};
    }
    return {length, {static_cast<char16_t>(c)}, 1};
}

/// Read the number at `at`, which follows "&#"; `start` is the "&".
std::optional<Entity> readNumber(const char *start, const char *at, const char *end)
{
    int base = 10;
    if (at < end && lower(*at) == 'x') {
        base = 16;
        ++at;
    }
    quint32 value = 0;
    for (; at < end && at - start < kEntityBytes; ++at) {
        if (*at == ';') {
            return entityOf(value, static_cast<int>(at + 1 - start));
        }
        const int digit = digitValue(*at, base);
        value = value * static_cast<quint32>(base) + static_cast<quint32>(std::max(digit, 0));
        if (digit < 0 || value > QChar::LastValidCodePoint) {
            break;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<Entity> readEntity(const char *at, const char *end)
{
    const char *const name = at + 1;
    if (name < end && *name == '#') {
        return readNumber(at, name + 1, end);
    }
    for (const Named &named : kNamed) {
        const auto length = static_cast<qsizetype>(named.name.size());
        if (end - name >= length &&
            std::equal(named.name.begin(), named.name.end(), name,
                       [](char wanted, char found) { return wanted == lower(found); })) {
            return Entity{static_cast<int>(length) + 1, {named.unit}, 1};
        }
    }
    return std::nullopt;
}

} // namespace corvanta::markup
