// What new and updated workbooks have in common: the end of the sheet, and the relationships of its
// links. The ids in the sheet and in the relationships must agree; both count from `takenIds` + 1
// in the order in which the addresses were first used.
#include "codecs/xlsx/workbook_target.h"

#include "codecs/xlsx/sheet_tail.h"
#include "codecs/xlsx/styles_part.h"

namespace corvanta::xlsx {

using opc::Error;

bool WorkbookTarget::addLookTo(QByteArray *styles)
{
    if (!m_look.needsStyles()) {
        return true;
    }
    auto added = addLook(styles, m_look);
    if (added) {
        m_lookStyles = std::move(*added);
    }
    return static_cast<bool>(added);
}

void WorkbookTarget::setLookStyles(sheet::SheetOptions *options) const
{
    if (isNewSheet()) {
        options->headerStyle = m_lookStyles.header;
        options->columnStyles = m_lookStyles.columns;
    }
}

QByteArray WorkbookTarget::tailOf(const sheet::SheetWriter &sheet)
{
    if (!m_look.hasFilter || sheet.columnCount() == 0) {
        return newSheetTail({});
    }
    const NamedRange range{{}, 1, sheet.row() - 1, sheet.columnCount() - 1};
    m_filterNames.push_back(
        filterName(range, m_sheetName, static_cast<int>(sheetNames().size()) - 1));
    return newSheetTail(filterRange(range));
}

// Each new sheet with a filter has a name of its own; the range of the user has one scope.
std::vector<DefinedName> WorkbookTarget::definedNames(const WorkbookEnd &end) const
{
    std::vector<DefinedName> names = m_filterNames;
    if (end.range) {
        const QString &sheet = end.range->sheet;
        names.push_back(
            {end.range->name, rangeReference(*end.range, sheet.isEmpty() ? m_sheetName : sheet)});
    }
    return names;
}

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
    m_linkCount = 0;
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
