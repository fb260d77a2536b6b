// The body of a document is usually in word/document.xml, and its styles are in word/styles.xml.
// Some programs give them other names, such as word/styles2.xml, which only the relationships of
// the package and of the body say (ECMA-376 part 2, 6.5).
#include "codecs/document/document_parts.h"

#include <algorithm>

namespace corvanta::document {

const OtherPart *otherPart(const QByteArray &part)
{
    const auto *const found =
        std::find_if(kOtherParts.begin(), kOtherParts.end(),
                     [&](const OtherPart &one) { return beginsLike(part, one.prefix); });
    return found != kOtherParts.end() && part.toLower().endsWith(".xml") ? found : nullptr;
}

bool isDataPart(const QByteArray &part)
{
    const OtherPart *const other = otherPart(part);
    return other != nullptr && other->kind == OtherPart::Kind::Data;
}

QByteArray bodyPart(opc::PackageCopy &package)
{
    const QByteArray usual(kDocumentPart);
    const QByteArray main = package.names().find(usual) ? usual : package.mainPart(usual);
    return beginsLike(main, "word/") ? main : usual;
}

QByteArray stylesPart(opc::PackageCopy &package)
{
    QByteArray usual(kStylesPart);
    if (package.names().find(usual)) {
        return usual;
    }
    const QByteArray body = bodyPart(package);
    const auto relationships = package.readRelationships(body);
    const opc::Relationship *const styles = relationships ? relationships->find("styles") : nullptr;
    return styles != nullptr ? opc::resolvedTarget(body, styles->target) : usual;
}

} // namespace corvanta::document
