// The body of a document is usually in word/document.xml. Some programs give it another name, which
// only the relationships of the package say (ECMA-376 part 2, 6.5).
#include "codecs/document/document_parts.h"

namespace corvanta::document {

QByteArray bodyPart(opc::PackageCopy &package)
{
    const QByteArray usual(kDocumentPart);
    const QByteArray main = package.names().find(usual) ? usual : package.mainPart(usual);
    return beginsLike(main, "word/") ? main : usual;
}

} // namespace corvanta::document
