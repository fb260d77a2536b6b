#include "base/stats/column_stats.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

TEST(DistinctCounter, CountsUpToItsLimit)
{
    DistinctCounter counter(1000);
    for (int round = 0; round < 2; ++round) { // the second one finds all of them
        for (quint64 hash = 0; hash < 1000; ++hash) {
            // Equal in the low bits, which choose the slot.
            counter.add(hash << 20);
        }
    }
    EXPECT_EQ(counter.count(), 1000U);
    EXPECT_FALSE(counter.isOver());
    counter.add(7);
    EXPECT_TRUE(counter.isOver());
    EXPECT_EQ(counter.count(), 1000U);
    counter.add(8);
    EXPECT_EQ(counter.count(), 1000U);
}

TEST(NumberRange, KeepsEveryDigit)
{
    NumberRange range;
    EXPECT_TRUE(range.isEmpty());
    range.add(std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(range.isEmpty());
    // 2^53 and its neighbours: as doubles the first two are equal.
    range.add(9007199254740992.0, u"9007199254740993");
    range.add(9007199254740992.0, u"9007199254740992");
    range.add(9007199254740994.0, u"9007199254740994");
    EXPECT_EQ(range.smallest().text, u"9007199254740992");
    EXPECT_EQ(range.largest().text, u"9007199254740994");
    range.add(-9007199254740992.0, u"-9007199254740993");
    range.add(-9007199254740992.0, u"-9007199254740992");
    EXPECT_EQ(range.smallest().text, u"-9007199254740993");
    NumberRange small;
    small.add(3);
    small.add(-1);
    small.add(4);
    EXPECT_EQ(small.smallest().value, -1);
    EXPECT_EQ(small.largest().value, 4);
    EXPECT_EQ(small.mean(), 2);
}

TEST(TextRange, OrdersByCodePoint)
{
    TextRange range;
    EXPECT_TRUE(range.isEmpty());
    // As UTF-16 units U+1F600 (D83D DE00) is less than U+FF5E.
    range.add(u"\uFF5E");
    range.add(u"\U0001F600\U0001F600");
    range.add(u"zz");
    EXPECT_EQ(range.smallest(), u"zz"_s);
    EXPECT_EQ(range.largest(), u"\U0001F600\U0001F600"_s);
    EXPECT_EQ(range.longest(), 2U) << "characters, not units";
    range.add(u"");
    EXPECT_EQ(range.smallest(), u""_s);
    range.add(u"abc");
    EXPECT_EQ(range.longest(), 3U);
}

TEST(TextRange, OrdersDatesByTime)
{
    TextRange range(TextOrder::Words);
    for (const char16_t *text :
         {u"2026-01-01 10:00", u"2026-01-01T09:00", u"2026-01-02", u"2026-01-01 23:00"}) {
        range.add(text);
    }
    EXPECT_EQ(range.smallest(), u"2026-01-01T09:00"_s);
    EXPECT_EQ(range.largest(), u"2026-01-02"_s);
}

TEST(DistinctCounter, HasLessRoomForManyColumns)
{
    for (const auto &[columns, most] :
         {std::pair<size_t, size_t>{0, 100'000}, {40, 100'000}, {41, 97'560}, {4'000'000, 1}}) {
        EXPECT_EQ(maxDistinctOf(columns), most) << columns;
    }
}

} // namespace corvanta
