// Converts texts to the bytes of a SAS file: UTF-8 or an encoding with one byte per character.
#pragma once
#include <QByteArray>
#include <QStringView>

#include <memory>
#include <optional>
#include <vector>

namespace corvanta::sas {

/// Constant after its creation: any thread may use it.
class TextEncoder
{
public:
    static TextEncoder utf8();
    /// The encoding with this iconv name, for example "WINDOWS-1252". Nothing if iconv does not
    /// know it, if it has characters of several bytes (except UTF-8), or if it is not a superset of
    /// ASCII.
    static std::optional<TextEncoder> named(const QByteArray &name);

    /// The most bytes that a text of `units` units becomes.
    static constexpr size_t maxBytes(qsizetype units) { return static_cast<size_t>(units) * 3; }
    /// Convert `n` units to `out`, which has room for maxBytes(n); returns the bytes. A character
    /// that the encoding does not have becomes "?", or U+FFFD in UTF-8; a zero, which would end the
    /// text, becomes a blank. Adds their number to `*replaced`.
    qsizetype encode(const char16_t *in, qsizetype n, char *out, qint64 *replaced) const
    {
        return m_table ? encodeByTable(in, n, out, replaced) : encodeUtf8(in, n, out, replaced);
    }
    /// The same as a byte array, for names and labels.
    QByteArray encode(QStringView text, qint64 *replaced = nullptr) const;
    /// The bytes of the whole characters at the start of `bytes` that fit `width` bytes.
    qsizetype fit(const char *bytes, qsizetype size, qsizetype width) const;
    bool isUtf8() const { return !m_table; }

private:
    using Table = std::vector<char>; // a byte for each UTF-16 unit; 0: not in the encoding

    static qsizetype encodeUtf8(const char16_t *in, qsizetype n, char *out, qint64 *replaced);
    qsizetype encodeByTable(const char16_t *in, qsizetype n, char *out, qint64 *replaced) const;

    std::shared_ptr<const Table> m_table; // null: UTF-8
};

} // namespace corvanta::sas
