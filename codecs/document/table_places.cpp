// A marker and its paragraph (ECMA-376 part 1, 17.3.1.22 and 17.3.2.25):
//
//   <w:p><w:r><w:t>text %T1% more</w:t></w:r></w:p>       the simple opener
//   <w:tbl>...</w:tbl><w:p><w:r><w:t> more</w:t></w:r></w:p>
//
//   <w:p><w:pPr/><w:r><w:rPr/><w:t>text %T1% more</w:t></w:r></w:p>      any other paragraph
//   <w:p><w:pPr/><w:r><w:rPr/><w:t>text </w:t></w:r></w:p>
//   <w:tbl>...</w:tbl><w:p><w:pPr/><w:r><w:rPr/><w:t> more</w:t></w:r></w:p>
#include "codecs/document/table_places.h"

#include "codecs/opc/marker_search.h"
#include "codecs/opc/markup_scan.h"

namespace corvanta::document {

namespace {

constexpr QByteArrayView kOpener("<w:p><w:r><w:t>");

/// Where the simple opener of the marker at `at` begins, at or after `from`; -1 if there is none.
qsizetype openerBefore(QByteArrayView part, qsizetype from, qsizetype at)
{
    const QByteArrayView searched = part.sliced(from, at - from);
    const qsizetype found = searched.lastIndexOf(kOpener);
    // The opener must be the last markup before the marker.
    const bool opens = found >= 0 && searched.lastIndexOf('<') == found + kOpener.lastIndexOf('<');
    return opens ? from + found : -1;
}

/// Follows the elements around the text, from the paragraph inward.
class ParagraphWalk
{
public:
    explicit ParagraphWalk(QByteArrayView part)
        : m_part(part)
    {
        opc::TagCursor root(part);
        const QByteArrayView prefix = root.next() ? root.tag().prefix() : QByteArrayView();
        m_paragraphName = opc::qualified(prefix, "p");
        m_textName = opc::qualified(prefix, "t");
    }
    void take(const opc::Tag &tag)
    {
        if (tag.kind == opc::Tag::Kind::Open) {
            m_open.push_back({tag});
        } else if (tag.kind == opc::Tag::Kind::Close && !m_open.empty()) {
            close(tag);
        }
    }
    /// The open text element is the innermost one and is inside a paragraph.
    bool isInText() const
    {
        return !m_open.empty() && m_open.back().tag.name == m_textName && paragraph() >= 0;
    }
    /// The place of a marker in the open text element.
    TablePlace placeOf(const opc::MarkerHit &hit)
    {
        const auto outer = static_cast<size_t>(paragraph());
        TablePlace place{hit.marker, hit.begin};
        for (size_t i = m_open.size(); i-- > outer;) {
            place.before += "</" + m_open[i].tag.name.toByteArray() + '>';
        }
        for (size_t i = outer; i < m_open.size(); ++i) {
            place.after += reopened(m_open[i]);
        }
        place.resume = hit.end;
        const Open &around = m_open[outer];
        // A paragraph without text so far would stay as an empty line before the table.
        if (!around.hasText && hit.begin == m_open.back().tag.end && around.tag.begin >= m_resume) {
            place.copyEnd = around.tag.begin;
            place.before.clear();
        }
        m_resume = hit.end;
        return place;
    }

private:
    struct Open
    {
        opc::Tag tag;
        QByteArrayView properties = {}; // pPr or rPr
        bool hasText = false;           // of a paragraph
    };
    /// Index of the innermost open paragraph; -1 if there is none.
    int paragraph() const
    {
        for (size_t i = m_open.size(); i-- > 0;) {
            if (m_open[i].tag.name == m_paragraphName) {
                return static_cast<int>(i);
            }
        }
        return -1;
    }
    void close(const opc::Tag &tag)
    {
        const opc::Tag opened = m_open.back().tag;
        m_open.pop_back();
        const int around = paragraph();
        if (m_open.empty() || around < 0) {
            return;
        }
        if (tag.local() == "pPr" || tag.local() == "rPr") {
            m_open.back().properties = m_part.sliced(opened.begin, tag.end - opened.begin);
        }
        const bool isContent = tag.local() == "drawing" || tag.local() == "pict" ||
                               (tag.name == m_textName && tag.begin > opened.end);
        m_open[static_cast<size_t>(around)].hasText |= isContent;
    }
    /// The beginning of an element like an open one. Paragraphs and runs have ids as attributes,
    /// which must not occur twice.
    QByteArray reopened(const Open &open) const
    {
        const QByteArray name = open.tag.name.toByteArray();
        if (name == m_paragraphName || open.tag.local() == "r") {
            return '<' + name + '>' + open.properties.toByteArray();
        }
        return name == m_textName
                   ? '<' + name + " xml:space=\"preserve\">"
                   : m_part.sliced(open.tag.begin, open.tag.end - open.tag.begin).toByteArray();
    }

    QByteArrayView m_part;
    // Of the elements, with the prefix of the part.
    QByteArray m_paragraphName;
    QByteArray m_textName;
    std::vector<Open> m_open; // the innermost last
    qsizetype m_resume = 0;   // after the last marker
};

} // namespace

QByteArray withTablePrefix(const QByteArray &part)
{
    opc::TagCursor root(part);
    if (!root.next() || root.tag().prefix() == "w" || root.tag().attribute("xmlns:w")) {
        return part;
    }
    const opc::Tag &tag = root.tag();
    const auto uri = tag.declaredNamespace();
    // Without the declaration no program would open a document with a table.
    const QByteArray declared = uri ? " xmlns:w=\"" + uri->toByteArray() + '"' : QByteArray();
    return QByteArray(part).insert(tag.begin + 1 + tag.name.size(), declared);
}

std::vector<TablePlace> findParagraphPlaces(QByteArrayView part,
                                            const std::vector<QByteArray> &markers)
{
    std::vector<TablePlace> places;
    const auto hits = opc::findMarkers(part, markers);
    auto hit = hits.begin();
    ParagraphWalk walk(part);
    for (opc::TagCursor cursor(part); hit != hits.end() && cursor.next();) {
        for (; hit != hits.end() && hit->begin < cursor.tag().begin; ++hit) {
            if (walk.isInText()) {
                places.push_back(walk.placeOf(*hit));
            }
        }
        // Markers inside the tag itself have no place.
        for (; hit != hits.end() && hit->begin < cursor.tag().end; ++hit) {
        }
        walk.take(cursor.tag());
    }
    return places;
}

std::vector<TablePlace> findTablePlaces(QByteArrayView part, const std::vector<QByteArray> &markers)
{
    std::vector<TablePlace> places;
    qsizetype copied = 0;
    opc::TagTracker tags(part);
    for (const opc::MarkerHit &hit : opc::findMarkers(part, markers)) {
        // A table in an attribute would leave a document that no program opens.
        if (tags.isInTag(hit.begin)) {
            continue;
        }
        const qsizetype opener = openerBefore(part, copied, hit.begin);
        TablePlace place{hit.marker, opener >= 0 ? opener : hit.begin};
        place.after = opener >= 0 ? kOpener.toByteArray() : QByteArray();
        place.resume = copied = hit.end;
        place.dropped = opener >= 0 ? hit.begin - opener - kOpener.size() : 0;
        place.isInText = opener < 0;
        places.push_back(place);
    }
    return places;
}

} // namespace corvanta::document
