#include "base/text/sheet_name.h"
#include "codecs/opc/outline.h"
#include "codecs/xlsx/cell_range.h"
#include "codecs/xlsx/name_rules.h"
#include "codecs/xlsx/sheet_splitter.h"
#include "codecs/xlsx/sheet_tail.h"
#include "codecs/xlsx/styles_part.h"
#include "codecs/xlsx/workbook_part.h"
#include "tests/support/sweeps.h"

#include <gtest/gtest.h>

namespace corvanta::xlsx {

namespace {

using opc::Error;
using opc::Outline;

constexpr auto kMain = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
constexpr auto kRel = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";

/// `text` with "MAIN" and "REL" replaced by the namespaces.
QByteArray xml(QByteArray text)
{
    return text.replace("MAIN", kMain).replace("REL", kRel);
}

QByteArray workbookAround(const QByteArray &inner)
{
    return xml("<workbook xmlns=\"MAIN\" xmlns:r=\"REL\">" + inner + "</workbook>");
}

constexpr auto kOneSheet = "<sheets><sheet name=\"A\" sheetId=\"7\" r:id=\"rId3\"/></sheets>";

struct Split
{
    QByteArray head, tail, rootTag;
    quint64 firstRow = 0;
    bool droppedFormula = false;
    std::optional<Error> error = std::nullopt;
    Family family = kTransitional;
};

Split split(const QByteArray &sheet, quint64 startRow, qsizetype pieceBytes = 1 << 20)
{
    SheetSplitter splitter(startRow);
    Split out;
    for (qsizetype at = 0; at < sheet.size() && !out.error; at += pieceBytes) {
        const auto pushed =
            splitter.push(QByteArrayView(sheet).sliced(at, qMin(pieceBytes, sheet.size() - at)));
        out.error = pushed ? out.error : pushed.fault().code;
        out.head += splitter.takeHead();
    }
    if (!out.error) {
        const auto finished = splitter.finish();
        out.error = finished ? out.error : finished.fault().code;
    }
    out.head += splitter.takeHead();
    out.tail = splitter.tail();
    out.rootTag = splitter.rootTag();
    out.family = splitter.family();
    out.firstRow = splitter.firstRow1();
    out.droppedFormula = splitter.hasDroppedFormula();
    return out;
}

QByteArray sheetAround(const QByteArray &data, const QByteArray &tail = {})
{
    return xml("<?xml version='1.0' encoding='utf-8'?><worksheet xmlns=\"MAIN\" xmlns:r=\"REL\">" +
               data + tail + "</worksheet>");
}

} // namespace

TEST(WorkbookPart, ReadsSheetsInAnyXmlForm)
{
    const QByteArray text =
        xml("<x:workbook xmlns:x='MAIN'><x:workbookPr date1904='true'/>"
            "<!--<x:sheets><x:sheet name='no'/></x:sheets>-->"
            "<x:sheets><x:sheet q:id='rIdA' sheetId='9' name='A &amp; &#66;' xmlns:q='REL'/>"
            "<x:sheet xmlns:r='REL' name=\"it's\" r:id=\"rId4\" "
            "sheetId=\"3\"></x:sheet></x:sheets></x:workbook>");
    const auto workbook = readWorkbook(text);
    ASSERT_TRUE(workbook);
    EXPECT_EQ(workbook->sheetNames(), (QStringList{u"A & B"_qs, u"it's"_qs}));
    EXPECT_EQ(workbook->sheets[0].relationshipId, "rIdA");
    EXPECT_EQ(workbook->sheets[1].relationshipId, "rId4");
    EXPECT_EQ(workbook->freeSheetId(), 10U);
    EXPECT_TRUE(workbook->has1904Dates);
    const auto changed = changedWorkbook(text, {.addedSheets = {{u"N<\"&"_qs, 10, "rId5"}}});
    ASSERT_TRUE(changed);
    EXPECT_TRUE(
        changed->contains(xml("</x:sheet><x:sheet xmlns:r=\"REL\" name=\"N&lt;&quot;&amp;\" "
                              "sheetId=\"10\" r:id=\"rId5\"/></x:sheets>")));
    EXPECT_EQ(readWorkbook(workbookAround("<sheets/>")).fault().code, Error::Unexpected);
    EXPECT_EQ(readWorkbook("<worksheet/>").fault().code, Error::Unexpected);
}

TEST(WorkbookPart, SplicesNamesAndRecalculation)
{
    struct Case
    {
        QByteArray before, after;
    };
    const QByteArray entry = "<definedName name=\"N\">'A'!$A$1:$B$2</definedName>";
    const QByteArray calc = "<calcPr calcId=\"0\" fullCalcOnLoad=\"1\"/>";
    const std::vector<Case> cases{
        {"", "<definedNames>" + entry + "</definedNames>" + calc},
        {"<externalReferences><externalReference r:id=\"rId9\"/></externalReferences><calcPr "
         "calcId=\"1\"/>",
         "<externalReferences><externalReference "
         "r:id=\"rId9\"/></externalReferences><definedNames>" +
             entry + "</definedNames>" + calc},
        {"<definedNames/><oleSize ref=\"A1\"/>",
         "<definedNames>" + entry + "</definedNames>" + calc + "<oleSize ref=\"A1\"/>"},
        {"<definedNames><definedName name='n' hidden='1'>x</definedName><definedName "
         "name='M'>y</definedName></definedNames>",
         "<definedNames>" + entry + "<definedName name='M'>y</definedName></definedNames>" + calc},
        {"<definedNames><definedName name='N' "
         "localSheetId='0'>x</definedName></definedNames><calcPr calcId='9' "
         "calcMode='manual' iterate='1' fullCalcOnLoad='0' concurrentCalc='0'/>",
         "<definedNames><definedName name='N' localSheetId='0'>x</definedName>" + entry +
             "</definedNames><calcPr iterate=\"1\" calcId=\"0\" fullCalcOnLoad=\"1\"/>"},
        {"<calcPr></calcPr>",
         "<definedNames>" + entry +
             "</definedNames><calcPr calcId=\"0\" fullCalcOnLoad=\"1\"></calcPr>"},
    };
    for (const Case &one : cases) {
        const auto changed = changedWorkbook(
            workbookAround(kOneSheet + one.before),
            {.definedNames = {{u"N"_qs, u"'A'!$A$1:$B$2"_qs}}, .recalculate = true});
        ASSERT_TRUE(changed);
        EXPECT_EQ(*changed, workbookAround(kOneSheet + one.after));
    }
}

TEST(WorkbookPart, SheetNamesAreShortAndFree)
{
    const QString longName(35, u'x');
    EXPECT_EQ(freeSheetName(u"A"_qs, {u"a"_qs}), u"A");
    EXPECT_EQ(freeSheetName(u"A"_qs, {u"A"_qs, u"A_2"_qs}), u"A_3");
    EXPECT_EQ(freeSheetName(longName, {}), QString(31, u'x'));
    EXPECT_EQ(freeSheetName(longName, {QString(31, u'x')}), QString(29, u'x') + u"_2"_qs);
    EXPECT_EQ(freeSheetName(QString(30, u'x') + u"\U0001F600"_qs, {}), QString(30, u'x'));
    EXPECT_EQ(nextSheetName(u"A"_qs, {u"A"_qs, u"a (2)"_qs}), u"A (3)");
    EXPECT_EQ(nextSheetName(longName, {}), QString(27, u'x') + u" (2)"_qs);
}

TEST(StylesPart, AddsFormatsAndCorrectsCounts)
{
    const QByteArray xfs = "<cellXfs count=\"1\"><xf numFmtId=\"0\"/></cellXfs>";
    const QByteArray link = "<font><u/><sz val=\"11\"/><color theme=\"10\"/><name "
                            "val=\"Calibri\"/><family val=\"2\"/><scheme val=\"minor\"/></font>";
    struct Case
    {
        QByteArray before;
        quint64 dateStyle;
        QByteArray part; // of the result
    };
    const std::vector<Case> cases{
        {"<numFmts count='0'/><fonts count='9'><font/></fonts>" + xfs, 1,
         "<numFmts count='1'><numFmt numFmtId=\"2001\" formatCode=\"yyyy\"/></numFmts><fonts "
         "count='2'><font/>" +
             link + "</fonts><cellXfs count=\"3\">"},
        {"<numFmts><numFmt formatCode=\"dd\" numFmtId=\"2001\"/></numFmts><fonts>" + link +
             "</fonts>" + xfs,
         1,
         "<numFmts count=\"2\"><numFmt formatCode=\"dd\" numFmtId=\"2001\"/><numFmt "
         "numFmtId=\"2002\" formatCode=\"yyyy\"/></numFmts><fonts>" +
             link + "</fonts>"},
        {"<numFmts count=\"1\"><numFmt formatCode='yyyy' numFmtId='2001'/></numFmts>" + xfs, 1,
         "<numFmts count=\"1\"><numFmt formatCode='yyyy' numFmtId='2001'/></numFmts><fonts "
         "count=\"2\"><font/>" +
             link + "</fonts><cellXfs"},
        {"<fonts><font/></fonts><cellXfs/><cellStyles/>", 1,
         "<cellXfs count=\"3\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" "
         "xfId=\"0\"/><xf numFmtId=\"2001\""},
        {"<!--<cellXfs>--><fills/><cellStyles/>", 1, "<fills/><cellXfs count=\"3\">"},
    };
    for (const Case &one : cases) {
        const auto changed = changedStyles(
            xml("<styleSheet xmlns='MAIN'>" + one.before + "</styleSheet>"), {.code = "yyyy"});
        ASSERT_TRUE(changed);
        EXPECT_TRUE(changed->text.contains(one.part)) << changed->text.constData();
        EXPECT_EQ(changed->dateStyle, one.dateStyle);
        EXPECT_EQ(changed->hyperlinkStyle, one.dateStyle + 1);
        EXPECT_EQ(changed->hadNoCellFormats,
                  !one.before.contains("<cellXfs ") && !one.before.contains("<cellXfs/>"));
        EXPECT_TRUE(Outline::read(changed->text));
    }
    // A second update with the same date format adds nothing.
    const auto once = changedStyles(xml("<styleSheet xmlns='MAIN'/>"), {.code = "yyyy"});
    const auto twice = changedStyles(once->text, {.code = "yyyy"});
    EXPECT_EQ(twice->text, once->text);
    EXPECT_EQ(twice->dateStyle, once->dateStyle);
    EXPECT_EQ(changedStyles(once->text, {.builtinId = 14})->dateStyle, once->dateStyle + 2);
    const auto prefixed = changedStyles(xml("<x:styleSheet xmlns:x='MAIN'/>"), {.builtinId = 14});
    ASSERT_TRUE(prefixed);
    EXPECT_TRUE(prefixed->text.contains("</x:fonts><x:cellXfs count=\"3\">"));
    EXPECT_FALSE(prefixed->text.contains("numFmts"));
}

TEST(StylesPart, LooksAreAddedOnce)
{
    const SheetLook look{.hasBoldHeader = true,
                         .hasFilledHeader = true,
                         .formats = {{}, u"0.00 \"<\""_qs, u"0.00 \"<\""_qs}};
    // Tables that are missing get the entries that programs expect before ours.
    QByteArray empty = xml("<styleSheet xmlns='MAIN'/>");
    const auto styles = addLook(&empty, look);
    ASSERT_TRUE(styles);
    EXPECT_EQ(styles->header, 1U);
    EXPECT_EQ(styles->columns, (std::vector<std::optional<quint64>>{{}, 2, 2}));
    for (const char *part :
         {"<numFmts count=\"1\"><numFmt numFmtId=\"2001\" formatCode=\"0.00 "
          "&quot;&lt;&quot;\"/></numFmts><fonts count=\"2\"><font/><font><b/></font></fonts>"
          "<fills count=\"3\"><fill><patternFill patternType=\"none\"/></fill>",
          "<cellXfs count=\"3\">", "fontId=\"1\" fillId=\"2\""}) {
        EXPECT_TRUE(empty.contains(part)) << empty.constData();
    }
    const QByteArray before = empty;
    EXPECT_EQ(addLook(&empty, look)->columns, styles->columns);
    EXPECT_EQ(empty, before);
    // The font of ordinary cells, in bold; one fill is not enough.
    QByteArray old = xml("<styleSheet xmlns='MAIN'><fonts><font a='1'><sz val='9'/></font></fonts>"
                         "<fills><fill/></fills><cellXfs><xf/></cellXfs></styleSheet>");
    ASSERT_TRUE(addLook(&old, look));
    EXPECT_TRUE(old.contains("<font a='1'><b/><sz val='9'/></font></fonts>")) << old.constData();
    EXPECT_TRUE(old.contains("<fills count=\"3\"><fill/><fill>")) << old.constData();
    QByteArray wrong = xml("<worksheet/>");
    EXPECT_FALSE(addLook(&wrong, look));
}

TEST(SheetSplitter, SplitsAtTheFirstNewRow)
{
    struct Case
    {
        QByteArray data;
        quint64 startRow;
        QByteArray kept; // from sheetData on
        quint64 firstRow;
    };
    const QByteArray three = "<sheetData><row r=\"1\"><c/></row><row spans=\"1:2\" r='2'/><row "
                             "r=\"5\"><c><f>1</f></c></row></sheetData>";
    const std::vector<Case> cases{
        {three, 0, three.chopped(12), 6},
        {three, 1, "<sheetData>", 1},
        {three, 2, "<sheetData><row r=\"1\"><c/></row>", 2},
        {three, 3, "<sheetData><row r=\"1\"><c/></row><row spans=\"1:2\" r='2'/>", 3},
        {three, 9, three.chopped(12), 9},
        {"<sheetData/>", 0, "<sheetData>", 1},
        {"<sheetData a='1' />", 4, "<sheetData a='1' >", 4},
        {"<sheetData></sheetData>", 0, "<sheetData>", 1},
        {"<sheetData><row/><row><c/></row><row/></sheetData>", 2, "<sheetData><row/>", 2},
        {"<sheetData><row/><row><c/></row><row/></sheetData>", 0,
         "<sheetData><row/><row><c/></row><row/>", 4},
        {"<sheetData><!--<row r=\"9\"/></sheetData>--><row r=\"3\"><c><![CDATA[</sheetData><row "
         "r=\"8\">]]></c></row></sheetData>",
         0,
         "<sheetData><!--<row r=\"9\"/></sheetData>--><row r=\"3\"><c><![CDATA[</sheetData><row "
         "r=\"8\">]]></c></row>",
         4},
        {"<sheetData><rows/><row r=\"2\"/></sheetData>", 2, "<sheetData><rows/>", 2},
    };
    for (const Case &one : cases) {
        const QByteArray front = "<dimension ref=\"A1:B2\"/><cols><!--<sheetData>--><col/></cols>";
        const QByteArray sheet = sheetAround(front + one.data, "<mergeCells/>");
        test::forEverySplit([&](int pieceBytes) {
            const Split out = split(sheet, one.startRow, pieceBytes);
            ASSERT_FALSE(out.error) << one.data.constData() << static_cast<int>(*out.error);
            EXPECT_EQ(out.head.sliced(out.head.indexOf("<cols>")),
                      "<cols><!--<sheetData>--><col/></cols>" + one.kept);
            EXPECT_EQ(out.tail, "</sheetData><mergeCells/></worksheet>");
            EXPECT_EQ(out.firstRow, one.firstRow);
            EXPECT_EQ(out.droppedFormula,
                      one.data.contains("<f>") && one.startRow > 0 && one.startRow < 6);
            EXPECT_FALSE(out.head.contains("dimension"));
        });
    }
}

// Elements of extensions may have the names of the worksheet's own.
TEST(SheetSplitter, KeepsInnerElements)
{
    const QByteArray inner = "<cols><ext><dimension ref=\"A1\"/><sheetData/></ext></cols>";
    const Split out = split(sheetAround(inner + "<sheetData><row r=\"7\"/></sheetData>"), 0, 64);
    ASSERT_FALSE(out.error);
    EXPECT_TRUE(out.head.endsWith(inner + "<sheetData><row r=\"7\"/>"));
    EXPECT_EQ(out.firstRow, 8U);
}

TEST(SheetSplitter, GivesPrefixedSheetsADefaultNamespace)
{
    const QByteArray sheet = xml(
        "\xEF\xBB\xBF<x:worksheet xmlns:x='MAIN'><x:dimension ref='A1'></x:dimension><x:sheetData>"
        "<x:row r='4'><x:c/></x:row></x:sheetData></x:worksheet>");
    test::forEverySplit([&](int pieceBytes) {
        const Split out = split(sheet, 0, pieceBytes);
        ASSERT_FALSE(out.error);
        EXPECT_EQ(out.head, xml("\xEF\xBB\xBF<x:worksheet xmlns:x='MAIN'><x:sheetData "
                                "xmlns=\"MAIN\"><x:row r='4'><x:c/></x:row>"));
        EXPECT_EQ(out.tail, "</x:sheetData></x:worksheet>");
        EXPECT_EQ(out.firstRow, 5U);
    });
}

TEST(SheetSplitter, RejectsTextThatIsNotAWorksheet)
{
    const QByteArray good = sheetAround("<sheetData><row r=\"1\"/></sheetData>");
    const std::vector<std::pair<QByteArray, Error>> cases{
        {"", Error::Malformed},
        {good.chopped(1), Error::Malformed},
        {good.chopped(12), Error::Malformed},
        {good.chopped(20), Error::Malformed},
        {good + "<again/>", Error::Malformed},
        {sheetAround("<sheetData/>", "<a></b>"), Error::Malformed},
        {sheetAround(""), Error::Unexpected},
        {sheetAround("<sheetData><row r=\"x\"/></sheetData>"), Error::Unexpected},
        {xml("<chartsheet xmlns='MAIN'/>"), Error::Unexpected},
        {"<worksheet><sheetData/></worksheet>", Error::Unexpected},
        {"<?xml version='1.0' encoding='utf-16'?>" + good.sliced(38), Error::Encoding},
    };
    for (const auto &[sheet, error] : cases) {
        for (const qsizetype pieceBytes : {5, 1 << 20}) {
            const Split out = split(sheet, 0, pieceBytes);
            ASSERT_TRUE(out.error) << sheet.constData();
            EXPECT_EQ(*out.error, error) << sheet.constData();
        }
    }
}

TEST(SheetTail, HyperlinksAreInsertedInSchemaOrder)
{
    const QByteArray link = "<hyperlink ref=\"B2\" r:id=\"rId4\"/>";
    const QByteArray list = "<hyperlinks>" + link + "</hyperlinks>";
    const std::vector<std::pair<QByteArray, QByteArray>> cases{
        {"", list},
        {"<hyperlinks/><pageMargins/>", list + "<pageMargins/>"},
        {"<hyperlinks><hyperlink r:id=\"rId3\"/></hyperlinks>",
         "<hyperlinks><hyperlink r:id=\"rId3\"/>" + link + "</hyperlinks>"},
        {"<dataValidations/><printOptions/><pageMargins/>",
         "<dataValidations/>" + list + "<printOptions/><pageMargins/>"},
        {"<customSheetViews><customSheetView><pageMargins/></customSheetView></"
         "customSheetViews><mergeCells/><tableParts/>",
         "<customSheetViews><customSheetView><pageMargins/></customSheetView></"
         "customSheetViews><mergeCells/>" +
             list + "<tableParts/>"},
        {"<hyperlinks><hyperlink ref='B2' r:id='x'/><hyperlink ref='B2:C3'/>"
         "<hyperlink ref=\"B2\"><a/></hyperlink><hyperlink "
         "ref=\"C2\"><a/></hyperlink></hyperlinks>",
         "<hyperlinks><hyperlink ref='B2:C3'/><hyperlink ref=\"C2\"><a/></hyperlink>" + link +
             "</hyperlinks>"},
        {"<!--<hyperlinks></hyperlinks>-->", "<!--<hyperlinks></hyperlinks>-->" + list},
    };
    for (const auto &[before, after] : cases) {
        const Split out = split(sheetAround("<sheetData/>", before), 0);
        const auto changed = withHyperlinks(out.tail, out.rootTag, out.family, {{1, 2, 1}}, 3);
        ASSERT_TRUE(changed);
        EXPECT_EQ(changed->text, "</sheetData>" + after + "</worksheet>");
        EXPECT_EQ(changed->linkCount, after.count("<hyperlink "));
        EXPECT_EQ(readTail(out.tail)->highestUsedId, before.contains("rId3") ? 3U : 0U);
    }
    const Split bare = split(xml("<x:worksheet xmlns:x='MAIN'><x:sheetData/></x:worksheet>"), 0);
    const auto changed = withHyperlinks(bare.tail, bare.rootTag, bare.family, {{1, 2, 1}}, 3);
    ASSERT_TRUE(changed);
    EXPECT_EQ(changed->text,
              xml("</x:sheetData><x:hyperlinks xmlns:r=\"REL\"><x:hyperlink ref=\"B2\" "
                  "r:id=\"rId4\"/></x:hyperlinks></x:worksheet>"));
}

TEST(CellRange, KnowsWhatAnUpdateDamages)
{
    const auto written = [](qint64 first, qint64 last, QStringList header, bool removes) {
        return WrittenCells{{first, last, 0, 2}, std::move(header), removes};
    };
    for (const auto &[reference, hidden] :
         std::vector<std::pair<QByteArray, bool>>{{"A1:B4", false},
                                                  {"A4:A5", true},
                                                  {"C5:F5", false},
                                                  {"B5:C5", true},
                                                  {"$B$6:$B$7", false},
                                                  {"B6:D6", true},
                                                  {"D5:E9", false},
                                                  {"A7:C9", false}}) {
        const auto range = parseRange(reference);
        ASSERT_TRUE(range);
        EXPECT_EQ(hidesCells(*range, written(5, 6, {}, false)), hidden) << reference.constData();
    }
    EXPECT_EQ(rangeText(*parseRange("$AA$3:AB07")), u"AA3:AB7");
    for (const char *reference : {"", "A", "7", "A0", "ABCD1", "A1:", "A1:B", "a1"}) {
        EXPECT_FALSE(parseRange(reference)) << reference;
    }
    const auto table = readTable(
        xml("<table xmlns='MAIN' name='n' displayName='T' ref='B5:C9'><autoFilter ref='B5:C9'/>"
            "<tableColumns count='2'><tableColumn id='1' name='x'/>"
            "<tableColumn id='2' name='y &amp; z'></tableColumn></tableColumns></table>"));
    ASSERT_TRUE(table);
    EXPECT_EQ(table->name, u"T");
    const QStringList same{u"a"_qs, u"x"_qs, u"y & z"_qs};
    const QStringList other{u"a"_qs, u"x"_qs, u"z"_qs};
    EXPECT_FALSE(losesHeader(*table, written(5, 9, same, true)));
    EXPECT_TRUE(losesHeader(*table, written(5, 9, other, true)));
    EXPECT_TRUE(losesHeader(*table, written(5, 9, {}, true)));
    EXPECT_TRUE(losesHeader(*table, written(2, 3, same, true)));
    EXPECT_FALSE(losesHeader(*table, written(2, 3, same, false)));
    EXPECT_FALSE(losesHeader(*table, written(6, 9, other, true)));
    const qint64 last = table->range.lastRow;
    EXPECT_EQ(rowsBelow(*table, written(6, last, {}, false)), 0);
    EXPECT_EQ(rowsBelow(*table, written(6, last + 2, {}, false)), 2);
    EXPECT_EQ(rowsBelow(*table, written(last + 1, last + 1, {}, false)), 1);
    EXPECT_EQ(rowsBelow(*table, written(last + 2, last + 9, {}, false)), 0);
    EXPECT_FALSE(readTable("<table ref='x'/>"));
}

TEST(NameRules, FindsWhatProgramsReject)
{
    using Faults = QVector<NameFault>;
    const QStringList others{u"Data"_qs, u"Sum"_qs};
    EXPECT_EQ(sheetNameFaults(u"Data"_qs, others), Faults());
    EXPECT_EQ(sheetNameFaults(u"O'Neil (2)"_qs, others), Faults());
    EXPECT_EQ(sheetNameFaults(u"dAta"_qs, others), Faults{NameFault::OnlyCase});
    EXPECT_EQ(sheetNameFaults(u" "_qs, others), Faults{NameFault::Empty});
    EXPECT_EQ(sheetNameFaults(u"history"_qs, others), Faults{NameFault::Reserved});
    EXPECT_EQ(sheetNameFaults(u"[a]'"_qs, others),
              (Faults{NameFault::Character, NameFault::Quote}));
    for (const QChar c : QStringView(u"/\\?*[]:\t")) {
        EXPECT_EQ(sheetNameFaults(u'a' + QString(c) + u'b', others), Faults{NameFault::Character});
    }
    // The last ones would be cut before the second unit of a pair, and after an apostrophe.
    for (const QString &name :
         {u""_qs, u"[a]/b"_qs, u"'a'"_qs, u"'"_qs, QString(40, u' '), u"hISTORY"_qs,
          QString(30, u'x') + u"\U0001F600"_qs, QString(30, u'x') + u"'y"_qs}) {
        const QString valid = validSheetName(name);
        EXPECT_EQ(sheetNameFaults(valid, {}), Faults()) << name.toStdString();
        EXPECT_TRUE(valid.size() <= kMaxSheetNameUnits && valid.isValidUtf16());
    }
    EXPECT_EQ(validSheetName(u"O'Neil (2)"_qs), u"O'Neil (2)");
    for (const char16_t *name : {u"N", u"_n.1", u"Größe", u"A1B", u"XFE1", u"A1048577", u"Rx"}) {
        EXPECT_EQ(rangeNameFaults(QString::fromUtf16(name)), Faults())
            << QString::fromUtf16(name).toStdString();
    }
    for (const char16_t *name : {u"a b", u"1a", u"a-b", u".a", u"a!b"}) {
        EXPECT_EQ(rangeNameFaults(QString::fromUtf16(name)), Faults{NameFault::NotAName})
            << QString::fromUtf16(name).toStdString();
    }
    for (const char16_t *name : {u"A1", u"xfd1048576", u"R", u"c", u"R1C1", u"rc2", u"C12"}) {
        EXPECT_EQ(rangeNameFaults(QString::fromUtf16(name)), Faults{NameFault::Reference})
            << QString::fromUtf16(name).toStdString();
    }
    EXPECT_EQ(rangeNameFaults(QString(255, u'n')), Faults());
    EXPECT_EQ(rangeNameFaults(QString(256, u'n')), Faults{NameFault::TooLong});
    EXPECT_EQ(rangeNameFaults(QString(256, u' ') + u'n'),
              (Faults{NameFault::NotAName, NameFault::TooLong}));
}

} // namespace corvanta::xlsx
