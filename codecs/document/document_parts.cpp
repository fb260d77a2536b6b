#include "codecs/document/document_parts.h"

namespace corvanta::document {

QByteArray bodyPart(opc::PackageCopy &package)
{
    const QByteArray usual(kDocumentPart);
    const QByteArray main = package.names().find(usual) ? usual : package.mainPart(usual);
    return beginsLike(main, "word/") ? main : usual;
}

} // namespace corvanta::document
