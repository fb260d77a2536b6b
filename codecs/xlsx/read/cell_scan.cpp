// The usual cells (ECMA-376 part 1, 18.3.1.4):
//
//   <c r="B7" s="1" t="s"><v>12</v></c>
//   <c r="C7"><f>A7+B7</f><v>3.5</v></c>
//   <c r="D7" s="3"/>
//   <c r="E7" t="inlineStr"><is><t>text</t></is></c>
#include "codecs/xlsx/read/cell_scan.h"

#include "base/number.h"

#include <emmintrin.h>

#include <cmath>
#include <cstring>

namespace corvanta::xlsx {

namespace {

bool isSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\t' || c == '\r';
}

/// The first "<" or NUL at or after `at`.
const char *findMarkup(const char *at)
{
    for (;; at += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
        const __m128i hits = _mm_or_si128(_mm_cmpeq_epi8(block, _mm_set1_epi8('<')),
                                          _mm_cmpeq_epi8(block, _mm_setzero_si128()));
        if (const int mask = _mm_movemask_epi8(hits); mask != 0) {
            return at + __builtin_ctz(static_cast<unsigned>(mask));
        }
    }
}

/// Whether the text is at `at`. Its length is a constant, so that it is compared without a call.
template <size_t N> bool startsWith(const char *at, const char *end, const char (&text)[N])
{
    return end - at >= static_cast<std::ptrdiff_t>(N - 1) && std::memcmp(at, text, N - 1) == 0;
}

/// The first `c` at or after `at`, or `end`. For a few bytes faster than memchr().
const char *findNear(const char *at, const char *end, char c)
{
    while (at != end && *at != c) {
        ++at;
    }
    return at;
}

/// The attributes of the tag, whose name ends at `at`. Returns the address of its "/" or ">", null
/// for anything unusual or incomplete.
const char *scanAttributes(const char *at, const char *end, RawCell *cell)
{
    while (at < end && isSpace(*at)) {
        const char name = at[1];
        if (at + 4 >= end || at[2] != '=' || at[3] != '"') {
            return nullptr;
        }
        const char *const value = at + 4;
        const char *const stop = findNear(value, end, '"');
        if (stop == end) {
            return nullptr;
        }
        const QByteArrayView text(value, stop - value);
        if (name == 'r') {
            cell->hasReference = true;
            cell->column = columnOfReference(text);
        } else if (name == 't') {
            cell->type = text;
        } else if (name == 's') {
            quint64 style = 0;
            parseUInt({text.data(), static_cast<size_t>(text.size())}, 0xFFFFFFFF, &style);
            cell->style = static_cast<quint32>(style);
        } else {
            return nullptr;
        }
        at = stop + 1;
    }
    return at < end && (*at == '>' || *at == '/') ? at : nullptr;
}

/// Skip the formula at `at`, if there is one. Null when it is incomplete.
const char *skipFormula(const char *at, const char *end, RawCell *cell)
{
    if (!startsWith(at, end, "<f>") && !startsWith(at, end, "<f ")) {
        return at;
    }
    cell->hasFormula = true;
    const char *const close = findNear(at, end, '>');
    if (close == end || close[-1] == '/') {
        return close == end ? nullptr : close + 1;
    }
    const char *const next = findMarkup(close + 1);
    // A NUL is the end of the bytes, or no text of XML.
    return startsWith(next, end, "</f>") ? next + 4 : nullptr;
}

/// Scan a text between the tags, which end the cell. Returns the address after it; null for other
/// tags, and for an incomplete text.
template <size_t N, size_t M>
const char *scanText(const char *at, const char *end, const char (&opening)[N],
                     const char (&closing)[M], RawCell *cell)
{
    if (!startsWith(at, end, opening)) {
        return nullptr;
    }
    const char *const text = at + N - 1;
    const char *const stop = findMarkup(text);
    if (!startsWith(stop, end, closing)) {
        return nullptr;
    }
    cell->hasValue = true;
    cell->value = {text, stop - text};
    return stop + M - 1;
}

/// Scan the content at `at` and the end of the cell. Returns the address after it, null for
/// anything unusual or incomplete.
const char *scanContent(const char *at, const char *end, RawCell *cell)
{
    if (const char *const after = scanText(at, end, "<v>", "</v></c>", cell)) {
        return after;
    }
    if (const char *const after = scanText(at, end, "<is><t>", "</t></is></c>", cell)) {
        return after;
    }
    return scanText(at, end, "<is><t xml:space=\"preserve\">", "</t></is></c>", cell);
}

/// The powers of ten that a double holds exactly.
constexpr double kPowers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
constexpr int kExactDigits = 15;

/// A decimal of up to kExactDigits digits without exponent: exact, because both the digits and the
/// power of ten are exact and a division rounds once. Returns false for any other text.
bool parseShortDecimal(const char *at, const char *end, double *value)
{
    const bool isNegative = at != end && *at == '-';
    at += isNegative ? 1 : 0;
    qint64 digits = 0;
    const char *const first = at;
    const char *point = end;
    for (; at != end; ++at) {
        const auto digit = static_cast<unsigned>(*at - '0');
        if (digit <= 9) {
            digits = digits * 10 + digit;
        } else if (*at == '.' && point == end && at != first) {
            point = at;
        } else {
            return false;
        }
        // Longer texts may overflow, and are not exact doubles.
        if (at - first > kExactDigits) {
            return false;
        }
    }
    const std::ptrdiff_t fraction = point == end ? 0 : end - point - 1;
    const std::ptrdiff_t count = end - first - (point == end ? 0 : 1);
    if (count == 0 || count > kExactDigits || (point != end && fraction == 0)) {
        return false;
    }
    const double number = static_cast<double>(digits) / kPowers[fraction];
    *value = isNegative ? -number : number;
    return true;
}

} // namespace

int columnOfReference(QByteArrayView reference)
{
    constexpr int kMaxLetters = 6; // 26^6 is below 2^31
    qint64 column = 0;
    int letters = 0;
    for (const char c : reference) {
        const char upper = static_cast<char>(c & ~0x20);
        if (upper < 'A' || upper > 'Z') {
            if (c == '$' && letters == 0) {
                continue;
            }
            break;
        }
        if (++letters > kMaxLetters) {
            return -1;
        }
        column = column * 26 + (upper - 'A' + 1);
    }
    return static_cast<int>(column) - 1;
}

bool isTrue(std::optional<QByteArrayView> value)
{
    return value && (*value == "1" || *value == "true" || *value == "on");
}

bool parseValue(QByteArrayView text, double *value)
{
    return parseShortDecimal(text.begin(), text.end(), value) ||
           (parseDouble(std::string_view(text.data(), static_cast<size_t>(text.size())), value) &&
            std::isfinite(*value));
}

CellScan scanCell(const char *at, const char *end, RawCell *cell, const char **after)
{
    if (end - at < 4) {
        return CellScan::Incomplete;
    }
    if (at[1] != 'c' || (at[2] != ' ' && at[2] != '>')) {
        return CellScan::Unusual;
    }
    // A cell of the usual form in the last bytes is tried again with more of them.
    constexpr std::ptrdiff_t kUsualBytes = 256;
    const CellScan otherwise = end - at < kUsualBytes ? CellScan::Incomplete : CellScan::Unusual;
    const char *stop = scanAttributes(at + 2, end, cell);
    if (stop == nullptr) {
        return otherwise;
    }
    if (startsWith(stop, end, "/>")) {
        *after = stop + 2;
        return CellScan::Cell;
    }
    stop = skipFormula(stop + 1, end, cell);
    if (stop == nullptr) {
        return otherwise;
    }
    if (startsWith(stop, end, "</c>")) {
        *after = stop + 4;
        return CellScan::Cell;
    }
    *after = scanContent(stop, end, cell);
    return *after != nullptr ? CellScan::Cell : otherwise;
}

} // namespace corvanta::xlsx
