// Decodes the texts of tables and legacy workbooks to UTF-16, without creating a QString for each.
//
// Such a file has one encoding for all texts and names, which its header may name only roughly: the
// caller chooses it.
#pragma once
#include <QString>

#include <array>
#include <memory>

namespace corvanta::encoding {

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

    TextDecoder(TextDecoder &&) noexcept;
    TextDecoder &operator=(TextDecoder &&) noexcept;
    ~TextDecoder();

    /// Whether every byte gives exactly one unit, so that a text can be decoded directly into a
    /// cell of known size.
    bool isByteForUnit() const { return m_kind == Kind::Table; }

    /// Convert `n` bytes to `out`, which has room for 2 * n units. Returns the number of units.
    /// Invalid bytes become U+FFFD.
    qsizetype decode(const char *in, qsizetype n, char16_t *out) const;
    /// The same as a QString, for names and other texts that are decoded once per table.
    QString decode(const QByteArray &bytes) const;

private:
    enum class Kind { Table, Utf8, MultiByte };
    struct Converter;

    explicit TextDecoder(Kind kind);
    bool fillTable(const Converter &converter);
    qsizetype decodeMultiByte(const char *in, qsizetype n, char16_t *out) const;

    // Table: m_table has a unit for each byte. Utf8: base/utf.h. MultiByte: m_converter.
    Kind m_kind;
    bool m_isAsciiBased = true; // the first 128 entries of m_table are ASCII
    std::array<char16_t, 256> m_table{};
    std::unique_ptr<Converter> m_converter; // MultiByte only
};

} // namespace corvanta::encoding
