// Any bytes as a template of documents: its markers are listed, and a document that is made from it
// is a package again, with the members of the template. The same bytes as rows of a table.
//
// Byte 0: 1: a presentation, 2: linked pictures, 4: joined runs, 8: all parts, 16: fitted pictures.
#include "codecs/document/document_template.h"
#include "codecs/document/part_locations.h"
#include "codecs/document/template_list.h"
#include "codecs/zip/package_writer.h"
#include "fuzz/support/require.h"
#include "fuzz/support/table_text_property.h"

using namespace corvanta;
using namespace corvanta::document;

namespace {

/// Markers of the template itself, so that all of them are found.
MarkerLists markersOf(zip::PackageReader &source)
{
    MarkerLists markers;
    const auto listed = listTemplate(source);
    for (const TemplateMarker &marker : listed ? *listed : std::vector<TemplateMarker>()) {
        const bool isPicture = marker.location.startsWith(QStringLiteral("picture"));
        (isPicture ? markers.images : markers.texts).push_back(marker.text.toUtf8());
    }
    return markers;
}

RowValues valuesOf(const MarkerLists &markers)
{
    RowValues values;
    values.texts.resize(markers.texts.size(), "a &amp; b");
    values.attributes.resize(markers.texts.size(), "&quot;");
    values.targets.resize(markers.images.size(), "file:///a.png");
    values.sizes.resize(markers.images.size());
    return values;
}

RowImages imagesOf(const TemplateOptions &options)
{
    if (options.linksImages) {
        return {};
    }
    const auto image = std::make_shared<const StoredImage>(
        StoredImage{zip::deflateMember("image", "picture"), "png", {}});
    return RowImages(options.markers.images.size(), image);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0) {
        return 0;
    }
    checkTableText(Feed(data, size));
    MemorySource bytes(QByteArrayView(data + 1, static_cast<qsizetype>(size) - 1));
    const auto source = zip::PackageReader::open(bytes);
    if (!source) {
        return 0;
    }
    const PartLocations locations(**source);
    for (const zip::Member &member : (*source)->members()) {
        (void)locations.of(member.name);
        (void)locations.sheetOf(member.name);
        (void)locations.ofReference(member.name);
    }
    const TemplateOptions options{(data[0] & 1) != 0 ? DocumentKind::Presentation
                                                     : DocumentKind::Word,
                                  markersOf(**source),
                                  (data[0] & 2) != 0,
                                  (data[0] & 4) != 0,
                                  (data[0] & 8) != 0,
                                  (data[0] & 16) != 0};
    const auto document = DocumentTemplate::read(**source, options, [] { return true; });
    if (!document) {
        return 0;
    }
    MemorySink sink;
    zip::PackageWriter package(sink, {{}, 0});
    opc::MemberWriter output(package);
    if (!(*document)->write(output, valuesOf(options.markers), imagesOf(options))) {
        return 0;
    }
    require(bool(output.finish()));
    MemorySource written(sink.bytes());
    const auto again = zip::PackageReader::open(written);
    require(bool(again));
    // A part that is there twice may be written once.
    for (const zip::Member &member : (*source)->members()) {
        require((*again)->find(member.name) != nullptr);
    }
    return 0;
}
