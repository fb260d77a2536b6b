// Splits XML, and malformed HTML, into tokens.
//
// docs/formats/markup.md lists what is accepted beyond XML 1.0 and the codes of what is rejected.
#pragma once
#include "codecs/markup/tokens/name_stack.h"
#include "codecs/markup/tokens/tokenizer.h"

#include <span>
#include <string_view>
#include <vector>

namespace corvanta::markup {

struct XMLOptions
{
    bool html = false;                  ///< accept malformed HTML; void elements need no end tag
    bool ignoreUnknownEntities = false; ///< an unknown entity stays in the text
    bool discardNameSpaces = false;     ///< names lose everything up to their first colon
    bool ignoreInvalidCharInTagName = false; ///< accept any character in names
};

/// Threads: one at a time.
class XMLTokenizer final : public MarkupTokenizer
{
public:
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

    Token nextToken() override;
    bool takeLeaf(Leaf *leaf) override;

    /// Attributes of the current Start, in document order. Valid until the next token.
    std::span<const Attribute> attributes() const { return m_attributes; }
    RawText attributeName(size_t i) const { return resolve(m_attributes[i].name); }
    RawText attributeValue(size_t i) const { return resolve(m_attributes[i].value); }

    /// The kind of the current Clear section.
    ClearKind clearKind() const { return m_clearKind; }

    RawText externalText(quint32 number) const override;
    const XMLTokenizer *asXml() const override { return this; }

protected:
    Result<void, MarkupError> detectEncoding(CharSource &source, QByteArrayView first) override;

private:
    // Functions that return bool return false for a failure, after fail() made an Error token.

    bool isBetweenTags() const;
    Token step();
    Token readTag();
    Token readText(const char *at);
    bool readEntityAt(const char **at);
    bool isExpectedEnd(const char *at) const;
    Token readEndTag();
    bool closeEndTag();
    bool lacksName(const char *at) const;
    Token endElement();
    Token readInstruction();
    Token readClear(size_t opener);
    const char *findCloser(const char *at, size_t opener, TextSpan *text);
    Token readStartTag();
    bool readName(const char **at, MarkupError error, TextSpan *name);
    void cutNameSpace(TextSpan *name) const;
    enum class TagPart : quint8 { Attribute, Skipped, End, Failed };
    bool readAttributes();
    TagPart nextTagPart();
    TagPart readSlash();
    bool readAttribute();
    bool readQuoted(char quote, TextSpan *value);
    bool readUnquoted(TextSpan *value);
    Token closeFor(std::string_view name);
    Token pendingClose();
    Token dataEnds();
    bool failed(MarkupError error)
    {
        fail(error);
        return false;
    }
    void moveTo(const char *at) { m_pos = static_cast<size_t>(at - data()); }
    bool pushName(std::string_view name);
    bool isLoose() const { return m_options.html || m_options.ignoreUnknownEntities; }

    XMLOptions m_options;
    QByteArray m_systemEncoding = QByteArrayLiteral("windows-1252");
    std::vector<Attribute> m_attributes;
    ClearKind m_clearKind = ClearKind::Other;
    bool m_pendingEnd = false;     ///< the next token is the End of the current Start
    qint64 m_pendingCloses = 0;    ///< number of open elements that end next, without an end tag
    TextSpan m_name;               ///< name of the current Start
    NameStack m_names;             ///< names of the open elements
    std::string_view m_closedName; ///< the external text: name of the element that ended
};

} // namespace corvanta::markup
