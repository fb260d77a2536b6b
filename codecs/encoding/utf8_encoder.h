// Converts UTF-8 to the bytes of another encoding.
//
// A character that the encoding lacks becomes "?". Threads: one at a time per object.
#pragma once
#include "base/occurrences.h"

#include <QByteArray>
#include <QByteArrayView>

#include <memory>
#include <optional>
#include <vector>

namespace corvanta::encoding {

class Utf8Encoder
{
public:
    /// For the encoding with this iconv name; nothing if iconv does not know it.
    static std::optional<Utf8Encoder> open(const QByteArray &encoding);
    Utf8Encoder(Utf8Encoder &&) noexcept;
    Utf8Encoder &operator=(Utf8Encoder &&) noexcept;
    ~Utf8Encoder();

    /// Convert whole characters of well-formed UTF-8. The result is valid until the next call.
    QByteArrayView encode(QByteArrayView utf8);
    /// The bytes that end the text in encodings with states; call it once, after the last encode().
    QByteArrayView finish();

    /// Characters that became "?", with the line of the first one.
    const Occurrences &replaced() const { return m_replaced; }

private:
    struct Converter;

    explicit Utf8Encoder(std::unique_ptr<Converter> converter);
    void convert(const char **in, const char *end);

    std::unique_ptr<Converter> m_converter;
    std::vector<char> m_text;
    size_t m_used = 0; // of m_text
    Occurrences m_replaced;
    qint64 m_lines = 0; // complete ones so far, until the first replacement
};

} // namespace corvanta::encoding
