#include "codecs/opc/marker_search.h"

#include <gtest/gtest.h>

namespace corvanta::opc {

namespace {
const std::vector<QByteArray> kMarkers{"%A%", "%BC%", ""};
} // namespace

TEST(MarkerSearch, FindsAllOccurrencesInTheirOrder)
{
    const std::vector<MarkerHit> expected{{1, 4, 0}, {4, 8, 1}, {9, 12, 0}};
    EXPECT_EQ(findMarkers("x%A%%BC%-%A%", kMarkers), expected);
    EXPECT_TRUE(findMarkers("%a% %BC %", kMarkers).empty());
    EXPECT_TRUE(findMarkers("", kMarkers).empty());
}

TEST(MarkerSearch, OccurrencesDoNotOverlap)
{
    // The first one wins; the second marker is searched again after it.
    const std::vector<MarkerHit> expected{{0, 3, 0}, {6, 10, 1}};
    EXPECT_EQ(findMarkers("%A%BC%%BC%", kMarkers), expected);
    const std::vector<MarkerHit> first{{0, 3, 0}};
    EXPECT_EQ(findMarkers("%A%", {"%A%", "%A%"}), first);
}

TEST(MarkerSearch, JoinsWhatRunsDivide)
{
    const QByteArray part = "<w:p><w:r><w:t>1 %</w:t></w:r><w:r><w:t xml:space=\"preserve\">B</w:t>"
                            "</w:r><w:r><w:t>C% 2 %A%</w:t></w:r></w:p>";
    EXPECT_EQ(joinMarkers(part, kMarkers),
              "<w:p><w:r><w:t>1 %BC%</w:t></w:r><w:r><w:t xml:space=\"preserve\"></w:t></w:r>"
              "<w:r><w:t xml:space=\"preserve\"> 2 %A%</w:t></w:r></w:p>");
    const auto split = findSplitMarkers(part, kMarkers);
    ASSERT_EQ(split.size(), 1U);
    EXPECT_EQ(split.front().marker, 1);
    EXPECT_EQ(split.front().pieces.size(), 3U);
}

TEST(MarkerSearch, ParagraphsSeparateTexts)
{
    // A text box has paragraphs of its own, inside one whose text continues after it.
    const QByteArray part = "<w:p><w:r><w:t>%B</w:t></w:r><w:r><w:txbxContent><w:p><w:r><w:t>C%"
                            "</w:t></w:r></w:p></w:txbxContent></w:r><w:r><w:t>C%</w:t></w:r></w:p>"
                            "<w:p><w:t>%</w:t></w:p><w:p><w:t>A%</w:t><w:t/></w:p>";
    const auto split = findSplitMarkers(part, kMarkers);
    ASSERT_EQ(split.size(), 1U);
    EXPECT_EQ(split.front().pieces.back().paragraph, 1);
    EXPECT_EQ(joinMarkers("<a:p><a:t>%A</a:t><a:t>%</a:t>", kMarkers),
              "<a:p><a:t>%A%</a:t><a:t></a:t>");
    EXPECT_TRUE(findSplitMarkers("<w:p><w:t>%A</w:t><broken", kMarkers).empty());
}

TEST(MarkerSearch, ListsWhatLooksLikeAMarker)
{
    const auto found = listMarkers("<w:p><w:t>50 % of %A%B%% %</w:t><w:t>C% x%</w:t></w:p>"
                                   "<w:p><w:t>%D</w:t></w:p>");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].text, "%A%");
    EXPECT_EQ(found[0].pieces, 1);
    EXPECT_EQ(found[1].text, "%C%");
    EXPECT_EQ(found[1].pieces, 2);
    EXPECT_FALSE(found[1].isNumeric);
    EXPECT_TRUE(listMarkers("<w:p><w:t>10%ab 5%</w:t></w:p>").front().isNumeric);
    // Tabs and breaks separate texts.
    EXPECT_TRUE(listMarkers("<w:p><w:t>10%</w:t><w:tab/><w:t>20% x</w:t></w:p>").empty());
}

} // namespace corvanta::opc
