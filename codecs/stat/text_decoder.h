// Decodes the texts of a statistical data set to UTF-16 and counts what cannot be decoded.
#pragma once
#include "base/result.h"
#include "codecs/stat/error.h"

#include <QByteArray>
#include <QString>

#include <array>
#include <memory>

namespace corvanta::stat {

/// What happened to the text of one decode().
enum class Decoded : quint8 {
    Complete,
    Cut,     ///< an incomplete character at the end was dropped
    Replaced ///< invalid bytes became U+FFFD
};

/// Threads: one thread at a time per object; separate objects are independent.
class TextDecoder
{
public:
    /// A decoder for the encoding with this iconv name. Errors: UnknownEncoding.
    static Result<TextDecoder, Error> open(const QString &encoding);

    TextDecoder(TextDecoder &&) noexcept;
    TextDecoder &operator=(TextDecoder &&) noexcept;
    ~TextDecoder();

    /// The most units that a text of `n` bytes gives.
    qsizetype maxUnits(qsizetype n) const { return m_kind == Kind::MultiByte ? 2 * n : n; }
    /// Convert `n` bytes to `out`, which has room for maxUnits(n) units; sets `*units` to their
    /// number.
    Decoded decode(const char *in, qsizetype n, char16_t *out, qsizetype *units) const;
    /// The same as a QString, for names and labels.
    QString decode(QByteArrayView bytes) const;

private:
    enum class Kind : quint8 { Utf8, Table, MultiByte };
    struct Converter;

    explicit TextDecoder(Kind kind);
    bool fillTable(const Converter &converter);
    Decoded decodeUtf8(const char *in, qsizetype n, char16_t *out, qsizetype *units) const;
    Decoded decodeTable(const char *in, qsizetype n, char16_t *out) const;
    Decoded decodeMultiByte(const char *in, qsizetype n, char16_t *out, qsizetype *units) const;

    Kind m_kind;
    bool m_isAsciiBased = true;             // ASCII bytes are themselves
    std::array<char16_t, 256> m_table{};    // Table only; U+FFFD for bytes without a character
    std::unique_ptr<Converter> m_converter; // MultiByte only
};

} // namespace corvanta::stat
