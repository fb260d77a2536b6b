// The base of the XML and the JSON tokenizer: the refillable buffer, positions and errors.
//
// The buffer holds UTF-8. Texts are not copied: a token refers to a range of the buffer, which is
// decoded to UTF-16 on demand. Tokens do not depend on the size of the buffer or of the reads.
//
// Functions that run once per document return a Result. Functions that run once per token return
// the token kind, because a Result would cost more than the token itself: after Token::Error,
// errorCode() says what failed, and line() and column() say where.
#pragma once
#include "base/byte_source.h"
#include "codecs/markup/text/char_source.h"
#include "codecs/markup/text/line_counter.h"
#include "codecs/markup/text/raw_text.h"
#include "codecs/markup/text/scan.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace corvanta::markup {

/// Kinds of tokens. The numbers are fixed.
enum class Token : quint8 {
    None = 0,
    /// XML start tag; JSON member or array item.
    Start = 1,
    /// The end of what Start began.
    End = 2,
    Text = 3,
    /// CDATA, DOCTYPE, comment, script and other sections without markup.
    Clear = 4,
    /// <?...?>.
    Instruction = 5,
    EndOfData = 6,
    Error = 8,
    /// Only with setDocumentMarks(): a top-level JSON value begins.
    DocumentStart = 9,
    /// Only with setDocumentMarks(): that value is complete.
    DocumentEnd = 10,
};

/// Kinds of Clear sections, by how they are written.
enum class ClearKind : quint8 { CData, DocType, Comment, Pre, Script, CapitalScript, Other };

/// A range of the buffer, relative to the start of the current token, or the number of a text
/// outside the buffer. One machine word, because tens of millions of them are copied.
class TextSpan
{
public:
    TextSpan() = default;
    TextSpan(quint32 offset, quint32 size, TextForm form)
        : m_bits(quint64(offset) << kOffsetShift | quint64(size) << kSizeShift | quint64(form))
    {
    }
    static TextSpan external(quint32 number) { return {number, 0, TextForm::External}; }

    /// Bytes from the start of the current token, or the number of the text.
    quint32 offset() const { return static_cast<quint32>(m_bits >> kOffsetShift); }
    quint32 size() const { return static_cast<quint32>(m_bits) >> kSizeShift; }
    /// How the text is decoded.
    TextForm form() const { return static_cast<TextForm>(m_bits & kFormMask); }
    bool isExternal() const { return form() == TextForm::External; }

    /// The same range, relative to a place `distance` bytes earlier.
    TextSpan movedBy(size_t distance) const
    {
        TextSpan moved;
        moved.m_bits = m_bits + (isExternal() ? 0 : quint64(distance) << kOffsetShift);
        return moved;
    }
    /// The range without its first `n` bytes.
    TextSpan without(quint32 n) const { return {offset() + n, size() - n, form()}; }

private:
    static constexpr int kOffsetShift = 32;
    static constexpr int kSizeShift = 3; // leaves 29 bits: twice limits::kTokenChars
    static constexpr quint64 kFormMask = 7;
    quint64 m_bits = 0;
};

class XMLTokenizer;

/// Threads: one at a time. The source must outlive the tokenizer.
class MarkupTokenizer
{
public:
    MarkupTokenizer(const MarkupTokenizer &) = delete;
    MarkupTokenizer &operator=(const MarkupTokenizer &) = delete;
    virtual ~MarkupTokenizer();

    /// Set the initial size of the buffer, at least kMinBufferChars; it grows to hold a longer
    /// token. Returns false, and changes nothing, once tokens were returned.
    bool setBufferSize(qint64 characters);

    /// Start another document, as a new tokenizer with the same options; keeps the memory.
    virtual void restart(ByteSource &source);

    /// The first kGuessBytes of the document, or all of a shorter one. Call before the first token.
    /// Errors: CannotRead.
    Result<QByteArrayView, MarkupError> peek() { return m_source.peek(); }

    /// Set how the bytes are encoded instead of guessing it. Call before the first token. Errors,
    /// which the first token reports too: CannotConvert for a name that iconv does not know;
    /// CannotRead.
    Result<void, MarkupError> setEncoding(CharMode mode, const QByteArray &name,
                                          InvalidBytes invalid);

    /// When on, every Start gets its End before EndOfData: an element that is still open at the end
    /// of the data is an error (UnmatchedEndTag).
    void setBalanced(bool on) { m_balanced = on; }

    /// When on, report where top-level values of a JSON stream begin and end.
    void setDocumentMarks(bool on) { m_documentMarks = on; }

    /// Read the next token. After Error it is always Error, after EndOfData always EndOfData.
    virtual Token nextToken() = 0;

    /// An element that holds at most one text.
    struct Leaf
    {
        TextSpan name;
        TextSpan text;
        bool hasText = false;
    };
    /// Read a leaf (Start, Text and End) in one step, when the next element is one in its common
    /// notation: fill `leaf` and make its End the current token. Otherwise returns false and reads
    /// at most what is not a token, such as the brace of an object; nextToken() then continues.
    virtual bool takeLeaf(Leaf *leaf) = 0;

    /// The kind of the current token.
    Token token() const { return m_token; }

    /// Name or text of the current token, NUL-terminated, decoded. Valid until the next call.
    std::u16string_view text();
    std::u16string_view name() { return text(); }
    /// Length of text() in UTF-16 units.
    qsizetype length() { return static_cast<qsizetype>(text().size()); }
    /// Name or text of the current token, not decoded.
    RawText rawText() const { return resolve(m_text); }
    /// The text at `span`, which is relative to the start of the current token.
    RawText resolve(TextSpan span) const
    {
        return span.isExternal()
                   ? externalText(span.offset())
                   : RawText{m_data.get() + m_keep + span.offset(), span.size(), span.form()};
    }

    /// The position after the current token: lines count from 1, columns from 0 in UTF-16 units.
    qint64 line() const { return position().line(); }
    qint64 column() const { return position().column(); }
    LineCounter position() const { return positionAt(m_pos); }
    /// The position where the current token begins.
    LineCounter tokenStart() const { return positionAt(m_keep); }
    /// The position of a range that is relative to it.
    LineCounter positionOf(TextSpan span) const { return positionAt(m_keep + span.offset()); }
    /// The position of the byte `offset` after the pinned place.
    LineCounter positionInPinned(size_t offset) const { return positionAt(m_pin + offset); }

    /// Why the last token is Error; None before that.
    MarkupError errorCode() const { return m_error; }

    /// After EndOfData or Error: true when a NUL in the data ended it.
    bool isEndedByNul() const
    {
        const bool isAtNul = here() != end() && *here() == 0;
        return isAtNul && (m_token == Token::EndOfData || m_token == Token::Error);
    }
    /// After isEndedByNul(): read and discard everything after the NUL, up to the end of the source
    /// or its failure. Returns the number of bytes, as UTF-8; 0 if all are NULs and spaces.
    qint64 discardRest();

    /// Number of open elements.
    qint64 depth() const { return m_depth; }

    /// True when invalid bytes were dropped (InvalidBytes::Discard).
    bool hasDiscarded() const { return m_source.hasDiscarded(); }

    /// Skip one character. Returns 0, or 1 at the end of the data, or 8 (and an Error token) when
    /// reading fails.
    int skipCharacter();

    /// Keep the data in memory, contiguous, starting at the current token, until unpin().
    void pin() { m_pin = m_keep; }
    void unpin() { m_pin = kNoPin; }
    bool isPinned() const { return m_pin != kNoPin; }
    /// Bytes from the pinned place to the start of the current token.
    size_t pinnedOffset() const { return m_keep - m_pin; }
    /// The address of the pinned bytes; every nextToken() may change it.
    const char *pinnedBytes() const { return m_data.get() + m_pin; }
    /// The range of the current token's name or text.
    TextSpan textSpan() const { return m_text; }
    /// This tokenizer if it reads XML, otherwise null.
    virtual const XMLTokenizer *asXml() const { return nullptr; }
    /// The text outside the buffer with this number.
    virtual RawText externalText(quint32 number) const = 0;

    static constexpr qint64 kMinBufferChars = 1024;

protected:
    MarkupTokenizer(ByteSource &source, qint64 bufferChars);

    /// Choose the character mode from the first bytes of the document.
    virtual Result<void, MarkupError> detectEncoding(CharSource &source, QByteArrayView first) = 0;

    /// Allocate the buffer, detect the encoding and fill the buffer before the first token. Returns
    /// false, with an Error token, after a failure.
    bool begin();
    /// For nextToken(): call `step` until it returns another token than None. After EndOfData and
    /// Error, their token again.
    template <class Step> Token firstToken(Step &&step)
    {
        if (isFinished() || (!m_begun && !begin())) {
            return token();
        }
        Token token = Token::None;
        while (token == Token::None) {
            token = step();
        }
        return token;
    }
    /// Append data at m_end; returns false at the end of the data and after a failure. Moves the
    /// content of the buffer: adjusts all indexes, but not pointers into the buffer.
    bool refill();
    /// Call refill() during a scan that reached the end of the buffer at `*at`; adjusts `*at`.
    bool refillAt(const char **at);
    /// Refill until `n` bytes follow `*at`, or the data ends.
    void ensure(const char **at, qsizetype n);
    /// What skipSpace() keeps in the buffer when it refills.
    enum class Hold : quint8 { Nothing, Token };
    /// Skip spaces; returns the next character, 0 at the end of the data.
    char skipSpace(Hold hold)
    {
        const char *const at = skipSpaces(here());
        m_pos = static_cast<size_t>(at - m_data.get());
        return *at != 0 ? *at : skipSpaceSlow(hold);
    }

    /// True when `at` is where a failure ended the data.
    bool isBrokenAt(const char *at) const { return at == end() && m_ended && m_pendingError; }
    /// Set the error and return an Error token. Where a failure ended the data, its error replaces
    /// `code`.
    Token fail(MarkupError code);
    Token endOfData();
    Token finish(Token token)
    {
        m_token = token;
        return token;
    }
    const char *data() const { return m_data.get(); }
    const char *end() const { return m_data.get() + m_end; }
    const char *here() const { return m_data.get() + m_pos; }
    TextSpan span(quint32 offset, const char *stop, TextForm form) const
    {
        return {offset, fromToken(stop) - offset, form};
    }
    quint32 fromToken(const char *at) const
    {
        return static_cast<quint32>(at - m_data.get() - static_cast<ptrdiff_t>(m_keep));
    }
    /// Complete takeLeaf(): the leaf extends from the position to `stop`. Returns true.
    bool finishLeaf(const Leaf &leaf, const char *stop)
    {
        m_text = leaf.name;
        m_pos = static_cast<size_t>(stop - m_data.get());
        m_token = Token::End;
        return true;
    }
    /// Remember the position as the place where a document begins.
    void markDocument() { m_mark = m_pos; }
    /// After an error: true when there is a line break between the mark and the position.
    bool hasBreakSinceMark() const;
    /// True when the marked byte is still in the buffer.
    bool isMarkKept() const { return m_mark != kNoPin; }
    size_t mark() const { return m_mark; }
    /// After an error of the data, but not of the source: become able to read further tokens. The
    /// position stays; bytes that are not a character of the encoding are dropped. Returns false
    /// when reading cannot continue.
    bool recover();
    /// refill() for data that is skipped: drops bytes that are not a character of the encoding.
    bool refillSkipped();
    bool isFinished() const { return m_token == Token::Error || m_token == Token::EndOfData; }
    bool documentMarks() const { return m_documentMarks; }
    bool isBalanced() const { return m_balanced; }

    // Indexes are offsets in the buffer; tokenizer.cpp draws it.

    /// Next character.
    size_t m_pos = 0;
    /// Start of the current token.
    size_t m_keep = 0;
    TextSpan m_text;
    qint64 m_depth = 0;
    bool m_begun = false;

private:
    static constexpr size_t kNoPin = ~size_t(0);

    char skipSpaceSlow(Hold hold);
    Result<void, MarkupError> findEncoding();
    void discardRead();
    bool isWithinLimits();
    bool allocate(size_t capacity);
    LineCounter positionAt(size_t index) const;

    CharSource m_source;
    std::unique_ptr<char[]> m_data;
    size_t m_capacity;
    size_t m_end = 0;
    size_t m_pin = kNoPin;
    /// Where the document begins; kNoPin when that byte was discarded.
    size_t m_mark = 0;
    /// Line of the mark, once its byte was discarded.
    qint64 m_markLine = 0;
    bool m_ended = false;
    bool m_encodingGiven = false;
    bool m_balanced = false;
    bool m_documentMarks = false;
    Token m_token = Token::None;
    MarkupError m_error = MarkupError::None;
    /// The failure that ended the data.
    std::optional<MarkupError> m_pendingError;
    /// Position of the start of the buffer.
    LineCounter m_discarded;
    std::u16string m_decoded;
};

} // namespace corvanta::markup
