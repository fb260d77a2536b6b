// Writes tokens as one readable line, for tests and fuzz targets.
//
//     <name a=v    Start, with its attributes       'text'   Text
//     >name        End                              #text    Clear
//     ?name        Instruction                      ( and )  DocumentStart and DocumentEnd
//     .            EndOfData                        !20      Error, with its code
//
// Two traces are equal when the tokens are: tests compare a document that is read whole with the
// same document in pieces, or with other options. Names and texts are not escaped, so a trace is
// not meant to be parsed.
#pragma once
#include "codecs/markup/tokens/json_tokenizer.h"
#include "codecs/markup/tokens/xml_tokenizer.h"

#include <string>

namespace corvanta::markup {

/// " name=value" for each attribute of the current Start, in document order and with its entities
/// decoded; nothing without a tokenizer (JSON has no attributes).
inline std::u16string traceAttributes(const XMLTokenizer *xml)
{
    std::u16string out;
    for (size_t i = 0; xml != nullptr && i < xml->attributes().size(); ++i) {
        out += u" " + decoded(xml->attributeName(i)) + u"=" + decoded(xml->attributeValue(i));
    }
    return out;
}

/// One token as text: "<a x=1" for a Start with an attribute, "'text'", ">a" for an End, "!code"
/// for an Error.
inline std::u16string traceToken(MarkupTokenizer &tokenizer, Token token)
{
    switch (token) {
    case Token::Start:
        return u"<" + std::u16string(tokenizer.name()) + traceAttributes(tokenizer.asXml());
    case Token::End:
        return u">" + std::u16string(tokenizer.name());
    case Token::Text:
        return u"'" + std::u16string(tokenizer.text()) + u"'";
    case Token::Clear:
        return u"#" + std::u16string(tokenizer.text());
    case Token::Instruction:
        return u"?" + std::u16string(tokenizer.name());
    case Token::DocumentStart:
        return u"(";
    case Token::DocumentEnd:
        return u")";
    case Token::EndOfData:
        return u".";
    default:
        break;
    }
    const std::string code = std::to_string(static_cast<int>(tokenizer.errorCode()));
    return u"!" + std::u16string(code.begin(), code.end());
}

/// All tokens up to the first EndOfData or Error, separated by spaces. With `leaves`, takeLeaf()
/// reads those that it can read; the result is the same as without.
inline std::u16string trace(MarkupTokenizer &tokenizer, bool leaves = false)
{
    std::u16string out;
    MarkupTokenizer::Leaf leaf;
    for (;;) {
        while (leaves && tokenizer.takeLeaf(&leaf)) {
            const std::u16string name = decoded(tokenizer.resolve(leaf.name));
            out += (out.empty() ? u"<" : u" <") + name;
            out += leaf.hasText ? u" '" + decoded(tokenizer.resolve(leaf.text)) + u"'" : u"";
            out += u" >" + name;
        }
        const Token token = tokenizer.nextToken();
        out += (out.empty() ? u"" : u" ") + traceToken(tokenizer, token);
        if (token == Token::EndOfData || token == Token::Error) {
            return out;
        }
    }
}

} // namespace corvanta::markup
