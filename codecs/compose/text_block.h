// Collects composed text: UTF-16 units in one block of fixed size, encoded when it fills up.
//
// Cells are UTF-16, so escaping and comparing them needs no conversion; a whole block is encoded in
// one pass, which is faster than cell by cell. Sizes are in units unless they say bytes.
#pragma once
#include "base/replaced_characters.h"

#include <QtGlobal>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace corvanta::compose {

enum class Encoding {
    Utf8,
    Utf16Le ///< without a byte-order mark
};

/// `text` as bytes; lone surrogates become U+FFFD in UTF-8 and stay in UTF-16.
/// For texts outside of a block, such as the start of a file.
std::string encode(std::u16string_view text, Encoding encoding);

/// A short text that is copied in whole vectors, without a function call: keys, tags and separators
/// are written with every value. Constant once made, so that threads may share it.
class FixedText
{
public:
    /// The empty text, for which put() writes nothing.
    FixedText() = default;
    explicit FixedText(std::u16string_view text);

    qsizetype size() const { return m_size; }
    /// Valid as long as the object.
    std::u16string_view view() const
    {
        return std::u16string_view(m_units).substr(0, static_cast<size_t>(m_size));
    }
    /// Units that put() may write: size() rounded up to a multiple of 8.
    qsizetype room() const { return static_cast<qsizetype>(m_units.size()); }
    /// Copy the text to `out`, which has room() units of room. Returns the end of the text; the
    /// units after it are overwritten.
    [[gnu::always_inline]] char16_t *put(char16_t *out) const
    {
        for (qsizetype i = 0; i < room(); i += kStep) {
            std::memcpy(out + i, m_units.data() + i, kStep * sizeof(char16_t));
        }
        return out + m_size;
    }

private:
    // Units of a vector of 16 bytes.
    static constexpr qsizetype kStep = 8;
    std::u16string m_units; // filled up to a multiple of kStep
    qsizetype m_size = 0;
};

/// Appending does not report failures, as it happens several times per cell: after the first
/// failure, further text is ignored, and failure() returns its kind. Check it once per row. Call
/// drainAll() at the end. Threads: one at a time; the drain is called on the appending thread.
class TextBlock
{
public:
    /// The whole block: its upper half holds the text, its lower half the bytes made of it.
    static constexpr qsizetype kBlockBytes = 8'000'000;
    /// Size of the longest piece that can be appended, in units. The first half of a surrogate pair
    /// that is still in the block counts too.
    static constexpr qsizetype kMaxUnits = 1'999'999;

    enum class Failure {
        None,
        Drain,   ///< the drain returned false
        TooLarge ///< a piece of more than kMaxUnits
    };

    /// Takes encoded text, in order, `n` bytes at a time (never 0); returns false when it cannot,
    /// and is then not called again. No call ends inside a surrogate pair or a UTF-8 sequence.
    using Drain = std::function<bool(const void *bytes, qint64 n)>;

    /// Allocates the whole block; its memory is touched only as far as it is used.
    TextBlock(Encoding encoding, Drain drain);

    /// Room for `units` units, or null after a failure. Nothing is appended until commit(), and the
    /// room is lost with the next call of any function.
    char16_t *reserve(qsizetype units)
    {
        return m_fill + units <= m_drainAt ? m_units + m_fill : reserveSlow(units);
    }
    /// Append what was written since reserve(), up to `end`, which is at most the end of the room.
    void commit(const char16_t *end) { m_fill = end - m_units; }
    /// Copy a text of up to kMaxUnits units.
    void append(std::u16string_view text);
    /// The same for a text whose copy needs no loop.
    void append(const FixedText &text);

    /// What follows belongs to the row `number`. For the place of replaced characters only.
    void beginRow(qint64 number)
    {
        if (!m_rows.empty() && m_rows.back().start == m_fill) {
            m_rows.back().number = number;
        } else {
            m_rows.push_back({m_fill, number});
        }
    }
    /// Characters of drained text that the file cannot hold, since resetReplaced(): lone surrogates
    /// in UTF-8 and, with replaceUnknown(), in UTF-16, and U+FFFF.
    const ReplacedCharacters &replaced() const { return m_replaced; }
    /// The text from the beginning of its row to the first of them, as far as it was in the block.
    const std::u16string &textBeforeReplaced() const { return m_textBefore; }
    void resetReplaced() { m_replaced = {}; }
    /// Replace U+FFFF, which escapes write in place of what XML does not have, and lone surrogates
    /// also in UTF-16.
    void replaceUnknown() { m_replacesUnknown = true; }

    /// Whether all appended text has been drained.
    bool isEmpty() const { return m_fill == 0; }
    Failure failure() const { return m_failure; }

    /// Drain all text, which may be none. A surrogate pair does not continue in the text that
    /// follows: its first half at the end of the text counts as a lone one.
    void drainAll();

private:
    enum class Rest { Follows, None }; // whether more text may complete a surrogate pair

    /// reserve() when the block is full enough to drain, or after a failure.
    char16_t *reserveSlow(qsizetype units);
    /// Drain all text but a first half of a surrogate pair that more text may complete.
    void drain(Rest rest);
    bool drainUtf8(qsizetype units);
    void replaceUnknown(qsizetype units);
    void countReplaced(qsizetype n, qsizetype first);

    Encoding m_encoding;
    Drain m_drain; // not called after it failed
    std::unique_ptr<char[]> m_block;
    char16_t *m_units;    // of the upper half
    qsizetype m_fill = 0; // units of text that are not drained yet
    qsizetype m_drainAt;  // fill at which reserve() drains; -1 after a failure
    Failure m_failure = Failure::None;

    struct Row
    {
        qsizetype start;
        qint64 number;
    };
    std::vector<Row> m_rows; // of the text in the block
    ReplacedCharacters m_replaced;
    std::u16string m_textBefore;
    bool m_replacesUnknown = false;
};

} // namespace corvanta::compose
