// The elements that are read; the prefix of r:id is any that is bound to the relationships:
//
//   <workbook>
//     <workbookPr date1904="1"/>
//     <sheets><sheet name="Data" sheetId="1" state="hidden" r:id="rId1"/></sheets>
//     <definedNames><definedName name="Area"
//     localSheetId="0">Data!$A$1:$C$9</definedName></definedNames>
//   </workbook>
#include "codecs/xlsx/read/workbook_sheets.h"

#include "codecs/opc/outline.h"
#include "codecs/sheet/cell_area.h"

#include <QHash>

using namespace Qt::StringLiterals;

namespace corvanta::xlsx {

namespace {

QString textOf(const opc::Tag &tag, QByteArrayView name)
{
    return opc::decoded(tag.attribute(name).value_or(QByteArrayView()));
}

bool isTrue(const opc::Tag &tag, QByteArrayView name)
{
    const QString value = textOf(tag, name);
    return value == "1"_L1 || value == "true"_L1 || value == "on"_L1;
}

/// The value of the attribute with this local name and some prefix.
QByteArray prefixedAttribute(const opc::Tag &tag, QByteArrayView local)
{
    const auto attributes = tag.attributes();
    for (const opc::Attribute &attribute :
         attributes ? *attributes : std::vector<opc::Attribute>()) {
        const qsizetype colon = attribute.name.indexOf(':');
        if (colon >= 0 && attribute.name.sliced(colon + 1) == local) {
            return attribute.value.toByteArray();
        }
    }
    return {};
}

sheet::SheetVisibility visibilityOf(const opc::Tag &tag)
{
    const QString state = textOf(tag, "state");
    return state == "hidden"_L1       ? sheet::SheetVisibility::Hidden
           : state == "veryHidden"_L1 ? sheet::SheetVisibility::VeryHidden
                                      : sheet::SheetVisibility::Visible;
}

void readSheets(const opc::Outline &outline, WorkbookSheets *workbook)
{
    const auto parent = outline.child(0, "sheets");
    for (const int index : parent ? outline.children(*parent, "sheet") : std::vector<int>()) {
        const opc::Tag &tag = outline.element(index).tag;
        WorkbookSheets::Entry entry;
        entry.info.name = textOf(tag, "name");
        entry.info.visibility = visibilityOf(tag);
        entry.relationshipId = prefixedAttribute(tag, "id");
        workbook->sheets.push_back(entry);
    }
}

/// The first sheet of each name, without letter case. A search per defined name would take hours
/// for a hostile workbook.
QHash<QString, int> sheetsByName(const WorkbookSheets &workbook)
{
    QHash<QString, int> byName;
    for (size_t i = workbook.sheets.size(); i > 0; --i) {
        byName.insert(workbook.sheets[i - 1].info.name.toCaseFolded(), static_cast<int>(i - 1));
    }
    return byName;
}

void readNames(QByteArrayView text, const opc::Outline &outline, WorkbookSheets *workbook)
{
    const auto parent = outline.child(0, "definedNames");
    const QHash<QString, int> byName = sheetsByName(*workbook);
    for (const int index : parent ? outline.children(*parent, "definedName") : std::vector<int>()) {
        const opc::Element &element = outline.element(index);
        sheet::DefinedName name;
        name.name = textOf(element.tag, "name");
        bool isLocal = false;
        const int scope = textOf(element.tag, "localSheetId").toInt(&isLocal);
        name.scope = isLocal ? scope : -1;
        const qsizetype begin = element.tag.end;
        const QString refersTo =
            opc::decoded(text.sliced(begin, std::max<qsizetype>(element.closeBegin - begin, 0)));
        if (const auto area = sheet::parseSheetArea(refersTo)) {
            name.sheet = byName.value(area->sheet.toCaseFolded(), -1);
            name.area = name.sheet >= 0 ? std::optional(area->area) : std::nullopt;
        }
        if (!isTrue(element.tag, "function") && !isTrue(element.tag, "vbProcedure")) {
            workbook->names.push_back(name);
        }
    }
}

} // namespace

Result<WorkbookSheets, opc::Error> readWorkbookSheets(QByteArrayView text)
{
    const auto outline = opc::Outline::readRootedIn(text, "workbook");
    if (!outline) {
        return outline.fault();
    }
    WorkbookSheets workbook;
    if (const auto properties = outline->child(0, "workbookPr")) {
        workbook.uses1904 = isTrue(outline->element(*properties).tag, "date1904");
    }
    readSheets(*outline, &workbook);
    readNames(text, *outline, &workbook);
    return workbook;
}

} // namespace corvanta::xlsx
