#include "base/text/unmarked_utf16.h"

#include "base/utf.h"

#include <QChar>
#include <QtEndian>

#include <array>
#include <cstring>
#include <vector>

namespace corvanta {

namespace {

/// Whether the units of UTF-16 in `text` are characters.
bool isUtf16(std::string_view text, bool isBigEndian)
{
    std::vector<char16_t> units(text.size() / 2);
    std::memcpy(units.data(), text.data(), units.size() * 2);
    if (isBigEndian) {
        qFromBigEndian<quint16>(units.data(), static_cast<qsizetype>(units.size()), units.data());
    }
    const auto n = static_cast<qsizetype>(units.size());
    const bool isCut = n > 0 && QChar::isHighSurrogate(units.back());
    return findLoneSurrogate(units.data(), n - (isCut ? 1 : 0)) == n - (isCut ? 1 : 0);
}

/// Whether a byte is a character of ASCII text.
bool isPlain(char c)
{
    return (c >= ' ' && c <= '~') || c == '\n' || c == '\r' || c == '\t';
}

/// What distinguishes UTF-16 from a text of bytes that has zeros in it.
struct Counts
{
    std::array<size_t, 2> zeros{}; ///< in the first and in the second halves of the units
    size_t units = 0;
    size_t plainPairs = 0;    ///< units of two ASCII characters, rare in UTF-16
    size_t lineFeeds = 0;     ///< bytes
    size_t lineFeedUnits = 0; ///< those whose other half is zero
};

Counts countsOf(std::string_view text)
{
    Counts counts;
    counts.units = text.size() / 2;
    for (size_t i = 0; i + 1 < text.size(); i += 2) {
        const char a = text[i];
        const char b = text[i + 1];
        counts.zeros[0] += a == '\0' ? 1 : 0;
        counts.zeros[1] += b == '\0' ? 1 : 0;
        counts.plainPairs += isPlain(a) && isPlain(b) ? 1 : 0;
        counts.lineFeeds += (a == '\n' ? 1 : 0) + (b == '\n' ? 1 : 0);
        counts.lineFeedUnits += (a == '\n' && b == '\0') || (a == '\0' && b == '\n') ? 1 : 0;
    }
    return counts;
}

} // namespace

const char *unmarkedUtf16(std::string_view text)
{
    const Counts counts = countsOf(text);
    const bool isBigEndian = counts.zeros[0] > counts.zeros[1];
    const size_t most = counts.zeros[isBigEndian ? 0 : 1];
    const size_t least = counts.zeros[isBigEndian ? 1 : 0];
    const bool isLatin = most > 0 && most * 8 >= counts.units * 7;
    const bool isOtherScript = most * 20 >= counts.units && counts.plainPairs * 2 <= counts.units &&
                               counts.lineFeeds > 0 &&
                               counts.lineFeedUnits * 8 >= counts.lineFeeds * 7;
    if ((!isLatin && !isOtherScript) || least * 8 > most || !isUtf16(text, isBigEndian)) {
        return nullptr;
    }
    return isBigEndian ? "UTF-16BE" : "UTF-16LE";
}

} // namespace corvanta
