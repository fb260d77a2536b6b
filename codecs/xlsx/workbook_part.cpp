// The workbook part (ECMA-376 part 1, 18.2.27), a sequence:
//
//   <workbook>
//     <workbookPr date1904/>
//     <sheets>        <sheet name sheetId r:id/> ...         r:id: relationship to the sheet
//     <functionGroups/> <externalReferences/>
//     <definedNames>  <definedName name localSheetId>reference</definedName> ...
//     <calcPr calcId fullCalcOnLoad iterate .../>
//   </workbook>
#include "codecs/xlsx/workbook_part.h"

#include "base/mapped.h"
#include "base/text/sheet_name.h"
#include "codecs/opc/part_names.h"
#include "codecs/opc/splices.h"

#include <QByteArrayList>

#include <algorithm>
#include <limits>

namespace corvanta::xlsx {

namespace {

using opc::Attribute;
using opc::decoded;
using opc::Element;
using opc::Error;
using opc::Outline;
using opc::quotable;
using opc::Splices;
using opc::Tag;

constexpr quint32 kMaxSheetId = std::numeric_limits<quint32>::max();

/// The elements of a workbook that an update reads.
struct Parts
{
    Outline outline;
    Family family;
    int sheets;
};

/// The prefix that these nested tags bind to `uri`; the innermost binding counts.
std::optional<QByteArray> prefixFor(QByteArrayView uri,
                                    std::initializer_list<const Tag *> innermostFirst)
{
    for (const Tag *tag : innermostFirst) {
        const auto prefix = tag->prefixBoundTo(uri);
        if (prefix && !prefix->isEmpty()) {
            return prefix->toByteArray();
        }
    }
    return std::nullopt;
}

Result<Parts, Error> readParts(QByteArrayView text)
{
    auto outline = Outline::read(text);
    if (!outline) {
        return outline.fault();
    }
    const Tag &root = outline->root().tag;
    const auto sheets = outline->child(0, "sheets");
    if (root.local() != QByteArrayView("workbook") || !sheets) {
        return Fault<Error>{Error::Unexpected};
    }
    const bool isStrict = root.prefixBoundTo(kStrict.main).has_value();
    return Parts{std::move(*outline), isStrict ? kStrict : kTransitional, *sheets};
}

/// The prefix of the namespace may be declared on any of three elements, and have any name.
QByteArray relationshipIdOf(const Parts &parts, const Tag &sheet)
{
    const Tag &sheets = parts.outline.element(parts.sheets).tag;
    const auto prefix =
        prefixFor(parts.family.relationships, {&sheet, &sheets, &parts.outline.root().tag});
    const auto id = prefix ? sheet.attribute(*prefix + ":id") : std::nullopt;
    return id.value_or(QByteArrayView()).toByteArray();
}

SheetEntry sheetOf(const Parts &parts, const Tag &tag)
{
    const auto id = opc::partNumber(tag.attribute("sheetId").value_or(QByteArrayView()));
    return {opc::attributeText(tag, "name"), static_cast<quint32>(id.value_or(0)),
            relationshipIdOf(parts, tag)};
}

void addSheets(const Parts &parts, const std::vector<SheetEntry> &added, Splices *splices)
{
    const Outline &outline = parts.outline;
    const Element &sheets = outline.element(parts.sheets);
    const auto known = prefixFor(parts.family.relationships, {&sheets.tag, &outline.root().tag});
    const QByteArray prefix = known.value_or("r");
    const QByteArray declaration =
        known ? QByteArray() : " xmlns:r=\"" + parts.family.relationships.toByteArray() + '"';
    QByteArray list;
    for (const SheetEntry &sheet : added) {
        list += '<' + outline.qualified("sheet") + declaration + " name=\"" + quotable(sheet.name) +
                "\" sheetId=\"" + QByteArray::number(sheet.sheetId) + "\" " + prefix + ":id=\"" +
                sheet.relationshipId + "\"/>";
    }
    if (!list.isEmpty()) {
        splices->append(sheets, list);
    }
}

/// The end of the last child of the workbook that is the sheets element or in `names`.
qsizetype endOfLast(const Parts &parts, std::initializer_list<QByteArrayView> names)
{
    qsizetype at = parts.outline.element(parts.sheets).end;
    for (const QByteArrayView name : names) {
        for (const int index : parts.outline.children(0, name)) {
            at = std::max(at, parts.outline.element(index).end);
        }
    }
    return at;
}

/// The element of a defined name. Quotes need no escape in its text.
QByteArray definedNameText(const Outline &outline, const DefinedName &name)
{
    const QByteArray element = outline.qualified("definedName");
    return '<' + element + " name=\"" + quotable(name.name) + '"' + name.scopeAttributes() + '>' +
           quotable(name.refersTo).replace("&quot;", "\"") + "</" + element + '>';
}

/// Whether the element defines this name in its scope. Letter case does not count.
bool defines(const Tag &tag, const DefinedName &name)
{
    const auto scope = tag.attribute("localSheetId");
    const bool isScope =
        name.sheetIndex < 0 ? !scope : scope && *scope == QByteArray::number(name.sheetIndex);
    return isScope && opc::attributeText(tag, "name").compare(name.name, Qt::CaseInsensitive) == 0;
}

/// The entry of the list that defines a name, if there is one.
std::optional<Element> entryOf(const Outline &outline, int list, const DefinedName &name)
{
    for (const int index : outline.children(list, "definedName")) {
        if (defines(outline.element(index).tag, name)) {
            return outline.element(index);
        }
    }
    return std::nullopt;
}

void setDefinedNames(const Parts &parts, const std::vector<DefinedName> &names, Splices *splices)
{
    const Outline &outline = parts.outline;
    const auto list = outline.child(0, "definedNames");
    QByteArray added;
    for (const DefinedName &name : names) {
        const QByteArray text = definedNameText(outline, name);
        const auto old = list ? entryOf(outline, *list, name) : std::nullopt;
        if (old) {
            splices->replace(old->tag.begin, old->end, text);
        } else {
            added += text;
        }
    }
    if (list && !added.isEmpty()) {
        splices->append(outline.element(*list), added);
    } else if (!added.isEmpty()) {
        const QByteArray listName = outline.qualified("definedNames");
        splices->insert(endOfLast(parts, {"functionGroups", "externalReferences"}),
                        '<' + listName + '>' + added + "</" + listName + '>');
    }
}

/// Whether the results of formulas, or the form of references, depend on an attribute of calcPr.
/// The others determine when and how fast to calculate; a full calculation on load replaces them.
bool isCalculationRule(QByteArrayView name)
{
    static const QByteArrayList kRules{"iterate", "iterateCount", "iterateDelta", "fullPrecision",
                                       "refMode"};
    return kRules.contains(name);
}

/// An attribute as it was: its value, which is not decoded, has no more than one kind of quotes.
QByteArray attributeText(const Attribute &one)
{
    const char quote = one.value.contains('"') ? '\'' : '"';
    return ' ' + one.name.toByteArray() + '=' + quote + one.value.toByteArray() + quote;
}

/// Let programs calculate all formulas when they open the workbook: rows under them changed.
void setRecalculation(const Parts &parts, Splices *splices)
{
    static const QByteArray kAttributes = " calcId=\"0\" fullCalcOnLoad=\"1\"";
    const Outline &outline = parts.outline;
    const auto calculation = outline.child(0, "calcPr");
    if (!calculation) {
        splices->insert(endOfLast(parts, {"functionGroups", "externalReferences", "definedNames"}),
                        '<' + outline.qualified("calcPr") + kAttributes + "/>");
        return;
    }
    const Tag &tag = outline.element(*calculation).tag;
    QByteArray kept;
    const auto attributes = tag.attributes();
    for (const Attribute &one : *attributes) {
        if (isCalculationRule(one.name)) {
            kept += attributeText(one);
        }
    }
    const qsizetype begin = tag.begin + 1 + tag.name.size();
    splices->replace(begin, begin + tag.inside.size(), kept + kAttributes);
}

/// The names of the whole workbook; those of one sheet do not collide with a new one.
QStringList definedNamesOf(const Outline &outline)
{
    QStringList names;
    const auto list = outline.child(0, "definedNames");
    for (const int index : list ? outline.children(*list, "definedName") : std::vector<int>()) {
        const Tag &tag = outline.element(index).tag;
        if (!tag.attribute("localSheetId")) {
            names << opc::attributeText(tag, "name");
        }
    }
    return names;
}

/// Whether the workbook counts its days from 1904.
bool has1904Dates(const Outline &outline)
{
    const auto properties = outline.child(0, "workbookPr");
    const auto flag =
        properties ? outline.element(*properties).tag.attribute("date1904") : std::nullopt;
    return flag && (*flag == QByteArrayView("1") || *flag == QByteArrayView("true"));
}

} // namespace

QByteArray DefinedName::scopeAttributes() const
{
    return sheetIndex < 0 ? QByteArray()
                          : " localSheetId=\"" + QByteArray::number(sheetIndex) + "\" hidden=\"1\"";
}

QStringList Workbook::sheetNames() const
{
    return mapped<QStringList>(sheets, [](const SheetEntry &sheet) { return sheet.name; });
}

quint32 Workbook::freeSheetId() const
{
    const auto isTaken = [&](quint32 id) {
        return std::any_of(sheets.begin(), sheets.end(),
                           [&](const SheetEntry &sheet) { return sheet.sheetId == id; });
    };
    quint32 highest = 0;
    for (const SheetEntry &sheet : sheets) {
        highest = std::max(highest, sheet.sheetId);
    }
    if (highest < kMaxSheetId) {
        return highest + 1;
    }
    quint32 id = 1;
    while (isTaken(id)) {
        ++id;
    }
    return id;
}

Result<Workbook, Error> readWorkbook(QByteArrayView text)
{
    const auto parts = readParts(text);
    if (!parts) {
        return parts.fault();
    }
    const Outline &outline = parts->outline;
    Workbook workbook;
    workbook.family = parts->family;
    workbook.definedNames = definedNamesOf(outline);
    for (const int index : outline.children(parts->sheets, "sheet")) {
        workbook.sheets.push_back(sheetOf(*parts, outline.element(index).tag));
    }
    workbook.has1904Dates = has1904Dates(outline);
    if (workbook.sheets.empty()) {
        return Fault<Error>{Error::Unexpected};
    }
    return workbook;
}

Result<QByteArray, Error> changedWorkbook(QByteArrayView text, const WorkbookChange &change)
{
    const auto parts = readParts(text);
    if (!parts) {
        return parts.fault();
    }
    Splices splices(text);
    addSheets(*parts, change.addedSheets, &splices);
    setDefinedNames(*parts, change.definedNames, &splices);
    if (change.recalculate) {
        setRecalculation(*parts, &splices);
    }
    return splices.apply();
}

QString freeSheetName(const QString &name, const QStringList &taken)
{
    // Kept for saved graphs: letter case counts, although spreadsheet programs ignore it
    // (WorkbookPart.SheetNamesAreShortAndFree).
    QString candidate = shortSheetName(name);
    for (int number = 2; taken.contains(candidate); ++number) {
        candidate = shortSheetName(name, u'_' + QString::number(number));
    }
    return candidate;
}

QString nextSheetName(const QString &name, const QStringList &taken)
{
    for (int number = 2;; ++number) {
        QString candidate = shortSheetName(name, QStringLiteral(" (%1)").arg(number));
        if (!taken.contains(candidate, Qt::CaseInsensitive)) {
            return candidate;
        }
    }
}

} // namespace corvanta::xlsx
