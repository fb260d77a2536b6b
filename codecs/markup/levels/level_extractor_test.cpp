// Rows out of documents: levels in levels, streams of documents, cells, and paths that are not
// there.
#include "base/cell.h"
#include "codecs/markup/levels/level_extractor.h"
#include "codecs/markup/tokens/xml_tokenizer.h"
#include "tests/support/corpus.h"

#include <QString>

#include <gtest/gtest.h>

using namespace corvanta;
using namespace corvanta::markup;
using namespace Qt::StringLiterals;

namespace {

/// "initial|subtag|path,path" per level; a path that ends in "!" asks for tag names.
std::vector<Level> levelsOf(const QStringList &texts)
{
    std::vector<Level> levels;
    for (const QString &text : texts) {
        const QStringList parts = text.split(u'|');
        Level level{parts.value(0), parts.value(1), {}};
        for (QString path : parts.value(2).split(u',')) {
            const bool tagName = path.endsWith(u'!');
            path.chop(tagName ? 1 : 0);
            if (parts.size() > 2) {
                level.items.push_back({path, path, tagName});
            }
        }
        levels.push_back(std::move(level));
    }
    return levels;
}

QString rowText(std::span<const uchar *const> cells)
{
    QStringList texts;
    for (const uchar *cell : cells) {
        const cell::Text text = cell::readText(cell);
        texts << (text.isMissing() ? u"-"_s
                                   : QString::fromStdU16String(std::u16string(text.view())));
    }
    return texts.join(u',');
}

/// Rows separated by ";", then "!code" after a fault and the missing paths in brackets.
QString extract(LevelExtractor &extractor, MarkupTokenizer &tokenizer)
{
    QString rows;
    BlockArena arena;
    extractor.beginDocument(tokenizer);
    auto row = extractor.next(arena);
    for (; row && *row; row = extractor.next(arena)) {
        rows += rowText(extractor.cells()) + u';';
        arena.reset();
    }
    if (!row) {
        rows += u'!' + QString::number(static_cast<int>(row.fault().code.error));
    }
    const QStringList missing = extractor.missingPaths();
    return missing.isEmpty() ? rows : rows + u"[%1]"_s.arg(missing.join(u' '));
}

struct Case
{
    const char *json;
    QStringList levels;
    const char *rows;
};

const std::vector<Case> kCases = {
    {R"({"x":{"o":1},"orders":[{"id":1,"l":[{"s":"a"},{"s":"b"}]},{"id":2},{"l":[],"id":3}]})",
     {u"orders||id"_s, u"l||s"_s},
     "1,a;1,b;2,-;3,-;"},
    {R"([{"a":{"b":"x"}},{"A":{"B":""}},{"a":null},{"a":{}},[1]])",
     {u"||a,a/b"_s},
     "-,x;-,;null,-;-,-;-,-;"},
    {R"([{"v":NaN},{"v":-inf},{"":1}])", {u"||v,_!"_s}, "nan,-;-inf,-;-,;"},
    {R"([{"k":{"z":1,"a":1,"b":1,"b":2,"b":3,"c":4}}])",
     {u"||k!,k/b[2],k/[0],k/q"_s},
     "z a b[3] c ,3,1,-;[k/q]"},
    {R"({"p":{"m1":{"v":1},"m2":{"v":2},"M1":{"v":3}}})", {u"/P|m1|v"_s}, "1;3;"},
    {R"({"p":{"m1":{"v":1},"m2":{"v":2}}})", {u"||v"_s}, "-;[v]"},
    {R"({"m1":{"v":1},"m2":{"v":2}})", {u"||v"_s}, "1;2;"},
    {R"({"m1":5,"m2":{"v":2}})", {u"||"_s}, "5;-;"},
    {"[[1,2],[3,[4]]]", {u"||[0],[1],[1]/[0]"_s}, "1,2,-;3,-,4;"},
    {"[[1,2],[3]]", {u"[0]||"_s}, "1;2;"},
    {R"([{"n":[{"m":[1,2]},{"m":[]},{"m":[3]}]},{"n":[]}])",
     {u"||"_s, u"n||"_s, u"m||"_s},
     "-,-,1;-,-,2;-,-,-;-,-,3;-,-,-;"},
    {R"({"p":{"a/B":{"v":1},"c":{"v":2},"A/b":{"v":3}}})", {u"p|a\\/b|v"_s}, "1;3;"},
    // one document per line, and other streams
    {"{\"id\":1,\"u\":{\"n\":\"x\"}}\n{\"u\":{\"n\":\"y\"},\"id\":2}\n{}\n{\"id\":4}",
     {u"||id,u/n"_s},
     "1,x;2,y;-,-;4,-;"},
    {"{\"other\":0,\"l\":[1,2]} {\"l\":[3]}", {u"||"_s, u"l||"_s}, "-,1;-,2;-,3;"},
    {"[{\"v\":1}][{\"v\":2}]", {u"||v"_s}, "1;2;"},
    {"{\"r\":[{\"v\":1}]}{\"r\":[{\"v\":2}]}", {u"r||v"_s}, "1;2;"},
    {"1 \"x\"", {u"||"_s}, "1;x;"},
    // a record or a container: decided by all of the first object, then by what follows
    {R"({"u":{"id":7},"id":1}{"u":{"id":8}})", {u"||id"_s}, "1;-;"},
    {R"({"u":{"id":7},"v":{"id":8}})", {u"||id"_s}, "7;8;"},
    {R"({"u":{"id":7},"v":{"x":8}} {"id":1})", {u"||id"_s}, "-;1;"},
    {R"({"x":1,"y":2})", {u"||id"_s}, "-;[id]"},
    {R"({"x":1} [{"id":2}] {"y":[]})", {u"||id"_s}, "-;2;-;"},
    {R"({"x":{}} [{"id":2}] {"y":{"id":3}})", {u"||id"_s}, "-;2;3;"},
    {R"({} {"id":1})", {u"||id"_s}, "-;1;"},
    {R"({"x":1} {"x":2})", {u"||"_s}, "1;2;"},
    // paths that the file never had
    {R"({"a":[{"b":1}]})", {u"q||b,c"_s}, "[q]"},
    {R"({"a":[{"b":1}]})", {u"a||b,c"_s, u"d||e"_s}, "1,-,-;[c d]"},
    {R"({"a":[]})", {u"a||b"_s}, ""},
    // faults: the rows before are right
    {R"({"a":[{"b":1},{"b":2)", {u"a||b"_s}, "1;!4"},
    {R"({"a":[{"b":1}],"c":tru})", {u"a||b"_s}, "1;!25"},
    {"", {u"||b"_s}, "!2"},
    {" \n", {u"a||b"_s}, "!2[a]"},
};

} // namespace

TEST(LevelExtractor, ExtractsRowsFromEveryForm)
{
    for (const Case &c : kCases) {
        for (const qint64 piece : {-1, 1}) {
            MemorySource source(c.json, piece);
            JSONTokenizer tokenizer(source, 0, u"");
            LevelExtractor extractor(levelsOf(c.levels), {});
            EXPECT_EQ(extract(extractor, tokenizer).toStdString(), c.rows) << c.json;
        }
    }
}

// Many records of changing shape: the remembered shape must never give another member's value.
TEST(LevelExtractor, AcceptsRecordsOfDifferentShapes)
{
    QString document = u"["_s;
    QString expected;
    for (int i = 0; i < 400; ++i) {
        QStringList members;
        for (int m = 0; m < 9; ++m) {
            const char16_t name = u"abcab"[(i * 7 + m * (i % 3 + 1)) % 5];
            members << u"\"%1\":\"%2.%3\""_s.arg(QString(name), QString::number(i),
                                                 QString::number(m));
        }
        document += (i > 0 ? u",{"_s : u"{"_s) + members.join(u',') + u'}';
        for (const auto &[name, index] : {std::pair{u'a', 0}, {u'b', 1}, {u'c', 0}}) {
            QStringList hits = members.filter(u"\"%1\":"_s.arg(QChar(name)));
            const QString hit = hits.value(index);
            expected += (name == u'a' ? u""_s : u","_s) +
                        (hit.isEmpty() ? u"-"_s : hit.sliced(5).chopped(1));
        }
        expected += u';';
    }
    const QByteArray bytes = (document + u']').toUtf8();
    MemorySource source(bytes);
    JSONTokenizer tokenizer(source, 0, u"");
    LevelExtractor extractor(levelsOf({u"||a,b[1],c"_s}), {});
    EXPECT_EQ(extract(extractor, tokenizer), expected);
}

// A record may have any number of members before the one that is asked for; only an object larger
// than any record is a container without reading all of it.
TEST(LevelExtractor, DecidesFromTheWholeFirstObject)
{
    for (const auto &[members, rows] : {std::pair{100'000, "9;"}, {1'500'000, "-;9;"}}) {
        QByteArray json = "{";
        for (int i = 0; i < members; ++i) {
            json += "\"m" + QByteArray::number(i) + "\":{},";
        }
        json += "\"id\":9,\"u\":{\"id\":9}}";
        MemorySource source(json);
        JSONTokenizer tokenizer(source, 0, u"");
        LevelExtractor extractor(levelsOf({u"||id"_s}), {});
        const QString found = extract(extractor, tokenizer);
        EXPECT_TRUE(found.endsWith(QLatin1StringView(rows))) << members;
        EXPECT_EQ(found.count(u';'), members < 1'000'000 ? 1 : members + 2);
    }
}

// Everything that is not read has a count and a place, however the bytes arrive.
TEST(LevelExtractor, CountsWhatItDoesNotRead)
{
    constexpr char kJson[] = "[{\"v\":1,\"V\":2,\"x\":0,\"v\":3},4,\"x\",{\"l\":[{\"s\":5},6]}]\n"
                             "{\"l\":[],\"l\":[]}\n  Internal Server\tError 500\n[] Gone {}\0 \0{}";
    const QByteArrayView json(kJson, sizeof(kJson) - 1);
    for (const qint64 piece : {-1, 1, 5}) {
        MemorySource source(json, piece);
        JSONTokenizer tokenizer(source, 0, u"");
        tokenizer.setPermissiveNumbers(true);
        LevelExtractor extractor(levelsOf({u"||v"_s, u"l||s"_s}), {});
        EXPECT_EQ(extract(extractor, tokenizer).toStdString(), "1,-;-,-;-,-;-,5;-,-;-,-;-,-;");
        extractor.endDocument();
        const UnreadParts unread = extractor.unread();
        EXPECT_EQ(unread.strayTexts.count(), 2);
        EXPECT_EQ(unread.strayTexts.first(), u"line 3, column 3"_s);
        EXPECT_EQ(unread.bareValues.count(), 3);
        EXPECT_EQ(unread.bareValues.first(), u"line 1, column 28"_s);
        EXPECT_EQ(unread.bytesAfterNul, 4);
        EXPECT_EQ(unread.nulPlace, u"line 4, column 11"_s);
        ASSERT_EQ(unread.repeatedPaths.size(), 2U);
        EXPECT_EQ(unread.repeatedPaths[0].path, u"v"_s);
        EXPECT_EQ(unread.repeatedPaths[0].count, 2);
        EXPECT_EQ(unread.repeatedPaths[0].first, u"line 1, column 10"_s);
        EXPECT_EQ(unread.repeatedPaths[1].path, u"l"_s);
        EXPECT_EQ(unread.repeatedPaths[1].first, u"line 2, column 10"_s);
        extractor.beginFile();
        EXPECT_TRUE(extractor.unread().repeatedPaths.empty());
    }
}

// Whether a member is in the tree or not depends on escapes and on the sizes of reads.
TEST(LevelExtractor, CountsMembersThatRepeat)
{
    struct Repeated
    {
        const char *record;
        const char *row;
        int count;
        const char *first; // column
    };
    for (const Repeated &one : {Repeated{R"({"v":1,"v":2})", "1,-", 1, "9"},
                                {R"({"v":"\u0031","v":2,"w":3})", "1,3", 1, "16"},
                                {R"({"v":1,"v":"\u0032","v":3,"V":4})", "1,-", 3, "9"},
                                {R"({"v":"\u0031","v":"\u0032","v":3})", "1,-", 2, "16"},
                                {R"({"v":"\u0031","v":2,"v":"\u0033"})", "1,-", 2, "16"},
                                {R"({"w":[],"v":1,"w":2,"w":3})", "1,-", 2, "16"},
                                {R"({"":0,"v":1,"_":2})", "1,-", 0, ""},
                                {R"({"v":null,"v":1})", "-,-", 1, "12"}}) {
        for (const bool isArray : {false, true}) {
            const QByteArray json = (isArray ? "[\n" : "{\"w\":0}\n") + QByteArray(one.record) +
                                    (isArray ? ",{\"w\":9}]" : "\n{\"w\":9}");
            for (const qint64 piece : {-1, 1, 7}) {
                MemorySource source(json, piece);
                JSONTokenizer tokenizer(source, 0, u"");
                ExtractOptions options;
                options.nullIsMissing = true;
                LevelExtractor extractor(levelsOf({u"||v,w"_s}), options);
                EXPECT_EQ(extract(extractor, tokenizer).toStdString(),
                          (isArray ? "" : "-,0;") + std::string(one.row) + ";-,9;");
                const UnreadParts unread = extractor.unread();
                EXPECT_FALSE(unread.bareArrays.any());
                ASSERT_EQ(unread.repeatedPaths.size(), one.count > 0 ? 1U : 0U) << one.record;
                if (one.count > 0) {
                    EXPECT_EQ(unread.repeatedPaths[0].count, one.count) << one.record;
                    EXPECT_EQ(unread.repeatedPaths[0].first.toStdString(),
                              std::string("line 2, column ") + one.first)
                        << one.record << " in pieces of " << piece;
                }
            }
        }
    }
}

// A value that is an occurrence of an inner level can be read by an item of an outer one.
TEST(LevelExtractor, KnowsWhichSingleValuesAreRead)
{
    MemorySource source("[{\"v\":1},[{\"v\":3},4]]");
    JSONTokenizer tokenizer(source, 0, u"");
    LevelExtractor extractor(levelsOf({u"||v"_s, u"||v"_s}), {});
    EXPECT_EQ(extract(extractor, tokenizer).toStdString(), "1,-;-,3;-,-;");
    EXPECT_EQ(extractor.unread().bareValues.count(), 1);
    EXPECT_EQ(extractor.unread().bareValues.first(), u"line 1, column 19"_s);
}

// An array in place of a record gives a row without a cell; an empty one loses nothing.
TEST(LevelExtractor, CountsArraysAmongRecords)
{
    MemorySource source("[{\"v\":1},\n[5,{\"v\":6}],[],\n[[],[[7]]],{\"w\":0}]");
    JSONTokenizer tokenizer(source, 0, u"");
    LevelExtractor extractor(levelsOf({u"||v"_s}), {});
    EXPECT_EQ(extract(extractor, tokenizer).toStdString(), "1;-;-;-;-;");
    EXPECT_EQ(extractor.unread().bareArrays.count(), 2);
    EXPECT_EQ(extractor.unread().bareArrays.first(), u"line 2, column 2"_s);
    EXPECT_FALSE(extractor.unread().bareValues.any());
}

// An error costs its line, whatever it is; a document of several lines is not JSON Lines.
TEST(LevelExtractor, ResumesAtTheNextLine)
{
    struct Resumed
    {
        const char *json;
        const char *level;
        const char *rows;
    };
    for (const auto &[json, level, rows] : {
             Resumed{"{\"v\":1}\n{\"v\":tru,\"w\":{}}\n{\"v\":3}\n", "||v", "1;!3;"},
             {"{\"v\":1\n{\"v\":2}\r\n\n}}\n{\"v\":[\n{\"v\":4}", "||v", "!2;!!4;"},
             {"{\"v\":\"1}\n{\"v\":\"2\"}\n{\"v\":3}", "||v", "!2;3;"},
             {"{\"v\":\"\xff\xfe\"}\n{\"v\":2}\n\xe9\n{\"v\":3}\n{\"v\":4", "||v", "!2;!3;!"},
             {"{\"x\":{\"v\":tru}}\n{\"v\":2}", "||v", "!2;"},
             {"{\"l\":[{\"v\":1},]\n{\"l\":[{\"v\":2},{]}\n{\"l\":[{\"v\":3}]}", "l||v",
              "1;!2;!3;"},
             {"[{\"v\":1},\n{\"v\":tru},\n{\"v\":3}]", "||v", "1;!"},
             {"{\n \"v\":tru\n}\n{\n \"v\":2\n}", "||v", "!2;"},
         }) {
        for (const qint64 piece : {-1, 1, 3}) {
            MemorySource source(json, piece);
            JSONTokenizer tokenizer(source, 0, u"");
            LevelExtractor extractor(levelsOf({QString::fromUtf8(level)}), {});
            QString found = extract(extractor, tokenizer);
            // After a failure, extract() appends the code and the missing paths.
            found.truncate(found.indexOf(u'!') + 1);
            BlockArena arena;
            while (extractor.resume()) {
                auto row = extractor.next(arena);
                for (; row && *row; row = extractor.next(arena)) {
                    found += rowText(extractor.cells()) + u';';
                }
                found += row ? u""_s : u"!"_s;
            }
            EXPECT_EQ(found.toStdString(), rows) << json << " in pieces of " << piece;
        }
    }
}

TEST(LevelExtractor, WritesNamesOfOccurrences)
{
    MemorySource source(R"({"p":{"m1":{"l":[7]},"m2":{}}})");
    JSONTokenizer tokenizer(source, 0, u"");
    ExtractOptions options;
    options.outputSubTags = true;
    LevelExtractor extractor(levelsOf({u"p"_s, u"l||"_s}), options);
    EXPECT_EQ(extractor.columnNames().join(u','), u"Level 1 Subtag,Level 2 Subtag,");
    EXPECT_EQ(extract(extractor, tokenizer), u"m1,,7;m2,-,-;");
}

// Graphs of old hosts: the path begins below the only element of the document.
TEST(LevelExtractor, BeginsAtTheOnlyElementWithKeepRootOff)
{
    ExtractOptions options;
    options.keepRoot = false;
    for (const auto &[json, path, rows] :
         {std::tuple{R"({"orders":[{"v":1},{"v":2}]})", u"||v"_s, "1;2;"},
          {R"({"orders":{"list":[{"v":1}]}}{"x":{"list":[{"v":2}]}})", u"list||v"_s, "1;2;"},
          {R"({"orders":[{"v":1}],"n":2})", u"orders||v"_s, "1;"},
          {"{} []", u"||v"_s, ""},
          {R"({"a":[{"v":1}]} {"a":[{"v":2})", u"||v"_s, "1;!4"},
          {"", u"||v"_s, "!2"}}) {
        MemorySource source(json);
        JSONTokenizer tokenizer(source, 0, u"");
        LevelExtractor extractor(levelsOf({path}), options);
        EXPECT_EQ(extract(extractor, tokenizer).toStdString(), rows) << json;
    }
}

TEST(LevelExtractor, ReadsXmlFromTheDocumentElement)
{
    MemorySource source(
        "<?xml version='1.0'?><!--c--><shop a='1'><x/><orders><order id='1'>t<l>a</l><l>b"
        "</l>u</order><order id='&lt;2'><![CDATA[c]]></order></orders></shop>");
    XMLTokenizer tokenizer(source, 0);
    ExtractOptions options;
    options.text.clearIsText = true;
    options.tagNames = TagNames::Summary;
    LevelExtractor extractor(levelsOf({u"shop/orders|order|@id,,l[1],!"_s}), options);
    EXPECT_EQ(extract(extractor, tokenizer), u"1,tu,b,l[2] ;<2,c,-,;");
    MemorySource several("<d><i>1</i></d><e><i>-</i></e><d><i>2</i><i>3</i></d>");
    XMLTokenizer severalTokenizer(several, 0);
    LevelExtractor items(levelsOf({u"d|i|"_s}), {});
    EXPECT_EQ(extract(items, severalTokenizer), u"1;2;3;");
    LevelExtractor second(levelsOf({u"d[1]|i|"_s}), {});
    MemorySource again("<d><i>1</i></d><d><i>2</i></d>");
    severalTokenizer.restart(again);
    EXPECT_EQ(extract(second, severalTokenizer), u"2;");
    MemorySource wrong("<a><b></c></a>");
    XMLTokenizer wrongTokenizer(wrong, 0);
    EXPECT_EQ(extract(extractor, wrongTokenizer), u"!4");
}

// What the cells of elements show, by option.
TEST(LevelExtractor, FollowsTheOptions)
{
    const auto extractXml = [](const char *xml, const ExtractOptions &options) {
        MemorySource source(xml, 1);
        XMLTokenizer tokenizer(source, 0);
        tokenizer.setOptions({options.text.html, true, false, false});
        EXPECT_TRUE(tokenizer.setEncoding(CharMode::Utf8, {}, InvalidBytes::Fail));
        LevelExtractor extractor(levelsOf({u"l||,b"_s}), options);
        return extract(extractor, tokenizer).toStdString();
    };
    ExtractOptions own;
    EXPECT_EQ(extractXml("<l><r> a<!-- --> \n c<b/> &lt; d </r><r><b>x</b> <b>y</b></r></l>", own),
              "a \n c < d ,-;-,x;");
    ExtractOptions page;
    page.text.html = true;
    EXPECT_EQ(extractXml("<l><r>1 < 2 <=3<b>\n&lt;4 </b> </r></l>", page), "1 < 2 <=3,<4 ;");
    ExtractOptions all;
    all.allText = true;
    EXPECT_EQ(extractXml("<l><r>x<b> y\t z</b>w<b>v</b> <b>u</b>t</r><r><b><i/></b></r></l>", all),
              "x y zwv ut,y z;-,-;");
    all.text = {true, true};
    EXPECT_EQ(extractXml("<l><r>x<b>y</b><br>z<SPAN>1</SPAN><p>2</p>3&nbsp;&nbsp;</r>"
                         "<r><PRE> p\n</PRE><![CDATA[ q]]><script>s</script></r></l>",
                         all),
              "xy z1 2 3,y;p q,-;");
    ExtractOptions empty;
    empty.ignoreEmpty = true;
    empty.presence = true;
    EXPECT_EQ(extractXml("<l><r/><r><b/></r><r><b>1</b></r><r a=''/><r><!-- --></r></l>", empty),
              "1,0;1,1;1,0;");
}

// A record as wide as this one would show a lookup that costs the square of the children.
TEST(LevelExtractor, NeedsLinearTimeForManyChildren)
{
    QByteArray document = "[";
    for (int record = 0; record < 3; ++record) {
        document += record > 0 ? ",{" : "{";
        for (int i = 0; i < 100'000; ++i) {
            document += "\"k" + QByteArray::number(i) + "\":1,";
        }
        document += "\"last\":\"end\"}";
    }
    document += "]";
    MemorySource source(document);
    JSONTokenizer tokenizer(source, 0, u"");
    LevelExtractor extractor(levelsOf({u"||last,k5,nothing"_s}), {});
    EXPECT_EQ(extract(extractor, tokenizer), u"end,1,-;end,1,-;end,1,-;[nothing]");
}

// Comparing each path with each other one would show here, too.
TEST(LevelExtractor, NeedsLinearTimeForManyPaths)
{
    QStringList names;
    QByteArray document;
    for (int i = 0; i < 20'000; ++i) {
        names << u'k' + QString::number(i);
        document += "{\"" + names.back().toLatin1() + "\":1}\n";
    }
    MemorySource source(document);
    JSONTokenizer tokenizer(source, 0, u"");
    LevelExtractor extractor(levelsOf({u"||"_s + names.join(u',')}), {});
    extractor.beginDocument(tokenizer);
    BlockArena arena;
    for (int i = 0; i < 100; ++i) {
        const auto row = extractor.next(arena);
        ASSERT_TRUE(row && *row);
        EXPECT_EQ(rowText(extractor.cells()).count(u'1'), 1) << i;
        arena.reset();
    }
}

// ---- Documents of others, against what other programs read from them.

namespace {

QString corpusFile(const QString &name)
{
    return test::corpusFile(u"json/docs/"_s + name);
}

/// One record of a CSV table (RFC 4180): its fields with what is not there as "-".
QStringList csvRecord(const QString &text, qsizetype *at)
{
    QStringList fields;
    for (bool ended = false; !ended;) {
        QString field;
        const bool quoted = text[*at] == u'"';
        *at += quoted ? 1 : 0;
        while (quoted ? text[*at] != u'"' || text[*at + 1] == u'"'
                      : !u",\r\n"_s.contains(text[*at])) {
            *at += quoted && text[*at] == u'"' ? 1 : 0;
            field += text[(*at)++];
        }
        *at += quoted ? 1 : 0;
        fields << (field.isEmpty() && !quoted ? u"-"_s : field);
        ended = text[*at] != u',';
        *at += text[*at] == u'\r' ? 2 : 1;
    }
    return fields;
}

} // namespace

TEST(LevelExtractor, ReadsSameValuesAsOtherPrograms)
{
    CORVANTA_NEEDS_CORPUS();
    for (const auto &[document, golden, path] :
         {std::tuple{u"citm_catalog"_s, u"citm_performances"_s, u"performances"_s},
          {u"github_events"_s, u"github_events"_s, u""_s},
          {u"miserables"_s, u"miserables_links"_s, u"links"_s},
          {u"movies"_s, u"movies"_s, u""_s},
          {u"penguins"_s, u"penguins"_s, u""_s},
          {u"twitter"_s, u"twitter_statuses"_s, u"statuses"_s}}) {
        QFile csv(corpusFile(u"golden/"_s + golden + u".csv"_s));
        QFile json(corpusFile(document + u".json"_s));
        ASSERT_TRUE(csv.open(QIODevice::ReadOnly) && json.open(QIODevice::ReadOnly));
        const QString table = QString::fromUtf8(csv.readAll());
        qsizetype at = 0;
        Level level{path, QString(), {}};
        for (const QString &column : csvRecord(table, &at)) {
            level.items.push_back({column, column, false});
        }
        const QByteArray bytes = json.readAll();
        MemorySource source(bytes, 997);
        JSONTokenizer tokenizer(source, 0, u"");
        LevelExtractor extractor({level}, {});
        extractor.beginDocument(tokenizer);
        BlockArena arena;
        qint64 rows = 0;
        while (*extractor.next(arena)) {
            ASSERT_LT(at, table.size()) << golden.toStdString();
            ASSERT_EQ(rowText(extractor.cells()), csvRecord(table, &at).join(u','))
                << golden.toStdString() << ++rows;
            arena.reset();
        }
        EXPECT_EQ(at, table.size()) << golden.toStdString();
    }
}

namespace {

/// "iK|dF|-U": the kinds and letters of the columns, and after a text the value that decided.
QString scanned(const std::vector<Level> &levels, MarkupTokenizer &tokenizer,
                const ExtractOptions &options, qint64 *rows)
{
    LevelExtractor extractor(levels, options);
    std::vector<values::ColumnScan> scans(static_cast<size_t>(extractor.columnCount()));
    extractor.scanValues(scans);
    extractor.beginDocument(tokenizer);
    BlockArena arena;
    auto row = extractor.next(arena);
    for (; row && *row; row = extractor.next(arena)) {
        arena.reset();
        ++*rows;
    }
    QStringList columns;
    for (const values::ColumnScan &scan : scans) {
        const values::ColumnResult found = scan.result();
        columns << QChar(u"-idbDTt"[static_cast<int>(found.kind)]) +
                       QString(QLatin1Char(found.letter)) +
                       (found.exceptionPlace.isEmpty() ? QString() : u':' + found.exception);
    }
    return columns.join(u'|');
}

} // namespace

TEST(LevelExtractor, ScansTheValuesOfJson)
{
    ExtractOptions options;
    options.nullIsMissing = true;
    const auto kinds = [&](const QByteArray &json, const QStringList &levels) {
        QString all;
        for (const qint64 piece : {-1, 3}) {
            MemorySource source(json, piece);
            JSONTokenizer tokenizer(source, 1024, u"");
            qint64 rows = 0;
            const QString found = scanned(levelsOf(levels), tokenizer, options, &rows);
            EXPECT_TRUE(all.isEmpty() || all == found) << json.constData();
            all = found;
        }
        return all;
    };
    const QStringList ab{u"||a,b"_s};
    EXPECT_EQ(kinds(R"([{"a":1,"b":"2026-01-31"},{"b":null,"a":2.5}])", ab), u"dF|DU");
    EXPECT_EQ(kinds("{\"a\":1,\"b\":true}\n{\"a\":null}\n{\"b\":false}", ab), u"iK|bU");
    EXPECT_EQ(kinds(R"([{"b":"\u0041","a":1,"a":"x"},{"a":2}])", ab), u"iK|-U:A"); // the first "a"
    EXPECT_EQ(kinds(R"([{"a":{"c":"x"},"b":[1]},{"a":7,"b":8}])", ab), u"iK|iK");
    EXPECT_EQ(kinds(R"([{"x":0,"y":0,"z":0,"q":0,"w":0,"b":1,"a":2}])", ab), u"iK|iK");
    EXPECT_EQ(kinds(R"([{"a":"12"},{"a":1}])", ab), u"-U:12|-U");
    EXPECT_EQ(kinds(R"([{"a":1},{"a":"12"}])", ab), u"-U:12|-U");
    EXPECT_EQ(kinds(R"([{"a":[{"b":1},{"b":2.5}],"n":3}])", {u"||n,a"_s, u"a||b"_s}), u"iK|-U|dF");
    EXPECT_EQ(kinds(R"({"a":{"a":"x"},"b":{"a":1}})", {u"||a"_s}), u"-U"); // one record
    EXPECT_EQ(kinds(R"({"m1":{"v":1},"m2":{"v":2}})", {u"||v"_s}), u"iK"); // a map of records
    EXPECT_EQ(kinds(R"([{"v":12345678901234567890}])", {u"||v"_s}), u"dU");
    EXPECT_EQ(kinds(R"([{"b":1,"b":"x"}])", {u"||b"_s, u"|b|"_s}), u"iK|-U:x");
}

TEST(LevelExtractor, ScansTheRowsThatItExtracts)
{
    for (const Case &one : kCases) {
        MemorySource source((QByteArrayView(one.json)));
        JSONTokenizer tokenizer(source, 1024, u"");
        qint64 rows = 0;
        const QStringList kinds = scanned(levelsOf(one.levels), tokenizer, {}, &rows).split(u'|');
        const QStringList wanted = QString::fromUtf8(one.rows).section(u'!', 0, 0).split(u';');
        EXPECT_EQ(rows, wanted.size() - 1) << one.json;
        for (qsizetype column = 0; column < kinds.size(); ++column) {
            const bool isEmpty =
                std::all_of(wanted.begin(), wanted.end() - 1,
                            [&](const QString &row) { return row.split(u',')[column] == "-"_L1; });
            EXPECT_EQ(kinds[column] == "-U"_L1, isEmpty) << one.json;
        }
    }
}
