// Encodings of three kinds: single-byte encodings become a table of 256 units, UTF-8 is converted
// by base/utf.h, and multi-byte encodings go through iconv.
#include "codecs/encoding/text_decoder.h"

#include "base/utf.h"

#include <algorithm>
#include <cerrno>

namespace corvanta::encoding {

namespace {

/// The bytes 0x80 to 0x9F of Windows code page 1252. All others are equal to Latin-1.
constexpr std::array<char16_t, 32> kWindows1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

/// Both names are common; UTF-8 does not need iconv.
bool isUtf8(const QString &encoding)
{
    const QString upper = encoding.toUpper();
    return upper == QLatin1String("UTF-8") || upper == QLatin1String("UTF8");
}

/// As IconvHandle::convert(), with room for `outBytes` bytes of UTF-16.
int toUnits(const IconvHandle &converter, const char **in, size_t *inLeft, char16_t **out,
            size_t outBytes)
{
    char *target = reinterpret_cast<char *>(*out);
    const int error = converter.convert(in, inLeft, &target, &outBytes);
    *out = reinterpret_cast<char16_t *>(target);
    return error;
}

} // namespace

TextDecoder::TextDecoder(Kind kind)
    : m_kind(kind)
{
    for (size_t i = 0; i < m_table.size(); ++i) {
        m_table[i] = static_cast<char16_t>(i);
    }
}

TextDecoder TextDecoder::windows1252()
{
    TextDecoder decoder(Kind::Table);
    std::copy(kWindows1252.begin(), kWindows1252.end(), decoder.m_table.begin() + 0x80);
    return decoder;
}

TextDecoder TextDecoder::unconverted()
{
    return TextDecoder(Kind::Table);
}

TextDecoder TextDecoder::utf8()
{
    return TextDecoder(Kind::Utf8);
}

TextDecoder TextDecoder::named(const QString &encoding)
{
    auto decoder = ofIconv(encoding);
    return decoder ? *std::move(decoder) : windows1252();
}

std::optional<TextDecoder> TextDecoder::open(const QString &encoding)
{
    if (isUtf8(encoding)) {
        return utf8();
    }
    return ofIconv(encoding);
}

/// The kind of an encoding is known only after every byte has been converted: iconv does not say.
std::optional<TextDecoder> TextDecoder::ofIconv(const QString &encoding)
{
    IconvHandle converter(nativeUtf16(), encoding.toLatin1());
    if (!converter.isOpen()) {
        return std::nullopt;
    }
    TextDecoder decoder(Kind::Table);
    if (!decoder.fillTable(converter)) {
        decoder.m_kind = Kind::MultiByte;
        decoder.m_converter = std::move(converter);
    }
    return decoder;
}

/// Convert every byte separately. Returns false if some bytes need another one, that is, if the
/// encoding is a multi-byte encoding. A byte without a unit switches the state of the encoding.
bool TextDecoder::fillTable(const IconvHandle &converter)
{
    bool isSingleByte = true;
    for (size_t i = 0; i < m_table.size(); ++i) {
        const char byte = static_cast<char>(i);
        const char *in = &byte;
        size_t inLeft = 1;
        std::array<char16_t, 4> units{};
        char16_t *out = units.data();
        const int error = toUnits(converter, &in, &inLeft, &out, sizeof units);
        converter.reset();
        isSingleByte = isSingleByte && error != EINVAL && (error != 0 || out == units.data() + 1);
        m_table[i] = error == 0 ? units[0] : kReplacementCharacter;
        m_isAsciiBased = m_isAsciiBased && (i >= 0x80 || m_table[i] == i);
    }
    return isSingleByte;
}

// ---- Texts whose bytes must not get lost.

qsizetype TextDecoder::decode(const char *in, qsizetype n, char16_t *out) const
{
    if (m_kind == Kind::Utf8) {
        return utf8ToUtf16(in, n, out);
    }
    if (m_kind == Kind::MultiByte) {
        qsizetype units = 0;
        decodeMultiByte(in, n, out, Incomplete::Replaced, &units);
        return units;
    }
    // The conversion of ASCII is vectorized. Look up only the rest in the table.
    for (qsizetype i = m_isAsciiBased ? asciiToUtf16(in, n, out) : 0; i < n; ++i) {
        out[i] = m_table[static_cast<uchar>(in[i])];
    }
    return n;
}

// No encoding gives more than two units per byte.
QString TextDecoder::decode(const QByteArray &bytes) const
{
    QString text(bytes.size() * 2, Qt::Uninitialized);
    text.truncate(
        decode(bytes.constData(), bytes.size(), reinterpret_cast<char16_t *>(text.data())));
    return text;
}

// ---- Texts that may be cut, with what happened.

Decoded TextDecoder::decode(const char *in, qsizetype n, char16_t *out, qsizetype *units) const
{
    const qsizetype ascii = m_isAsciiBased ? asciiToUtf16(in, n, out) : 0;
    *units = n;
    if (ascii == n) {
        return Decoded::Complete;
    }
    if (m_kind == Kind::Table) {
        return decodeTable(in + ascii, n - ascii, out + ascii);
    }
    qsizetype rest = 0;
    const Decoded result =
        m_kind == Kind::Utf8
            ? decodeUtf8(in + ascii, n - ascii, out + ascii, &rest)
            : decodeMultiByte(in + ascii, n - ascii, out + ascii, Incomplete::LeftOut, &rest);
    *units = ascii + rest;
    return result;
}

QString TextDecoder::decodeCut(QByteArrayView bytes) const
{
    QString text(maxUnits(bytes.size()), Qt::Uninitialized);
    qsizetype units = 0;
    decode(bytes.data(), bytes.size(), reinterpret_cast<char16_t *>(text.data()), &units);
    text.truncate(units);
    return text;
}

/// The conversion replaces a character that is cut at the end like invalid bytes, but such a
/// character is to be left out.
Decoded TextDecoder::decodeUtf8(const char *in, qsizetype n, char16_t *out, qsizetype *units)
{
    qsizetype illFormed = 0;
    *units = utf8ToUtf16(in, n, out, &illFormed);
    if (illFormed == 0) {
        return Decoded::Complete;
    }
    Utf8Stop stop = Utf8Stop::End;
    const qsizetype valid = wellFormedUtf8(in, n, &stop);
    if (stop != Utf8Stop::Truncated) {
        return Decoded::Replaced;
    }
    *units -= n - valid; // a unit for each byte of the character
    return Decoded::Cut;
}

/// The table has U+FFFD for the bytes that the encoding does not use.
Decoded TextDecoder::decodeTable(const char *in, qsizetype n, char16_t *out) const
{
    bool isValid = true;
    for (qsizetype i = 0; i < n; ++i) {
        out[i] = m_table[static_cast<uchar>(in[i])];
        isValid = isValid && out[i] != kReplacementCharacter;
    }
    return isValid ? Decoded::Complete : Decoded::Replaced;
}

/// One invalid byte at a time becomes U+FFFD, so that decoding continues with the next character.
/// The state is reset first, because the text before may have ended after a shift sequence.
Decoded TextDecoder::decodeMultiByte(const char *in, qsizetype n, char16_t *out,
                                     Incomplete incomplete, qsizetype *units) const
{
    Decoded result = Decoded::Complete;
    char16_t *at = out;
    char16_t *const end = out + 2 * n;
    auto left = static_cast<size_t>(n);
    m_converter.reset();
    while (left > 0 && at < end) {
        const size_t room = static_cast<size_t>(end - at) * sizeof(char16_t);
        const int error = toUnits(m_converter, &in, &left, &at, room);
        if (error == EINVAL && incomplete == Incomplete::LeftOut) {
            result = std::max(result, Decoded::Cut);
            break;
        }
        if (error != 0 && at < end) { // an invalid byte, or the text ends inside a character
            *at++ = kReplacementCharacter;
            ++in;
            --left;
            result = Decoded::Replaced;
        }
    }
    *units = at - out;
    return result;
}

} // namespace corvanta::encoding
