// Which number formats show dates, times and durations.
//
//   [Red][$-409]d/m/yy "at" h:mm\.ss AM/PM;General;@
//   ----------- ------ ---- - -- -- --    |
//   bracket     letters quoted   escaped  first section ends
//
// A bracket with only the letter h, m or s, repeated, is an elapsed time.
#include "codecs/sheet/number_format.h"

#include <algorithm>

namespace corvanta::sheet {

namespace {

/// What a section of a code shows.
struct Parts
{
    bool date = false;    ///< a year, a day, a month's name, or an era
    bool time = false;    ///< hours, seconds or AM/PM
    bool elapsed = false; ///< hours, minutes or seconds without a limit
    bool month = false;   ///< m, which means minutes next to hours or seconds
    bool digits = false;  ///< 0, # or ?, which a date has only as a fraction of seconds
};

char16_t lower(char16_t c)
{
    return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
}

/// Whether `content`, the text of a bracket, is an elapsed time.
bool isElapsed(std::u16string_view content)
{
    if (content.empty()) {
        return false;
    }
    const char16_t first = lower(content.front());
    return (first == u'h' || first == u'm' || first == u's') &&
           std::ranges::all_of(content, [first](char16_t c) { return lower(c) == first; });
}

/// Skip the bracket that begins at `at`; returns the position after it.
size_t takeBracket(std::u16string_view code, size_t at, Parts *parts)
{
    const size_t end = code.find(u']', at);
    if (end == std::u16string_view::npos) {
        return code.size();
    }
    parts->elapsed |= isElapsed(code.substr(at + 1, end - at - 1));
    return end + 1;
}

bool startsWith(std::u16string_view text, std::u16string_view lowerCase)
{
    return text.size() >= lowerCase.size() &&
           std::equal(lowerCase.begin(), lowerCase.end(), text.begin(),
                      [](char16_t a, char16_t b) { return a == lower(b); });
}

/// Take the word at the start of `rest`; returns its length, 0 without one.
size_t takeWord(std::u16string_view rest, Parts *parts)
{
    constexpr std::u16string_view kGeneral = u"general";
    if (startsWith(rest, kGeneral)) {
        parts->digits = true;
        return kGeneral.size();
    }
    for (const std::u16string_view half : {u"am/pm", u"a/p"}) {
        if (startsWith(rest, half)) {
            parts->time = true;
            return half.size();
        }
    }
    return 0;
}

/// Take the letter, digit or word at `at`; returns the position after it.
size_t takeSymbol(std::u16string_view code, size_t at, Parts *parts)
{
    const std::u16string_view rest = code.substr(at);
    if (const size_t word = takeWord(rest, parts); word > 0) {
        return at + word;
    }
    switch (lower(rest.front())) {
    case u'y':
    case u'd':
    case u'e':
    case u'g':
    case u'b':
        // "E+" of 0.00E+00 is the exponent of a number.
        parts->date |= !(parts->digits && lower(rest.front()) == u'e');
        break;
    case u'h':
    case u's':
        parts->time = true;
        break;
    case u'm':
        parts->month = true;
        // From three letters on it is the name of a month.
        parts->date |= startsWith(rest, u"mmm");
        break;
    case u'0':
    case u'#':
    case u'?':
        parts->digits = true;
        break;
    default:
        break;
    }
    return at + 1;
}

/// Skip the text in quotes that begins at `at`; returns the position after it.
size_t takeQuoted(std::u16string_view code, size_t at)
{
    const size_t end = code.find(u'"', at + 1);
    return end == std::u16string_view::npos ? code.size() : end + 1;
}

/// Take what is at `at`; returns the position after it.
size_t takeItem(std::u16string_view code, size_t at, Parts *parts)
{
    switch (code[at]) {
    case u'[':
        return takeBracket(code, at, parts);
    case u'"':
        return takeQuoted(code, at);
    case u'\\':
    case u'_': // a space as wide as the next character
    case u'*': // the next character, repeated
        return at + 2;
    default:
        return takeSymbol(code, at, parts);
    }
}

/// Whether a letter outside quotes has a meaning of its own: a part of a date, or an exponent.
bool isSymbol(std::u16string_view rest)
{
    constexpr std::u16string_view kDateLetters = u"ymdhsgb";
    const char16_t c = lower(rest.front());
    return c < u'a' || c > u'z' || kDateLetters.find(c) != std::u16string_view::npos ||
           (c == u'e' && (rest.size() == 1 || lower(rest[1]) < u'a' || lower(rest[1]) == u'e'));
}

/// Move `*at` to the item after the one that it refers to.
FormatFault faultOfItem(std::u16string_view code, size_t *at)
{
    Parts parts;
    const char16_t c = code[*at];
    if (c == u'"' && code.find(u'"', *at + 1) == std::u16string_view::npos) {
        return FormatFault::Quote;
    }
    if (c == u'[' && code.find(u']', *at) == std::u16string_view::npos) {
        return FormatFault::Bracket;
    }
    const std::u16string_view rest = code.substr(*at);
    if (takeWord(rest, &parts) == 0 && !isSymbol(rest)) {
        return FormatFault::Letter;
    }
    *at = takeItem(code, *at, &parts);
    return *at > code.size() ? FormatFault::End : FormatFault::None;
}

NumberForm formOf(const Parts &parts)
{
    if (parts.elapsed) {
        return NumberForm::Duration;
    }
    if (parts.date && parts.time) {
        return NumberForm::DateTime;
    }
    if (parts.date) {
        return NumberForm::Date;
    }
    if (parts.time) {
        return NumberForm::Time;
    }
    return parts.month && !parts.digits ? NumberForm::Date : NumberForm::General;
}

/// The ids 27 to 36 and 50 to 58 are those of East Asian languages (ECMA-376 part 1, 18.8.30).
bool isBuiltInDate(int id)
{
    return (id >= 14 && id <= 17) || (id >= 27 && id <= 31) || id == 36 || (id >= 50 && id <= 54) ||
           id == 57 || id == 58;
}

/// As isBuiltInDate(), for the formats that show a time alone.
bool isBuiltInTime(int id)
{
    return (id >= 18 && id <= 21) || (id >= 32 && id <= 35) || id == 45 || id == 47 || id == 55 ||
           id == 56;
}

} // namespace

NumberForm formOfBuiltIn(int id)
{
    if (isBuiltInDate(id)) {
        return NumberForm::Date;
    }
    if (isBuiltInTime(id)) {
        return NumberForm::Time;
    }
    if (id == 22) {
        return NumberForm::DateTime;
    }
    return id == 46 ? NumberForm::Duration : NumberForm::General;
}

FormatFault faultOfCode(std::u16string_view code)
{
    constexpr size_t kMaxUnits = 255;
    constexpr qsizetype kMaxSections = 4;
    if (code.empty()) {
        return FormatFault::Empty;
    }
    if (code.size() > kMaxUnits) {
        return FormatFault::Long;
    }
    if (std::ranges::any_of(code, [](char16_t c) { return c < u' ' || c >= 0xFFFE; })) {
        return FormatFault::Character;
    }
    qsizetype sections = 1;
    for (size_t at = 0; at < code.size();) {
        // Positive numbers; negative ones; zero; texts.
        sections += code[at] == u';' ? 1 : 0;
        if (const FormatFault fault = faultOfItem(code, &at); fault != FormatFault::None) {
            return fault;
        }
    }
    return sections > kMaxSections ? FormatFault::Sections : FormatFault::None;
}

NumberForm formOfCode(std::u16string_view code)
{
    Parts parts;
    for (size_t at = 0; at < code.size() && code[at] != u';';) {
        at = takeItem(code, at, &parts);
    }
    return formOf(parts);
}

} // namespace corvanta::sheet
