#include "codecs/charts/chart_tags.h"
#include "codecs/charts/series_writer.h"

#include <gtest/gtest.h>

namespace corvanta::charts {

namespace {

QByteArray space(const QByteArray &inner)
{
    return "<?xml version=\"1.0\"?><c:chartSpace xmlns:c=\"urn:c\"><c:chart><c:plotArea>" + inner +
           "</c:plotArea></c:chart></c:chartSpace>";
}

QByteArray named(const QByteArray &name)
{
    return "<c:tx><c:v>" + name + "</c:v></c:tx>";
}

QByteArray refs(const QByteArray &element, const QByteArray &kind)
{
    return "<c:" + element + "><c:" + kind + "><c:f>A!$B$1</c:f></c:" + kind + "></c:" + element +
           ">";
}

const QByteArray kData = refs("cat", "strRef") + refs("val", "numRef");

QByteArray bar(const QByteArray &series)
{
    return space("<c:barChart><c:ser>" + series + "</c:ser></c:barChart>");
}

std::vector<ChartTag> tagsOf(const QByteArray &part)
{
    auto tags = findTags(part);
    EXPECT_TRUE(tags);
    return tags ? *std::move(tags) : std::vector<ChartTag>();
}

ValueList list(std::initializer_list<QStringView> texts)
{
    ValueList values;
    for (const QStringView text : texts) {
        values.append(text);
    }
    return values;
}

/// The part with the data of its usable tags replaced.
QByteArray filled(const QByteArray &part, const SeriesValues &values,
                  SeriesReport *report = nullptr)
{
    QByteArray out;
    SeriesWriter writer(part, [&](QByteArrayView block) -> Result<void, opc::Error> {
        out += block;
        return {};
    });
    for (const ChartTag &tag : tagsOf(part)) {
        if (tag.use == TagUse::Series) {
            const auto found = writer.series(tag, values);
            EXPECT_TRUE(found);
            if (report != nullptr) {
                *report = *found;
            }
        }
    }
    EXPECT_TRUE(writer.finish());
    return out;
}

} // namespace

TEST(ChartTags, TheElementAroundATagDecidesTheType)
{
    for (int i = 0; i <= static_cast<int>(ChartType::Radar); ++i) {
        const auto type = static_cast<ChartType>(i);
        const QByteArray name = "c:" + chartElement(type).toByteArray();
        QByteArray data;
        for (const QByteArrayView axis : axisElements(type)) {
            data += refs(axis.toByteArray(), "numRef");
        }
        // Charts of other types before and after it do not count.
        const QByteArray other = "<c:barChart><c:ser>" + kData + "</c:ser></c:barChart>";
        const auto tags =
            tagsOf(space(other + "<" + name + "><c:ser>" + named("[[KOBDATA  sales ]]") + data +
                         "</c:ser></" + name + ">" + other));
        ASSERT_EQ(tags.size(), 1U);
        EXPECT_EQ(tags[0].use, TagUse::Series);
        EXPECT_EQ(tags[0].type, type);
        EXPECT_EQ(tags[0].reference, QStringLiteral("sales"));
        EXPECT_EQ(tags[0].axes.size(), axisElements(type).size());
    }
}

TEST(ChartTags, EachTagHasItsUse)
{
    struct Case
    {
        QByteArray part;
        std::vector<TagUse> uses;
    };
    const QByteArray tag = "[[KOBData a]]";
    const Case cases[] = {
        {space(named("[[KOBData]] [KOBData a]] [[KOB")), {}},
        {space(named("[[KOBData a") + kData), {}},
        {space("<c:v>" + tag + "</c:v><c:barChart></c:barChart>"), {TagUse::NoChart}},
        {space("<c:sunburstChart>" + named(tag) + kData + "</c:sunburstChart>"), {TagUse::NoChart}},
        {bar(named(tag)), {TagUse::NoValues}},
        {bar(refs("val", "numRef") + named(tag)), {TagUse::NoValues}},
        // No series ends after the tag.
        {space("<c:barChart>" + named(tag) + kData + "</c:barChart>"), {TagUse::NoValues}},
        {bar(named(tag + tag) + kData), {TagUse::Series, TagUse::Repeated}},
        {bar("<!-- " + tag + " -->" + kData), {TagUse::Series}},
        {bar("<c:idx val='" + tag + "'/>" + kData), {TagUse::Series}},
        {bar(named("[[KOBData <b/>a]]") + kData), {TagUse::Split}},
        // The second beginning has the end.
        {bar(named("[[KOBData </c:v><c:v>[[kobdata a]]") + kData), {TagUse::Series}},
        // Elements in comments do not count.
        {bar(named(tag) + "<!-- <c:val></c:val> -->"), {TagUse::NoValues}},
        // Markup that is not nested correctly.
        {bar(named(tag) + "<c:val><c:numRef>"), {TagUse::NoValues}},
    };
    for (const Case &one : cases) {
        std::vector<TagUse> uses;
        for (const ChartTag &found : tagsOf(one.part)) {
            uses.push_back(found.use);
        }
        EXPECT_EQ(uses, one.uses) << one.part.constData();
    }
    EXPECT_EQ(tagsOf(bar(named("[[KOBData <b/>a&amp;]]")))[0].reference, QStringLiteral("a&"));
}

TEST(ChartTags, BrokenMarkupAndTooManyTagsAreFaults)
{
    const auto broken = findTags("<c:chartSpace><c:barChart>[[KOBData a]]<");
    ASSERT_FALSE(broken);
    EXPECT_EQ(broken.fault().code, opc::Error::Malformed);
    const auto many = findTags(QByteArray("[[kobdata ]]").repeated(kMaxTags + 1));
    ASSERT_FALSE(many);
    EXPECT_EQ(many.fault().code, opc::Error::TooLarge);
    // Without a tag nothing is examined.
    EXPECT_TRUE(tagsOf("<broken").empty());
}

TEST(SeriesWriter, DataBecomesLiterals)
{
    const ValueList texts = list({u" A<&> ", u"B\r", u"C"});
    const ValueList numbers = list({u"1.5", u"2", u"-3e2"});
    const QByteArray points = "<c:pt idx=\"0\"><c:v>1.5</c:v></c:pt><c:pt idx=\"1\"><c:v>2</c:v>"
                              "</c:pt><c:pt idx=\"2\"><c:v>-3e2</c:v></c:pt>";
    const QByteArray count = "<c:ptCount val=\"3\"/>";
    const QByteArray bars = "<c:errBars><c:plus><c:numLit/></c:plus><c:minus/></c:errBars>";
    const QByteArray literal = "<c:numLit>" + count + points + "</c:numLit>";
    EXPECT_EQ(filled(bar(named("[[KOBData a]]") + bars + kData + "<c:end/>"),
                     {&texts, &numbers, &numbers, &numbers}),
              bar(named("[[KOBData a]]") + "<c:errBars><c:plus>" + literal + "</c:plus><c:minus>" +
                  literal + "</c:minus></c:errBars><c:cat><c:strLit>" + count +
                  "<c:pt idx=\"0\"><c:v>A&lt;&amp;&gt;</c:v></c:pt><c:pt idx=\"1\"><c:v>B</c:v>"
                  "</c:pt><c:pt idx=\"2\"><c:v>C</c:v></c:pt></c:strLit></c:cat><c:val>" +
                  literal + "</c:val><c:end/>"));
    // Axes without values keep their content, and so does a part without tags.
    EXPECT_EQ(filled(bar(named("[[KOBData a]]") + kData), {}), bar(named("[[KOBData a]]") + kData));
    EXPECT_EQ(filled(bar(kData), {&texts, &numbers}), bar(kData));
}

TEST(SeriesWriter, ThePrefixIsThatOfThePart)
{
    QByteArray part = bar(named("[[KOBData a]]") + "<c:val/>");
    QByteArray expected =
        bar(named("[[KOBData a]]") + "<c:val><c:numLit><c:ptCount val=\"1\"/><c:pt idx=\"0\"><c:v>7"
                                     "</c:v></c:pt></c:numLit></c:val>");
    const ValueList numbers = list({u"7"});
    for (const QByteArray &prefix : {QByteArray(), QByteArray("chart:")}) {
        EXPECT_EQ(filled(QByteArray(part).replace("c:", prefix), {nullptr, &numbers}),
                  QByteArray(expected).replace("c:", prefix));
    }
}

TEST(SeriesWriter, RowsWithAnEmptyCellAreGaps)
{
    const ValueList texts = list({u"A", u" ", u"C", u"", u"E"});
    const ValueList numbers = list({u"1", u"2", u"", u""});
    SeriesReport report;
    const QByteArray out = filled(bar(named("[[KOBData a]]") + kData), {&texts, &numbers}, &report);
    EXPECT_TRUE(out.contains("<c:strLit><c:ptCount val=\"5\"/><c:pt idx=\"0\"><c:v>A</c:v></c:pt>"
                             "</c:strLit>"));
    EXPECT_TRUE(out.contains("<c:numLit><c:ptCount val=\"4\"/><c:pt idx=\"0\"><c:v>1</c:v></c:pt>"
                             "<c:pt idx=\"2\"><c:v>0</c:v></c:pt></c:numLit>"));
    // A row without any text has no point to lose.
    EXPECT_EQ(report.gaps.count, 3);
    EXPECT_EQ(report.gaps.firstIndex, 1);
}

TEST(SeriesWriter, OtherTextsOfNumericAxesAreZero)
{
    const ValueList numbers = list({u"1", u"x", u"-", u"1,5"});
    SeriesReport report;
    const QByteArray out =
        filled(bar(named("[[KOBData a]]") + kData), {nullptr, &numbers}, &report);
    EXPECT_TRUE(out.contains("<c:pt idx=\"2\"><c:v>0</c:v></c:pt>"));
    EXPECT_EQ(report.notNumbers[kValueAxis].count, 3);
    EXPECT_EQ(report.notNumbers[kValueAxis].firstIndex, 1);
    for (const char *text : {"0", "-1", "+1", "007", "1.", ".5", "1e+300", "-2.5E-7", "1e-999"}) {
        EXPECT_TRUE(isNumberText(text)) << text;
    }
    for (const char *text : {"", "+", "-", ".", "e5", "1e", "1e+", "1 2", "0x1", "1.2.3", "nan",
                             "inf", "1e999", "--1", "1,000"}) {
        EXPECT_FALSE(isNumberText(text)) << text;
    }
    EXPECT_FALSE(isNumberText(std::string(400, '9')));
}

TEST(SeriesWriter, LongDataIsWrittenInBlocks)
{
    const QString longText = QStringLiteral("<").repeated(100'000);
    ValueList texts = list({longText});
    ValueList numbers = list({u"1"});
    for (int i = 1; i < 20'000; ++i) {
        texts.append(QString::number(i));
        numbers.append(QString::number(i));
    }
    const QByteArray out = filled(bar(named("[[KOBData a]]") + kData), {&texts, &numbers});
    EXPECT_EQ(out.count("<c:pt "), 40'000);
    EXPECT_EQ(out.count("&lt;"), 100'000);
    EXPECT_TRUE(out.contains("<c:pt idx=\"19999\"><c:v>19999</c:v></c:pt></c:numLit></c:val>"));

    int blocks = 0;
    const QByteArray part = bar(named("[[KOBData a]]") + kData);
    SeriesWriter writer(part, [&](QByteArrayView) -> Result<void, opc::Error> {
        ++blocks;
        return Fault{opc::Error::WriteFailed};
    });
    EXPECT_FALSE(writer.series(tagsOf(part)[0], {&texts, &numbers}));
    EXPECT_FALSE(writer.finish());
    EXPECT_EQ(blocks, 1);
}

TEST(SeriesWriter, ATagCanBecomeItsReference)
{
    const auto cleaned = [](const QByteArray &part) {
        QByteArray out;
        SeriesWriter writer(part, [&](QByteArrayView block) -> Result<void, opc::Error> {
            out += block;
            return {};
        });
        for (const ChartTag &tag : tagsOf(part)) {
            EXPECT_TRUE(writer.replaceTag(tag));
        }
        EXPECT_TRUE(writer.finish());
        return out;
    };
    const auto cell = [](const QByteArray &inner) {
        return "<c:tx><c:strRef><c:f>A!$B$1</c:f><c:strCache>" + inner +
               "</c:strCache></c:strRef></c:tx>";
    };
    const QByteArray tag = "[[KOBData a&lt;b]]";
    EXPECT_EQ(cleaned(bar(named(tag) + kData)), bar(named("a&lt;b") + kData));
    // A cell would be read again, with the tag in it.
    EXPECT_EQ(cleaned(bar("<c:idx/>" + cell(tag + tag) + kData)),
              bar("<c:idx/>" + named("a&lt;b") + kData));
    // The text of a label is not a name.
    const QByteArray label = "<c:dLbls>" + cell(tag) + "</c:dLbls>";
    EXPECT_EQ(cleaned(bar(label + kData)), bar(QByteArray(label).replace(tag, "a&lt;b") + kData));
}

TEST(ValueList, FindsCharactersThatXmlCannotHold)
{
    EXPECT_FALSE(list({u"a\tb\nc", u"\xFFFD\U0001F600", u"caf\u00E9"}).firstForbidden());
    for (const char16_t unit : {u'\x01', u'\x1F', u'\xFFFE', u'\xFFFF', u'\xD800', u'\xDC00'}) {
        const char16_t text[] = {u'a', unit, u'b'};
        EXPECT_EQ(list({u"a", QStringView(text, 3)}).firstForbidden(), 1);
    }
}

} // namespace corvanta::charts
