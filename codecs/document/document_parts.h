// Names of the parts that can have markers (ECMA-376 part 1, 11.3 and 13.3).
//
// Names are fixed by convention only: the relationships of the package name the main part, and some
// programs write "word/document2.xml".
#pragma once
#include "codecs/opc/package_copy.h"

#include <QByteArray>
#include <QString>

#include <array>

namespace corvanta::document {

inline constexpr char kDocumentPart[] = "word/document.xml";
inline constexpr char kStylesPart[] = "word/styles.xml";
inline constexpr char kPresentationPart[] = "ppt/presentation.xml";
// Beginnings of names; the parts are numbered.
inline constexpr char kSlidePrefix[] = "ppt/slides/slide";

/// Parts with texts other than the body and the slides.
struct OtherPart
{
    enum class Kind : quint8 {
        Whole, ///< a reader sees it as a part of the document
        Piece, ///< a piece of the part that refers to it
        Data,  ///< content controls show its texts, whatever their own are
    };
    const char *prefix;   ///< the beginning of the name; a number and ".xml" follow
    const char *location; ///< what readers call it
    Kind kind = Kind::Whole;
};
inline constexpr std::array<OtherPart, 17> kOtherParts{{
    {"word/header", "header"},
    {"word/footer", "footer"},
    {"word/footnotes", "footnotes"},
    {"word/endnotes", "endnotes"},
    {"word/comments", "comments"},
    {"word/charts/chart", "chart", OtherPart::Kind::Piece},
    {"word/diagrams/data", "diagram", OtherPart::Kind::Piece},
    {"word/diagrams/drawing", "diagram",
     OtherPart::Kind::Piece}, // the same texts as they were drawn last
    {"ppt/notesSlides/notesSlide", "notes"},
    {"ppt/charts/chart", "chart", OtherPart::Kind::Piece},
    {"ppt/diagrams/data", "diagram", OtherPart::Kind::Piece},
    {"ppt/diagrams/drawing", "diagram", OtherPart::Kind::Piece},
    {"ppt/slideLayouts/slideLayout", "slide layout"},
    {"ppt/slideMasters/slideMaster", "slide master"},
    {"docProps/core", "document properties", OtherPart::Kind::Data},
    {"docProps/app", "document properties", OtherPart::Kind::Data},
    {"customXml/item", "custom XML", OtherPart::Kind::Data},
}};

/// A member's name as in the standard: some packers write "\".
inline QByteArray standardName(const QByteArray &member)
{
    return QByteArray(member).replace('\\', '/');
}

/// Whether a part has one of the names above, or begins with it; in any letter case, as part names
/// are compared (ECMA-376 part 2, 6.2.2).
inline bool isNamed(const QByteArray &part, QByteArrayView name)
{
    return part.compare(name, Qt::CaseInsensitive) == 0;
}
inline bool beginsLike(const QByteArray &part, QByteArrayView prefix)
{
    return QLatin1StringView(part).startsWith(QLatin1StringView(prefix), Qt::CaseInsensitive);
}

/// The entry of kOtherParts for a part; null for any other part.
const OtherPart *otherPart(const QByteArray &part);
/// Whether it is of the kind Data. Such parts come from any program and may have any encoding.
bool isDataPart(const QByteArray &part);

/// The part of a Word document with its body: kDocumentPart or, without such a member, the main
/// part of the package if it is in the same folder, and else kDocumentPart.
QByteArray bodyPart(opc::PackageCopy &package);

/// The part with the styles of a Word document: kStylesPart or, without such a member, the one that
/// the body refers to, and else kStylesPart.
QByteArray stylesPart(opc::PackageCopy &package);

} // namespace corvanta::document
