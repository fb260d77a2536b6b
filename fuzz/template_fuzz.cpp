// Changes the parts of a template: the first byte selects what the rest is. Checks that well-formed
// text stays well-formed, and that markers that are replaced by themselves change nothing.
#include "codecs/document/document_part.h"
#include "codecs/document/document_text.h"
#include "codecs/document/table_places.h"
#include "codecs/opc/marker_search.h"
#include "codecs/opc/outline.h"
#include "fuzz/support/require.h"

using namespace corvanta::document;
using corvanta::opc::Outline;

namespace {

const MarkerLists kMarkers{{"%A%", "%B&C%", "%"}, {"%P%", "%Q%"}};

bool isWellFormed(QByteArrayView text)
{
    return static_cast<bool>(Outline::read(text));
}

void requireWellFormed(QByteArrayView before, QByteArrayView after)
{
    require(!isWellFormed(before) || isWellFormed(after));
}

RowValues markersThemselves()
{
    return {kMarkers.texts, kMarkers.texts, kMarkers.images, std::vector<ImageInfo>(2)};
}

void changeText(const QByteArray &text)
{
    qsizetype end = 0;
    for (const auto &hit : corvanta::opc::findMarkers(text, kMarkers.texts)) {
        require(hit.begin >= end && text.mid(hit.begin, hit.end - hit.begin) ==
                                        kMarkers.texts[static_cast<size_t>(hit.marker)]);
        end = hit.end;
    }
    const QByteArray joined = corvanta::opc::joinMarkers(text, kMarkers.texts);
    require(corvanta::opc::findSplitMarkers(joined, kMarkers.texts).empty());
    requireWellFormed(text, joined);
    corvanta::opc::listMarkers(text);
    const std::vector<Placeholder> placeholders{{0, "rId1"}, {1, "rId2"}};
    const DocumentPart part = DocumentPart::ofText(text, kMarkers, false, placeholders);
    requireWellFormed(text, part.filled(markersThemselves()));
    require(DocumentPart::ofText(text, kMarkers, false, {}).filled(markersThemselves()) == text);
    for (const bool isLinked : {false, true}) {
        requireWellFormed(text, withPictureMode(text, placeholders, isLinked));
    }
}

void placeTables(const QByteArray &text)
{
    findTablePlaces(text, kMarkers.texts);
    QByteArray out;
    qsizetype at = 0;
    for (const TablePlace &place : findParagraphPlaces(text, kMarkers.texts)) {
        require(place.copyEnd >= at && place.resume > place.copyEnd);
        out += text.mid(at, place.copyEnd - at) + place.before + "<w:tbl/>" + place.after;
        at = place.resume;
    }
    requireWellFormed(text, out + text.mid(at));
}

void changeRelationships(const QByteArray &text)
{
    for (const bool isLinked : {false, true}) {
        const QByteArray changed = withTargetMode(text, kMarkers.images, isLinked);
        requireWellFormed(text, changed);
        require(findPlaceholders(changed, kMarkers.images).size() ==
                findPlaceholders(text, kMarkers.images).size());
        const auto part = DocumentPart::ofRelationships(changed, kMarkers, "../media/");
        requireWellFormed(changed, part.filled(markersThemselves()));
    }
}

void writeText(const QByteArray &bytes)
{
    const QStringView units(reinterpret_cast<const char16_t *>(bytes.constData()),
                            bytes.size() / 2);
    for (const bool closesText : {false, true}) {
        TextCounts counts;
        const TextRules rules{TextPlace::Word, true, true, closesText};
        const QByteArray text = documentText(units, rules, &counts);
        require(text.size() <= roomForText(units, rules));
        require(isWellFormed("<w:r><w:t>" + text + "</w:t></w:r>"));
        require(isWellFormed("<a b=\"" + documentText(units, {TextPlace::Attribute}, &counts) +
                             "\"/>"));
    }
}

} // namespace

// NOLINTNEXTLINE(readability-identifier-naming): libFuzzer's entry
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0) {
        return 0;
    }
    // A copy of its own, so that a read beyond the end is found.
    const QByteArray rest(reinterpret_cast<const char *>(data + 1),
                          static_cast<qsizetype>(size - 1));
    switch (data[0] % 5) {
    case 0:
        changeText(rest);
        break;
    case 1:
        placeTables(rest);
        break;
    case 2:
        changeRelationships(rest);
        break;
    case 3:
        writeText(rest);
        break;
    default:
        imageInfo(rest);
        break;
    }
    return 0;
}
