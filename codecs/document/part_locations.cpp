// Parts with texts and what readers call them (ECMA-376 part 1, 11.3 and 13.3):
//
//   word/document.xml          body             ppt/slides/slideN.xml             slide P
//   word/headerN.xml           header N         ppt/notesSlides/notesSlideN.xml   notes N
//   word/footerN.xml           footer N
//   word/footnotes.xml, endnotes.xml, comments.xml                 their names
//   charts/chartN.xml, diagrams/dataN.xml (SmartArt)               LOCATION chart, LOCATION diagram
//   ppt/slideLayouts/slideLayoutN.xml, ppt/slideMasters/slideMasterN.xml
//   docProps/core.xml, app.xml, customXml/itemN.xml                if content controls show them
//
// P is the place of the slide in the list of ppt/presentation.xml: <p:sldId r:id="rId3"/>.
//
// A sheet has the name in the list of the workbook, <sheet name="Sales" r:id="rId1"/>, and shows
// the charts that its drawing refers to (12.3 and 18.2.19).
#include "codecs/document/part_locations.h"

#include "codecs/document/document_parts.h"
#include "codecs/opc/markup_scan.h"

using namespace Qt::StringLiterals;

namespace corvanta::document {

namespace {

/// The places of the slides, from 1; empty if the presentation does not say them.
std::map<QByteArray, int> slideOrder(opc::PackageCopy &package)
{
    std::map<QByteArray, int> order;
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

} // namespace

PartLocations::PartLocations(zip::PackageReader &source)
{
    opc::PackageCopy package(source, [] { return true; });
    m_body = bodyPart(package);
    m_slides = slideOrder(package);
    addSheets(package);
    for (const zip::Member &member : source.members()) {
        const QByteArray part = standardName(member.name);
        if (const QString location = of(part); !location.isEmpty()) {
            addReferences(package, part, location);
            m_showsData = m_showsData || showsData(package, part);
        }
    }
}

bool PartLocations::showsData(opc::PackageCopy &package, const QByteArray &part)
{
    const auto text = beginsLike(part, "word/") ? package.read(part) : QByteArray();
    return text && text->contains("dataBinding");
}

void PartLocations::addReferences(opc::PackageCopy &package, const QByteArray &part,
                                  const QString &location)
{
    if (const auto relationships = package.readRelationships(part)) {
        for (const opc::Relationship &one : relationships->entries()) {
            // The first part wins.
            m_references.emplace(opc::resolvedTarget(part, one.target), location);
        }
    }
}

void PartLocations::addSheets(opc::PackageCopy &package)
{
    const QByteArray workbook = package.mainPart("xl/workbook.xml");
    const auto relationships = package.readRelationships(workbook);
    const auto text = relationships ? package.read(workbook) : Fault{opc::Error::NoMember};
    if (!text || !beginsLike(workbook, "xl/")) {
        return;
    }
    for (opc::TagCursor cursor(*text); cursor.next();) {
        const bool isSheet = cursor.tag().local() == "sheet";
        const auto id = isSheet ? cursor.tag().attribute("r:id") : std::nullopt;
        const auto name = isSheet ? cursor.tag().attribute("name") : std::nullopt;
        for (const opc::Relationship &one : relationships->entries()) {
            if (id && name && one.id == *id) {
                addCharts(package, opc::resolvedTarget(workbook, one.target), opc::decoded(*name));
            }
        }
    }
}

void PartLocations::addCharts(opc::PackageCopy &package, const QByteArray &sheet,
                              const QString &name)
{
    const auto relationships = package.readRelationships(sheet);
    const opc::Relationship *const drawing =
        relationships ? relationships->find("drawing") : nullptr;
    if (drawing == nullptr) {
        return;
    }
    const QByteArray part = opc::resolvedTarget(sheet, drawing->target);
    if (const auto charts = package.readRelationships(part)) {
        for (const opc::Relationship &one : charts->entries()) {
            m_sheets.emplace(opc::resolvedTarget(part, one.target), name);
        }
    }
}

QString PartLocations::of(const QByteArray &part) const
{
    if (!part.toLower().endsWith(".xml")) {
        return {};
    }
    if (isNamed(part, m_body)) {
        return u"body"_s;
    }
    if (beginsLike(part, kSlidePrefix)) {
        const auto place = m_slides.find(part);
        return place != m_slides.end() ? u"slide %1"_s.arg(place->second)
                                       : u"slide"_s + numberIn(part, kSlidePrefix);
    }
    const OtherPart *const other = otherPart(part);
    // Other texts of the properties are not part of the document.
    if (other == nullptr || (isDataPart(part) && !m_showsData)) {
        return {};
    }
    const QString location = QString::fromLatin1(other->location);
    const QString around = other->kind == OtherPart::Kind::Piece ? ofReference(part) : QString();
    return around.isEmpty() ? location + numberIn(part, other->prefix) : around + u' ' + location;
}

QString PartLocations::ofReference(const QByteArray &target) const
{
    const auto found = m_references.find(target);
    return found != m_references.end() ? found->second : QString();
}

QString PartLocations::sheetOf(const QByteArray &chart) const
{
    const auto found = m_sheets.find(chart);
    return found != m_sheets.end() ? found->second : QString();
}

} // namespace corvanta::document
