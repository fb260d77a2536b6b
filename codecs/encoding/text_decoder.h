// Decodes the texts of tables, data sets and legacy workbooks to UTF-16, without creating a QString
// for each.
//
// Such a file has one encoding for all texts and names, which its header may name only roughly: the
// caller chooses it.
#pragma once
#include "codecs/encoding/iconv_handle.h"

#include <QString>

#include <array>
#include <optional>

namespace corvanta::encoding {

/// What happened to the text of one decode().
enum class Decoded : quint8 {
    Complete,
    Cut,     ///< an incomplete character at the end was left out
    Replaced ///< invalid bytes became U+FFFD
};

/// Threads: one thread at a time per object; separate objects are independent.
class TextDecoder
{
public:
    /// Windows code page 1252. Bytes without a character become the control character with the same
    /// number.
    static TextDecoder windows1252();
    /// Each byte becomes the unit with the same number.
    static TextDecoder unconverted();
    /// Invalid bytes become U+FFFD.
    static TextDecoder utf8();
    /// The encoding with this iconv name; windows1252() if iconv does not know it.
    static TextDecoder named(const QString &encoding);
    /// The encoding with this iconv name; nothing if iconv does not know it.
    static std::optional<TextDecoder> open(const QString &encoding);

    /// Whether every byte gives exactly one unit, so that a text can be decoded directly into a
    /// cell of known size.
    bool isByteForUnit() const { return m_kind == Kind::Table; }

    /// Convert `n` bytes to `out`, which has room for 2 * n units. Returns the number of units.
    /// Invalid bytes become U+FFFD.
    qsizetype decode(const char *in, qsizetype n, char16_t *out) const;
    /// The same as a QString, for names and other texts that are decoded once per table.
    QString decode(const QByteArray &bytes) const;

    /// The most units that a text of `n` bytes gives.
    qsizetype maxUnits(qsizetype n) const { return m_kind == Kind::MultiByte ? 2 * n : n; }
    /// Convert `n` bytes to `out`, which has room for maxUnits(n) units, and set `*units` to their
    /// number. A text that was cut at the width of its column may end inside a character, which is
    /// left out.
    Decoded decode(const char *in, qsizetype n, char16_t *out, qsizetype *units) const;
    /// The same as a QString, for names and labels.
    QString decodeCut(QByteArrayView bytes) const;

private:
    enum class Kind { Table, Utf8, MultiByte };

    explicit TextDecoder(Kind kind);
    static std::optional<TextDecoder> ofIconv(const QString &encoding);
    bool fillTable(const IconvHandle &converter);
    Decoded decodeTable(const char *in, qsizetype n, char16_t *out) const;
    static Decoded decodeUtf8(const char *in, qsizetype n, char16_t *out, qsizetype *units);
    enum class Incomplete { LeftOut, Replaced };
    Decoded decodeMultiByte(const char *in, qsizetype n, char16_t *out, Incomplete incomplete,
                            qsizetype *units) const;

    // Table: m_table has a unit for each byte. Utf8: base/utf.h. MultiByte: m_converter.
    Kind m_kind;
    bool m_isAsciiBased = true; // ASCII bytes are themselves
    std::array<char16_t, 256> m_table{};
    IconvHandle m_converter; // MultiByte only
};

} // namespace corvanta::encoding
