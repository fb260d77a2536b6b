// A Word document or presentation with markers, from which documents are made.
//
// read() searches the parts once. write() then makes a document from the values of a row: unchanged
// members are written in their stored form, which is kept in memory, and the changed ones are put
// together from the pieces between the markers. Threads: one at a time.
#pragma once
#include "codecs/document/document_part.h"
#include "codecs/opc/content_types.h"
#include "codecs/opc/member_writer.h"
#include "codecs/opc/part_names.h"
#include "codecs/zip/package_reader.h"

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace corvanta::document {

/// The program that opens the documents; it decides which parts are searched.
enum class DocumentKind : quint8 { Word, Presentation };

/// What is searched for, and where.
struct TemplateOptions
{
    DocumentKind kind = DocumentKind::Word;
    MarkerLists markers = {};
    bool linksImages = false; ///< pictures are linked, not stored
    bool joinsRuns = false;   ///< also markers that runs divide, or that hold escaped characters
    bool allParts = false;    ///< also the parts of kOtherParts, such as headers and notes
    bool fitsImages = false;  ///< pictures keep their ratio inside the box of the placeholder
};

/// An image file as it is stored in documents. Constant once made, so that documents share it.
struct StoredImage
{
    zip::RawMember content; ///< without a name
    QByteArray extension;   ///< of the media member, without a dot
    ImageInfo info;
};

/// The pictures of a row, per image column; null where the template has no placeholder. Empty with
/// linksImages, where the targets of RowValues are complete.
using RowImages = std::vector<std::shared_ptr<const StoredImage>>;

/// The parts are searched once, by read(); write() changes nothing but the kept bytes of members,
/// so it can be called for any number of rows.
class DocumentTemplate
{
public:
    /// `source` must outlive the template. `isRunning` returns false to stop. Faults name their
    /// member: those of a member, Encoding (not UTF-8), Unexpected (no template of this kind),
    /// Stopped.
    static Result<std::unique_ptr<DocumentTemplate>, opc::Error>
    read(zip::PackageReader &source, const TemplateOptions &options,
         const std::function<bool()> &isRunning);

    // By column of the markers: whether the value is needed.

    /// As text of an element, with "&", "<" and ">" escaped.
    bool hasText(size_t column) const { return m_hasText[column]; }
    /// As value of an attribute, with quotes escaped, too.
    bool hasAttribute(size_t column) const { return m_hasAttribute[column]; }
    /// By column of MarkerLists::images.
    bool hasImage(size_t column) const { return m_hasImage[column]; }

    /// Write all members of a document but its directory. Fills the targets of `values` from
    /// `images`. Errors: those of MemberWriter, and those of the content types.
    Result<void, opc::Error> write(opc::MemberWriter &output, RowValues values,
                                   const RowImages &images);

private:
    /// A member of the template, in its order.
    struct Entry
    {
        zip::Member member;
        std::optional<zip::RawMember> kept = {}; // stored bytes of an unchanged member
        std::optional<DocumentPart> part = {};   // of a member with markers
    };
    using Media = std::vector<std::pair<QByteArray, const StoredImage *>>; // members and contents

    DocumentTemplate(zip::PackageReader &source, const TemplateOptions &options);

    // Read and search the parts, each after its relationships. The entries of both get a part.
    Result<void, opc::Error> readParts(const std::function<bool()> &isRunning);
    /// Whether the options include this member in the search.
    bool isEdited(const QByteArray &member) const;
    Result<void, opc::Error> readPart(Entry &entry);
    Result<void, opc::Error> readRelationships(const QByteArray &part,
                                               std::vector<Placeholder> *placeholders);
    Result<QByteArray, opc::Error> textOf(const zip::Member &member);
    /// The text of a part with what does not depend on the rows: joined markers, and pictures that
    /// refer to stored or linked images.
    QByteArray prepared(const QByteArray &text, const std::vector<Placeholder> &placeholders) const;
    /// Give the pictures of a row their members, and set the targets of `values` to them.
    Media nameMedia(const RowImages &images, RowValues &values) const;
    /// [Content_Types].xml with the types of these images.
    Result<QByteArray, opc::Error> typesWith(const Media &media);
    Result<void, opc::Error> writeEntry(opc::MemberWriter &output, Entry &entry,
                                        const RowValues &values);
    /// Write an unchanged member; keeps its stored bytes, up to a limit for all of them.
    Result<void, opc::Error> copy(opc::MemberWriter &output, Entry &entry);

    zip::PackageReader &m_source;
    TemplateOptions m_options;
    opc::MemberNames m_names;
    QByteArray m_main; // the part that makes it a template of its kind
    std::vector<Entry> m_entries;
    qint64 m_keptBytes = 0;
    std::optional<opc::ContentTypes> m_types; // once read
    std::vector<bool> m_hasText;
    std::vector<bool> m_hasAttribute;
    std::vector<bool> m_hasImage;
};

} // namespace corvanta::document
