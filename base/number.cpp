// Conversion between numbers and text, on top of <charconv>.
//
// Most numbers in tables have few digits. putGeneralQuickly() and putShortestQuickly() print them
// with integer arithmetic at a third of the cost of to_chars, and leave all others to it.
#include "base/number.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <system_error>

namespace corvanta {

namespace {

/// Longest text that parseDouble copies to the stack. Longer ones, such as hundreds of zeros, are
/// copied to the heap.
constexpr size_t kStackDigits = 64;

/// `text` without a leading plus sign, which from_chars does not accept.
std::string_view withoutPlus(std::string_view text)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+') {
        text.remove_prefix(1);
    }
    return text;
}

/// The value of a number that from_chars reports as out of range: an infinity or a zero.
double outOfRange(std::string_view text)
{
    // strtod distinguishes the two. The locale does not matter for these results.
    return std::strtod(std::string(text).c_str(), nullptr);
}

template <class View> bool parseUIntOf(View text, quint64 max, quint64 *value)
{
    if (text.empty()) {
        return false;
    }
    quint64 sum = 0;
    for (const auto unit : text) {
        const unsigned digit = static_cast<unsigned>(unit) - '0';
        if (digit > 9 || sum > (std::numeric_limits<quint64>::max() - digit) / 10) {
            return false;
        }
        sum = sum * 10 + digit;
    }
    if (sum > max) {
        return false;
    }
    *value = sum;
    return true;
}

/// Removes a run of digits from the start of `text`. Returns false if there are more than three.
bool skipDigits(std::string_view &text)
{
    constexpr size_t kMaxDigits = 3;
    const size_t digits = std::min(text.find_first_not_of("0123456789"), text.size());
    text.remove_prefix(digits);
    return digits <= kMaxDigits;
}

/// Removes a conversion, such as "%-8.3f", from the start of `text`, which begins with '%'. Returns
/// false if it is not one of the allowed conversions.
bool skipConversion(std::string_view &text)
{
    text.remove_prefix(1);
    text.remove_prefix(std::min(text.find_first_not_of("-+ #0"), text.size()));
    if (!skipDigits(text)) {
        return false;
    }
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        if (!skipDigits(text)) {
            return false;
        }
    }
    text.remove_prefix(text.starts_with('l') ? 1 : 0);
    constexpr std::string_view kConversions = "eEfFgGaA";
    const bool isKnown = !text.empty() && kConversions.find(text[0]) != std::string_view::npos;
    text.remove_prefix(isKnown ? 1 : 0);
    return isKnown;
}

/// Whether `text` is literal text with exactly one allowed conversion.
bool hasOneConversion(std::string_view text)
{
    int conversions = 0;
    while (!text.empty()) {
        if (text[0] == '\0') {
            return false; // printf would stop here
        }
        if (text[0] != '%') {
            text.remove_prefix(1);
        } else if (text.starts_with("%%")) {
            text.remove_prefix(2);
        } else if (skipConversion(text)) {
            ++conversions;
        } else {
            return false;
        }
    }
    return conversions == 1;
}

/// The precision of a plain "%g" or "%.<n>g" with n up to 17; 0 for other formats.
int generalPrecision(std::string_view format)
{
    constexpr int kDefaultPrecision = 6;
    constexpr quint64 kMaxPrecision = 17;
    if (format == "%g") {
        return kDefaultPrecision;
    }
    quint64 precision = 0;
    const bool isPlain = format.starts_with("%.") && format.ends_with('g') &&
                         parseUInt(format.substr(2, format.size() - 3), kMaxPrecision, &precision);
    return isPlain ? static_cast<int>(precision) : 0;
}

constexpr int kQuickPrecision = 9;
constexpr std::array<double, 14> kPowersOf10 = {1e0, 1e1, 1e2, 1e3,  1e4,  1e5,  1e6,
                                                1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13};

/// Print `digits`, a number of `precision` digits, with `exponent + 1` digits before the point and
/// without trailing zeros. Returns the end of the text. Copies a fixed number of bytes, which is
/// faster than an exact copy.
char *putPlain(quint64 digits, int precision, int exponent, char *out)
{
    std::array<char, kNumberChars> text{};
    std::to_chars(text.data(), text.data() + text.size(), digits);
    int used = precision;
    while (used > exponent + 1 && text[static_cast<size_t>(used - 1)] == '0') {
        --used;
    }
    if (exponent < 0) {
        constexpr std::string_view kZeros = "0.0000";
        const auto zeros = static_cast<size_t>(1 - exponent);
        std::memcpy(out, kZeros.data(), kZeros.size());
        std::memcpy(out + zeros, text.data(), kQuickPrecision);
        return out + zeros + used;
    }
    const auto whole = static_cast<size_t>(exponent + 1);
    std::memcpy(out, text.data(), kQuickPrecision);
    if (used <= exponent + 1) {
        return out + whole;
    }
    out[whole] = '.';
    std::memcpy(out + whole + 1, text.data() + whole, kQuickPrecision);
    return out + used + 1;
}

/// Print a number between 0.0001 and 10^precision as putGeneral() does. Returns the length, or 0 if
/// the number is outside that range or the result is uncertain.
///
/// Scaling to a whole number of `precision` digits rounds once, with an error below 10^-6. The
/// result is uncertain if an error of that size could change a digit.
int putGeneralQuickly(double value, int precision, char *out)
{
    const double size = std::fabs(value);
    const double limit = kPowersOf10[static_cast<size_t>(precision)];
    if (!(size >= 1e-4 && size < limit)) {
        return 0;
    }
    int exponent = size >= 1 ? 0 : size >= 1e-1 ? -1 : size >= 1e-2 ? -2 : size >= 1e-3 ? -3 : -4;
    while (exponent >= 0 && size >= kPowersOf10[static_cast<size_t>(exponent) + 1]) {
        ++exponent;
    }
    const double scaled = size * kPowersOf10[static_cast<size_t>(precision - 1 - exponent)];
    auto digits = static_cast<quint64>(scaled);
    const double rest = scaled - static_cast<double>(digits);
    if (std::fabs(rest - 0.5) < 1e-6) {
        return 0;
    }
    digits += rest > 0.5 ? 1 : 0;
    if (digits < static_cast<quint64>(limit) / 10 || digits >= static_cast<quint64>(limit)) {
        return 0; // rounded up to one more digit, or just below a power of ten
    }
    char *at = out;
    *at = '-';
    at += std::signbit(value) ? 1 : 0;
    return static_cast<int>(putPlain(digits, precision, exponent, at) - out);
}

/// Print four decimals after a point, without trailing zeros; nothing if all are zeros. Returns the
/// end of the text.
char *putFourDecimals(quint64 decimals, char *out)
{
    if (decimals == 0) {
        return out;
    }
    char *end = out + 5;
    for (; decimals % 10 == 0; decimals /= 10) {
        --end;
    }
    for (char *at = end - 1; at > out; --at, decimals /= 10) {
        *at = static_cast<char>('0' + decimals % 10);
    }
    *out = '.';
    return end;
}

/// Print a number with at most 4 decimals as putShortest() does. Returns the length, or 0 for other
/// numbers and from 10^11 on.
///
/// Two decimals of at most 15 digits never have the same nearest double. So the one that reads back
/// to `value` is the shortest.
int putShortestQuickly(double value, char *out)
{
    constexpr quint64 kScale = 10000;
    constexpr double kLimit = 1e11;
    const double size = std::fabs(value);
    if (!(size < kLimit)) {
        return 0;
    }
    // NOLINTNEXTLINE(bugprone-incorrect-roundings): a wrong rounding is found below
    const auto scaled = static_cast<quint64>(size * kScale + 0.5);
    // The quotient of two exact numbers is the nearest double, as a parser gives it.
    if (static_cast<double>(scaled) / kScale != size) {
        return 0;
    }
    char *at = out;
    *at = '-';
    at += std::signbit(value) ? 1 : 0;
    at += putUInt(scaled / kScale, at);
    return static_cast<int>(putFourDecimals(scaled % kScale, at) - out);
}

} // namespace

int putUInt(quint64 value, char *out)
{
    return static_cast<int>(std::to_chars(out, out + kNumberChars, value).ptr - out);
}

int putShortest(double value, char *out)
{
    if (const int quick = putShortestQuickly(value, out); quick != 0) {
        return quick;
    }
    if (std::isnan(value)) {
        std::memcpy(out, "nan", 3);
        return 3;
    }
    const double size = std::fabs(value);
    const bool plain = size == 0 || (size >= 1e-5 && size < 1e17);
    const auto format = plain ? std::chars_format::fixed : std::chars_format::scientific;
    return static_cast<int>(std::to_chars(out, out + kNumberChars, value, format).ptr - out);
}

QString shortestText(double value)
{
    std::array<char, kNumberChars> text{};
    return QString::fromLatin1(text.data(), putShortest(value, text.data()));
}

int putGeneral(double value, int precision, char *out)
{
    if (std::isnan(value)) {
        // printf prints the sign of a NaN; to_chars prints it in another form.
        std::memcpy(out, std::signbit(value) ? "-nan" : "nan", 4);
        return std::signbit(value) ? 4 : 3;
    }
    const int quick = precision <= kQuickPrecision ? putGeneralQuickly(value, precision, out) : 0;
    if (quick != 0) {
        return quick;
    }
    return static_cast<int>(
        std::to_chars(out, out + kNumberChars, value, std::chars_format::general, precision).ptr -
        out);
}

bool parseDouble(std::string_view text, double *value)
{
    text = withoutPlus(text);
    const char *const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, *value);
    // from_chars accepts "nan(...)", which is not a number for us.
    if (error == std::errc::invalid_argument || stop != end || text.back() == ')') {
        return false;
    }
    if (error == std::errc::result_out_of_range) {
        *value = outOfRange(text);
    }
    return true;
}

bool parseDouble(std::u16string_view text, double *value)
{
    std::array<char, kStackDigits>
        narrow; // NOLINT(cppcoreguidelines-pro-type-member-init): filled below
    QByteArray longText;
    char *out = narrow.data();
    if (text.size() > narrow.size()) {
        longText.resize(static_cast<qsizetype>(text.size()));
        out = longText.data();
    }
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] > 0x7F) {
            return false;
        }
        out[i] = static_cast<char>(text[i]);
    }
    return parseDouble(std::string_view(out, text.size()), value);
}

bool parseUInt(std::u16string_view text, quint64 max, quint64 *value)
{
    return parseUIntOf(text, max, value);
}

bool parseUInt(std::string_view text, quint64 max, quint64 *value)
{
    return parseUIntOf(text, max, value);
}

FloatFormat::FloatFormat()
    : m_format("%.16g")
    , m_generalPrecision(16)
{
}

bool FloatFormat::set(const QString &format)
{
    if (format.isEmpty()) {
        m_isShortest = true;
        return true;
    }
    const QByteArray text = format.toUtf8();
    const std::string_view view(text.constData(), static_cast<size_t>(text.size()));
    if (!hasOneConversion(view)) {
        return false;
    }
    m_format = text;
    m_isShortest = false;
    m_generalPrecision = generalPrecision(view);
    return true;
}

qsizetype FloatFormat::put(double value, char *out, qsizetype room) const
{
    if (m_isShortest && room >= kNumberChars) {
        return putShortest(value, out);
    }
    if (m_generalPrecision != 0 && room >= kNumberChars) {
        return putGeneral(value, m_generalPrecision, out);
    }
    // set() has checked the format.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    return std::snprintf(out, static_cast<size_t>(room), m_format.constData(), value);
#pragma GCC diagnostic pop
}

void FloatFormat::append(double value, QByteArray *out) const
{
    const qsizetype begin = out->size();
    qsizetype room = kNumberChars;
    out->resize(begin + room);
    qsizetype length = put(value, out->data() + begin, room);
    if (length >= room) { // a long literal or a large width
        room = length + 1;
        out->resize(begin + room);
        length = put(value, out->data() + begin, room);
    }
    out->resize(begin + length);
}

} // namespace corvanta
