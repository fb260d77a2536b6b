// References (XML 1.0, sections 4.1 and 4.6):
//
//     "&" name ";"        amp, lt, gt, quot, apos, and nbsp of HTML; in any letter case
//     "&#" digits ";"     decimal code point, at most 10FFFF hexadecimal
//     "&#x" digits ";"    hexadecimal code point
//
// References of HTML (standard, section 13.2.5.72): all names of section 13.5, and a ";" that may
// be missing after numbers and after the names of old standards.
#include "codecs/markup/text/entities.h"

#include "codecs/encoding/hex_digit.h"
#include "codecs/markup/text/char_class.h"
#include "codecs/markup/text/html_entities.h"

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

/// The value of a digit, or -1, which is cheaper than a Result.
int digitValue(char c, int base)
{
    const int value = hexDigit(static_cast<uchar>(c));
    return value < base ? value : -1;
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

namespace {

/// The characters of windows-1252 that the numbers 80 to 9F mean in pages; 0: the number itself.
constexpr std::array<char16_t, 32> kWindowsCharacters{
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

/// A reference by number is never an error: what is not a character becomes U+FFFD.
quint32 htmlCharacter(quint32 number)
{
    if (number >= 0x80 && number < 0x80 + kWindowsCharacters.size()) {
        const char16_t c = kWindowsCharacters.at(number - 0x80);
        return c != 0 ? c : number;
    }
    const bool isCharacter =
        number != 0 && number <= QChar::LastValidCodePoint && !QChar::isSurrogate(number);
    return isCharacter ? number : u'\uFFFD';
}

/// Read the number at `at`, which follows "&#"; `start` is the "&".
std::optional<Entity> readHtmlNumber(const char *start, const char *at, const char *end)
{
    const int base = at < end && lower(*at) == 'x' ? 16 : 10;
    at += base == 16 ? 1 : 0;
    const char *const digits = at;
    quint32 value = 0;
    for (int digit = 0; at < end && (digit = digitValue(*at, base)) >= 0; ++at) {
        // Stays above the last code point once it is; long numbers must not wrap around.
        value = value > QChar::LastValidCodePoint
                    ? value
                    : value * static_cast<quint32>(base) + static_cast<quint32>(digit);
    }
    if (at == digits) {
        return std::nullopt;
    }
    at += at < end && *at == ';' ? 1 : 0;
    return entityOf(htmlCharacter(value), static_cast<int>(at - start));
}

bool isAlphanumeric(char c)
{
    return charClass(c) == CharClass::Letter || charClass(c) == CharClass::Digit;
}

/// As "nbsp;", the name without ";" is a plain space.
Entity namedEntity(const NamedReference &reference, size_t length)
{
    Entity entity{static_cast<int>(length), reference.units, reference.unitCount};
    std::replace(entity.units.begin(), entity.units.end(), u'\u00A0', u' ');
    return entity;
}

/// The longest name at the start of `run` that needs no ";", as "not" in "notit".
std::optional<Entity> readFreeName(std::string_view run)
{
    for (size_t size = std::min(run.size(), kLongestFreeReference); size > 1; --size) {
        const auto found = findReference(run.substr(0, size));
        if (found && found->isFree) {
            return namedEntity(*found, size + 1);
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<Entity> readHtmlEntity(const char *at, const char *end, HtmlPlace place)
{
    const char *const name = at + 1;
    if (name < end && *name == '#') {
        return readHtmlNumber(at, name + 1, end);
    }
    if (const auto common = readEntity(at, end)) {
        return common;
    }
    const char *const most = name + std::min<ptrdiff_t>(end - name, kLongestReference + 1);
    const std::string_view run(
        name, static_cast<size_t>(std::find_if_not(name, most, isAlphanumeric) - name));
    if (name + run.size() < end && name[run.size()] == ';') {
        if (const auto found = findReference(run)) {
            return namedEntity(*found, run.size() + 2);
        }
    }
    const std::optional<Entity> entity = readFreeName(run);
    const char *const after = at + (entity ? entity->length : 0);
    const bool isText = entity && place == HtmlPlace::Attribute && after < end &&
                        (*after == '=' || isAlphanumeric(*after));
    return isText ? std::nullopt : entity;
}

} // namespace corvanta::markup
