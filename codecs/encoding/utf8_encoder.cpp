// iconv converts. It stops at a character that the encoding lacks; the character is skipped, and a
// "?" is converted in its place, because it is more than one byte in some encodings.
#include "codecs/encoding/utf8_encoder.h"

#include <algorithm>
#include <cerrno>

namespace corvanta::encoding {

namespace {

/// The end of the character at `at`: 10xxxxxx continues one.
const char *characterEnd(const char *at, const char *end)
{
    return std::find_if(at + 1, end, [](char c) { return (static_cast<uchar>(c) & 0xC0) != 0x80; });
}

} // namespace

std::optional<Utf8Encoder> Utf8Encoder::open(const QByteArray &encoding)
{
    IconvHandle converter(encoding, "UTF-8");
    return converter.isOpen() ? std::optional(Utf8Encoder(std::move(converter))) : std::nullopt;
}

Utf8Encoder::Utf8Encoder(IconvHandle converter)
    : m_converter(std::move(converter))
    , m_text(size_t(64) * 1024)
{
}

/// Appends the bytes of [*in, end) until a character cannot be converted, which is then the next
/// one.
void Utf8Encoder::convert(const char **in, const char *end)
{
    int error = E2BIG;
    while (error == E2BIG) {
        auto left = static_cast<size_t>(end - *in);
        char *out = m_text.data() + m_used;
        size_t room = m_text.size() - m_used;
        error = m_converter.convert(in, &left, &out, &room);
        m_used = m_text.size() - room;
        if (error == E2BIG) {
            m_text.resize(m_text.size() * 2);
        }
    }
}

QByteArrayView Utf8Encoder::encode(QByteArrayView utf8)
{
    m_used = 0;
    const char *at = utf8.data();
    const char *const end = at + utf8.size();
    while (at != end) {
        const char *const begin = at;
        convert(&at, end);
        if (!m_replaced.any()) {
            m_lines += std::count(begin, at, '\n');
        }
        if (at != end) {
            m_replaced.add([&] { return QStringLiteral("line %1").arg(m_lines + 1); });
            at = characterEnd(at, end);
            const char *mark = "?";
            convert(&mark, mark + 1);
        }
    }
    return {m_text.data(), static_cast<qsizetype>(m_used)};
}

QByteArrayView Utf8Encoder::finish()
{
    char *out = m_text.data();
    size_t room = m_text.size();
    m_converter.finish(&out, &room);
    return {m_text.data(), static_cast<qsizetype>(m_text.size() - room)};
}

} // namespace corvanta::encoding
