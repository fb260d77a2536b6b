// Which tables a sample holds, and how they are read.
#include "codecs/markup/sample/sample_levels.h"
#include "codecs/markup/tokens/json_tokenizer.h"
#include "codecs/markup/tokens/xml_tokenizer.h"

#include <gtest/gtest.h>

using namespace corvanta;
using namespace corvanta::markup;
using namespace Qt::StringLiterals;

namespace {

SampledDocument sampled(const char *text, const SampleOptions &options = {})
{
    MemorySource source(text);
    if (text[0] == '<') {
        XMLTokenizer tokenizer(source, 0);
        return sampleDocument(tokenizer, options);
    }
    JSONTokenizer tokenizer(source, 0, u"");
    return sampleDocument(tokenizer, options);
}

/// "initial path|subtag|name=path,..." of each level of the largest table, then what is left out.
std::string levelsOf(const char *text, const SampleOptions &options = {})
{
    const SampledDocument document = sampled(text, options);
    const SampledTable &table = document.tables.at(document.largest);
    QStringList texts;
    for (const Level &level : table.levels) {
        QStringList items;
        for (const LevelItem &item : level.items) {
            items << item.name + u'=' + item.path;
        }
        texts << level.initialPath + u'|' + level.subtagName + u'|' + items.join(u',');
    }
    texts << (table.namesAreData ? QStringList(u"(named)"_s) : QStringList());
    texts << (table.leftOut.isEmpty() ? QStringList()
                                      : QStringList(u"-"_s + table.leftOut.join(u',')));
    return texts.join(u' ').toStdString();
}

struct SampleCase
{
    const char *document;
    const char *levels;
};

} // namespace

TEST(SampleLevels, AreDerivedFromTheShapeOfAJsonDocument)
{
    for (
        const auto &[json, levels] : {
            SampleCase{R"([{"id":1,"n":{"x":1,"id":2}},{"new":3}])",
                       "||id=id,x=n/x,n.id=n/id,new=new"},
            // A key that begins with a byte-order mark keeps it.
            SampleCase{"[{\"\uFEFFid\":1},{\"\uFEFFid\":2}]", "||\uFEFFid=\uFEFFid"},
            // The records of the largest array, the most frequent array in them, short lists as
            // columns.
            SampleCase{
                R"({"meta":{"v":1},"orders":[{"id":1,"lines":[{"s":1,"q":[1,2]}],"tags":["a"],"x":[{"y":1}]},
                    {"lines":[{"s":2},{"s":3}]}]})",
                "orders||id=id,tags[0]=tags/[0] lines||s=s,q[0]=q/[0],q[1]=q/[1] -x"},
            SampleCase{R"([{"a":1,"v":[1,2,3,4,5,6,7,8,9]}])", "||a=a v||v="},
            SampleCase{"{\"a\":1,\"b\":{\"c\":null}}\n{\"a\":2,\"d\":3}", "||a=a,c=b/c,d=d"},
            SampleCase{R"({"k":{"v":[[1,2],[3]]}})", "k/v||v[0]=[0],v[1]=[1]"},
            // An index would select the first member of an object.
            SampleCase{R"([{"a":1},[5]])", "||a=a -[0]"},
            SampleCase{R"([{"id":1,"x":{"a":2}},{"x":[5]}])", "||id=id,a=x/a -x[0]"},
            SampleCase{R"({"title":"t","ids":[1,2]})",
                       "||title=title,ids[0]=ids/[0],ids[1]=ids/[1]"},
            SampleCase{R"({"ids":[1,2]})", "ids||ids="},
            SampleCase{"[1,2]", "||value="},
            SampleCase{R"({"r":[]})", "||value="},
            SampleCase{"[]", "||value="},
            SampleCase{"", "||value="},
            // Single values are records only among themselves.
            SampleCase{"5\n[{\"a\":1},{\"a\":2}]\n6", "||a=a"},
            SampleCase{"[{\"a\":1}]\n{\"b\":1}\n{\"b\":2}", "||a=a"},
            SampleCase{"5\n[1,2]", "||value="},
            SampleCase{"{\"r\":[{\"a\":1}]}\n5", "r||a=a"},
            // Of equal tables the first one.
            SampleCase{R"({"r":[{"a":1}],"s":[{"b":1}]})", "r||a=a"},
            SampleCase{"5\n6", "||value="},
            SampleCase{"[{\"a\":1},{\"b\":", "||a=a"},
        }) {
        EXPECT_EQ(levelsOf(json), levels) << json;
    }
    EXPECT_EQ(levelsOf("[{\"a\":1},{\"b\":2},{\"c\":3}]", {2, {}, true}), "||a=a,b=b");
}

TEST(SampleLevels, HaveDistinctColumnNames)
{
    for (const auto &[json, levels] : {
             SampleCase{R"([{"d":{"t":1,"v":2},"u":{"t":3,"v":4}}])",
                        "||d.t=d/t,d.v=d/v,u.t=u/t,u.v=u/v"},
             SampleCase{R"([{"id":1,"lines":[{"id":2}]}])", "||id=id lines||lines.id=id"},
             // Paths do not see letter case, and cannot say blanks at the ends or control
             // characters.
             SampleCase{R"([{"Id":1,"ID":2,"a":{"B":3},"A":{"B":4}}])",
                        "||Id=Id,ID=ID[1],a.B=a/B,A.B=A[1]/B"},
             SampleCase{R"([{"a/b":1,"x[0]":2," y":3,"z\u0001":4}])", "||a/b=a\\/b,x[0]=x[0][]"},
         }) {
        EXPECT_EQ(levelsOf(json), levels) << json;
    }
    EXPECT_EQ(levelsOf("<r><l a='1' A='2' l='3'>4</l><l>5</l></r>"), "r|l|l=,a=@a,A=@A,l_2=@l");
}

TEST(SampleLevels, TreatAnObjectOfSimilarMembersAsATable)
{
    EXPECT_EQ(levelsOf(R"({"p":{"a":{"v":1},"b":{"v":2},"c":{"v":3,"w":0},"d":{"v":4}}})"),
              "p||v=v,w=w (named)");
    EXPECT_EQ(levelsOf(R"({"p":{"a":{"v":1},"b":{"v":2},"c":{"v":3}}})"),
              "||a.v=p/a/v,b.v=p/b/v,c.v=p/c/v");
    EXPECT_EQ(levelsOf(R"({"a":{"v":1},"b":{"w":2},"c":{"x":3},"d":{"y":4}})"),
              "||v=a/v,w=b/w,x=c/x,y=d/y");
}

TEST(SampleLevels, AreDerivedFromTheShapeOfAnXmlDocument)
{
    for (const auto &[xml, levels] : {
             SampleCase{"<shop xmlns='u' xmlns:x='v'><info/><order id='1'><name>n</name><line "
                        "k='x'>1</line>"
                        "<line>2</line><tag>a</tag><tag>b</tag></order><order id='2'/></shop>",
                        "shop|order|id=@id,name=name,tag[0]=tag[0],tag[1]=tag[1] |line|line=,k=@k"},
             SampleCase{"<a v='1'><i>1</i><i>2</i></a>", "a|i|i="},
             SampleCase{"<a><t>x</t><i>1</i><i>2</i></a>", "|a|t=t,i[0]=i[0],i[1]=i[1]"},
             SampleCase{"<a><b>1</b></a>", "|a|b=b"},
             SampleCase{"<a><b/></a>", "|a|a="},
         }) {
        EXPECT_EQ(levelsOf(xml), levels) << xml;
    }
    const char *const clear = "<a><i><![CDATA[x]]></i><i>2<k/></i></a>";
    EXPECT_EQ(levelsOf("<a><i><t><![CDATA[x]]></t></i><i><t/></i></a>", {9, {true}, true}),
              "a|i|t=t");
    EXPECT_EQ(levelsOf(clear, {9, {}, false}), "a|i|i=");
    EXPECT_EQ(levelsOf("<a><t>x</t><i>1</i><i>2</i></a>", {9, {}, false}),
              "|a|t=t,i[0]=i[1],i[1]=i[2]");
}

TEST(SampleLevels, ListEveryTableOfTheDocument)
{
    const SampledDocument document = sampled(
        R"({"n":[{"a":1},{"a":2},{"a":3}],"m":{"l":[{"x":1,"y":2},{"x":3,"y":4}]},"o":[1]})");
    ASSERT_EQ(document.tables.size(), 2U);
    EXPECT_EQ(document.tables[0].path, u"n");
    EXPECT_EQ(document.tables[0].rows, 3);
    EXPECT_EQ(document.tables[1].path, u"m/l");
    EXPECT_EQ(document.tables[1].beginning, (QStringList{u"x"_s, u"y"_s}));
    EXPECT_EQ(document.largest, 1U);
}

// As wide as this one would show what costs the square of the members.
TEST(SampleLevels, NeedLinearTimeForManyMembers)
{
    QByteArray json = "[{";
    for (int i = 0; i < 30'000; ++i) {
        json += "\"k" + QByteArray::number(i) + "\":1,";
    }
    json += "\"last\":1}]";
    const SampledDocument document = sampled(json.constData());
    EXPECT_GT(document.tables[0].levels[0].items.size(), 15'000U);
}
