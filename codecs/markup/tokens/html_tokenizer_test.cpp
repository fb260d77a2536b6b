// The tokens of tag soup: what begins and ends each element, what is text, and how it is decoded.
#include "codecs/markup/text/encoding.h"
#include "codecs/markup/tokens/html_tokenizer.h"
#include "codecs/markup/tokens/page_charset.h"
#include "codecs/markup/tokens/trace.h"

#include <gtest/gtest.h>

using namespace corvanta;
using namespace corvanta::markup;
using namespace Qt::StringLiterals;

namespace {

std::u16string traceOf(const QByteArray &page, qint64 buffer, qint64 piece, bool leaves)
{
    MemorySource source(page, piece);
    HtmlTokenizer tokenizer(source, buffer);
    std::ignore = tokenizer.setEncoding(CharMode::Utf8, {}, InvalidBytes::Discard);
    return trace(tokenizer, leaves);
}

/// The tokens, which do not depend on how they are read.
std::string tokensOf(const QByteArray &page)
{
    const std::u16string whole = traceOf(page, 1 << 16, -1, false);
    EXPECT_EQ(traceOf(page, 1024, 1, false), whole) << page.toStdString();
    EXPECT_EQ(traceOf(page, 1024, 3, true), whole) << page.toStdString();
    return QString::fromStdU16String(whole).toStdString();
}

struct SoupCase
{
    const char *page;
    const char *tokens; ///< without the last one, EndOfData
};

void check(std::initializer_list<SoupCase> cases)
{
    for (const auto &[page, tokens] : cases) {
        const std::string expected = std::string(tokens) + (*tokens != 0 ? " ." : ".");
        EXPECT_EQ(tokensOf(page), expected) << page;
    }
}

} // namespace

TEST(HtmlTokenizer, AddsEndTagsAndRowsToTables)
{
    check({
        {"<table><tr><td>a<td>b<tr><th>c</table>",
         "<table <tr <td 'a' >td <td 'b' >td >tr <tr <th 'c' >th >tr >table"},
        {"<table><td>a</tr><td>b", "<table <tr <td 'a' >td >tr <tr <td 'b' >td >tr >table"},
        {"<table><thead><tr><th>a<tbody><tr><td>b<tfoot><td>c</tbody>d",
         "<table <thead <tr <th 'a' >th >tr >thead <tr <td 'b' >td >tr <tfoot <tr <td 'c' 'd' >td "
         ">tr >tfoot >table"},
        {"<table><caption>a<colgroup><col><col><tr><td>b</caption>c</TD >d",
         "<table <caption 'a' >caption <colgroup <col >col <col >col >colgroup <tr <td 'b' 'c' >td "
         "'d' >tr >table"},
        // An inner table, one that cannot be inside, and end tags of what is outside of a cell.
        {"<table><tr><td><table><tr><td>a</table>b<td>c",
         "<table <tr <td <table <tr <td 'a' >td >tr >table 'b' >td <td 'c' >td >tr >table"},
        {"<table><tr><td>a<tr><table><td>b",
         "<table <tr <td 'a' >td >tr <tr >tr >table <table <tr <td 'b' >td >tr >table"},
        {"<div><b><table><tr><td>a</b></div></body>b</th>c",
         "<div <b <table <tr <td 'a' 'b' 'c' >td >tr >table >b >div"},
        // What browsers show before the table does not shift its cells.
        {"<table><tr><form><td>a</td></form><b>x<br></b><input><td>b",
         "<table <tr <td 'a' >td 'x' <td 'b' >td >tr >table"},
        {"<tr><td>a</td></tr><caption>b", "'a' 'b'"},
    });
}

TEST(HtmlTokenizer, EndsParagraphsItemsAndOptions)
{
    check({
        {"<p>a<p>b<div>c</p>d", "<p 'a' >p <p 'b' >p <div 'c' 'd' >div"},
        {"<ul><li>a<ul><li>b</ul><li>c<dl><dt>d<dd>e<dt>f</ul>",
         "<ul <li 'a' <ul <li 'b' >li >ul >li <li 'c' <dl <dt 'd' >dt <dd 'e' >dd <dt 'f' >dt >dl "
         ">li >ul"},
        {"<ul><li>a<ul></li>b", "<ul <li 'a' <ul 'b' >ul >li >ul"},
        {"<select><option>a<option>b<optgroup><option>c<optgroup></select>d",
         "<select <option 'a' >option <option 'b' >option <optgroup <option 'c' >option >optgroup "
         "<optgroup >optgroup >select 'd'"},
        {"<a>x<a>y<h1>z</h2>", "<a 'x' >a <a 'y' <h1 'z' >h1 >a"},
        {"<b><p>a</b>b", "<b <p 'a' 'b' >p >b"},
        {"<form><p>a</form><form><div></form>b", "<form <p 'a' >p >form <form <div 'b' >div >form"},
        {"<svg><path/><g/></svg><i/>a", "<svg <path >path <g >g >svg <i 'a' >i"},
        {"<html><head><title>a</title><p>b<body>c</body></html>d",
         "<html <head <title 'a' >title >head <p 'b' 'c' 'd' >p >html"},
        {"<html><head><body>a<html><body>b", "<html <head >head <body 'a' 'b' >body >html"},
    });
}

TEST(HtmlTokenizer, ReadsTextThatIsNotMarkup)
{
    check({
        {"<script>a<b></SCRIPT >c<style><!-- </style\n>d", "#a<b> 'c' #<!--  'd'"},
        {"<script><!-- <script>a</script> --></script>b", "#<!-- <script>a</script> --> 'b'"},
        {"<script><!--></script>b<script>c", "#<!--> 'b' #c"},
        {"<textarea> <b>&lt;</textarea>c<title>d",
         "<textarea '<b><' >textarea 'c' <title 'd' >title"},
        {"a<!-->b<!--->c<!-- d --!>e<!---->f<!-- > -- g",
         "'a' # 'b' # 'c' # d  'e' # 'f' # > -- g"},
        {"<!DOCTYPE html [><?php x>a</ b>c<!x>d", "# html [ #php x 'a' # b 'c' #x 'd'"},
        {"a < b <3 </>c<", "'a ' '< b ' '<3 ' 'c' '<'"},
        {"<PRE>a<b>c</PRE>", "<PRE 'a' <b 'c' >b >PRE"},
    });
}

TEST(HtmlTokenizer, ReadsAttributesOfAnyForm)
{
    check({
        {"<a b=c/d e='f\"' g h = \"i\"j=k>", "<a b=c/d e=f\" g= h=i j=k >a"},
        {"<a =b c=> <a/b/c=d>", "<a =b= c= >a <a b= c=d >a"},
        {"<a href='x?a=1&copy=2&amp;b&lt;'>", "<a href=x?a=1&copy=2&b< >a"},
        {"<a\"b c>d<e", "<a\"b c= 'd' >a\"b"},
        {"a<b c='d>", "'a'"},
    });
}

TEST(HtmlTokenizer, DecodesAllReferences)
{
    check({
        {"&Auml;&auml&copy2&notit;&notin;&NotEqualTilde;",
         "'\u00c4\u00e4\u00a92\u00acit;\u2209\u2242\u0338'"},
        {"&#65&#x42;&#128;&#0;&#x110000;&#;&#x;", "'AB\u20ac\ufffd\ufffd&#;&#x;'"},
        {"&;&x;&unknown;&AMP&nbsp;&nbsp&Nbsp;&Aopf;&", "'&;&x;&unknown;&   \U0001d538&'"},
    });
}

// Entities that need a look at all their bytes do not depend on how the page is read: see
// tokensOf(). A page of one construct may be longer than the buffer.
TEST(HtmlTokenizer, ReadsLongConstructs)
{
    const QByteArray run(5000, 'x');
    EXPECT_EQ(tokensOf("<a b=" + run + "><" + run + ">&amp;" + run + "<!--" + run + "--><script>" +
                       run + "</script>"),
              "<a b=" + run.toStdString() + " <" + run.toStdString() + " '&" + run.toStdString() +
                  "' #" + run.toStdString() + " #" + run.toStdString() + " >" + run.toStdString() +
                  " >a .");
}

TEST(HtmlTokenizer, StaysLinearForDeepAndUnclosedPages)
{
    QByteArray page;
    for (int i = 0; i < 200'000; ++i) {
        page += "<b><div></p></b><table>";
    }
    MemorySource source(page);
    HtmlTokenizer tokenizer(source, 1024);
    qint64 tokens = 0;
    while (tokenizer.nextToken() != Token::EndOfData && tokenizer.token() != Token::Error) {
        ++tokens;
    }
    EXPECT_GT(tokens, 400'000);
}

TEST(PageCharset, IsFoundInMeta)
{
    const auto charset = [](const char *page) { return pageCharset(page).toStdString(); };
    EXPECT_EQ(charset("<p><META CHARSET = 'UTF-8'>"), "UTF-8");
    EXPECT_EQ(charset("<!--<meta charset=a>--><script><meta charset=b></script>"
                      "<meta http-equiv=content-TYPE content='text/html; Charset = \"koi8-r\" x'>"),
              "koi8-r");
    EXPECT_EQ(charset("<meta name=charset content='charset=x'><meta charset=''>"), "");
    EXPECT_EQ(charset("<meta content=text/html;charset=big5 http-equiv=content-type>"), "big5");
}

TEST(PageCharset, ChoosesTheEncodingOfBrowsers)
{
    const QByteArray page = "<p>a page of some length: \xE4</p>";
    const auto nameOf = [&](const QByteArray &charset) {
        return chooseEncoding(page, "auto", charset).name.toStdString();
    };
    EXPECT_EQ(nameOf("ISO-8859-1"), "CP1252");
    EXPECT_EQ(nameOf(" gb2312 "), "GB18030");
    EXPECT_EQ(nameOf("utf-16"), "UTF-8");
    EXPECT_EQ(nameOf("koi8-r"), "koi8-r");
    EXPECT_EQ(nameOf("no-such"), "System");
    EXPECT_EQ(chooseEncoding(page, "auto", "no-such").unknown, "no-such");
    EXPECT_EQ(chooseEncoding(page, "cp850", "koi8-r").name, "cp850");
    EXPECT_EQ(chooseEncoding("\xEF\xBB\xBF" + page, "auto", "koi8-r").name, "UTF-8");
}
