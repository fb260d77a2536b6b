// Where a marker can be in a part (ECMA-376 part 1, 17.3.2 and 21.1.2.3: runs):
//
//   <w:p><w:r><w:t>Dear %NAME%,</w:t></w:r></w:p>                                    found
//   <w:p><w:r><w:t>Dear %NA</w:t></w:r><w:r><w:rPr/><w:t>ME%,</w:t></w:r></w:p>      split
//
// The text elements of a paragraph are read as one text. In presentations they are <a:t> in <a:p>.
#include "codecs/opc/marker_search.h"

#include "codecs/opc/splices.h"

#include <queue>

#include <algorithm>
#include <functional>
#include <map>
#include <tuple>
#include <utility>

namespace corvanta::opc {

namespace {

/// Orders hits by their place, then by the list of markers.
struct IsLater
{
    bool operator()(const MarkerHit &a, const MarkerHit &b) const
    {
        return std::tie(a.begin, a.marker) > std::tie(b.begin, b.marker);
    }
};

/// The next occurrence of every marker, the first one on top.
class MarkerQueue
{
public:
    MarkerQueue(QByteArrayView text, const std::vector<QByteArray> &markers)
        : m_text(text)
        , m_markers(markers)
    {
        for (size_t i = 0; i < markers.size(); ++i) {
            addNext(static_cast<int>(i), 0);
        }
    }
    bool isEmpty() const { return m_next.empty(); }
    MarkerHit take()
    {
        const MarkerHit hit = m_next.top();
        m_next.pop();
        return hit;
    }
    /// Enter the first occurrence at or after `from`.
    void addNext(int marker, qsizetype from)
    {
        const QByteArray &bytes = m_markers[static_cast<size_t>(marker)];
        const qsizetype at = bytes.isEmpty() ? -1 : m_text.indexOf(bytes, from);
        if (at >= 0) {
            m_next.push({at, at + bytes.size(), marker});
        }
    }

private:
    QByteArrayView m_text;
    const std::vector<QByteArray> &m_markers;
    std::priority_queue<MarkerHit, std::vector<MarkerHit>, IsLater> m_next;
};

/// Collects the pieces, given the tags of a part in their order.
class PieceCollector
{
public:
    void take(const Tag &tag)
    {
        const bool closes = tag.kind == Tag::Kind::Close;
        if (tag.local() == "p" && tag.kind != Tag::Kind::Empty) {
            takeParagraph(closes);
        } else if (endsLine(tag.local()) && !m_open.empty()) {
            m_open.back() = ++m_paragraphs;
        } else if (isText(tag.local()) && closes && m_textBegin >= 0) {
            m_pieces.push_back(
                {m_textBegin, tag.begin, m_open.empty() ? m_paragraphs : m_open.back()});
        }
        // A text element holds no other element.
        const bool opensText = isText(tag.local()) && tag.kind == Tag::Kind::Open;
        m_textBegin = opensText ? tag.end : -1;
        // Values of a chart are in no paragraph, and each is a text of its own.
        m_paragraphs += opensText && m_open.empty() ? 1 : 0;
    }
    std::vector<TextPiece> pieces() { return std::move(m_pieces); }

private:
    /// Texts of runs, and values of charts (ECMA-376 part 1, 21.2.2.231).
    static bool isText(QByteArrayView local) { return local == "t" || local == "v"; }
    /// Breaks and tabs: a reader sees two texts, and no marker goes across.
    static bool endsLine(QByteArrayView local)
    {
        return local == "br" || local == "cr" || local == "tab";
    }
    /// Paragraphs may be nested: a text box is inside of one.
    void takeParagraph(bool closes)
    {
        if (!closes) {
            m_open.push_back(++m_paragraphs);
        } else if (!m_open.empty()) {
            m_open.pop_back();
        }
    }

    std::vector<TextPiece> m_pieces;
    std::vector<int> m_open; // numbers of the open paragraphs, the innermost last
    int m_paragraphs = 0;
    qsizetype m_textBegin = -1; // of the open text element; -1 if none is open
};

/// The text of one paragraph and where it comes from.
struct ParagraphText
{
    QByteArray text;
    std::vector<TextPiece> pieces;
};

/// The pieces of `hit`, an occurrence in the text of a paragraph.
std::vector<TextPiece> piecesOf(const ParagraphText &paragraph, const MarkerHit &hit)
{
    std::vector<TextPiece> pieces;
    qsizetype at = 0; // of the piece, in the text of the paragraph
    for (const TextPiece &piece : paragraph.pieces) {
        const qsizetype size = piece.end - piece.begin;
        const qsizetype begin = std::max(hit.begin, at);
        const qsizetype end = std::min(hit.end, at + size);
        if (begin < end) {
            pieces.push_back({piece.begin + begin - at, piece.begin + end - at, piece.paragraph});
        }
        at += size;
    }
    return pieces;
}

/// The texts of the paragraphs by their numbers.
std::map<int, ParagraphText> paragraphsOf(QByteArrayView part)
{
    // The text of a paragraph may continue after that of a text box inside it.
    std::map<int, ParagraphText> paragraphs;
    for (const TextPiece &piece : textPieces(part)) {
        ParagraphText &paragraph = paragraphs[piece.paragraph];
        paragraph.text += part.sliced(piece.begin, piece.end - piece.begin);
        paragraph.pieces.push_back(piece);
    }
    return paragraphs;
}

/// Whether the text between two percent signs can be a name.
bool isName(QByteArrayView text)
{
    constexpr qsizetype kLongest = 100;
    return !text.isEmpty() && text.size() <= kLongest && text.front() != ' ' && text.back() != ' ';
}

/// Whether the sign at `at` follows a digit, like that of a percentage.
bool followsDigit(QByteArrayView text, qsizetype at)
{
    return at > 0 && text[at - 1] >= '0' && text[at - 1] <= '9';
}

void addListed(const ParagraphText &paragraph, std::vector<ListedMarker> &found)
{
    const QByteArrayView text(paragraph.text);
    qsizetype begin = text.indexOf('%');
    while (begin >= 0) {
        const qsizetype end = text.indexOf('%', begin + 1);
        if (end < 0) {
            return;
        }
        const bool isMarker = isName(text.sliced(begin + 1, end - begin - 1));
        if (isMarker) {
            const MarkerHit hit{begin, end + 1, 0};
            found.push_back({text.sliced(begin, end + 1 - begin).toByteArray(),
                             static_cast<int>(piecesOf(paragraph, hit).size()),
                             followsDigit(text, begin) && followsDigit(text, end)});
        }
        // The sign that ends no marker may begin one.
        begin = isMarker ? text.indexOf('%', end + 1) : end;
    }
}

void addSplit(const ParagraphText &paragraph, const std::vector<QByteArray> &markers,
              std::vector<SplitMarker> &found)
{
    // Only a text in several pieces can split a marker.
    if (paragraph.pieces.size() < 2) {
        return;
    }
    for (const MarkerHit &hit : findMarkers(paragraph.text, markers)) {
        auto pieces = piecesOf(paragraph, hit);
        if (pieces.size() > 1) {
            found.push_back({hit.marker, std::move(pieces)});
        }
    }
}

/// What is left of an element after its beginning has moved to another one may begin with a space,
/// which Word drops unless the element says otherwise (ECMA-376 part 1, 17.3.3.31).
void keepSpace(QByteArrayView part, const TextPiece &moved, Splices &splices)
{
    if (part.first(moved.begin).endsWith("<w:t>") && part.sliced(moved.end).startsWith(' ')) {
        splices.insert(moved.begin - 1, " xml:space=\"preserve\"");
    }
}

} // namespace

bool TagTracker::isInTag(qsizetype at)
{
    const qsizetype open = m_text.sliced(m_at, at - m_at).lastIndexOf('<');
    if (open >= 0) {
        m_open = m_at + open;
        // Markup that is broken or skipped holds no text that a reader sees.
        const bool isTag = scanMarkup(m_text, m_open, &m_tag, &m_end) == Scan::Tag;
        m_end = isTag ? m_end : m_text.size();
    }
    m_at = at;
    return m_open >= 0 && m_end > at;
}

QByteArrayView TagTracker::element() const
{
    const bool isInside = m_open >= 0 && m_end <= m_at && m_tag.kind == Tag::Kind::Open;
    return isInside ? m_tag.name : QByteArrayView();
}

std::vector<MarkerHit> findMarkers(QByteArrayView text, const std::vector<QByteArray> &markers)
{
    std::vector<MarkerHit> hits;
    qsizetype from = 0; // after the last hit
    for (MarkerQueue next(text, markers); !next.isEmpty();) {
        const MarkerHit hit = next.take();
        if (hit.begin >= from) {
            hits.push_back(hit);
            from = hit.end;
        }
        next.addNext(hit.marker, from);
    }
    return hits;
}

std::vector<TextPiece> textPieces(QByteArrayView part)
{
    PieceCollector collector;
    for (TagCursor cursor(part); cursor.next();) {
        collector.take(cursor.tag());
    }
    return collector.pieces();
}

std::vector<SplitMarker> findSplitMarkers(QByteArrayView part,
                                          const std::vector<QByteArray> &markers)
{
    std::vector<SplitMarker> found;
    for (const auto &[number, paragraph] : paragraphsOf(part)) {
        addSplit(paragraph, markers, found);
    }
    return found;
}

std::vector<ListedMarker> listMarkers(QByteArrayView part)
{
    std::vector<ListedMarker> found;
    for (const auto &[number, paragraph] : paragraphsOf(part)) {
        addListed(paragraph, found);
    }
    return found;
}

QByteArray joinMarkers(QByteArrayView part, const std::vector<QByteArray> &markers)
{
    Splices splices(part);
    for (const SplitMarker &split : findSplitMarkers(part, markers)) {
        const QByteArray &marker = markers[static_cast<size_t>(split.marker)];
        QByteArray moved = marker;
        for (const TextPiece &piece : split.pieces) {
            if (moved.isEmpty()) {
                keepSpace(part, piece, splices);
            }
            splices.replace(piece.begin, piece.end, std::exchange(moved, QByteArray()));
        }
    }
    return splices.apply();
}

} // namespace corvanta::opc
