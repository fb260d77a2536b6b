// A single-byte encoding is a table from units to bytes, made once with iconv. Characters outside
// the Basic Multilingual Plane are in none of these encodings.
#include "codecs/sas/text_encoder.h"

#include "base/utf.h"
#include "codecs/encoding/iconv_handle.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace corvanta::sas {

namespace {

constexpr size_t kUnits = 65536;

/// The unit of one byte in the encoding of `converter`; 0 for a byte without a character.
/// `*isSingleByte` becomes false if the byte begins a longer character.
char16_t unitOfByte(const encoding::IconvHandle &converter, char byte, bool *isSingleByte)
{
    const char *in = &byte;
    size_t inLeft = 1;
    char16_t unit[2] = {};
    char *out = reinterpret_cast<char *>(unit);
    size_t room = sizeof unit;
    converter.reset();
    const int error = converter.convert(&in, &inLeft, &out, &room);
    if (error == EINVAL || room == 0) {
        *isSingleByte = false;
    }
    return inLeft == 0 ? unit[0] : u'\0';
}

/// Characters of a text that UTF-8 cannot hold.
qint64 loneSurrogates(const char16_t *in, qsizetype n)
{
    qint64 count = 0;
    for (qsizetype i = 0; i < n; ++i) {
        if (!QChar::isSurrogate(in[i])) {
            continue;
        }
        const bool isPair =
            QChar::isHighSurrogate(in[i]) && i + 1 < n && QChar::isLowSurrogate(in[i + 1]);
        i += isPair ? 1 : 0;
        count += isPair ? 0 : 1;
    }
    return count;
}

bool isNameOfUtf8(QByteArray name)
{
    name = name.trimmed().toUpper();
    return name == "UTF-8" || name == "UTF8";
}

} // namespace

TextEncoder TextEncoder::utf8()
{
    return {};
}

std::optional<TextEncoder> TextEncoder::named(const QByteArray &name)
{
    if (isNameOfUtf8(name)) {
        return utf8();
    }
    const encoding::IconvHandle converter(encoding::nativeUtf16(), name);
    if (!converter.isOpen()) {
        return std::nullopt;
    }
    auto table = std::make_shared<Table>(kUnits);
    bool isUsable = true;
    for (int byte = 1; byte < 256; ++byte) {
        const char16_t unit = unitOfByte(converter, static_cast<char>(byte), &isUsable);
        // Below 0x80 the encoding must be ASCII: headers and blanks of the file are.
        isUsable = isUsable && (byte >= 0x80 || unit == byte);
        (*table)[unit] = unit != 0 ? static_cast<char>(byte) : '\0';
    }
    if (!isUsable) {
        return std::nullopt;
    }
    TextEncoder encoder;
    encoder.m_table = std::move(table);
    return encoder;
}

qsizetype TextEncoder::encodeUtf8(const char16_t *in, qsizetype n, char *out, qint64 *replaced)
{
    const qsizetype size = utf16ToUtf8(in, n, out);
    if (std::memchr(out, 0, static_cast<size_t>(size)) != nullptr) {
        *replaced += std::count(out, out + size, '\0');
        std::replace(out, out + size, '\0', ' ');
    }
    if (size != n) { // not only ASCII
        *replaced += loneSurrogates(in, n);
    }
    return size;
}

qsizetype TextEncoder::encodeByTable(const char16_t *in, qsizetype n, char *out,
                                     qint64 *replaced) const
{
    char *const begin = out;
    for (qsizetype i = 0; i < n; ++i) {
        char byte = (*m_table)[in[i]];
        if (byte == 0) {
            ++*replaced;
            byte = in[i] == 0 ? ' ' : '?';
            // One "?" for the two units of a character.
            const bool isPair =
                QChar::isHighSurrogate(in[i]) && i + 1 < n && QChar::isLowSurrogate(in[i + 1]);
            i += isPair ? 1 : 0;
        }
        *out++ = byte;
    }
    return out - begin;
}

QByteArray TextEncoder::encode(QStringView text, qint64 *replaced) const
{
    QByteArray bytes(static_cast<qsizetype>(maxBytes(text.size())), Qt::Uninitialized);
    qint64 count = 0;
    bytes.resize(encode(text.utf16(), text.size(), bytes.data(), &count));
    if (replaced != nullptr) {
        *replaced += count;
    }
    return bytes;
}

qsizetype TextEncoder::fit(const char *bytes, qsizetype size, qsizetype width) const
{
    if (size <= width) {
        return size;
    }
    // 10xxxxxx continues a character of UTF-8.
    while (isUtf8() && width > 0 && (static_cast<uchar>(bytes[width]) & 0xC0) == 0x80) {
        --width;
    }
    return width;
}

} // namespace corvanta::sas
