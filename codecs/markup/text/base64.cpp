// Four characters of six bits make three bytes, the first character in the highest bits:
//
//     character   0        1        2        3
//     bits        aaaaaa   aabbbb   bbbbcc   cccccc
//     byte        a        b        c
//
// The last group may have two characters (one byte) or three (two bytes), padded with "=".
#include "codecs/markup/text/base64.h"

#include <array>

namespace corvanta::markup {

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr qint8 kIllegal = -1;
constexpr qint8 kSkipped = -2; // spaces and line breaks
constexpr qint8 kPaddingSign = -3;

constexpr std::array<qint8, 128> decodeTable()
{
    std::array<qint8, 128> table{};
    table.fill(kIllegal);
    for (size_t i = 0; i < kAlphabet.size(); ++i) {
        table[static_cast<uchar>(kAlphabet[i])] = static_cast<qint8>(i);
    }
    for (const char blank : {' ', '\t', '\r', '\n'}) {
        table[static_cast<uchar>(blank)] = kSkipped;
    }
    table['='] = kPaddingSign;
    return table;
}

constexpr std::array<qint8, 128> kValues = decodeTable();

/// The six bits of a character, or one of the negative constants.
qint8 valueOf(char16_t c)
{
    return c < kValues.size() ? kValues[c] : kIllegal;
}

/// The warning after text whose last group has `held` of four data characters.
std::optional<MarkupError> warningFor(int held, qsizetype characters)
{
    if (held == 1) {
        return MarkupError::Base64TruncatedWarning;
    }
    return characters % 4 != 0 ? std::optional(MarkupError::Base64LengthWarning) : std::nullopt;
}

} // namespace

QByteArray encodeBase64(QByteArrayView bytes)
{
    return QByteArray::fromRawData(bytes.data(), bytes.size()).toBase64();
}

Result<DecodedBase64, MarkupError> decodeBase64(std::u16string_view text, std::span<char> out)
{
    DecodedBase64 decoded;
    quint32 bits = 0;
    int held = 0; // characters of the open group of four
    qsizetype padding = 0;
    qsizetype characters = 0;
    for (const char16_t c : text) {
        const qint8 value = valueOf(c);
        characters += value == kSkipped ? 0 : 1;
        padding += value == kPaddingSign ? 1 : 0;
        if (value == kSkipped || value == kPaddingSign) {
            continue;
        }
        if (value == kIllegal || padding > 0) { // data must not follow the padding
            return Fault{MarkupError::Base64IllegalCharacter, {}, decoded.size};
        }
        bits = bits << 6 | static_cast<quint32>(value);
        held = held % 4 + 1;
        // The second, third and fourth character of a group each complete a byte.
        if (held > 1 && decoded.size == static_cast<qsizetype>(out.size())) {
            return Fault{MarkupError::Base64BufferTooSmall, {}, decoded.size};
        }
        if (held > 1) {
            out[static_cast<size_t>(decoded.size++)] = static_cast<char>(bits >> (8 - 2 * held));
        }
    }
    decoded.warning = warningFor(held, characters);
    return decoded;
}

} // namespace corvanta::markup
