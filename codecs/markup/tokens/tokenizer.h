// codecs/markup/tokens/tokenizer.h
// What the XML and the JSON tokenizer share: the refillable buffer, positions, errors.
//
// The buffer holds UTF-8. Texts are not copied: a token is a place in the buffer, decoded to UTF-16
// when somebody asks. Tokens do not depend on the buffer's size or on how the bytes arrive.
#pragma once
#include "base/byte_source.h"
#include "codecs/markup/text/char_source.h"
#include "codecs/markup/text/line_counter.h"
#include "codecs/markup/text/raw_text.h"
#include "codecs/markup/text/scan.h"

#include <cstddef>
#include <memory>
#include <string>

namespace corvanta::markup {

enum class Token : quint8 {
    None = 0,
    Start = 1, ///< XML start tag; JSON member or array item
    End = 2,   ///< the end of what Start began
    Text = 3,
    Clear = 4,       ///< CDATA, DOCTYPE, comment, script ...
    Instruction = 5, ///< <?...?>
    EndOfData = 6,
    Error = 8,
    DocumentStart = 9, ///< only with setDocumentMarks(): a value at the top of a JSON stream begins
    DocumentEnd = 10,  ///< only with setDocumentMarks(): it is complete
};

enum class ClearKind : quint8 { CData, DocType, Comment, Pre, Script, CapitalScript, Other };

/// A piece of the buffer, counted from the start of the current token, or the number of a text
/// outside. One word, so that it is copied in one go: tokens are made by the ten million.
class TextSpan
{
public:
    TextSpan() = default;
    TextSpan(quint32 offset, quint32 size, TextForm form)
        : m_bits(quint64(offset) << kOffsetShift | quint64(size) << kSizeShift | quint64(form))
    {
    }
    static TextSpan external(quint32 number) { return {number, 0, TextForm::External}; }

    quint32 offset() const { return static_cast<quint32>(m_bits >> kOffsetShift); }
    quint32 size() const { return static_cast<quint32>(m_bits) >> kSizeShift; }
    TextForm form() const { return static_cast<TextForm>(m_bits & kFormMask); }
    bool isExternal() const { return form() == TextForm::External; }

    /// The same, counted from a place `distance` bytes before.
    TextSpan movedBy(size_t distance) const
    {
        TextSpan moved;
        moved.m_bits = m_bits + (isExternal() ? 0 : quint64(distance) << kOffsetShift);
        return moved;
    }
    /// Without the first `n` bytes.
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

    /// Characters that the buffer holds at first, at least 1024; it grows to hold a longer token.
    /// False, and nothing changed, once tokens were returned.
    bool setBufferSize(qint64 characters);

    /// Go on with another document, as if newly made with the same options; the memory is kept.
    virtual void restart(ByteSource &source);

    /// The first kGuessBytes of the document, or all of a shorter one, before the first token.
    /// Errors: CannotRead.
    MarkupError peek(QByteArrayView *first) { return m_source.peek(first); }

    /// Say how the bytes are encoded instead of guessing, before the first token. Errors are also
    /// those of the first token: CannotConvert for a name that iconv does not know.
    MarkupError setEncoding(CharMode mode, const QByteArray &name, InvalidBytes invalid);

    /// With this on, every Start gets its End before EndOfData: what is still open at the end of
    /// the data is an error (UnmatchedEndTag).
    void setBalanced(bool on) { m_balanced = on; }

    /// Report where the values at the top of a JSON stream begin and end.
    void setDocumentMarks(bool on) { m_documentMarks = on; }

    /// The next token. After Error always Error, after EndOfData always EndOfData.
    virtual Token nextToken() = 0;

    /// An element with nothing in it but, perhaps, one text.
    struct Leaf
    {
        TextSpan name;
        TextSpan text;
        bool hasText = false;
    };
    /// Take three tokens in one step: where the next element is a leaf, as simply written as most
    /// of them are, fill `leaf` and stand at its End. False, and no token taken, where it is not:
    /// then nextToken() tells what it is.
    virtual bool takeLeaf(Leaf *leaf) = 0;

    /// The kind of the current token.
    Token token() const { return m_token; }

    /// Name or text of the current token, NUL-terminated, decoded; valid until the next call.
    std::u16string_view text();
    std::u16string_view name() { return text(); }
    /// Its length in characters.
    qsizetype length() { return static_cast<qsizetype>(text().size()); }
    /// The same, not yet decoded.
    RawText rawText() const { return resolve(m_text); }
    /// What lies at a place that is counted from the current token's start.
    RawText resolve(TextSpan span) const;

    /// Where the tokenizer stands: lines count from 1, columns from 0.
    qint64 line() const { return position().line(); }
    qint64 column() const { return position().column(); }

    MarkupError errorCode() const { return m_error; }

    /// Elements that are open.
    qint64 depth() const { return m_depth; }

    /// True when bytes were dropped that are no character (InvalidBytes::Discard).
    bool hasDiscarded() const { return m_source.hasDiscarded(); }

    /// Step past one character: 0, or 1 at the end of the data, or 8 (an Error token) when reading
    /// fails.
    int skipCharacter();

    /// Keep everything from the current token on in memory, at one place, until unpin().
    void pin() { m_pin = m_keep; }
    void unpin() { m_pin = kNoPin; }
    /// The current token's start, counted from the pinned place.
    size_t pinnedOffset() const { return m_keep - m_pin; }
    /// Where the pinned bytes are now; moves with every nextToken().
    const char *pinnedBytes() const { return m_data.get() + m_pin; }
    /// The place of the current token's name or text.
    TextSpan textSpan() const { return m_text; }
    /// This tokenizer, when it is one that has attributes; else null.
    virtual const XMLTokenizer *asXml() const { return nullptr; }
    /// A text outside the buffer, by number.
    virtual RawText externalText(quint32 number) const = 0;

    static constexpr qint64 kMinBufferChars = 1024;

protected:
    MarkupTokenizer(ByteSource &source, qint64 bufferChars);

    /// Choose the character mode from the document's first bytes.
    virtual MarkupError detectEncoding(CharSource &source, QByteArrayView first) = 0;

    /// Allocate, detect and fill before the first token; false after a failure.
    bool begin();
    /// Read more behind m_end; false at the end of the data or after a failure. Moves the buffer's
    /// content: all indexes are adjusted, pointers into the buffer are not.
    bool refill();
    /// refill() in the middle of a scan that has reached the end of the buffer at `*at`.
    bool refillAt(const char **at);
    /// At least `n` bytes from `*at` on, or as many as there are.
    void ensure(const char **at, qsizetype n);
    /// What skipSpace() may let go of when it refills.
    enum class Hold : quint8 { Nothing, Token };
    /// The first character at or behind the position that is no blank; 0 at the end of the data.
    char skipSpace(Hold hold)
    {
        const char *at = here();
        if (static_cast<uchar>(*at) <= ' ') {
            at = skipSpaces(at);
            m_pos = static_cast<size_t>(at - m_data.get());
        }
        return *at != 0 ? *at : skipSpaceSlow(hold);
    }

    /// True when `at` is where the data broke off with an error.
    bool isBrokenAt(const char *at) const
    {
        return at == end() && m_ended && m_pendingError != MarkupError::None;
    }
    /// Fail at the position; where the data broke off, its error counts instead of `code`.
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
    /// What takeLeaf() ends with: a leaf from the position to `stop`.
    bool finishLeaf(const Leaf &leaf, const char *stop)
    {
        m_text = leaf.name;
        m_pos = static_cast<size_t>(stop - m_data.get());
        m_token = Token::End;
        return true;
    }
    bool isFinished() const { return m_token == Token::Error || m_token == Token::EndOfData; }
    bool documentMarks() const { return m_documentMarks; }
    bool isBalanced() const { return m_balanced; }

    size_t m_pos = 0;  ///< next character
    size_t m_keep = 0; ///< start of the current token
    TextSpan m_text;
    qint64 m_depth = 0;
    bool m_begun = false;

private:
    static constexpr size_t kNoPin = ~size_t(0);

    char skipSpaceSlow(Hold hold);
    bool isWithinLimits();
    bool allocate(size_t capacity);
    LineCounter position() const;

    CharSource m_source;
    std::unique_ptr<char[]> m_data;
    size_t m_capacity;
    size_t m_end = 0;
    size_t m_pin = kNoPin;
    bool m_ended = false;
    bool m_encodingGiven = false;
    bool m_balanced = false;
    bool m_documentMarks = false;
    Token m_token = Token::None;
    MarkupError m_error = MarkupError::None;
    MarkupError m_pendingError = MarkupError::None; ///< what ended the data, if not its end
    LineCounter m_discarded;                        ///< lines and columns before the buffer
    std::u16string m_decoded;
};

} // namespace corvanta::markup
