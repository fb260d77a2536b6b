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

#include <unordered_map>

using namespace Qt::StringLiterals;

namespace corvanta::xlsx {

namespace {

bool isTrue(const opc::Tag &tag, QByteArrayView name)
{
    const QString value = opc::attributeText(tag, name);
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
    const QString state = opc::attributeText(tag, "state");
    return state == "hidden"_L1       ? sheet::SheetVisibility::Hidden
           : state == "veryHidden"_L1 ? sheet::SheetVisibility::VeryHidden
                                      : sheet::SheetVisibility::Visible;
}

/// A sheet as the list has it. Its part, and with it its kind, is found by the relationship.
WorkbookSheets::Entry entryOf(const opc::Tag &tag)
{
    sheet::SheetInfo info;
    info.name = opc::attributeText(tag, "name");
    info.visibility = visibilityOf(tag);
    return {info, prefixedAttribute(tag, "id")};
}

void readSheets(const opc::Outline &outline, WorkbookSheets *workbook)
{
    const auto parent = outline.child(0, "sheets");
    for (const int index : parent ? outline.children(*parent, "sheet") : std::vector<int>()) {
        workbook->sheets.push_back(entryOf(outline.element(index).tag));
    }
}

/// The first sheet of each name, without letter case. A search per defined name would take hours
/// for a hostile workbook.
std::unordered_map<QString, int> sheetsByName(const WorkbookSheets &workbook)
{
    std::unordered_map<QString, int> byName;
    for (size_t i = 0; i < workbook.sheets.size(); ++i) {
        byName.emplace(workbook.sheets[i].info.name.toCaseFolded(), static_cast<int>(i));
    }
    return byName;
}

/// The sheet, from 0, in which a defined name is valid; -1 for the whole workbook.
int scopeOf(const opc::Tag &tag)
{
    bool isLocal = false;
    const int scope = opc::attributeText(tag, "localSheetId").toInt(&isLocal);
    return isLocal ? scope : -1;
}

/// The formula of a defined name, which is the text of its element.
QString refersTo(QByteArrayView text, const opc::Element &element)
{
    const qsizetype begin = element.tag.end;
    return opc::decoded(text.sliced(begin, std::max<qsizetype>(element.closeBegin - begin, 0)));
}

/// Whether a name is that of a macro or a function, which has no cells.
bool isProcedure(const opc::Tag &tag)
{
    return isTrue(tag, "function") || isTrue(tag, "vbProcedure");
}

void readNames(QByteArrayView text, const opc::Outline &outline, WorkbookSheets *workbook)
{
    const auto parent = outline.child(0, "definedNames");
    const std::unordered_map<QString, int> byName = sheetsByName(*workbook);
    for (const int index : parent ? outline.children(*parent, "definedName") : std::vector<int>()) {
        const opc::Element &element = outline.element(index);
        sheet::DefinedName name;
        name.name = opc::attributeText(element.tag, "name");
        name.scope = scopeOf(element.tag);
        if (const auto area = sheet::parseSheetArea(refersTo(text, element))) {
            const auto found = byName.find(area->sheet.toCaseFolded());
            name.sheet = found != byName.end() ? found->second : -1;
            name.area = name.sheet >= 0 ? std::optional(area->area) : std::nullopt;
        }
        if (!isProcedure(element.tag)) {
            workbook->names.push_back(name);
        }
    }
}

/// Whether the workbook counts its days from 1904.
bool uses1904(const opc::Outline &outline)
{
    const auto properties = outline.child(0, "workbookPr");
    return properties && isTrue(outline.element(*properties).tag, "date1904");
}

} // namespace

Result<WorkbookSheets, opc::Error> readWorkbookSheets(QByteArrayView text)
{
    const auto outline = opc::Outline::readRootedIn(text, "workbook");
    if (!outline) {
        return outline.fault();
    }
    WorkbookSheets workbook;
    workbook.uses1904 = uses1904(*outline);
    readSheets(*outline, &workbook);
    readNames(text, *outline, &workbook);
    return workbook;
}

} // namespace corvanta::xlsx
