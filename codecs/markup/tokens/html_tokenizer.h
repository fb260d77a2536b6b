// Splits pages into tokens as browsers do: tag soup.
//
// Unlike XMLTokenizer in HTML mode, it never fails for what a page contains, and its tokens are
// those of the tree that a browser makes of tables, lists and blocks: omitted end tags become End
// tokens, and tags that a browser ignores are not tokens. Unchanged: "tbody" is not a token.
// docs/formats/html.md lists what differs from the HTML standard.
#pragma once
#include "codecs/markup/tokens/open_elements.h"
#include "codecs/markup/tokens/xml_tokenizer.h"

namespace corvanta::markup {

/// Of XMLOptions, only `discardNameSpaces` has an effect. Every Start gets its End. Errors: those
/// of the source, and limits. Threads: one at a time.
class HtmlTokenizer final : public XMLTokenizer
{
public:
    using XMLTokenizer::XMLTokenizer;

    void restart(ByteSource &source) override;
    Token nextToken() override;
    bool takeLeaf(Leaf *leaf) override;
    RawText externalText(quint32 number) const override;

private:
    // Each of these reads one construct; None means that it is not a token.
    Token step();
    Token readTag();
    Token readText(const char *at);
    Token readStartTag();
    Token beginElement(HtmlElement element);
    Token beginRow();
    Token readEndTag();
    Token readSection();
    Token readComment();
    Token readHidden();
    Token readRawText();
    Token finishClear(const char *content, const char *end, ClearKind kind);
    // Ends of elements.
    Token endElement();
    Token pendingClose();
    Token dataEnds();
    bool isExpectedEnd(const char *at) const;
    // The parts of a tag. Those that return bool return false when the data ends in the tag, which
    // is ignored then.
    bool readName(const char **at, TextSpan *name);
    bool readAttributes();
    bool readAttribute();
    bool readQuoted(char quote, TextSpan *value);
    bool readUnquoted(TextSpan *value);
    Token cutTag();
    bool completed(const char *at);
    // Searches: they return the end of the data when it comes first.
    const char *findChar(const char *at, char c);
    template <class IsStop> const char *findStop(const char *at, IsStop isStop);
    const char *findRawEnd(const char *at);
    void setRawName();
    bool isTagAt(const char *at, std::string_view opener, std::string_view name) const;

    OpenElements m_open;
    /// The start tag ended with "/>".
    bool m_isSelfClosing = false;
    /// The next token is the text of an element whose content is not markup.
    bool m_isRawNext = false;
    /// Name of that element, in lower case.
    std::string m_rawName;
};

} // namespace corvanta::markup
