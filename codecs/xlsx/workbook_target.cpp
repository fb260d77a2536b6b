// What new and updated workbooks have in common: the end of the sheet, and the relationships of its
// links. The ids in the sheet and in the relationships must agree; both count from `takenIds` + 1
// in the order in which the addresses were first used.
#include "codecs/xlsx/workbook_target.h"

#include "codecs/xlsx/sheet_tail.h"

namespace corvanta::xlsx {

using opc::Error;

Result<void, Error> WorkbookTarget::put(sheet::SheetWriter &sheet, QByteArrayView xml)
{
    return sheet.put(xml) ? Result<void, Error>() : Fault<Error>{Error::WriteFailed};
}

/// The sheet must hand over all that it has formatted before its member is closed.
Result<void, Error> WorkbookTarget::putTail(sheet::SheetWriter &sheet, const QByteArray &tail,
                                            const QByteArray &rootTag, const Family &family,
                                            quint64 takenIds)
{
    QByteArray text = tail;
    if (!sheet.linkUses().empty()) {
        auto linked = withHyperlinks(tail, rootTag, family, sheet.linkUses(), takenIds);
        if (!linked) {
            return linked.fault();
        }
        text = std::move(linked->text);
        m_linkCount = linked->linkCount;
    }
    if (auto done = put(sheet, text); !done) {
        return done;
    }
    sheet.commit();
    return m_output->close();
}

void WorkbookTarget::addAddresses(opc::Relationships *relationships,
                                  const sheet::SheetWriter &sheet, const Family &family,
                                  quint64 takenIds)
{
    const QString type = opc::relationshipType(family.relationships, "hyperlink");
    for (const QString &url : sheet.urls()) {
        relationships->add({"rId" + QByteArray::number(++takenIds), type, url, true});
    }
}

} // namespace corvanta::xlsx
