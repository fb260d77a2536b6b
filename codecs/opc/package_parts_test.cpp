#include "codecs/opc/content_types.h"
#include "codecs/opc/part_names.h"
#include "codecs/opc/relationships.h"

#include <gtest/gtest.h>

#include <array>

namespace corvanta::opc {

TEST(PartNames, TargetsReferToMembers)
{
    const std::vector<std::array<const char *, 3>> cases{
        {"xl/workbook.xml", "worksheets/sheet1.xml", "xl/worksheets/sheet1.xml"},
        {"xl/workbook.xml", "/xl/worksheets/sheet1.xml", "xl/worksheets/sheet1.xml"},
        {"xl/workbook.xml", "./../xl//worksheets\\sheet1.xml", "xl/worksheets/sheet1.xml"},
        {"workbook.xml", "sheet1.xml", "sheet1.xml"},
        {"xl/workbook.xml", "../../sheet1.xml", ""},
    };
    for (const auto &[source, target, member] : cases) {
        EXPECT_EQ(resolvedTarget(source, QString::fromLatin1(target)), member);
    }
    EXPECT_EQ(targetOf("xl/workbook.xml", "xl/worksheets/sheet1.xml"), u"worksheets/sheet1.xml");
    EXPECT_EQ(targetOf("xl/workbook.xml", "docProps/app.xml"), u"/docProps/app.xml");
    const MemberNames names({"xl\\workbook.xml", "XL/Styles.xml", "xl/styles.xml",
                             "xl/worksheets/Sheet12.xml", "a b.xml"});
    EXPECT_EQ(names.find("xl/workbook.xml"), "xl\\workbook.xml");
    EXPECT_EQ(names.find("xl/styles.xml"), "xl/styles.xml");
    EXPECT_EQ(names.find("a%20b.xml"), "a b.xml");
    EXPECT_EQ(names.find("none"), std::nullopt);
    EXPECT_EQ(names.highestNumber("xl/worksheets/sheet"), 12U);
    EXPECT_EQ(relationshipPartOf("xl/worksheets/sheet1.xml"),
              "xl/worksheets/_rels/sheet1.xml.rels");
    EXPECT_EQ(relationshipPartOf({}), "_rels/.rels");
}

TEST(Relationships, KeepOtherTextAndContinueTheNumbers)
{
    const QByteArray text = "<Relationships><!--<Relationship Id=\"rId99\"/>-->"
                            "<Relationship Target='a&amp;b' Id='rId7' Type='x/t'/>"
                            "<Relationship Id=\"other\" Type=\"u\" Target=\"x\" "
                            "TargetMode=\"External\"/></Relationships>";
    auto read = Relationships::read(text);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->highestIdNumber(), 7U);
    EXPECT_EQ(read->entries().front().target, u"a&b");
    EXPECT_EQ(read->find("t"), &read->entries().front());
    EXPECT_EQ(read->find("u"), nullptr);
    read->add({"rId8", u"n"_qs, u"y\"<&"_qs, true});
    EXPECT_EQ(read->addPart(u"n"_qs, u"z"_qs), "rId9");
    read->remove("other");
    EXPECT_EQ(read->text(), "<Relationships><!--<Relationship Id=\"rId99\"/>-->"
                            "<Relationship Target='a&amp;b' Id='rId7' Type='x/t'/>"
                            "<Relationship Type=\"n\" Id=\"rId8\" Target=\"y&quot;&lt;&amp;\" "
                            "TargetMode=\"External\"/>"
                            "<Relationship Id=\"rId9\" Type=\"n\" Target=\"z\"/></Relationships>");
    auto prefixed = Relationships::read("<p:Relationships xmlns:p='x'/>");
    ASSERT_TRUE(prefixed);
    EXPECT_EQ(prefixed->addPart(u"n"_qs, u"y"_qs), "rId1");
    EXPECT_EQ(prefixed->text(), "<p:Relationships xmlns:p='x'><p:Relationship Id=\"rId1\" "
                                "Type=\"n\" Target=\"y\"/></p:Relationships>");
    EXPECT_TRUE(Relationships::read(Relationships().text()));
    EXPECT_EQ(Relationships::read("<Types/>").fault().code, Error::Unexpected);
}

TEST(ContentTypes, DeclareEachPartAndExtensionOnce)
{
    const QByteArray text = "<c:Types xmlns:c='x'><c:Default Extension='PNG' ContentType='p'/>"
                            "<c:Override ContentType='t' PartName='/xl/a&amp;b.xml'/></c:Types>";
    auto types = ContentTypes::read(text);
    ASSERT_TRUE(types);
    types->declarePart("xl/a&b.xml", "other");
    types->declareExtension("png", "other");
    EXPECT_EQ(types->text(), text);
    for (int i = 0; i < 2; ++i) {
        types->declarePart("xl/worksheets/sheet2.xml", "u");
        types->declareExtension("jpeg", "j");
    }
    EXPECT_EQ(types->parts(), (std::vector<QByteArray>{"xl/a&b.xml", "xl/worksheets/sheet2.xml"}));
    EXPECT_EQ(types->text(),
              text.chopped(10) +
                  "<c:Override PartName=\"/xl/worksheets/sheet2.xml\" ContentType=\"u\"/>"
                  "<c:Default Extension=\"jpeg\" ContentType=\"j\"/></c:Types>");
    EXPECT_EQ(ContentTypes::read("<Relationships/>").fault().code, Error::Unexpected);
}

} // namespace corvanta::opc
