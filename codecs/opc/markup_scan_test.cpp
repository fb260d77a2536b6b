#include "codecs/opc/outline.h"

#include <QByteArrayList>

#include <gtest/gtest.h>

namespace corvanta::opc {

TEST(MarkupScan, SkipsWhatLooksLikeATagInOtherMarkup)
{
    const QByteArray text = "<!-- <a> --><?p <b>?><r><![CDATA[<c>]]><d x='>' y = \"1\" /></r>";
    TagCursor cursor(text);
    QByteArrayList names;
    while (cursor.next()) {
        const Tag &tag = cursor.tag();
        names += tag.name.toByteArray() + char('0' + static_cast<int>(tag.kind)) +
                 tag.attribute("y").value_or("").toByteArray();
    }
    EXPECT_FALSE(cursor.isBroken());
    EXPECT_EQ(names, (QByteArrayList{"r0", "d21", "r1"}));
}

TEST(MarkupScan, RejectsTextThatIsNotXml)
{
    for (const char *text :
         {"", "<a>", "</a>", "<a></b>", "<a/><b/>", "<a b></a>", "<a b=1/>", "<a b='1'c='2'/>",
          "<a <b/>", "<!DOCTYPE a><a/>", "<a><!-- </a>", "<1/>", "text"}) {
        EXPECT_FALSE(Outline::read(text)) << text;
    }
    using namespace std::string_literals;
    for (const std::string &text :
         {"\xFF\xFE<\0a\0"s, "<\0a\0/\0>\0"s, "<?xml version='1.0' encoding='latin1'?><a/>"s}) {
        const auto read =
            Outline::read(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
        ASSERT_FALSE(read);
        EXPECT_EQ(read.fault().code, Error::Encoding);
    }
    EXPECT_TRUE(Outline::read("\xEF\xBB\xBF<?xml version='1.0' encoding='UTF-8'?><a/>"));
}

TEST(MarkupScan, DecodesAndQuotesNames)
{
    EXPECT_EQ(decoded("&lt;&gt;&apos;&quot;&amp;&#65;&#x20AC;&#xD800;&bad;&"),
              u"<>'\"&A\u20AC&#xD800;&bad;&");
    EXPECT_EQ(quotable(u"a&b<c>\"d\"\n\x01"), "a&amp;b&lt;c>&quot;d&quot;&#10;\xEF\xBF\xBD");
}

} // namespace corvanta::opc
