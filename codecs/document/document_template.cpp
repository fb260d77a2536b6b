// The members of a template that are changed (ECMA-376 part 1, 11.3 and 13.3):
//
//   [Content_Types].xml                        the types of images
//   word/document.xml                          texts      word/_rels/document.xml.rels    pictures
//   ppt/slides/slide1.xml ...                  texts      ppt/slides/_rels/slide1.xml.rels ...
//   word/header1.xml, ppt/notesSlides/notesSlide1.xml ...    with allParts: kOtherParts; and .rels
//   word/media/__Kobi_img1.png, ppt/media/__Kobi_img1.png                          added
#include "codecs/document/document_template.h"

#include "codecs/document/document_parts.h"
#include "codecs/opc/marker_search.h"

#include <algorithm>
#include <set>

namespace corvanta::document {

using opc::Error;

namespace {

/// The stored members that are kept in memory; larger templates are read again for each document.
constexpr qint64 kMaxKeptBytes = qint64(64) << 20;

/// Whether the image is among the new members already: rows can use one image several times.
bool hasMedia(const std::vector<std::pair<QByteArray, const StoredImage *>> &media,
              const StoredImage *image)
{
    return std::any_of(media.begin(), media.end(),
                       [&](const auto &one) { return one.second == image; });
}

} // namespace

DocumentTemplate::DocumentTemplate(zip::PackageReader &source, const TemplateOptions &options)
    : m_source(source)
    , m_options(options)
    , m_hasText(options.markers.texts.size())
    , m_hasAttribute(options.markers.texts.size())
    , m_hasImage(options.markers.images.size())
{
    std::vector<QByteArray> names;
    std::set<QByteArray> seen; // no reader can reach the later members of a name
    for (const zip::Member &member : source.members()) {
        if (seen.insert(member.name).second) {
            names.push_back(member.name);
            m_entries.push_back({member});
        }
    }
    m_names = opc::MemberNames(names);
}

Result<std::unique_ptr<DocumentTemplate>, Error>
DocumentTemplate::read(zip::PackageReader &source, const TemplateOptions &options,
                       const std::function<bool()> &isRunning)
{
    std::unique_ptr<DocumentTemplate> made(new DocumentTemplate(source, options));
    opc::PackageCopy package(source, isRunning);
    made->m_main =
        options.kind == DocumentKind::Word ? bodyPart(package) : QByteArray(kPresentationPart);
    if (!made->m_names.find(made->m_main)) {
        return Fault{Error::NoMember, QString::fromUtf8(made->m_main)};
    }
    const auto done = made->readParts(isRunning);
    if (!done) {
        return done.fault();
    }
    return made;
}

bool DocumentTemplate::isEdited(const QByteArray &member) const
{
    const QByteArray name = standardName(member);
    const bool isMain = m_options.kind == DocumentKind::Presentation
                            ? beginsLike(name, kSlidePrefix)
                            : isNamed(name, m_main);
    return isMain || (m_options.allParts && otherPart(name) != nullptr);
}

Result<void, Error> DocumentTemplate::readParts(const std::function<bool()> &isRunning)
{
    for (Entry &entry : m_entries) {
        if (!isRunning()) {
            return Fault<Error>{Error::Stopped};
        }
        if (isEdited(entry.member.name)) {
            if (const auto done = readPart(entry); !done) {
                return done.fault();
            }
        }
    }
    return {};
}

Result<QByteArray, Error> DocumentTemplate::textOf(const zip::Member &member)
{
    auto text = m_source.readWhole(member);
    if (!text) {
        return opc::memberFault(text.fault().code, member.name);
    }
    if (!opc::isUtf8Text(*text)) {
        return Fault{Error::Encoding, QString::fromUtf8(member.name)};
    }
    return std::move(*text);
}

Result<void, Error> DocumentTemplate::readPart(Entry &entry)
{
    const auto text = textOf(entry.member);
    if (!text && text.fault().code == Error::Encoding &&
        isDataPart(standardName(entry.member.name))) {
        return {};
    }
    if (!text) {
        return text.fault();
    }
    std::vector<Placeholder> placeholders;
    if (const auto done = readRelationships(standardName(entry.member.name), &placeholders);
        !done) {
        return done.fault();
    }
    const QByteArray shown = prepared(*text, placeholders);
    auto part =
        DocumentPart::ofText(shown, m_options.markers, m_options.joinsRuns,
                             m_options.fitsImages ? placeholders : std::vector<Placeholder>());
    part.noteTexts(&m_hasText, &m_hasAttribute);
    // Without anything to replace the member keeps its stored bytes.
    if (part.hasSlots() || shown != *text) {
        entry.part = std::move(part);
    }
    return {};
}

Result<void, Error> DocumentTemplate::readRelationships(const QByteArray &part,
                                                        std::vector<Placeholder> *placeholders)
{
    const auto name = m_names.find(opc::relationshipPartOf(part));
    const auto entry = std::find_if(m_entries.begin(), m_entries.end(), [&](const Entry &one) {
        return name && one.member.name == *name;
    });
    // Without image columns the relationships need not be read.
    if (entry == m_entries.end() || m_options.markers.images.empty()) {
        return {};
    }
    const auto text = textOf(entry->member);
    if (!text) {
        return text.fault();
    }
    *placeholders = findPlaceholders(*text, m_options.markers.images);
    if (!placeholders->empty()) {
        // From word/document.xml, or from ppt/slides/slide1.xml and word/charts/chart1.xml.
        const QByteArray folder = part.count('/') > 1 ? "../media/" : "media/";
        entry->part = DocumentPart::ofRelationships(
            withTargetMode(*text, m_options.markers.images, m_options.linksImages),
            m_options.markers, m_options.linksImages ? QByteArray() : folder);
        entry->part->noteImages(&m_hasImage);
    }
    return {};
}

QByteArray DocumentTemplate::prepared(const QByteArray &text,
                                      const std::vector<Placeholder> &placeholders) const
{
    const QByteArray joined = m_options.joinsRuns
                                  ? opc::joinMarkers(text, escapedMarkers(m_options.markers.texts))
                                  : text;
    return withPictureMode(joined, placeholders, m_options.linksImages);
}

/// Give each picture of a row a member, and its targets to the values.
DocumentTemplate::Media DocumentTemplate::nameMedia(const RowImages &images,
                                                    RowValues &values) const
{
    const QByteArray folder = m_options.kind == DocumentKind::Word ? "word/media/" : "ppt/media/";
    Media media;
    std::vector<QByteArray> names; // without the folder, in the order of `media`
    int number = 0;
    // Numbers count within a document, so that equal rows make equal documents.
    for (size_t i = 0; i < images.size(); ++i) {
        const StoredImage *const image = images[i].get();
        // Two columns may name one file.
        if (image != nullptr && !hasMedia(media, image)) {
            QByteArray name;
            do {
                name = "__Kobi_img" + QByteArray::number(++number) + '.' + image->extension;
            } while (m_names.find(folder + name));
            media.emplace_back(folder + name, image);
            names.push_back(name);
        }
        for (size_t k = 0; k < media.size(); ++k) {
            if (image != nullptr && media[k].second == image) {
                values.targets[i] = names[k];
            }
        }
    }
    return media;
}

Result<QByteArray, Error> DocumentTemplate::typesWith(const Media &media)
{
    if (!m_types) {
        const QByteArray member =
            m_names.find(opc::kContentTypesPart).value_or(opc::kContentTypesPart);
        const auto text = m_source.readWhole(member);
        if (!text) {
            return opc::memberFault(text.fault().code, member);
        }
        auto types = opc::ContentTypes::read(*text);
        if (!types) {
            return Fault{types.fault().code, QString::fromUtf8(member)};
        }
        m_types = std::move(*types);
    }
    opc::ContentTypes types = *m_types;
    for (const auto &[name, image] : media) {
        const QByteArray extension = image->extension.toLower();
        // For every stored picture, programs expect that one of these two kinds is declared.
        const bool isJpeg = extension == "jpg" || extension == "jpeg";
        const ImageKind usual = isJpeg ? ImageKind::Jpeg : ImageKind::Png;
        types.declareExtension(extensionOf(usual), mediaTypeOf(usual));
        const ImageKind kind = kindOfExtension(extension).value_or(image->info.kind);
        types.declareExtension(image->extension, mediaTypeOf(kind));
    }
    return types.text();
}

Result<void, Error> DocumentTemplate::copy(opc::MemberWriter &output, Entry &entry)
{
    if (!entry.kept && m_keptBytes + entry.member.compressedSize <= kMaxKeptBytes) {
        auto raw = m_source.readRaw(entry.member);
        if (!raw) {
            return opc::memberFault(raw.fault().code, entry.member.name);
        }
        m_keptBytes += raw->bytes.size();
        entry.kept = std::move(*raw);
    }
    return entry.kept ? output.add(*entry.kept) : output.copy(m_source, entry.member);
}

Result<void, Error> DocumentTemplate::writeEntry(opc::MemberWriter &output, Entry &entry,
                                                 const RowValues &values)
{
    return entry.part ? output.write(entry.member.name, entry.part->filled(values))
                      : copy(output, entry);
}

Result<void, Error> DocumentTemplate::write(opc::MemberWriter &output, RowValues values,
                                            const RowImages &images)
{
    // Names come first: the relationships refer to them.
    const Media media = nameMedia(images, values);
    for (Entry &entry : m_entries) {
        const bool isTypes =
            !media.empty() && isNamed(standardName(entry.member.name), opc::kContentTypesPart);
        const auto types = isTypes ? typesWith(media) : QByteArray();
        if (!types) {
            return types.fault();
        }
        const auto done =
            isTypes ? output.write(entry.member.name, *types) : writeEntry(output, entry, values);
        if (!done) {
            return done.fault();
        }
    }
    for (const auto &[name, image] : media) {
        zip::RawMember member = image->content; // shares the bytes
        member.member.name = name;
        if (const auto done = output.add(member); !done) {
            return done.fault();
        }
    }
    return {};
}

} // namespace corvanta::document
