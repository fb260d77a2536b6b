// Tests trees, single paths and sets of paths.
#include "codecs/markup/tokens/json_tokenizer.h"
#include "codecs/markup/tokens/xml_tokenizer.h"
#include "codecs/markup/tree/path.h"
#include "codecs/markup/tree/path_set.h"
#include "codecs/markup/tree/tree.h"

#include <QString>

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <random>
#include <string>

using namespace corvanta;
using namespace corvanta::markup;

TEST(Tree, KeepsOrderAndCounts)
{
    MemorySource source("<a x='1'>t<b/><!--c--><b>u</b>v</a><a>second</a>");
    XMLTokenizer tokenizer(source, 0);
    MarkupTreeBuilder builder;
    MarkupResult result;
    const MarkupNode a = builder.parseNext(tokenizer, result, true);
    ASSERT_EQ(result.error, MarkupError::None);
    EXPECT_EQ(a.name(), u"a");
    EXPECT_EQ(a.childCount(), 2);
    EXPECT_EQ(a.textCount(), 2);
    EXPECT_EQ(a.clearCount(), 1);
    EXPECT_EQ(a.elementCount(), 6);
    EXPECT_EQ(a.attribute(0).value, u"1");
    EXPECT_EQ(a.text(1), u"v");
    EXPECT_EQ(a.text(0), u"t");
    EXPECT_EQ(a.clear(0), u"c");
    EXPECT_EQ(a.child(1).text(0), u"u");
    EXPECT_TRUE(a.child(2).isEmpty());
    EXPECT_EQ(a.child(2).childCount(), 0);
    EXPECT_EQ(a.text(9), u"");
    EXPECT_EQ(builder.parseNext(tokenizer, result, true).text(0), u"second");
    EXPECT_TRUE(builder.parseNext(tokenizer, result, true).isEmpty());
    EXPECT_EQ(result.error, MarkupError::NoTagFound);
}

TEST(Tree, ReadsWholeValuesOrSingleElements)
{
    const QByteArray document = R"({"a":1,"b":{"c":2}} {"d":3})";
    MemorySource whole(document);
    JSONTokenizer values(whole, 0, u"");
    MarkupTreeBuilder builder;
    MarkupResult result;
    EXPECT_EQ(builder.parseNext(values, result, false).childCount(), 2);
    EXPECT_EQ(builder.parseNext(values, result, false).name(), u"d");
    builder.setReturnSingleChild(false);
    MemorySource single(document);
    JSONTokenizer elements(single, 0, u"");
    EXPECT_EQ(builder.parseNext(elements, result, true).child(0).name(), u"a");
    EXPECT_EQ(builder.parseNext(elements, result, true).child(0).child(0).text(0), u"2");
    MemorySource cut(R"({"a":{"b":1)");
    JSONTokenizer cutElements(cut, 0, u"");
    EXPECT_FALSE(builder.parseNext(cutElements, result, true).isEmpty());
    EXPECT_EQ(result.error, MarkupError::UnmatchedEndTag);
}

TEST(Path, FindsDescendants)
{
    struct Case
    {
        const char16_t *path;
        const char16_t *text; ///< null: not found
        bool zeroBased = true;
    };
    MemorySource source(R"({"Doc":{"item":[{"v":"i0"},{"v":"i1"}],"x":"x0","X":"x1","a/b":"slash",
        "c\\d":"back","É":"accent","n[3]":"brackets","_":"under"}})");
    JSONTokenizer tokenizer(source, 0, u"");
    MarkupTreeBuilder builder;
    MarkupResult result;
    const MarkupNode doc = builder.parseNext(tokenizer, result, false);
    ASSERT_EQ(doc.name(), u"Doc");
    const std::array cases{Case{u"x", u"x0"},
                           Case{u"/X", u"x0"},
                           Case{u"x[1]", u"x1"},
                           Case{u"X[1]", u"x0", false},
                           Case{u"x[2]", u"x1", false},
                           Case{u"x[]", u"x0"},
                           Case{u"x[]", u"x0", false},
                           Case{u"item/[1]/v", u"i1"},
                           Case{u"item/[1]/v", u"i0", false},
                           Case{u"[1]", u"x0"},
                           Case{u"item/[2]/v", nullptr},
                           Case{u"item/v", nullptr},
                           Case{u"x[99999999999]", nullptr},
                           Case{u"a\\/b", u"slash"},
                           Case{u"c\\\\d", u"back"},
                           Case{u"é", u"accent"},
                           Case{u"n[3]", nullptr},
                           Case{u"n[3][0]", u"brackets"},
                           Case{u"_", u"under"},
                           Case{u"", u""},
                           Case{u"nothing", nullptr}};
    for (const Case &c : cases) {
        const MarkupNode found = getChildNodeByPath(doc, c.path, c.zeroBased, u'/');
        ASSERT_EQ(found.isEmpty(), c.text == nullptr) << QString::fromUtf16(c.path).toStdString();
        EXPECT_EQ(found.text(0), c.text == nullptr ? u"" : c.text)
            << QString::fromUtf16(c.path).toStdString();
    }
    EXPECT_TRUE(getChildNodeByPath(doc, QStringView(), true, u'/').isEmpty());
    EXPECT_EQ(escapedStep(u"a/b\\[1]"), u"a\\/b\\\\[1][]");
}

// What a set of paths learned from the records before must not show in what it finds.
TEST(PathSet, FindsTheSameAsSingleLookups)
{
    const std::array<QStringView, 12> paths{u"a",    u"b",   u"A[1]", u"[0]", u"[2]/a",  u"b/a",
                                            u"b[1]", u"c/b", u"b/a",  u"",    u"b[1]/c", u"long/a"};
    std::mt19937 random(4);
    const auto below = [&](quint32 n) { return random() % n; };
    const std::function<QByteArray(int)> object = [&](int depth) {
        static constexpr std::array kNames{"a", "b", "A", "c", "long", "\\u0062", ""};
        QByteArray members;
        for (quint32 n = below(6); n > 0; --n) {
            const QByteArray name = kNames[below(kNames.size())];
            const QByteArray value = depth > 0 && below(2) == 0 ? object(depth - 1) : "1";
            members += (members.isEmpty() ? "\"" : ",\"") + name + "\":" + value;
        }
        return '{' + members + '}';
    };
    PathSet set;
    PathSet wide; // names are looked up in it, and not compared
    for (const QStringView path : paths) {
        set.add(parsePath(path, {true, u'/'}));
        wide.add(parsePath(path, {true, u'/'}));
    }
    for (int i = 0; i < 100; ++i) {
        wide.add(parsePath(u'n' + QString::number(i), {true, u'/'}));
    }
    MarkupTreeBuilder builder;
    builder.setReturnSingleChild(false);
    for (int record = 0; record < 3000; ++record) {
        const QByteArray document = object(2);
        MemorySource source(document);
        JSONTokenizer tokenizer(source, 0, u"");
        MarkupResult result;
        const MarkupNode root = builder.parseNext(tokenizer, result, false);
        if (root.isEmpty()) {
            continue;
        }
        const std::span<const quint32> found = set.resolve(*root.tree(), root.index());
        const std::span<const quint32> same = wide.resolve(*root.tree(), root.index());
        ASSERT_TRUE(std::equal(found.begin(), found.end(), same.begin())) << document.toStdString();
        for (size_t i = 0; i < paths.size(); ++i) {
            const MarkupNode single = getChildNodeByPath(root, paths[i], true, u'/');
            ASSERT_EQ(found[i], single.isEmpty() ? MarkupTree::kNone : single.index())
                << paths[i].toString().toStdString() << " in " << document.toStdString();
        }
    }
}
