// Converts numbers to text and back, independently of the locale and without allocating memory.
//
// Threads: pure functions; FloatFormat objects may be shared for reading.
#pragma once
#include <QByteArray>
#include <QString>
#include <QtGlobal>

#include <string_view>

namespace corvanta {

/// Number of bytes that the put functions below need at `out`. They do not write a final NUL. They
/// may use all of this room, even if the returned text is shorter.
inline constexpr int kNumberChars = 32;

/// Print `value` in decimal. Returns the number of characters.
int putUInt(quint64 value, char *out);

/// Print the fewest digits that read back as the same double: "0.25", "7" for 7.0, "1e+300", "nan",
/// "inf", "-inf". Numbers from 1e-5 up to (excluding) 1e17 have no exponent, all others have one.
/// Returns the number of characters.
int putShortest(double value, char *out);
/// putShortest() as a QString. Allocates: not for the cells of a table.
QString shortestText(double value);

/// Print `value` as printf does with "%.<precision>g", precision 1 to 17. Returns the number of
/// characters.
int putGeneral(double value, int precision, char *out);

/// Parse all of `text` as a double: digits with an optional sign, fraction and exponent, or "nan",
/// "inf", "-inf", "infinity" in any letter case. Does not accept spaces. Returns false for other
/// text, and `*value` is then undefined. A number that is too large becomes an infinity, one that
/// is too small a zero. A bool and not a Result because callers parse every cell of a table.
bool parseDouble(std::u16string_view text, double *value);
bool parseDouble(std::string_view text, double *value);

/// Parse all of `text` as an unsigned decimal of at most `max`. Returns false for other text, and
/// leaves `*value` unchanged.
bool parseUInt(std::u16string_view text, quint64 max, quint64 *value);
bool parseUInt(std::string_view text, quint64 max, quint64 *value);

/// A printf format for one double, chosen by a user. set() checks it; every later use is safe.
///
/// An empty format means putShortest(). Otherwise the format is literal text, "%%", and exactly one
/// conversion: e E f F g G a or A, with flags "-+ #0", a width and a precision of up to 3 digits
/// each, and an optional "l".
class FloatFormat
{
public:
    /// The format "%.16g": more digits than most values need, and one too few for some to read back
    /// as the same double.
    FloatFormat();

    /// Use `format`. Returns false, and keeps the old format, if it is not allowed.
    bool set(const QString &format);

    /// Append `value` to `out`, in UTF-8. The text may be longer than kNumberChars.
    void append(double value, QByteArray *out) const;

    /// Print `value` to a buffer of `room` bytes. Returns the length of the text. If that is `room`
    /// or more, the text did not fit and the buffer's content is undefined.
    qsizetype put(double value, char *out, qsizetype room) const;

private:
    QByteArray m_format;
    bool m_isShortest = false;
    int m_generalPrecision; // of a plain "%g" or "%.<n>g", which needs no printf; else 0
};

} // namespace corvanta
