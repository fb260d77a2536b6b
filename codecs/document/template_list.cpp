// Parts with markers and what readers call them (ECMA-376 part 1, 11.3 and 13.3):
//
//   word/document.xml          body             ppt/slides/slideN.xml             slide P
//   word/headerN.xml           header N         ppt/notesSlides/notesSlideN.xml   notes N
//   word/footerN.xml           footer N
//   word/footnotes.xml, endnotes.xml, comments.xml                 their names
//
// P is the place of the slide in the list of ppt/presentation.xml: <p:sldId r:id="rId3"/>.
#include "codecs/document/template_list.h"

#include "codecs/document/document_parts.h"
#include "codecs/opc/marker_search.h"
#include "codecs/opc/markup_scan.h"

#include <QMap>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::document {

using opc::Error;

namespace {

/// The places of the slides, from 1; empty if the presentation does not say them.
QMap<QByteArray, int> slideOrder(opc::PackageCopy &package)
{
    QMap<QByteArray, int> order;
    const auto relationships = package.readRelationships(kPresentationPart);
    const auto text = package.read(kPresentationPart);
    if (!relationships || !text) {
        return order;
    }
    int place = 0;
    for (opc::TagCursor cursor(*text); cursor.next();) {
        const auto id =
            cursor.tag().local() == "sldId" ? cursor.tag().attribute("r:id") : std::nullopt;
        place += id ? 1 : 0;
        for (const opc::Relationship &one : relationships->entries()) {
            if (id && one.id == *id) {
                order[opc::resolvedTarget(kPresentationPart, one.target)] = place;
            }
        }
    }
    return order;
}

/// The digits between `prefix` and ".xml", after a space; empty if there are none.
QString numberIn(const QByteArray &part, const QByteArray &prefix)
{
    const QByteArray digits = part.sliced(prefix.size()).chopped(4);
    return opc::partNumber(digits) ? u' ' + QString::fromLatin1(digits) : QString();
}

/// What readers call a part; empty for one that has no markers.
QString locationOf(const QByteArray &part, const QByteArray &body,
                   const QMap<QByteArray, int> &slides)
{
    if (!part.toLower().endsWith(".xml")) {
        return {};
    }
    if (isNamed(part, body)) {
        return u"body"_s;
    }
    if (beginsLike(part, kSlidePrefix)) {
        const int place = slides.value(part);
        return place > 0 ? u"slide %1"_s.arg(place) : u"slide"_s + numberIn(part, kSlidePrefix);
    }
    if (beginsLike(part, kNotesPrefix)) {
        return u"notes"_s + numberIn(part, kNotesPrefix);
    }
    for (const char *const prefix : kOtherWordParts) {
        if (beginsLike(part, prefix)) {
            return QString::fromLatin1(prefix).section(u'/', 1) + numberIn(part, prefix);
        }
    }
    return {};
}

/// Collects equal markers of a part in one entry.
void addMarker(std::vector<TemplateMarker> &all, const TemplateMarker &marker)
{
    const auto same = std::find_if(all.begin(), all.end(), [&](const TemplateMarker &one) {
        return one.text == marker.text && one.location == marker.location &&
               one.runs == marker.runs && one.isEscaped == marker.isEscaped;
    });
    if (same == all.end()) {
        all.push_back(marker);
    } else {
        same->count += 1;
    }
}

/// Placeholder pictures: any marker in the target of a picture's relationship.
void addPictures(const QByteArray &relationships, TemplateMarker marker,
                 std::vector<TemplateMarker> &all)
{
    marker.location = u"picture in the %1"_s.arg(marker.location);
    for (opc::TagCursor cursor(relationships); cursor.next();) {
        const auto type = cursor.tag().attribute("Type");
        const auto target = cursor.tag().attribute("Target");
        if (!type || !target || !type->endsWith("/image")) {
            continue;
        }
        const QByteArray name = QByteArray::fromPercentEncoding(opc::decoded(*target).toUtf8());
        for (const opc::ListedMarker &listed : opc::listMarkers("<t>" + name + "</t>")) {
            marker.text = QString::fromUtf8(listed.text);
            addMarker(all, marker);
        }
    }
}

Result<void, Error> addPart(opc::PackageCopy &package, const TemplateMarker &place,
                            std::vector<TemplateMarker> &all)
{
    const auto text = package.read(place.part);
    if (!text) {
        return text.fault();
    }
    if (!opc::isUtf8Text(*text)) {
        return Fault{Error::Encoding, QString::fromUtf8(place.part)};
    }
    for (const opc::ListedMarker &listed : opc::listMarkers(*text)) {
        TemplateMarker marker = place;
        marker.text = opc::decoded(listed.text);
        marker.runs = listed.pieces;
        marker.isEscaped = listed.text.contains('&');
        addMarker(all, marker);
    }
    const QByteArray relationships = opc::relationshipPartOf(place.part);
    if (package.names().find(relationships)) {
        const auto read = package.read(relationships);
        if (!read) {
            return read.fault();
        }
        addPictures(*read, place, all);
    }
    return {};
}

} // namespace

Result<std::vector<TemplateMarker>, Error> listTemplate(zip::PackageReader &source)
{
    opc::PackageCopy package(source, [] { return true; });
    const QMap<QByteArray, int> slides = slideOrder(package);
    const QByteArray body = bodyPart(package);
    std::vector<TemplateMarker> all;
    for (const zip::Member &member : source.members()) {
        TemplateMarker place;
        place.part = standardName(member.name);
        place.location = locationOf(place.part, body, slides);
        place.isInBody = isNamed(place.part, body) || beginsLike(place.part, kSlidePrefix);
        if (place.location.isEmpty()) {
            continue;
        }
        if (const auto done = addPart(package, place, all); !done) {
            return done.fault();
        }
    }
    return all;
}

} // namespace corvanta::document
