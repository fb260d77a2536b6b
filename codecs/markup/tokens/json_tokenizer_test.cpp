// What the JSON tokenizer makes of its grammar, of the public JSON test suite, and of every way in
// which the bytes may arrive.
#include "codecs/markup/tokens/json_tokenizer.h"
#include "codecs/markup/tokens/trace.h"
#include "codecs/markup/tree/tree.h"
#include "tests/support/corpus.h"
#include "tests/support/sweeps.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <array>

using namespace corvanta;
using namespace corvanta::markup;

namespace {

enum Flags : unsigned { kPlain = 0, kPermissive = 1, kNoItemName = 2, kMarks = 4, kBalanced = 8 };

std::string traceJson(QByteArrayView bytes, unsigned flags, qint64 buffer = 0, qint64 piece = -1)
{
    const auto traced = [&](bool leaves) {
        MemorySource source(bytes, piece);
        JSONTokenizer tokenizer(source, buffer);
        tokenizer.setPermissiveNumbers((flags & kPermissive) != 0);
        tokenizer.setDocumentMarks((flags & kMarks) != 0);
        tokenizer.setBalanced((flags & kBalanced) != 0);
        if ((flags & kNoItemName) != 0) {
            tokenizer.setArrayItemName(std::nullopt);
        }
        return QString::fromStdU16String(trace(tokenizer, leaves)).toStdString();
    };
    const std::string tokens = traced(false);
    EXPECT_EQ(traced(true), tokens) << bytes.toByteArray().toStdString();
    return tokens;
}

struct JsonCase
{
    const char *json;
    const char *tokens;
    unsigned flags = kPlain;
};

const JsonCase kJsonCases[] = {
    {"", "."},
    {" \r\n\t ", "."},
    {R"({"a":1})", "<a '1' >a ."},
    {"[1,2]", "<a '1' >a <a '2' >a ."},
    {"[1,[2]]", "< '1' > < < '2' > > .", kNoItemName},
    {R"({"":true})", "<_ 'true' >_ ."},
    {R"({'k':'v'})", "<k 'v' >k ."},
    {R"({"a":{"b":{"c":null},"d":[false]}})", "<a <b <c 'null' >c >b <d <a 'false' >a >d >a ."},
    {R"({"\u0061\n":{"x":[]}})", "<a\n <x >x >a\n ."},
    {"[{},[],{\"a\":{}}]", "<a >a <a >a <a <a >a >a ."},
    {"42", "'42' ."},
    {R"({"a":1}{"b":2} [3] "x" 4)", "( <a '1' >a ) ( <b '2' >b ) ( <a '3' >a ) ( 'x' ) ( '4' ) .",
     kMarks},
    {"{}[]", "( ) ( ) .", kMarks},
    {"[1,]", "<a '1' >a ."},
    {R"({"a":1,})", "<a '1' >a ."},
    {"[1\0,2]", "<a '1' ."},
    // numbers
    {"[12x]", "<a !24"},
    {"[12x,1_a,~z]", "<a '12x' >a <a '1_a' >a <a '~z' >a .", kPermissive},
    {"[-Infinity,INF,infINITY,NAN,nan,-nan]",
     "<a '-inf' >a <a 'inf' >a <a 'inf' >a <a 'nan' >a <a 'nan' >a <a 'nan' >a ."},
    {"[-Infinity,NAN]", "<a '-Infinity' >a <a 'NAN' >a .", kPermissive},
    {"[infinit]", "<a !24"},
    {"[1.5e+300,-.5,1-1]", "<a '1.5e+300' >a <a '-.5' >a <a '1-1' >a ."},
    {"[1\"a\"]", "<a !24"},
    {"[?]", "<a !24"},
    {"[1:2]", "<a !24", kPermissive},
    // strings
    {R"(["\"\'\/\\\b\f\n\r\t\u0041\u00e9\uD83D\uDE00"])", "<a '\"'/\\\b\f\n\r\tAé😀' >a ."},
    {R"(["\u0000","\x\q\u12g4"])", "<a ' ' >a <a 'xqu12g4' >a ."},
    {"[\"a\r\nb\n\rc\rd\ne\"]", "<a 'a\nb\nc\nd\ne' >a ."},
    {"[\"tab\there\"]", "<a 'tab\there' >a ."},
    {"[\"\",'']", "<a '' >a <a '' >a ."},
    {R"("a\")", "!16"},
    {R"("a)", "!16"},
    // what is refused, and how
    {"[tru]", "<a !25"},
    {"[truex]", "<a !25"},
    {"[fals]", "<a !26"},
    {"[nul]", "<a !27"},
    {"{a:1}", "!16"},
    {R"({"a" 1})", "!23"},
    {R"({"a":})", "<a !5"},
    {R"({"a":1 "b":2})", "<a '1' !13"},
    {"[1 2]", "<a '1' !13"},
    {"[1}", "<a '1' !4"},
    {"[}", "!4"},
    {"{]", "!4"},
    {"1]", "'1' !5"},
    {"[,1]", "<a !24"},
    {"[1,,2]", "<a '1' >a <a !24"},
    {R"({"a":1,,})", "<a '1' >a !16"},
    {R"({"a":1},{"b":2})", "<a '1' >a !24"},
    // members that look like leaves
    {R"([{"a":"x" , "b":-1.5e3,"c":true ,"d":null},{"e":[1],"f":{}}])",
     "<a <a 'x' >a <b '-1.5e3' >b <c 'true' >c <d 'null' >d >a <a <e <a '1' >a >e <f >f >a ."},
    {R"([{"a":"","":1,"b" :2,"c":"\n","d":'q'}])",
     "<a <a '' >a <_ '1' >_ <b '2' >b <c '\n' >c <d 'q' >d >a ."},
    {R"([{"a":tru}])", "<a <a !25"},
    {R"([{"a":1x}])", "<a <a !24"},
    {R"([{"a":1x,"b":NaN,"c":trues}])", "<a <a '1x' >a <b 'NaN' >b <c !25", kPermissive},
    {R"([{"a":1]])", "<a <a '1' !4"},
    {R"([{"a":NaN,"b":nan,"c":-Inf,"d":1 2}])",
     "<a <a 'nan' >a <b 'nan' >b <c '-inf' >c <d '1' !13"},
    // data that ends too early
    {"[1", "<a '1' ."},
    {"[1", "<a '1' !4", kBalanced},
    {R"({"a")", "!23", kBalanced},
    {R"({"a":)", "<a !4", kBalanced},
    {"[[1]", "<a <a '1' >a !4", kBalanced},
    // bytes that are not text
    {"[1,\"\xff\"]", "<a '1' >a <a !17"},
    {"[12\xe5", "<a !17"},
    {"[\"\xed\xa0\x80\"]", "<a !17"},
    {"\xef\xbb\xbf[1]", "<a '1' >a ."},
};

QByteArrayView bytesOf(const JsonCase &c)
{
    // One case holds a NUL.
    return c.json[0] == '[' && c.json[1] == '1' && c.json[2] == 0 ? QByteArrayView("[1\0,2]", 6)
                                                                  : QByteArrayView(c.json);
}

} // namespace

TEST(JsonTokenizer, ReadsEveryNotation)
{
    for (const JsonCase &c : kJsonCases) {
        EXPECT_EQ(traceJson(bytesOf(c), c.flags), c.tokens) << c.json;
    }
}

// A scan that starts over, or a look-ahead that stops, where the buffer ends would show here.
TEST(JsonTokenizer, DoesNotDependOnBufferAndReadSizes)
{
    for (const JsonCase &c : kJsonCases) {
        const bool marked = bytesOf(c).startsWith("\xef\xbb\xbf");
        for (qsizetype blanks = 1024 - 24; blanks <= 1024 && !marked; ++blanks) {
            const QByteArray padded = QByteArray(blanks, ' ') + bytesOf(c).toByteArray();
            ASSERT_EQ(traceJson(padded, c.flags), c.tokens) << c.json << " after " << blanks;
        }
        test::forEverySplit([&](int piece) {
            EXPECT_EQ(traceJson(bytesOf(c), c.flags, 0, piece), c.tokens) << c.json;
        });
    }
}

TEST(JsonTokenizer, ReadsATokenLongerThanTheBuffer)
{
    const QByteArray text = QByteArray(3'000'000, 'x') + "\\n" + QByteArray(1'000'000, 'y');
    const QByteArray document = "[\"" + text + "\",1]";
    MemorySource whole(document, 1000);
    JSONTokenizer tokenizer(whole, 1024);
    ASSERT_EQ(tokenizer.nextToken(), Token::Start);
    EXPECT_FALSE(tokenizer.setBufferSize(1 << 20)); // tokens were returned
    ASSERT_EQ(tokenizer.nextToken(), Token::Text);
    EXPECT_EQ(tokenizer.length(), 4'000'001);
    EXPECT_EQ(tokenizer.text()[3'000'000], u'\n');
    ASSERT_EQ(tokenizer.nextToken(), Token::End);
}

// The state of a hundred thousand open brackets is on no call stack.
TEST(JsonTokenizer, ReadsDeepNestingWithoutStackOverflow)
{
    const qsizetype depth = 500'000;
    const QByteArray deep = QByteArray(depth, '[') + QByteArray(depth, ']');
    MemorySource source(deep);
    JSONTokenizer tokenizer(source, 0);
    MarkupTreeBuilder builder;
    MarkupResult result;
    const MarkupNode root = builder.parseNext(tokenizer, result, true);
    EXPECT_EQ(result.error, MarkupError::None);
    EXPECT_FALSE(root.isEmpty());

    const QByteArray brackets(1'000'001, '[');
    MemorySource endless(brackets);
    JSONTokenizer refusing(endless, 0);
    Token token = Token::None;
    while (token != Token::Error && token != Token::EndOfData) {
        token = refusing.nextToken();
    }
    EXPECT_EQ(refusing.errorCode(), MarkupError::TreeTooLarge);
}

TEST(JsonTokenizer, CountsLinesAndColumns)
{
    struct Place
    {
        const char *json;
        qint64 line;
        qint64 column;
    };
    for (const auto &[json, line, column] :
         {Place{"[\n\n\"a\r\nb\",\r\n ?]", 5, 1}, Place{"[\r\r\n\r?", 4, 0},
          Place{"[\n\r\n?", 3, 0}, Place{"[\"é😀\", ?", 1, 8}}) {
        for (const qint64 piece : {-1, 1}) {
            MemorySource source(json, piece);
            JSONTokenizer tokenizer(source, 0);
            while (tokenizer.nextToken() != Token::Error) {
            }
            EXPECT_EQ(tokenizer.line(), line) << json;
            EXPECT_EQ(tokenizer.column(), column) << json;
        }
    }
}

TEST(JsonTokenizer, ReadsUtf16OfBothByteOrders)
{
    const QString run = QStringLiteral("a run of plain text, then ÿ");
    const QString text = QStringLiteral("[\"") + run.repeated(100) + QStringLiteral("é漢😀\",1]");
    const std::string start = "<a '" + run.repeated(100).toStdString() + "é漢😀' >a <a ";
    const std::string expected = start + "'1' >a .";
    for (const bool mark : {true, false}) {
        QByteArray little = mark ? QByteArray("\xff\xfe") : QByteArray();
        QByteArray big("\xfe\xff");
        for (const QChar c : text) {
            little += static_cast<char>(c.unicode() & 0xFF);
            little += static_cast<char>(c.unicode() >> 8);
            big += static_cast<char>(c.unicode() >> 8);
            big += static_cast<char>(c.unicode() & 0xFF);
        }
        for (const qint64 piece : {-1, 1, 3}) {
            EXPECT_EQ(traceJson(little, kPlain, 0, piece), expected);
            EXPECT_EQ(traceJson(big, kPlain, 0, piece), expected);
        }
        EXPECT_EQ(traceJson(little.chopped(1), kPlain), start + "!17");
    }
}

TEST(JsonTokenizer, UsesANewItemNameForLaterArrays)
{
    MemorySource source("[1,[2],3]");
    JSONTokenizer tokenizer(source, 0, u"x");
    EXPECT_EQ(traceToken(tokenizer, tokenizer.nextToken()), u"<x");
    tokenizer.setArrayItemName(u"y");
    EXPECT_EQ(trace(tokenizer), u"'1' >x <x <y '2' >y >x <x '3' >x .");
}

TEST(JsonTokenizer, SkipsCharacters)
{
    MemorySource source("é[1]");
    JSONTokenizer tokenizer(source, 0);
    EXPECT_EQ(tokenizer.skipCharacter(), 0);
    EXPECT_EQ(trace(tokenizer), u"<a '1' >a .");
    EXPECT_EQ(tokenizer.skipCharacter(), 1);
    MemorySource broken("\xff");
    JSONTokenizer failing(broken, 0);
    EXPECT_EQ(failing.skipCharacter(), 8);
    EXPECT_EQ(failing.nextToken(), Token::Error);
}

// ---- The public test suite: what its authors say, and where the grammar is wider on purpose.

namespace {

/// Invalid by RFC 8259 and accepted all the same, with the liberty that it takes.
struct Liberty
{
    const char *reason;
    std::vector<const char *> files;
};

const std::vector<Liberty> kLiberties = {
    {"one comma before the closing bracket", {"n_array_extra_comma", "n_object_trailing_comma"}},
    {"numbers are any run of digits, '.', 'e', 'E', '+' and '-'",
     {"n_array_just_minus",
      "n_number_++",
      "n_number_-1.0.",
      "n_number_-2.",
      "n_number_.-1",
      "n_number_.2e-3",
      "n_number_0.3e",
      "n_number_0.e1",
      "n_number_0e",
      "n_number_0e+",
      "n_number_1.0e",
      "n_number_1.0e+",
      "n_number_1.0e-",
      "n_number_1eE2",
      "n_number_2.e+3",
      "n_number_2.e-3",
      "n_number_2.e3",
      "n_number_neg_int_starting_with_zero",
      "n_number_starting_with_dot",
      "n_number_with_leading_zero"}},
    {"NaN and infinities",
     {"n_number_-NaN", "n_number_Inf", "n_number_NaN", "n_number_infinity",
      "n_number_minus_infinity"}},
    {"single quotes", {"n_object_single_quote", "n_string_single_quote"}},
    {"an unknown escape is its character",
     {"n_string_1_surrogate_then_escape_u", "n_string_escape_x", "n_string_escaped_emoji",
      "n_string_incomplete_surrogate", "n_string_invalid_backslash_esc"}},
    {"raw control characters in strings", {"n_string_unescaped_newline"}},
    {"several values one after the other",
     {"n_structure_double_array", "n_structure_object_with_trailing_garbage"}},
    {"no data at all is for the reader to judge",
     {"n_structure_UTF8_BOM_no_data", "n_structure_no_data"}},
    {"a NUL ends the data", {"n_multidigit_number_then_00"}},
};

bool isLiberty(const QString &name)
{
    return std::any_of(kLiberties.begin(), kLiberties.end(), [&](const Liberty &liberty) {
        return std::any_of(liberty.files.begin(), liberty.files.end(), [&](const char *file) {
            return name == QString::fromLatin1(file) + QStringLiteral(".json");
        });
    });
}

QString asCellText(QString text)
{
    return text.replace(QChar(0), QLatin1Char(' '));
}

void expectSame(const MarkupNode &node, const QJsonValue &value, const std::string &file)
{
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        for (auto member = object.begin(); member != object.end(); ++member) {
            const QString key =
                member.key().isEmpty() ? QStringLiteral("_") : asCellText(member.key());
            MarkupNode found;
            for (qsizetype i = 0; i < node.childCount(); ++i) {
                found =
                    QString::fromStdU16String(node.child(i).name()) == key ? node.child(i) : found;
            }
            ASSERT_FALSE(found.isEmpty()) << file;
            expectSame(found, member.value(), file);
        }
    } else if (value.isArray()) {
        const QJsonArray array = value.toArray();
        ASSERT_EQ(node.childCount(), array.size()) << file;
        for (qsizetype i = 0; i < array.size(); ++i) {
            expectSame(node.child(i), array[i], file);
        }
    } else {
        ASSERT_EQ(node.textCount(), 1) << file;
        const QString text = QString::fromStdU16String(node.text(0));
        if (value.isDouble()) {
            EXPECT_EQ(text.toDouble(), value.toDouble()) << file;
        } else {
            const QString literal = value.isNull() ? QStringLiteral("null")
                                                   : (value.toBool() ? QStringLiteral("true")
                                                                     : QStringLiteral("false"));
            EXPECT_EQ(text, value.isString() ? asCellText(value.toString()) : literal) << file;
        }
    }
}

} // namespace

TEST(JsonTestSuite, IsAcceptedExceptListedFiles)
{
    CORVANTA_NEEDS_CORPUS();
    const QDir folder(test::corpusFile(QStringLiteral("json/nst")));
    const QStringList names = folder.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    for (const Liberty &liberty : kLiberties) {
        for (const char *file : liberty.files) {
            EXPECT_TRUE(names.contains(QString::fromLatin1(file) + QStringLiteral(".json")))
                << file;
        }
    }
    for (const QString &name : names) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        const std::string tokens = traceJson(bytes, kBalanced);
        const bool isAccepted = tokens.back() == '.';
        EXPECT_EQ(traceJson(bytes, kBalanced, 1024, 1), tokens) << name.toStdString();
        if (name.startsWith(u'y')) {
            EXPECT_TRUE(isAccepted) << name.toStdString() << ": " << tokens;
            MemorySource source(bytes);
            JSONTokenizer tokenizer(source, 0, u"");
            MarkupTreeBuilder builder;
            builder.setReturnSingleChild(false);
            MarkupResult result;
            const MarkupNode root = builder.parseNext(tokenizer, result, false);
            const QJsonDocument peer = QJsonDocument::fromJson(bytes);
            if (!root.isEmpty()) {
                expectSame(root,
                           peer.isArray() ? QJsonValue(peer.array()) : QJsonValue(peer.object()),
                           name.toStdString());
            }
        } else if (name.startsWith(u'n')) {
            EXPECT_EQ(isAccepted, isLiberty(name))
                << name.toStdString() << ": " << tokens.substr(0, 200);
        }
    }
}
