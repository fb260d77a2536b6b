// Splits XML, and malformed HTML, into tokens.
//
// docs/formats/markup.md lists what is accepted beyond XML 1.0 and the codes of what is rejected.
#pragma once
#include "base/limits.h"
#include "base/occurrences.h"
#include "codecs/markup/tokens/name_stack.h"
#include "codecs/markup/tokens/tokenizer.h"

#include <span>
#include <string_view>
#include <vector>

namespace corvanta::markup {

/// Liberties beyond XML 1.0; all off means XML as docs/formats/markup.md describes it.
struct XMLOptions
{
    /// Accept malformed HTML; void elements need no end tag.
    bool html = false;
    /// An unknown entity stays in the text, with its "&" and ";". Also on with `html`.
    bool ignoreUnknownEntities = false;
    /// Names of elements lose everything up to their first colon; those of attributes keep it.
    bool discardNameSpaces = false;
    /// Accept any character in names.
    bool ignoreInvalidCharInTagName = false;
};

/// Threads: one at a time.
class XMLTokenizer : public MarkupTokenizer
{
public:
    /// An attribute of a Start; the value is not decoded.
    struct Attribute
    {
        TextSpan name;
        TextSpan value;
    };

    /// Read from `source`, which must outlive the tokenizer. `bufferChars` as in setBufferSize().
    XMLTokenizer(ByteSource &source, qint64 bufferChars);

    void restart(ByteSource &source) override;

    /// Set the options; allowed between tokens.
    void setOptions(const XMLOptions &options) { m_options = options; }

    /// Set the encoding to use when the guess is "System". Default: windows-1252.
    void setSystemEncoding(const QByteArray &name) { m_systemEncoding = name; }

    /// Tokens are documented in tokenizer.h. With setBalanced(), an end tag that does not match is
    /// an error in XML; in HTML it ends all elements up to its own, or is ignored.
    Token nextToken() override;
    bool takeLeaf(Leaf *leaf) override;

    /// Attributes of the current Start, in document order. Valid until the next token.
    std::span<const Attribute> attributes() const { return m_attributes; }
    /// Name of the i-th attribute, from 0. Valid until the next token.
    RawText attributeName(size_t i) const { return resolve(m_attributes[i].name); }
    /// Value of the i-th attribute; empty for an attribute without a value.
    RawText attributeValue(size_t i) const { return resolve(m_attributes[i].value); }

    /// The kind of the current Clear section.
    ClearKind clearKind() const { return m_clearKind; }

    /// True when there is a space before the current Text. Known only to HtmlTokenizer; otherwise
    /// true.
    bool isAfterSpace() const { return m_isAfterSpace; }
    /// The current Start is a row: number of the group of rows (thead, tbody, tfoot) that it is in.
    /// Known only to HtmlTokenizer; otherwise 0.
    quint32 rowGroup() const { return m_rowGroup; }

    /// Where the construct begins, for example a comment, in which the data ended. Known only to
    /// HtmlTokenizer, which skips it; elsewhere it is an error.
    const std::optional<LineCounter> &unfinished() const { return m_unfinished; }
    /// References of XML documents that stay text, because only a DTD may define their entities.
    const Occurrences &unknownEntities() const { return m_unknownEntities; }

    RawText externalText(quint32 number) const override;
    const XMLTokenizer *asXml() const override { return this; }

protected:
    Result<void, MarkupError> detectEncoding(CharSource &source, QByteArrayView first) override;

    // What HtmlTokenizer uses too.

    /// True where a leaf may begin.
    bool isBetweenTags() const
    {
        return m_begun && !isFinished() && !m_pendingEnd && m_pendingCloses == 0 &&
               static_cast<qint64>(m_names.size()) < limits::kElementDepth;
    }
    /// Complete takeLeaf(): the leaf extends to `stop`. Returns true.
    bool finishElement(Leaf *leaf, const char *nameEnd, const char *text, const char *textEnd,
                       const char *stop)
    {
        m_keep = m_pos;
        leaf->name = span(1, nameEnd, TextForm::Plain);
        leaf->text = span(fromToken(text), textEnd, TextForm::Plain);
        leaf->hasText = text != textEnd;
        if (m_options.discardNameSpaces) {
            cutNameSpace(&leaf->name);
        }
        return finishLeaf(*leaf, stop);
    }
    /// The End of a Start without content.
    Token finishPendingEnd()
    {
        m_pendingEnd = false;
        --m_depth;
        m_text = m_name;
        return finish(Token::End);
    }
    void cutNameSpace(TextSpan *name) const;
    bool pushName(std::string_view name);
    /// Make an Error token; returns false, for functions that return bool.
    bool failed(MarkupError error)
    {
        fail(error);
        return false;
    }
    void moveTo(const char *at) { m_pos = static_cast<size_t>(at - data()); }
    const XMLOptions &options() const { return m_options; }

    /// Attributes of the current Start.
    std::vector<Attribute> m_attributes;
    ClearKind m_clearKind = ClearKind::Other;
    /// The next token is the End of the current Start.
    bool m_pendingEnd = false;
    bool m_isAfterSpace = true;
    quint32 m_rowGroup = 0;
    std::optional<LineCounter> m_unfinished;
    Occurrences m_unknownEntities;
    /// Number of open elements that end next, without an end tag.
    qint64 m_pendingCloses = 0;
    /// Name of the current Start.
    TextSpan m_name;
    /// Names of the open elements.
    NameStack m_names;
    /// The external text: name of the element that ended.
    std::string_view m_closedName;

private:
    // Functions that return bool return false for a failure, after fail() made an Error token.

    // Text, and what may be in it.
    Token step();
    Token readTag();
    Token readText(const char *at);
    bool readEntityAt(const char **at);
    bool isExpectedEnd(const char *at) const;
    // End tags, and the elements that they close.
    Token readEndTag();
    void noteReference(const char *at);
    bool closeEndTag();
    bool lacksName(const char *at) const;
    Token endElement();
    Token readInstruction();
    Token readClear(size_t opener);
    const char *findCloser(const char *at, size_t opener, TextSpan *text);
    // Start tags: `at` is the position in the buffer, which is moved past what was read.
    Token readStartTag();
    bool readName(const char **at, MarkupError error, TextSpan *name);
    /// What nextTagPart() found in a start tag.
    enum class TagPart : quint8 {
        /// The first character of an attribute.
        Attribute,
        /// A character without meaning in HTML mode; it was passed.
        Skipped,
        /// The end of the tag; it was passed.
        End,
        /// An error; fail() made an Error token.
        Failed,
    };
    bool readAttributes();
    TagPart nextTagPart();
    TagPart readSlash();
    bool readAttribute();
    bool readQuoted(char quote, TextSpan *value);
    bool readUnquoted(TextSpan *value);
    // Ends of elements without an end tag of their own.
    Token closeFor(std::string_view name);
    Token pendingClose();
    Token dataEnds();
    /// True when an unknown entity is text.
    bool isLoose() const { return m_options.html || m_options.ignoreUnknownEntities; }

    /// May change between tokens, never inside one.
    XMLOptions m_options;
    QByteArray m_systemEncoding = QByteArrayLiteral("windows-1252");
};

} // namespace corvanta::markup
