#include "studio/document/markup_scan.h"

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// What a piece of markup does to the depth of elements.
Markup kindOf(QStringView markup)
{
    return markup.startsWith("<!"_L1) || markup.startsWith("<?"_L1) ? Markup::Other
           : markup.startsWith("</"_L1)                             ? Markup::End
           : markup.endsWith("/>"_L1)                               ? Markup::Empty
                                                                    : Markup::Start;
}

/// The index after the element that begins with `start`.
qsizetype endOfElement(const QString &text, MarkupRange start)
{
    int depth = 0;
    for (; start.begin >= 0; start = nextMarkup(text, start.end)) {
        depth += start.kind == Markup::Start ? 1 : start.kind == Markup::End ? -1 : 0;
        if (depth == 0 && start.kind != Markup::Other) {
            return start.end;
        }
    }
    return text.size();
}

} // namespace

// In a tag, a bracket or an end mark may also be a character of an attribute's value.
qsizetype endOfMarkup(const QString &text, qsizetype at)
{
    const auto after = [&](QLatin1StringView mark) {
        const qsizetype end = text.indexOf(mark, at);
        return end < 0 ? text.size() : end + mark.size();
    };
    const QStringView rest = QStringView(text).mid(at);
    if (rest.startsWith("<!--"_L1)) {
        return after("-->"_L1);
    }
    if (rest.startsWith("<![CDATA["_L1)) {
        return after("]]>"_L1);
    }
    if (rest.startsWith("<?"_L1)) {
        return after("?>"_L1);
    }
    QChar quote;
    int brackets = 0; // of a document type
    for (qsizetype i = at; i < text.size(); ++i) {
        const QChar c = text[i];
        if (!quote.isNull()) {
            quote = c == quote ? QChar() : quote;
        } else if (c == u'"' || c == u'\'') {
            quote = c;
        } else if (c == u'[' || c == u']') {
            brackets += c == u'[' ? 1 : -1;
        } else if (c == u'>' && brackets == 0) {
            return i + 1;
        }
    }
    return text.size();
}

MarkupRange nextMarkup(const QString &text, qsizetype from)
{
    const qsizetype begin = text.indexOf(u'<', from);
    if (begin < 0) {
        return {};
    }
    const qsizetype end = endOfMarkup(text, begin);
    return {begin, end, kindOf(QStringView(text).mid(begin, end - begin))};
}

MarkupRange firstElement(const QString &text, qsizetype from)
{
    MarkupRange markup = nextMarkup(text, from);
    while (markup.begin >= 0 && markup.kind == Markup::Other) {
        markup = nextMarkup(text, markup.end);
    }
    if (markup.begin < 0 || markup.kind == Markup::End) {
        return {};
    }
    return {markup.begin, endOfElement(text, markup), markup.kind};
}

} // namespace corvanta::studio
