// Collects composed text: UTF-16 units in one block of fixed size, encoded when it fills up.
#pragma once
#include <QtGlobal>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace corvanta::compose {

enum class Encoding { Utf8, Utf16Le };

/// `text` as bytes; lone surrogates become U+FFFD in UTF-8 and stay in UTF-16.
std::string encode(std::u16string_view text, Encoding encoding);

/// A short text that is copied in whole vectors, without a function call.
class FixedText
{
public:
    FixedText() = default;
    explicit FixedText(std::u16string_view text);

    qsizetype size() const { return m_size; }
    std::u16string_view view() const
    {
        return std::u16string_view(m_units).substr(0, static_cast<size_t>(m_size));
    }
    /// Units that put() may write.
    qsizetype room() const { return static_cast<qsizetype>(m_units.size()); }
    char16_t *put(char16_t *out) const
    {
        for (qsizetype i = 0; i < room(); i += kStep) {
            std::memcpy(out + i, m_units.data() + i, kStep * sizeof(char16_t));
        }
        return out + m_size;
    }

private:
    static constexpr qsizetype kStep = 8;
    std::u16string m_units; // filled up to a multiple of kStep
    qsizetype m_size = 0;
};

/// Appending does not report failures: after the first one, further text is ignored, and failure()
/// returns its kind. Threads: one at a time.
class TextBlock
{
public:
    /// The whole block: its upper half holds the text, its lower half the bytes made of it.
    static constexpr qsizetype kBlockBytes = 8'000'000;
    /// Size of the longest piece that can be appended, in units.
    static constexpr qsizetype kMaxUnits = 1'999'999;

    enum class Failure { None, Drain, TooLarge };

    /// Takes encoded text, in order; returns false when it cannot.
    using Drain = std::function<bool(const void *bytes, qint64 n)>;

    TextBlock(Encoding encoding, Drain drain);

    /// Room for `units` units, or null after a failure. Nothing is appended until commit().
    char16_t *reserve(qsizetype units)
    {
        return m_fill + units <= m_drainAt ? m_units + m_fill : reserveSlow(units);
    }
    /// Append what was written since reserve(), up to `end`.
    void commit(const char16_t *end) { m_fill = end - m_units; }
    void append(std::u16string_view text);
    void append(const FixedText &text);

    bool isEmpty() const { return m_fill == 0; }
    Failure failure() const { return m_failure; }

    /// Drain all text. A surrogate pair does not continue in the text that follows.
    void drainAll();

private:
    enum class Rest { Follows, None };

    char16_t *reserveSlow(qsizetype units);
    void drain(Rest rest);
    bool drainUtf8(qsizetype units);

    Encoding m_encoding;
    Drain m_drain;
    std::unique_ptr<char[]> m_block;
    char16_t *m_units; // of the upper half
    qsizetype m_fill = 0;
    qsizetype m_drainAt; // fill at which reserve() drains; -1 after a failure
    Failure m_failure = Failure::None;
};

} // namespace corvanta::compose
