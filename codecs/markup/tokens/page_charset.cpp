// The two notations, in any letter case:
//
//     <meta charset="utf-8">
//     <meta http-equiv="Content-Type" content="text/html; charset=utf-8">
#include "codecs/markup/tokens/page_charset.h"

#include "codecs/markup/tokens/html_elements.h"
#include "codecs/markup/tokens/html_tokenizer.h"

#include <tuple>

namespace corvanta::markup {

namespace {

QByteArray decodedBytes(const RawText &text)
{
    const std::u16string units = decoded(text);
    return QString::fromUtf16(units.data(), static_cast<qsizetype>(units.size())).toLatin1();
}

/// The name after "charset=" in the value of a "content" attribute.
QByteArray charsetIn(const QByteArray &content)
{
    constexpr QByteArrayView kWord = "charset";
    const qsizetype word = content.toLower().indexOf(kWord);
    const QByteArray rest = word < 0 ? QByteArray() : content.sliced(word + kWord.size()).trimmed();
    if (!rest.startsWith('=')) {
        return {};
    }
    const QByteArray value = rest.sliced(1).trimmed();
    const bool isQuoted = value.startsWith('"') || value.startsWith('\'');
    const qsizetype begin = isQuoted ? 1 : 0;
    qsizetype end = begin;
    while (end < value.size() &&
           (isQuoted ? value[end] != value[0] : value[end] != ';' && value[end] != ' ')) {
        ++end;
    }
    return value.sliced(begin, end - begin).trimmed();
}

/// The label in the "meta" whose start is the current token.
QByteArray charsetOf(const XMLTokenizer &tokenizer)
{
    QByteArray content;
    bool isType = false;
    for (size_t i = 0; i < tokenizer.attributes().size(); ++i) {
        const std::string_view name = tokenizer.attributeName(i).view();
        const QByteArray value = decodedBytes(tokenizer.attributeValue(i));
        if (equalsIgnoringCase(name, "charset")) {
            return value.trimmed();
        }
        if (equalsIgnoringCase(name, "content")) {
            content = value;
        }
        isType = isType || (equalsIgnoringCase(name, "http-equiv") &&
                            value.compare("content-type", Qt::CaseInsensitive) == 0);
    }
    return isType ? charsetIn(content) : QByteArray();
}

} // namespace

QByteArray pageCharset(QByteArrayView first)
{
    MemorySource source(first);
    HtmlTokenizer tokenizer(source, first.size());
    // The bytes as characters: nothing that matters here is beyond ASCII.
    std::ignore = tokenizer.setEncoding(CharMode::CodePage, "ISO-8859-1", InvalidBytes::Discard);
    for (;;) {
        const Token token = tokenizer.nextToken();
        if (token == Token::EndOfData || token == Token::Error) {
            return {};
        }
        if (token == Token::Start && equalsIgnoringCase(tokenizer.rawText().view(), "meta")) {
            if (QByteArray charset = charsetOf(tokenizer); !charset.isEmpty()) {
                return charset;
            }
        }
    }
}

} // namespace corvanta::markup
