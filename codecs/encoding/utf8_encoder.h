// Converts UTF-8 to the bytes of another encoding.
//
// A character that the encoding lacks becomes "?". Threads: one at a time per object.
#pragma once
#include "base/occurrences.h"
#include "codecs/encoding/iconv_handle.h"

#include <QByteArray>
#include <QByteArrayView>

#include <optional>
#include <vector>

namespace corvanta::encoding {

class Utf8Encoder
{
public:
    /// For the encoding with this iconv name; nothing if iconv does not know it.
    static std::optional<Utf8Encoder> open(const QByteArray &encoding);

    /// Convert whole characters of well-formed UTF-8. The result is valid until the next call.
    QByteArrayView encode(QByteArrayView utf8);
    /// The bytes that end the text in encodings with states; call it once, after the last encode().
    QByteArrayView finish();

    /// Characters that became "?", with the line of the first one.
    const Occurrences &replaced() const { return m_replaced; }

private:
    explicit Utf8Encoder(IconvHandle converter);
    void convert(const char **in, const char *end);

    IconvHandle m_converter;
    std::vector<char> m_text;
    size_t m_used = 0; // of m_text
    Occurrences m_replaced;
    qint64 m_lines = 0; // complete ones so far, until the first replacement
};

} // namespace corvanta::encoding
