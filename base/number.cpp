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

/// Longest text that parseDouble looks at on the stack; longer ones (hundreds of zeros) are copied.
constexpr size_t kStackDigits = 64;

/// Length of a literal or a sign in front, so that from_chars sees what it takes.
std::string_view withoutPlus(std::string_view text)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+') {
        text.remove_prefix(1);
    }
    return text;
}

/// What from_chars could not represent: an infinity or a zero, by the sign of the decimal exponent.
double outOfRange(std::string_view text)
{
    // strtod rounds the same way everywhere and is only reached here.
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

/// The position behind a run of at most `most` digits; -1 when the run is longer.
qsizetype skipDigits(const QByteArray &text, qsizetype at, int maxDigits)
{
    const qsizetype begin = at;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
        ++at;
    }
    return at - begin > maxDigits ? -1 : at;
}

/// The position behind the conversion that starts at `at` (a '%'), or -1.
qsizetype skipConversion(const QByteArray &text, qsizetype at)
{
    ++at;
    while (at < text.size() && std::strchr("-+ #0", text[at]) != nullptr) {
        ++at;
    }
    at = skipDigits(text, at, 3);
    if (at >= 0 && at < text.size() && text[at] == '.') {
        at = skipDigits(text, at + 1, 3);
    }
    if (at < 0 || at >= text.size()) {
        return -1;
    }
    if (text[at] == 'l') {
        ++at;
    }
    const bool known = at < text.size() && text[at] != '\0' && std::strchr("eEfFgGaA", text[at]);
    return known ? at + 1 : -1;
}

constexpr int kQuickPrecision = 9;
constexpr std::array<double, 14> kPowersOf10 = {1e0, 1e1, 1e2, 1e3,  1e4,  1e5,  1e6,
                                                1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13};

/// Print the `precision` digits of `digits`, of which `exponent + 1` stand in front of the point,
/// without zeros at the end.
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

/// What putGeneral() prints for numbers between 0.0001 and 10^precision, at a third of the cost.
/// Scaled to a whole number of `precision` digits, with one rounding, such a number is off by less
/// than 10^-6; 0 is returned where that could decide about a digit, and for other numbers.
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
        return 0; // rounded up to one digit more, or just below a power of ten
    }
    char *at = out;
    *at = '-';
    at += std::signbit(value) ? 1 : 0;
    return static_cast<int>(putPlain(digits, precision, exponent, at) - out);
}

} // namespace

int putUInt(quint64 value, char *out)
{
    return static_cast<int>(std::to_chars(out, out + kNumberChars, value).ptr - out);
}

int putShortest(double value, char *out)
{
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
        // printf shows the sign of a NaN; to_chars does too, in another form
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
    int conversions = 0;
    for (qsizetype at = 0; at < text.size();) {
        if (text[at] == '\0') {
            return false;
        }
        if (text[at] != '%') {
            ++at;
        } else if (at + 1 < text.size() && text[at + 1] == '%') {
            at += 2;
        } else {
            at = skipConversion(text, at);
            if (at < 0) {
                return false;
            }
            ++conversions;
        }
    }
    if (conversions != 1) {
        return false;
    }
    m_format = text;
    m_isShortest = false;
    quint64 precision = 0;
    const bool plain =
        text.startsWith("%.") && text.endsWith('g') &&
        parseUInt(std::string_view(text.constData() + 2, static_cast<size_t>(text.size()) - 3), 17,
                  &precision);
    constexpr int kUsualPrecision = 6;
    m_generalPrecision = text == "%g" ? kUsualPrecision : plain ? static_cast<int>(precision) : 0;
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
    if (length >= room) {
        room = length + 1;
        out->resize(begin + room);
        length = put(value, out->data() + begin, room);
    }
    out->resize(begin + length);
}

} // namespace corvanta
