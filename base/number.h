// base/number.h
// Numbers to text and back, apart from any locale and without allocation.
#pragma once
#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <string_view>

namespace corvanta {

/// Room that the functions below need at `out`.
inline constexpr int kNumberChars = 32;

/// Print `value` in decimal; returns the characters written.
int putUInt(quint64 value, char *out);

/// Print the fewest digits that read back to the same double: "0.25", "7" for 7.0, "1e+300", "nan",
/// "inf", "-inf". Plain digits from 1e-5 up to 1e17, an exponent outside. Returns the characters
/// written.
int putShortest(double value, char *out);
QString shortestText(double value);

/// Print what printf prints for "%.<precision>g" (precision 1 to 17); returns the characters
/// written.
int putGeneral(double value, int precision, char *out);

/// The whole of `text` as a double: digits with an optional sign, fraction and exponent, or "nan",
/// "inf", "-inf" ("infinity" too; any letter case). No blanks. False when it is something else; too
/// large a value becomes an infinity, too small a one zero.
bool parseDouble(std::u16string_view text, double *value);
bool parseDouble(std::string_view text, double *value);

/// The whole of `text` as an unsigned decimal of at most `max`; false when it is something else.
bool parseUInt(std::u16string_view text, quint64 max, quint64 *value);
bool parseUInt(std::string_view text, quint64 max, quint64 *value);

/// A printf format that a user gave for one double, checked once and then safe to use.
///
/// Allowed: nothing at all, which stands for putShortest(), or literal text, "%%" and exactly one
/// conversion of e E f F g G a A with flags "-+ #0", width and precision of up to 3 digits, and an
/// optional "l".
class FloatFormat
{
public:
    /// "%.16g".
    FloatFormat();

    /// Take `format`; false (and unchanged) when it is not of the allowed form.
    bool set(const QString &format);

    /// Append `value` to `out` in UTF-8. Longer results than usual are possible: the length is
    /// real.
    void append(double value, QByteArray *out) const;

    /// Like append() into a caller's buffer of `room` bytes; the length that is needed is returned,
    /// and when it exceeds `room` nothing useful was written.
    qsizetype put(double value, char *out, qsizetype room) const;

private:
    QByteArray m_format;
    bool m_isShortest = false;
    int m_generalPrecision; // of a plain "%g" or "%.<n>g", which needs no printf; otherwise 0
};

} // namespace corvanta
