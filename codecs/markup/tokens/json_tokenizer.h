// Splits JSON into tokens: a member is an element named by its key, an array item is an element
// with the array-item name, a scalar is text.
//
// docs/formats/markup.md lists what is accepted beyond RFC 8259 and the codes of what is rejected.
#pragma once
#include "codecs/markup/tokens/tokenizer.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvanta::markup {

/// Threads: one at a time.
class JSONTokenizer final : public MarkupTokenizer
{
public:
    /// The type of a top-level value.
    enum class DocumentKind : quint8 { Scalar, Object, Array };

    /// Read from `source`, which must outlive the tokenizer. `bufferChars` as in setBufferSize().
    JSONTokenizer(ByteSource &source, qint64 bufferChars, std::u16string_view arrayItemName = u"a");

    void restart(ByteSource &source) override;

    /// Set the name of the items of all arrays that begin later; std::nullopt means the empty name.
    /// Arrays that are open keep theirs.
    void setArrayItemName(std::optional<std::u16string_view> name);

    /// Accept any run of the characters of charset::kPermissive as an unquoted value. Off by
    /// default; may be set between tokens.
    void setPermissiveNumbers(bool on) { m_permissive = on; }

    /// Tokens are documented in tokenizer.h. A top-level value that is not complete at the end of
    /// the data is an error only with setBalanced().
    Token nextToken() override;
    bool takeLeaf(Leaf *leaf) override;

    /// The type of the value that the last DocumentStart began; unchanged until the next one.
    DocumentKind documentKind() const { return m_documentKind; }

    /// Skip text between the values at the top that is not a value, such as "Internal Server
    /// Error", which permissiveNumbers would read as values: words that begin with a letter, and
    /// what follows them in their line. `handler` is called at the first character of each such
    /// text; tokenStart() is its position. Without a handler, the words are values.
    void setStrayTextHandler(std::function<void()> handler) { m_onStrayText = std::move(handler); }

    /// At the end of a value at the top: true when an object follows. Reads ahead to find out.
    bool isObjectNext() { return skipSpace(Hold::Token) == '{'; }

    /// What resume() does when the value with the error has several lines.
    enum class Rewind : quint8 {
        /// Nothing of the value was used yet: continue at its next line that begins like a value.
        ToNextLine,
        /// Parts of the value were used: it is not a line of JSON Lines.
        Never,
    };
    /// After an error: continue after the line of JSON Lines that contains it, at the top. Returns
    /// false when there is no further line, when the source failed, and when the data does not look
    /// like JSON Lines; the tokenizer cannot be used further then.
    bool resume(Rewind rewind);
    /// After resume() found no further line because a NUL cut the last one off: the bytes after it.
    qint64 lostAfterNul() const { return m_lostAfterNul; }

    /// True while a container is open: the value at the top is not complete.
    bool isInsideValue() const { return !m_open.empty(); }

    RawText externalText(quint32 number) const override;

protected:
    Result<void, MarkupError> detectEncoding(CharSource &source, QByteArrayView first) override;

private:
    /// What comes next.
    enum class State : quint8 {
        /// A top-level value.
        Top,
        /// A key, or the end of an object.
        Key,
        /// An array item, or the end of an array.
        Item,
        /// The value of a member or item.
        Value,
        /// A separator, a closing bracket, or the end of the top-level value.
        AfterValue,
    };
    /// An open "{" or "[". The bytes of the name of the element that holds it are in m_names.
    struct Container
    {
        /// Number of the external text that names the items; 0: an object.
        quint32 itemName = 0;
        quint32 nameSize = 0;
        TextForm nameForm = TextForm::Plain;
        quint32 nameExternal = 0;
    };

    // Functions that return a token return None when they did not produce one. Functions that
    // return bool return false when they fail or when what they look for is not there.

    Token step();
    Token startDocument(char c);
    bool skipStrayText();
    bool isStrayWord();
    bool skipLine();
    bool rewindToNextLine();
    Token endDocument();
    Token readKey(char quote);
    Token readValue(char c);
    Token startItem();
    Token afterValue();
    bool openContainer(bool object);
    Token closeContainer(char c);
    Token endElement();
    Token missingEnd();
    // Strings and literals move past what they read.
    bool scanString(char quote, TextSpan *text);
    bool passStringStop(const char **at, TextForm *form);
    Token readString(char quote);
    Token readLiteral(char c);
    const char *barewordEnd(const char *at) const;
    qsizetype matchingChars(const char **at, std::string_view word);
    bool matches(const char **at, std::string_view word)
    {
        return matchingChars(at, word) == static_cast<qsizetype>(word.size());
    }
    void moveTo(const char *at) { m_pos = static_cast<size_t>(at - data()); }
    /// Make an Error token at another position than the current one.
    Token failAt(const char *at, MarkupError error);
    bool scanLeafValue(const char **at, Leaf *leaf);
    Token readNumber();
    Token readSpecialNumber(const char *at, bool negative);
    Token finishBareValue(const char *at, MarkupError error);
    bool isObject() const { return m_open.back().itemName == 0; }

    // The rest of what the grammar needs is in m_open: whether the innermost container is an
    // object.
    State m_state = State::Top;
    DocumentKind m_documentKind = DocumentKind::Scalar;
    bool m_permissive = false;
    std::function<void()> m_onStrayText;
    /// Bytes that resume() read again in this document of the source.
    size_t m_rewound = 0;
    /// Bytes that skipLine() skipped.
    qint64 m_skipped = 0;
    qint64 m_lostAfterNul = 0;
    /// The last value was a scalar, so its name is still in the buffer.
    bool m_scalar = false;
    /// Name of the open element.
    TextSpan m_name;
    /// Name of the element whose container was closed last.
    RawText m_closedName;
    std::vector<Container> m_open;
    /// Names of the elements that hold m_open, without separators.
    std::vector<char> m_names;
    std::vector<std::string> m_itemNames;
    /// Number of the external text for arrays that begin now.
    quint32 m_itemName = 0;
};

} // namespace corvanta::markup
