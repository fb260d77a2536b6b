// codecs/markup/tokens/json_tokenizer.h
// JSON in the vocabulary of elements: a member is an element named by its key, an array item one
// named by the array-item name, a scalar is text.
//
// What is accepted beyond RFC 8259, and what is refused with which code: docs/formats/markup.md.
#pragma once
#include "codecs/markup/tokens/tokenizer.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvanta::markup {

class JSONTokenizer final : public MarkupTokenizer
{
public:
    /// What a value at the top of the stream is.
    enum class DocumentKind : quint8 { Scalar, Object, Array };

    JSONTokenizer(ByteSource &source, qint64 bufferChars, std::u16string_view arrayItemName = u"a");

    void restart(ByteSource &source) override;

    /// Name the items of the arrays that begin from now on; no name at all is the empty name.
    void setArrayItemName(std::optional<std::u16string_view> name);

    /// Take any run of the usual characters as an unquoted value.
    void setPermissiveNumbers(bool on) { m_permissive = on; }

    Token nextToken() override;
    bool takeLeaf(Leaf *leaf) override;

    /// With document marks on, after DocumentStart: what the value is.
    DocumentKind documentKind() const { return m_documentKind; }

    /// True while a container is open.
    bool isInsideValue() const { return !m_open.empty(); }

    /// Characters of the last number.
    qsizetype numberLength() const { return m_numberLength; }

    RawText externalText(quint32 number) const override;

protected:
    MarkupError detectEncoding(CharSource &source, QByteArrayView first) override;

private:
    enum class State : quint8 { Top, Key, Item, Value, AfterValue };
    /// An open "{" or "["; the bytes of its own element's name lie in m_names.
    struct Container
    {
        quint32 itemName = 0; ///< external text that names the items; 0: an object
        quint32 nameSize = 0;
        TextForm nameForm = TextForm::Plain;
        quint32 nameExternal = 0;
    };

    Token step();
    Token startDocument(char c);
    Token endDocument();
    Token readKey(char quote);
    Token readValue(char c);
    Token startItem();
    Token afterValue();
    bool openContainer(bool object);
    Token closeContainer(char c);
    Token endElement();
    Token missingEnd();
    bool scanString(char quote, TextSpan *text);
    Token readString(char quote);
    Token readLiteral(char c);
    qsizetype matchingChars(const char **at, std::string_view word);
    bool matches(const char **at, std::string_view word)
    {
        return matchingChars(at, word) == static_cast<qsizetype>(word.size());
    }
    Token failAt(const char *at, MarkupError error);
    bool scanLeafValue(const char **at, Leaf *leaf);
    Token readNumber();
    Token readSpecialNumber(const char *at, bool negative);
    Token finishBareValue(const char *at, MarkupError error);
    bool isObject() const { return m_open.back().itemName == 0; }

    State m_state = State::Top;
    DocumentKind m_documentKind = DocumentKind::Scalar;
    bool m_permissive = false;
    bool m_scalar =
        false; ///< the value just read was no container: its name is still in the buffer
    qsizetype m_numberLength = 0;
    TextSpan m_name;      ///< of the open element
    RawText m_closedName; ///< of an element whose container was closed
    std::vector<Container> m_open;
    std::vector<char> m_names;
    std::vector<std::string> m_itemNames;
    quint32 m_itemName = 0;
};

} // namespace corvanta::markup
