// codecs/dbf/text_decoder.h
// Characters of a table in their encoding to UTF-16, without a QString for each.
#pragma once
#include <QString>

#include <array>
#include <memory>

namespace corvanta::dbf {

/// Threads: one at a time.
class TextDecoder
{
public:
    /// Windows code page 1252; bytes without a character become the control character of that
    /// number.
    static TextDecoder windows1252();
    /// Each byte becomes the unit of its number.
    static TextDecoder unconverted();
    static TextDecoder utf8();
    /// An encoding by the name that iconv knows; windows1252() when it knows none such.
    static TextDecoder named(const QString &encoding);

    TextDecoder(TextDecoder &&) noexcept;
    TextDecoder &operator=(TextDecoder &&) noexcept;
    ~TextDecoder();

    /// Whether every byte gives exactly one unit.
    bool isByteForUnit() const { return m_kind == Kind::Table; }

    /// Convert `n` bytes into `out`, which has room for 2 * n units; returns the units written.
    /// What is no text in the encoding becomes U+FFFD.
    qsizetype decode(const char *in, qsizetype n, char16_t *out) const;
    QString decode(const QByteArray &bytes) const;

private:
    enum class Kind { Table, Utf8, MultiByte };
    struct Converter;

    explicit TextDecoder(Kind kind);
    bool fillTable(const Converter &converter);

    Kind m_kind;
    bool m_isAsciiBased = true; // the first 128 entries of m_table are those of ASCII
    std::array<char16_t, 256> m_table{};
    std::unique_ptr<Converter> m_converter; // MultiByte only
};

} // namespace corvanta::dbf
