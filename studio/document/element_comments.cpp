// The place of a comment is relative to the elements around it, which are found again by their
// content or, if that has changed, by their name and order:
//
//     <Level>
//       <!-- 1 -->            before "e", the next element
//       <e path='a'/> <!-- 2 -->   after "e", which is in the same line
//       <!-- 3 -->            after "e", because there is no next element
//     </Level>
#include "studio/document/element_comments.h"

#include "studio/document/markup_scan.h"

#include <QStringList>
#include <QXmlStreamReader>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// A comment in an element.
struct CommentPlace
{
    QString text;
    qsizetype next = 0;    ///< number of the element that follows
    bool isInLine = false; ///< with the element before it
};

/// An element as a part of a text, with what is directly in it.
struct ElementPart
{
    qsizetype begin = 0;
    qsizetype contentEnd = -1; ///< where the end tag begins; negative: an empty tag
    qsizetype end = 0;
    bool hasText = false;     ///< other than white space
    bool hasComments = false; ///< also inside a child
    std::vector<ElementPart> children;
    std::vector<CommentPlace> comments;
};

bool isCommentAt(const QString &text, qsizetype at)
{
    return !QStringView(text).mid(at).startsWith("<![CDATA["_L1);
}

/// The element that begins with the tag `start`. Recursive: the host limits the depth of graphs.
ElementPart partOf(const QString &text, const MarkupRange &start)
{
    ElementPart part;
    part.begin = start.begin;
    part.end = start.end;
    if (start.kind == Markup::Empty) {
        return part;
    }
    MarkupRange markup = nextMarkup(text, start.end);
    for (qsizetype at = start.end; markup.begin >= 0; markup = nextMarkup(text, at)) {
        const QStringView between = QStringView(text).mid(at, markup.begin - at);
        part.hasText = part.hasText || !between.trimmed().isEmpty();
        at = markup.end;
        if (markup.kind == Markup::End) {
            part.contentEnd = markup.begin;
            part.end = markup.end;
            return part;
        }
        if (markup.kind != Markup::Other) {
            part.children.push_back(partOf(text, markup));
            at = part.children.back().end;
            part.hasComments = part.hasComments || part.children.back().hasComments;
        } else if (isCommentAt(text, markup.begin)) {
            part.hasComments = true;
            part.comments.push_back({text.mid(markup.begin, markup.end - markup.begin),
                                     static_cast<qsizetype>(part.children.size()),
                                     !part.children.empty() && !between.contains(u'\n')});
        } else {
            part.hasText = true;
        }
    }
    return part;
}

/// The same text for elements with the same content, however they are written.
QString contentOf(const QString &text, const ElementPart &part)
{
    QXmlStreamReader reader(text.mid(part.begin, part.end - part.begin));
    reader.setNamespaceProcessing(false); // prefixes are declared outside
    QString content;
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement()) {
            QStringList attributes;
            const QXmlStreamAttributes all = reader.attributes();
            for (const QXmlStreamAttribute &attribute : all) {
                attributes << attribute.qualifiedName().toString() + u'=' +
                                  attribute.value().toString();
            }
            attributes.sort();
            content += u'<' + reader.qualifiedName().toString() + u' ' + attributes.join(u'\n');
        } else if (reader.isEndElement()) {
            content += u'>';
        } else if (reader.isCharacters() && !reader.isWhitespace()) {
            content += reader.text();
        }
    }
    return content;
}

QString nameOf(const QString &text, const ElementPart &part)
{
    qsizetype end = part.begin + 1;
    while (end < text.size() && !text[end].isSpace() && text[end] != u'>' && text[end] != u'/') {
        ++end;
    }
    return text.mid(part.begin + 1, end - part.begin - 1);
}

/// Finds the comments of one text and the places for them in another one.
class CommentMove
{
public:
    CommentMove(const QString &before, const QString &after)
        : m_before(before)
        , m_after(after)
    {
    }

    QString text()
    {
        move(partOf(m_before, nextMarkup(m_before, 0)), partOf(m_after, nextMarkup(m_after, 0)));
        std::stable_sort(m_inserts.begin(), m_inserts.end(),
                         [](const Insert &a, const Insert &b) { return a.at < b.at; });
        QString text;
        qsizetype at = 0;
        for (const Insert &insert : m_inserts) {
            text += m_after.mid(at, insert.at - at) + insert.text;
            at = insert.at + insert.replaced;
        }
        return text + m_after.mid(at);
    }

private:
    struct Insert
    {
        qsizetype at = 0;
        qsizetype replaced = 0; ///< characters that the text replaces
        QString text;
    };

    void move(const ElementPart &old, const ElementPart &now)
    {
        if (!old.hasComments) {
            return;
        }
        const std::vector<qsizetype> partners = partnersOf(old, now);
        if (now.contentEnd < 0) {
            fill(old, now);
        } else {
            for (const CommentPlace &comment : old.comments) {
                place(comment, now, partners);
            }
        }
        for (size_t i = 0; i < partners.size(); ++i) {
            if (partners[i] >= 0) {
                move(old.children[i], now.children[static_cast<size_t>(partners[i])]);
            }
        }
    }

    /// The number in `now` of each element in `old`; negative: it has been removed.
    std::vector<qsizetype> partnersOf(const ElementPart &old, const ElementPart &now) const
    {
        std::vector<qsizetype> partners(old.children.size(), -1);
        const auto match = [&](const auto &keyOf) {
            QStringList keys;
            for (size_t j = 0; j < now.children.size(); ++j) {
                keys << (std::find(partners.begin(), partners.end(), static_cast<qsizetype>(j)) ==
                                 partners.end()
                             ? keyOf(m_after, now.children[j])
                             : QString());
            }
            for (size_t i = 0; i < partners.size(); ++i) {
                const qsizetype found =
                    partners[i] < 0 ? keys.indexOf(keyOf(m_before, old.children[i])) : -1;
                if (found >= 0) {
                    partners[i] = found;
                    keys[found].clear();
                }
            }
        };
        match(contentOf);
        match(nameOf);
        return partners;
    }

    /// Give an empty tag the comments as its content.
    void fill(const ElementPart &old, const ElementPart &now)
    {
        QString comments;
        for (const CommentPlace &comment : old.comments) {
            comments += comment.text;
        }
        if (!comments.isEmpty()) {
            m_inserts.push_back(
                {now.end - 2, 2, u">%1</%2>"_s.arg(comments, nameOf(m_after, now))});
        }
    }

    /// Next to the element next to which the comment was, or to one that is left on either side.
    void place(const CommentPlace &comment, const ElementPart &now,
               const std::vector<qsizetype> &partners)
    {
        const auto isLeft = [](qsizetype partner) { return partner >= 0; };
        const auto child = [&](qsizetype number) -> const ElementPart & {
            return now.children[static_cast<size_t>(number)];
        };
        const auto next = partners.begin() + comment.next;
        const auto following = std::find_if(next, partners.end(), isLeft);
        const auto previous =
            std::find_if(std::make_reverse_iterator(next), partners.rend(), isLeft);
        if (comment.isInLine && isLeft(*(next - 1))) {
            m_inserts.push_back(
                {child(*previous).end, 0, (now.hasText ? u""_s : u" "_s) + comment.text});
        } else if (following != partners.end()) {
            const ElementPart &element = child(*following);
            m_inserts.push_back({element.begin, 0, comment.text + spaceBefore(element, now)});
        } else if (previous != partners.rend()) {
            const ElementPart &element = child(*previous);
            m_inserts.push_back({element.end, 0, spaceBefore(element, now) + comment.text});
        } else {
            m_inserts.push_back({now.contentEnd, 0, comment.text});
        }
    }

    /// The line break and the indent of an element. None in a text, where spaces would be part of
    /// the value.
    QString spaceBefore(const ElementPart &element, const ElementPart &parent) const
    {
        qsizetype begin = element.begin;
        while (!parent.hasText && m_after[begin - 1].isSpace()) {
            --begin;
        }
        return m_after.mid(begin, element.begin - begin);
    }

    const QString &m_before;
    const QString &m_after;
    std::vector<Insert> m_inserts;
};

} // namespace

QString withComments(const QString &before, const QString &after)
{
    const bool hasComments = before.contains("<!--"_L1) || before.contains("<?"_L1);
    return hasComments ? CommentMove(before, after).text() : after;
}

} // namespace corvanta::studio
