// A key is its columns one after the other:
//
//   0xFF                   a missing cell
//   0x00, value            any other cell; all bits of the value are inverted in a descending
//   column
//
//   number   8 bytes, big-endian: the bits of the double, inverted if it is negative, else with the
//            sign bit set; from 2^53 on 8 more bytes, big-endian: what an integer in a text is
//            more than the double, with the sign bit inverted
//   moment   0x01; 4 bytes, big-endian: the day, with the sign bit inverted; 8 bytes: nanoseconds
//   word     0x02, text with small letters
//   text     UTF-8 (lone surrogates in the three bytes of their code point), 0x00 as 00 01; the end
//            is 00 00
#include "io/rows/row_key.h"

#include "base/number.h"
#include "base/text/number_value.h"
#include "base/utf.h"

#include <QChar>

#include <cmath>
#include <limits>

namespace corvanta::rows {

namespace {

constexpr char kMissing = '\xFF';
constexpr char kPresent = '\0';
constexpr char kMoment = '\1';
constexpr char kWord = '\2';
constexpr qsizetype kNumberBytes = 8;

constexpr quint64 kSign = quint64(1) << 63;

/// All NaN values become one, so that they are equal.
char *putNumber(double value, qint64 rest, char *out)
{
    value = std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value;
    const auto bits = std::bit_cast<quint64>(value + 0.0); // -0 becomes 0
    storeBE(quint64((bits & kSign) != 0 ? ~bits : bits | kSign), out);
    out += kNumberBytes;
    if (std::abs(value) < kInexactFrom) {
        return out;
    }
    storeBE(quint64(rest) ^ kSign, out);
    return out + kNumberBytes;
}

/// The code point at `i`, which moves to its last unit.
char32_t codePointAt(std::u16string_view text, size_t &i)
{
    const char16_t unit = text[i];
    const bool isPair =
        QChar::isHighSurrogate(unit) && i + 1 < text.size() && QChar::isLowSurrogate(text[i + 1]);
    return isPair ? QChar::surrogateToUcs4(unit, text[++i]) : char32_t(unit);
}

/// The end mark is below every character, so that a text comes before its continuations. In a word
/// no letter case counts.
char *putText(std::u16string_view text, bool isWord, char *out)
{
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != 0) {
            const char32_t c = codePointAt(text, i);
            out = putUtf8(isWord && c < 0x80 ? foldedUnit(static_cast<char16_t>(c)) : c, out);
            continue;
        }
        *out++ = '\0';
        *out++ = '\1';
    }
    *out++ = '\0';
    *out++ = '\0';
    return out;
}

/// The order of what columns of dates, times and booleans have. Other words come after moments.
char *putWord(std::u16string_view text, char *out)
{
    const auto moment = parseMoment(text);
    *out++ = moment ? kMoment : kWord;
    if (!moment) {
        return putText(text, true, out);
    }
    constexpr quint32 kSignOfDay = quint32(1) << 31;
    storeBE(static_cast<quint32>(moment->day) ^ kSignOfDay, out);
    out += sizeof(quint32);
    storeBE(static_cast<quint64>(moment->nanoseconds), out);
    return out + sizeof(quint64);
}

} // namespace

qsizetype KeyEncoder::bytesAtMost(const uchar *const *cells) const
{
    qsizetype bytes = 0;
    for (const KeyColumn &column : m_columns) {
        const bool isText = column.type == cell::Type::Text;
        bytes += 1 + 2 * kNumberBytes +
                 (isText ? cell::readText(cells[column.column]).size() * kUtf8BytesPerUnit : 0);
    }
    return bytes;
}

char *KeyEncoder::put(const uchar *const *cells, char *out)
{
    m_hasMissing = false;
    for (const KeyColumn &column : m_columns) {
        out = putColumn(column, cells[column.column], out);
        if (out == nullptr) {
            m_failedColumn = column.column;
            return nullptr;
        }
    }
    return out;
}

char *KeyEncoder::putColumn(const KeyColumn &column, const uchar *cell, char *out)
{
    *out = kPresent;
    char *const end = putValue(column, cell, out + 1);
    if (end == nullptr) {
        return nullptr;
    }
    if (end == out + 1) {
        *out = kMissing;
        m_hasMissing = true;
        return end;
    }
    for (char *at = out + 1; !column.ascending && at < end; ++at) {
        *at = static_cast<char>(~*at);
    }
    return end;
}

/// Returns `out` for a missing cell.
char *KeyEncoder::putValue(const KeyColumn &column, const uchar *cell, char *out)
{
    if (column.type == cell::Type::Key) {
        const auto key = loadNative<quint32>(cell);
        return cell::isMissingKey(key) ? out : putNumber(key, 0, out);
    }
    if (column.type == cell::Type::Double) {
        const auto value = loadNative<double>(cell);
        return cell::isMissingDouble(value) ? out : putNumber(value, 0, out);
    }
    const cell::Text text = cell::readText(cell);
    if (text.isMissing()) {
        return out;
    }
    if (column.order == TextOrder::CodePoints) {
        return putText(text.view(), false, out);
    }
    if (column.order == TextOrder::Words) {
        return putWord(text.view(), out);
    }
    double value = 0;
    return parseLocalDouble(text.view(), m_decimalPoint, &value)
               ? putNumber(value, integerRest(text.view(), value), out)
               : nullptr;
}

} // namespace corvanta::rows
