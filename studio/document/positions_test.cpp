// Where the actions of a graph are: a layout, alignments, and positions of other programs.
#include "studio/document/layered_layout.h"
#include "tests/studio/studio_folder.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace corvanta;
using namespace corvanta::studio;

TEST(StudioPositions, LayoutLeadsToTheRightWithoutOverlaps)
{
    GraphDocument document(test::allActions());
    QStringList ids;
    for (int i = 0; i < 40; ++i) {
        ids << document.addAction(i % 4 == 0 ? u"readCSV"_s : u"union"_s, {});
    }
    for (int i = 1; i < 40; ++i) {
        document.addLink({ids[i / 3], 0}, {ids[i], 0});
        document.addLink({ids[i - 1], 0}, {ids[i], 1});
    }
    document.layout();
    for (const LinkRef &link : document.links()) {
        EXPECT_LT(document.position(link.from.action).x(), document.position(link.to.action).x());
    }
    for (const QString &a : ids) {
        for (const QString &b : ids) {
            const QPointF distance = document.position(a) - document.position(b);
            EXPECT_TRUE(a == b || qAbs(distance.x()) >= kLayerStep.width() ||
                        qAbs(distance.y()) >= kLayerStep.height())
                << a.toStdString() << ' ' << b.toStdString();
        }
    }
    document.align(ids, GraphDocument::Alignment::Top);
    document.align(ids, GraphDocument::Alignment::Columns);
    EXPECT_EQ(document.position(ids[0]).y(), document.position(ids[39]).y());
    EXPECT_TRUE(document.undoStack()->undoText().startsWith("Move "_L1));
}

TEST(StudioPositions, ALoopBeginsAtTheTopToo)
{
    const test::StudioFolder folder("<action id='a'><sort/></action><action id='b'><sort/></action>"
                                    "<link from='a:0' to='b:0'/><link from='b:0' to='a:0'/>");
    EXPECT_EQ(folder.document->position(u"a"_s).y(), 0);
    EXPECT_GT(folder.document->position(u"b"_s).y(), 0);
}

// What was only shown until now would move when the file is opened again.
TEST(StudioPositions, TheOriginIsAPositionToo)
{
    const test::StudioFolder folder("<action id='a'><sort/></action>");
    folder.document->addAction(u"sort"_s, {300, 0});
    EXPECT_TRUE(folder.document->toXml().contains("<action id='a' x='0' y='0'>"));
}

// The search for a free place would not end, and a canvas cannot draw it.
TEST(StudioPositions, PositionsAreWhereTheCanvasCanDraw)
{
    const QByteArray text = "  <action id='a' x='nan' y='1e300'><readCSV fileName='a'/></action>\n"
                            "  <action id='b' x='-inf' y='12px'><writeCSV fileName='b'/></action>\n"
                            "  <?note x='1e99' y='2.6' text='n'?>\n"
                            "  <link from='a:0' to='b:0'/>\n";
    const test::StudioFolder folder(text);
    GraphDocument *const document = folder.document.get();
    EXPECT_EQ(document->toXml(), "<graph version='4.11'>" + text + "</graph>");
    EXPECT_EQ(document->position(u"a"_s), QPointF(0, 1e6));
    EXPECT_EQ(document->position(u"b"_s), QPointF(-1e6, 12));
    EXPECT_EQ(document->notes()[0].position, QPointF(1e6, 3));
    for (int i = 0; i < 3; ++i) {
        EXPECT_FALSE(document->addActionAfter(u"sort"_s, {u"a"_s, 0}).isEmpty());
    }
    document->move({{u"b"_s, {qQNaN(), -1e300}}});
    EXPECT_EQ(document->position(u"b"_s), QPointF(0, -1e6));
    document->undoStack()->setIndex(0);
    EXPECT_EQ(document->toXml(), "<graph version='4.11'>" + text + "</graph>");
}

TEST(StudioPositions, ActionsAreAlignedAndDistributed)
{
    using Alignment = GraphDocument::Alignment;
    const QMap<QString, QPointF> places{
        {u"a"_s, {0, 10}}, {u"b"_s, {100, 40}}, {u"c"_s, {10, 100}}};
    const struct
    {
        Alignment alignment;
        QPointF a, b, c;
    } cases[] = {
        {Alignment::Left, {0, 10}, {0, 40}, {0, 100}},
        {Alignment::Center, {50, 10}, {50, 40}, {50, 100}},
        {Alignment::Right, {100, 10}, {100, 40}, {100, 100}},
        {Alignment::Top, {0, 10}, {100, 10}, {10, 10}},
        {Alignment::Middle, {0, 55}, {100, 55}, {10, 55}},
        {Alignment::Bottom, {0, 100}, {100, 100}, {10, 100}},
        {Alignment::Columns, {0, 10}, {100, 40}, {50, 100}}, // c is between a and b
        {Alignment::Rows, {0, 10}, {100, 55}, {10, 100}},
    };
    const test::StudioFolder folder("<action id='a'><readCSV/></action><action id='b'><sort/>"
                                    "</action><action id='c'><sort/></action>");
    GraphDocument *const document = folder.document.get();
    for (const auto &each : cases) {
        document->move(places);
        document->align({u"a"_s, u"b"_s, u"c"_s, u"none"_s}, each.alignment);
        EXPECT_EQ(document->position(u"a"_s), each.a) << static_cast<int>(each.alignment);
        EXPECT_EQ(document->position(u"b"_s), each.b) << static_cast<int>(each.alignment);
        EXPECT_EQ(document->position(u"c"_s), each.c) << static_cast<int>(each.alignment);
    }
    const int steps = document->undoStack()->count();
    document->align({u"a"_s}, Alignment::Right);
    EXPECT_EQ(document->undoStack()->count(), steps) << "one action has nothing to be aligned with";
}
