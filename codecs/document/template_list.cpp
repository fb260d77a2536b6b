// Lists the texts of the form "%NAME%" in the parts that can have markers, and in the targets of
// their pictures and links; see part_locations.cpp for the parts.
#include "codecs/document/template_list.h"

#include "codecs/document/document_parts.h"
#include "codecs/document/part_locations.h"
#include "codecs/opc/marker_search.h"
#include "codecs/opc/markup_scan.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::document {

using opc::Error;

namespace {

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
        same->isNumeric &= marker.isNumeric;
    }
}

/// The text of a part; a part that is not UTF-8 is a fault, because no marker would be found in it.
Result<QByteArray, Error> textOf(opc::PackageCopy &package, const QByteArray &part)
{
    auto text = package.read(part);
    const bool isOther = text && !opc::isUtf8Text(*text);
    return isOther ? Fault{Error::Encoding, QString::fromUtf8(part)} : std::move(text);
}

/// Any marker in the target of a relationship of a placeholder picture, or of a link.
void addTargets(const QByteArray &relationships, const TemplateMarker &place,
                std::vector<TemplateMarker> &all)
{
    for (opc::TagCursor cursor(relationships); cursor.next();) {
        const auto type = cursor.tag().attribute("Type");
        const auto target = cursor.tag().attribute("Target");
        TemplateMarker marker = place;
        marker.isPicture = type && type->endsWith("/image");
        marker.isLink = type && type->endsWith("/hyperlink");
        if (!target || (!marker.isPicture && !marker.isLink)) {
            continue;
        }
        marker.location =
            (marker.isLink ? u"address of a link in the %1"_s : u"picture in the %1"_s)
                .arg(place.location);
        const QByteArray plain = opc::decoded(*target).toUtf8();
        // Decoding would damage a marker whose percent signs are not encoded.
        const QByteArray name =
            plain.contains("%25") ? QByteArray::fromPercentEncoding(plain) : plain;
        for (const opc::ListedMarker &listed : opc::listMarkers("<t>" + name + "</t>")) {
            marker.text = QString::fromUtf8(listed.text);
            addMarker(all, marker);
        }
    }
}

/// The texts of all elements of a part, in which any element may hold a text.
QByteArray elementTexts(const QByteArray &part)
{
    QByteArray texts;
    for (opc::TagCursor cursor(part); cursor.next();) {
        const qsizetype begin = cursor.tag().end;
        const qsizetype end = std::max(part.indexOf('<', begin), begin);
        texts += "<v>" + QByteArrayView(part).sliced(begin, end - begin).toByteArray() + "</v>";
    }
    return texts;
}

Result<void, Error> addPart(opc::PackageCopy &package, const TemplateMarker &place,
                            std::vector<TemplateMarker> &all)
{
    const auto text = textOf(package, place.part);
    const bool isData = isDataPart(place.part);
    // Without UTF-8 no marker is found in data, and the document is good all the same.
    if (!text && !(isData && text.fault().code == Error::Encoding)) {
        return text.fault();
    }
    const QByteArray searched = text ? (isData ? elementTexts(*text) : *text) : QByteArray();
    for (const opc::ListedMarker &listed : opc::listMarkers(searched)) {
        TemplateMarker marker = place;
        marker.text = opc::decoded(listed.text);
        marker.runs = listed.pieces;
        marker.isEscaped = listed.text.contains('&');
        marker.isNumeric = listed.isNumeric;
        addMarker(all, marker);
    }
    const QByteArray relationships = opc::relationshipPartOf(place.part);
    if (package.names().find(relationships)) {
        const auto read = textOf(package, relationships);
        if (!read) {
            return read.fault();
        }
        addTargets(*read, place, all);
    }
    return {};
}

} // namespace

Result<std::vector<TemplateMarker>, Error> listTemplate(zip::PackageReader &source)
{
    opc::PackageCopy package(source, [] { return true; });
    const PartLocations locations(source);
    std::vector<TemplateMarker> all;
    for (const zip::Member &member : source.members()) {
        TemplateMarker place;
        place.part = standardName(member.name);
        place.location = locations.of(place.part);
        place.isInBody =
            isNamed(place.part, locations.body()) || beginsLike(place.part, kSlidePrefix);
        // Other parts, such as styles, have no texts that a run could fill.
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
