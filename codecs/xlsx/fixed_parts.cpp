// A new workbook (ECMA-376 part 1, SpreadsheetML; part 2, packages), in writing order:
//
//   [Content_Types].xml                     types of the parts; last if there may be more sheets,
//                                           like the next two
//   _rels/.rels                             rId1 -> xl/workbook.xml
//   xl/_rels/workbook.xml.rels              rId1 -> the sheet, rId2 -> the styles
//   xl/styles.xml                           cell formats: 0 general, 1 dates, 2 hyperlinks, then
//                                           those of MoreFormats and SheetLook that are used
//   xl/worksheets/sheet1.xml                sheetViews, cols, sheetData, autoFilter,
//                                           hyperlinks, pageMargins
//   xl/workbook.xml                         fileVersion, bookViews, sheets, definedNames
//   xl/worksheets/_rels/sheet1.xml.rels     addresses of hyperlinks, if there are any
//
// The elements of each part are in the order of its schema, which readers rely on.
#include "codecs/xlsx/fixed_parts.h"

#include "codecs/opc/content_types.h"
#include "codecs/opc/part_names.h"
#include "codecs/opc/relationships.h"
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/styles_part.h"

#include <algorithm>

namespace corvanta::xlsx {

namespace {

#define XML_DECLARATION "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
#define MAIN_NS "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
#define OFFICE_RELS "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
#define PACKAGE_RELS "http://schemas.openxmlformats.org/package/2006/relationships"
#define SHEET_TYPES "application/vnd.openxmlformats-officedocument.spreadsheetml."

constexpr int kFirstOwnFormat = 164; // numFmtId of the first format in kStylesHead

constexpr char kContentTypes[] = XML_DECLARATION
    "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
    "<Default Extension=\"rels\" "
    "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
    "<Default Extension=\"xml\" ContentType=\"application/xml\"/>"
    "<Override PartName=\"/xl/workbook.xml\" ContentType=\"" SHEET_TYPES "sheet.main+xml\"/>"
    "<Override PartName=\"/xl/worksheets/sheet1.xml\" ContentType=\"" SHEET_TYPES
    "worksheet+xml\"/>"
    "<Override PartName=\"/xl/styles.xml\" ContentType=\"" SHEET_TYPES "styles+xml\"/>"
    "</Types>";

constexpr char kPackageRels[] = XML_DECLARATION "<Relationships xmlns=\"" PACKAGE_RELS "\">"
                                                "<Relationship Id=\"rId1\" Type=\"" OFFICE_RELS
                                                "/officeDocument\" Target=\"xl/workbook.xml\"/>"
                                                "</Relationships>";

constexpr char kWorkbookRels[] = XML_DECLARATION "<Relationships xmlns=\"" PACKAGE_RELS "\">"
                                                 "<Relationship Id=\"rId2\" Type=\"" OFFICE_RELS
                                                 "/styles\" Target=\"styles.xml\"/>"
                                                 "<Relationship Id=\"rId1\" Type=\"" OFFICE_RELS
                                                 "/worksheet\" Target=\"worksheets/sheet1.xml\"/>"
                                                 "</Relationships>";

constexpr char kStylesHead[] = XML_DECLARATION
    "<styleSheet xmlns=\"" MAIN_NS "\">"
    "<numFmts count=\"3\">"
    "<numFmt numFmtId=\"164\" formatCode=\"yyyy/mm/dd\"/>"
    "<numFmt numFmtId=\"165\" formatCode=\"yyyy/mm/dd\\ h:mm\"/>"
    "<numFmt numFmtId=\"166\" formatCode=\"yyyy/mm/dd\\ h:mm:ss\"/>"
    "</numFmts>"
    "<fonts count=\"2\">"
    "<font><sz val=\"11\"/><name val=\"Calibri\"/><family val=\"2\"/><scheme val=\"minor\"/></font>"
    "<font><u/><sz val=\"11\"/><color theme=\"10\"/><name val=\"Calibri\"/><family "
    "val=\"2\"/><scheme val=\"minor\"/></font>"
    "</fonts>"
    // Programs expect these two fills at the indexes 0 and 1.
    "<fills count=\"2\"><fill><patternFill patternType=\"none\"/></fill>"
    "<fill><patternFill patternType=\"gray125\"/></fill></fills>"
    "<borders count=\"1\"><border><left/><right/><top/><bottom/><diagonal/></border></borders>"
    "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" "
    "borderId=\"0\"/></cellStyleXfs>"
    "<cellXfs count=\"";
constexpr char kStylesCells[] =
    "\">"
    "<xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\"/>"
    "<xf numFmtId=\"";
constexpr char kStylesLink[] =
    "\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyNumberFormat=\"1\"/>"
    "<xf numFmtId=\"0\" fontId=\"1\" fillId=\"0\" borderId=\"0\" xfId=\"0\"/>";
constexpr char kStylesTail[] =
    "</cellXfs>"
    "<cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/></cellStyles>"
    "<dxfs count=\"0\"/>"
    "<tableStyles count=\"0\" defaultTableStyle=\"TableStyleMedium2\" "
    "defaultPivotStyle=\"PivotStyleMedium9\"/>"
    "</styleSheet>";

QByteArray escapeXml(const QString &text)
{
    return text.toUtf8().replace("&", "&amp;").replace("<", "&lt;");
}

/// The ids of the number formats of `more`, in the order of setMoreStyles().
std::vector<int> formatIdsOf(const MoreFormats &more)
{
    constexpr int kDay = kFirstOwnFormat;
    constexpr int kDateTime = kFirstOwnFormat + 2;
    constexpr int kTime = 21;
    std::vector<int> ids;
    if (more.days || more.dateTimes) {
        ids.push_back(kDay);
    }
    if (more.dateTimes) {
        ids.push_back(kDateTime);
    }
    if (more.times) {
        ids.push_back(kTime);
    }
    return ids;
}

} // namespace

QByteArray newStyles(int dateFormat, const MoreFormats &more)
{
    QByteArray formats;
    const std::vector<int> ids = formatIdsOf(more);
    for (const int id : ids) {
        formats += "<xf numFmtId=\"" + QByteArray::number(id) +
                   "\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\" "
                   "applyNumberFormat=\"1\"/>";
    }
    return QByteArray(kStylesHead) + QByteArray::number(kFirstMoreStyle + ids.size()) +
           kStylesCells + QByteArray::number(numberFormatId(dateFormat, kFirstOwnFormat)) +
           kStylesLink + formats + kStylesTail;
}

void setMoreStyles(const MoreFormats &more, sheet::SheetOptions *options)
{
    quint64 next = kFirstMoreStyle;
    const quint64 day = next;
    next += more.days || more.dateTimes ? 1 : 0;
    if (more.days) {
        options->dayStyle = day;
    }
    if (more.dateTimes) {
        options->dateTimeDayStyle = day;
        options->dateTimeStyle = next++;
    }
    if (more.times) {
        options->timeStyle = next;
    }
}

namespace {

/// The two parts that list sheets, for more than one sheet. The fixed texts can be read.
QByteArray contentTypes(int sheets)
{
    auto types = opc::ContentTypes::read(kContentTypes);
    for (int sheet = 2; sheet <= sheets; ++sheet) {
        types->declarePart(sheetPart(sheet), SHEET_TYPES "worksheet+xml");
    }
    return types->text();
}

QByteArray workbookRelationships(int sheets)
{
    auto relationships = opc::Relationships::read(kWorkbookRels);
    for (int sheet = 2; sheet <= sheets; ++sheet) {
        relationships->addPart(opc::relationshipType(kTransitional.relationships, "worksheet"),
                               opc::targetOf(kWorkbookPart, sheetPart(sheet)));
    }
    return relationships->text();
}

} // namespace

std::array<FixedMember, 3> packageMembers(int sheets)
{
    return {FixedMember{opc::kContentTypesPart, contentTypes(sheets)},
            FixedMember{"_rels/.rels", kPackageRels},
            FixedMember{"xl/_rels/workbook.xml.rels", workbookRelationships(sheets)}};
}

QByteArray sheetPart(int number)
{
    return "xl/worksheets/sheet" + QByteArray::number(number) + ".xml";
}

QByteArray newSheetRoot(const Family &family)
{
    return "<worksheet xmlns=\"" + family.main.toByteArray() + "\" xmlns:r=\"" +
           family.relationships.toByteArray() + "\">";
}

namespace {

/// The element of the column widths; empty for none. A width is in digits of the default font.
QByteArray columnWidths(const std::vector<double> &widths)
{
    QByteArray list;
    for (size_t i = 0; i < widths.size(); ++i) {
        if (widths[i] > 0) {
            const QByteArray number = QByteArray::number(i + 1);
            list += "<col min=\"" + number + "\" max=\"" + number + "\" width=\"" +
                    QByteArray::number(widths[i]) + "\" customWidth=\"1\"/>";
        }
    }
    return list.isEmpty() ? list : "<cols>" + list + "</cols>";
}

} // namespace

QByteArray newSheetHead(const Family &family, const SheetLook &look)
{
    // The pane of the rows after the header, which scrolls, is the active one.
    const QByteArray view =
        look.freezesHeader
            ? "<sheetView workbookViewId=\"0\"><pane ySplit=\"1\" topLeftCell=\"A2\" "
              "activePane=\"bottomLeft\" state=\"frozen\"/><selection "
              "pane=\"bottomLeft\"/></sheetView>"
            : "<sheetView workbookViewId=\"0\"/>";
    return XML_DECLARATION + newSheetRoot(family) + "<sheetViews>" + view + "</sheetViews>" +
           columnWidths(look.widths) + "<sheetData>";
}

QByteArray newSheetTail(const QByteArray &filterRange)
{
    const QByteArray filter =
        filterRange.isEmpty() ? filterRange : "<autoFilter ref=\"" + filterRange + "\"/>";
    return "</sheetData>" + filter +
           "<pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" "
           "header=\"0.3\" "
           "footer=\"0.3\"/></worksheet>";
}

QString rangeReference(const NamedRange &range, QString sheetName)
{
    // Inside the quotes of a reference an apostrophe is doubled (18.2.5).
    sheetName.replace(u'\'', QStringLiteral("''"));
    return QStringLiteral("'%1'!$A$%2:$%3$%4")
        .arg(sheetName, QString::number(range.firstRow),
             QString::fromLatin1(sheet::columnLetters(range.lastColumn)),
             QString::number(range.lastRow));
}

namespace {

/// The part of the range that programs can read.
NamedRange limited(NamedRange range)
{
    range.lastRow = std::min(range.lastRow, sheet::kMaxRows);
    range.lastColumn = std::min(range.lastColumn, static_cast<int>(sheet::kMaxColumns) - 1);
    return range;
}

/// The block of defined names; empty for none.
QByteArray definedNames(const std::vector<DefinedName> &names)
{
    QByteArray list;
    for (const DefinedName &name : names) {
        list += "<definedName name=\"" + escapeXml(name.name).replace("\"", "&quot;") + '"' +
                name.scopeAttributes() + '>' + escapeXml(name.refersTo) + "</definedName>";
    }
    return list.isEmpty() ? list : "<definedNames>" + list + "</definedNames>";
}

QByteArray escapeSheetName(const QString &name)
{
    // Kept for saved graphs: "<" is not escaped, although the workbook is then not XML; the action
    // warns about it (graph.write_excel/markup_in_sheet_name).
    return name.toUtf8().replace("&", "&amp;").replace("\"", "&quot;");
}

} // namespace

DefinedName filterName(const NamedRange &range, const QString &sheetName, int sheetIndex)
{
    return {QStringLiteral("_xlnm._FilterDatabase"), rangeReference(limited(range), sheetName),
            sheetIndex};
}

QByteArray filterRange(const NamedRange &range)
{
    const NamedRange readable = limited(range);
    return 'A' + QByteArray::number(readable.firstRow) + ':' +
           sheet::columnLetters(readable.lastColumn) + QByteArray::number(readable.lastRow);
}

QByteArray newWorkbook(const QStringList &sheets, const std::vector<DefinedName> &names)
{
    QByteArray xml = XML_DECLARATION
        "<workbook xmlns=\"" MAIN_NS "\" xmlns:r=\"" OFFICE_RELS "\">"
        "<fileVersion appName=\"xl\" lastEdited=\"4\" lowestEdited=\"4\" rupBuild=\"4506\"/>"
        "<bookViews><workbookView xWindow=\"420\" yWindow=\"792\" windowWidth=\"22428\" "
        "windowHeight=\"8676\"/></bookViews>"
        "<sheets>";
    for (qsizetype i = 0; i < sheets.size(); ++i) {
        // Relationship 2 is that of the styles.
        xml += "<sheet name=\"" + escapeSheetName(sheets.at(i)) + "\" sheetId=\"" +
               QByteArray::number(i + 1) + "\" r:id=\"rId" +
               QByteArray::number(i == 0 ? 1 : i + 2) + "\"/>";
    }
    return xml + "</sheets>" + definedNames(names) + "</workbook>";
}

} // namespace corvanta::xlsx
