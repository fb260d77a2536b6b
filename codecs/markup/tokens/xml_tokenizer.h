// codecs/markup/tokens/xml_tokenizer.h
// XML, and HTML as loosely as it is written, as tokens.
//
// What is accepted beyond XML 1.0, and what is refused with which code: docs/formats/markup.md.
#pragma once
#include "codecs/markup/tokens/name_stack.h"
#include "codecs/markup/tokens/tokenizer.h"

#include <span>
#include <string_view>
#include <vector>

namespace corvanta::markup {

struct XMLOptions
{
    bool html = false;
    bool ignoreUnknownEntities = false;
    bool discardNameSpaces = false;
    bool ignoreInvalidCharInTagName = false;
};

class XMLTokenizer final : public MarkupTokenizer
{
public:
    struct Attribute
    {
        TextSpan name;
        TextSpan value;
    };

    XMLTokenizer(ByteSource &source, qint64 bufferChars);

    void restart(ByteSource &source) override;

    /// May be changed between tokens.
    void setOptions(const XMLOptions &options) { m_options = options; }

    /// The encoding that stands for "System" when it is guessed.
    void setSystemEncoding(const QByteArray &name) { m_systemEncoding = name; }

    Token nextToken() override;
    bool takeLeaf(Leaf *leaf) override;

    /// Attributes of the current Start, in document order.
    std::span<const Attribute> attributes() const { return m_attributes; }
    RawText attributeName(size_t i) const { return resolve(m_attributes[i].name); }
    RawText attributeValue(size_t i) const { return resolve(m_attributes[i].value); }

    /// What the current Clear section is.
    ClearKind clearKind() const { return m_clearKind; }

    RawText externalText(quint32 number) const override;
    const XMLTokenizer *asXml() const override { return this; }

protected:
    MarkupError detectEncoding(CharSource &source, QByteArrayView first) override;

private:
    enum class NameUse : quint8 { Tag, EndTag };

    Token step();
    Token readText(const char *at);
    bool readEntityAt(const char **at);
    bool isExpectedEnd(const char *at) const;
    Token readEndTag();
    bool lacksName(const char *at) const;
    Token endElement();
    Token readInstruction();
    Token readClear(size_t opener);
    Token readStartTag();
    bool readName(const char **at, NameUse use, TextSpan *name);
    void cutNameSpace(TextSpan *name) const;
    bool readAttributes();
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
    bool m_pendingEnd = false;  ///< the next token is the end of the element that just began
    qint64 m_pendingCloses = 0; ///< open elements whose ends come next, without tags of their own
    TextSpan m_name;
    NameStack m_names; ///< of the open elements
    std::string_view m_closedName;
};

} // namespace corvanta::markup
