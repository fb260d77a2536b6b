// Bytes of a declared encoding to UTF-16. UTF-8 is decoded by base/utf.h, an encoding of single
// bytes by a table that iconv fills once, every other one by iconv for each text that is not ASCII.
#include "codecs/stat/text_decoder.h"

#include "base/utf.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>

namespace corvanta::stat {

/// Owns an iconv handle that converts to UTF-16 in machine order.
struct TextDecoder::Converter
{
    explicit Converter(const QByteArray &encoding)
        : handle(iconv_open(Q_BYTE_ORDER == Q_LITTLE_ENDIAN ? "UTF-16LE" : "UTF-16BE",
                            encoding.constData()))
    {
    }
    ~Converter()
    {
        if (isOpen()) {
            iconv_close(handle);
        }
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    // NOLINTNEXTLINE(performance-no-int-to-ptr): the value that iconv_open() returns on failure
    bool isOpen() const { return handle != reinterpret_cast<iconv_t>(-1); }

    /// Convert as much as is valid; advances `in` and `out` and reduces `left`. Returns 0 or an
    /// error number of iconv().
    int convert(const char *&in, size_t &left, char16_t *&out, size_t room) const
    {
        char *bytes = reinterpret_cast<char *>(out);
        size_t roomBytes = room * sizeof(char16_t);
        char *input = const_cast<char *>(in);
        const size_t done = iconv(handle, &input, &left, &bytes, &roomBytes);
        in = input;
        out = reinterpret_cast<char16_t *>(bytes);
        return done == static_cast<size_t>(-1) ? errno : 0;
    }
    void reset() const { iconv(handle, nullptr, nullptr, nullptr, nullptr); }

    iconv_t handle;
};

TextDecoder::TextDecoder(Kind kind)
    : m_kind(kind)
{
}
TextDecoder::TextDecoder(TextDecoder &&) noexcept = default;
TextDecoder &TextDecoder::operator=(TextDecoder &&) noexcept = default;
TextDecoder::~TextDecoder() = default;

Result<TextDecoder, Error> TextDecoder::open(const QString &encoding)
{
    const QString upper = encoding.toUpper();
    if (upper == QLatin1String("UTF-8") || upper == QLatin1String("UTF8")) {
        return TextDecoder(Kind::Utf8);
    }
    auto converter = std::make_unique<Converter>(encoding.toLatin1());
    if (encoding.isEmpty() || !converter->isOpen()) {
        return Fault{Error::UnknownEncoding, encoding};
    }
    TextDecoder decoder(Kind::Table);
    if (!decoder.fillTable(*converter)) {
        decoder.m_kind = Kind::MultiByte;
        decoder.m_converter = std::move(converter);
    }
    return decoder;
}

/// Returns false if some byte is not a character of its own: the encoding has longer ones.
bool TextDecoder::fillTable(const Converter &converter)
{
    m_isAsciiBased = true;
    bool isSingleByte = true;
    for (size_t byte = 0; byte < m_table.size(); ++byte) {
        const char text = static_cast<char>(byte);
        const char *in = &text;
        size_t left = 1;
        std::array<char16_t, 2> units{};
        char16_t *out = units.data();
        converter.reset();
        const int error = converter.convert(in, left, out, units.size());
        // No unit although the byte was read: it switches the state of the encoding.
        isSingleByte = isSingleByte && error != EINVAL && (error != 0 || out == units.data() + 1);
        m_table[byte] = error == 0 ? units[0] : kReplacementCharacter;
        m_isAsciiBased = m_isAsciiBased && (byte >= 0x80 || m_table[byte] == byte);
    }
    converter.reset();
    return isSingleByte;
}

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
    const Decoded result = m_kind == Kind::Utf8
                               ? decodeUtf8(in + ascii, n - ascii, out + ascii, &rest)
                               : decodeMultiByte(in + ascii, n - ascii, out + ascii, &rest);
    *units = ascii + rest;
    return result;
}

QString TextDecoder::decode(QByteArrayView bytes) const
{
    QString text(maxUnits(bytes.size()), Qt::Uninitialized);
    qsizetype units = 0;
    decode(bytes.data(), bytes.size(), reinterpret_cast<char16_t *>(text.data()), &units);
    text.truncate(units);
    return text;
}

Decoded TextDecoder::decodeUtf8(const char *in, qsizetype n, char16_t *out, qsizetype *units) const
{
    Utf8Stop stop = Utf8Stop::End;
    const qsizetype valid = wellFormedUtf8(in, n, &stop);
    // A text that was cut at the width of its column may end inside a character.
    *units = utf8ToUtf16(in, stop == Utf8Stop::Truncated ? valid : n, out);
    switch (stop) {
    case Utf8Stop::End:
        return Decoded::Complete;
    case Utf8Stop::Truncated:
        return Decoded::Cut;
    case Utf8Stop::Invalid:
        break;
    }
    return Decoded::Replaced;
}

Decoded TextDecoder::decodeTable(const char *in, qsizetype n, char16_t *out) const
{
    bool isValid = true;
    for (qsizetype i = 0; i < n; ++i) {
        out[i] = m_table[static_cast<uchar>(in[i])];
        isValid = isValid && out[i] != kReplacementCharacter;
    }
    return isValid ? Decoded::Complete : Decoded::Replaced;
}

Decoded TextDecoder::decodeMultiByte(const char *in, qsizetype n, char16_t *out,
                                     qsizetype *units) const
{
    Decoded result = Decoded::Complete;
    char16_t *at = out;
    char16_t *const end = out + 2 * n;
    size_t left = static_cast<size_t>(n);
    m_converter->reset();
    while (left > 0 && at < end) {
        const int error = m_converter->convert(in, left, at, static_cast<size_t>(end - at));
        if (error == 0) {
            break;
        }
        if (error == EINVAL) {
            result = std::max(result, Decoded::Cut);
            break;
        }
        if (at < end) {
            *at++ = kReplacementCharacter;
        }
        result = Decoded::Replaced;
        ++in;
        --left;
    }
    *units = at - out;
    return result;
}

} // namespace corvanta::stat
