#include "codecs/stat/row_ring.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <thread>

namespace corvanta::stat {
namespace {

/// Put a row of `columns` cells, each of `bytes` bytes with the value `mark`. Returns false as the
/// ring does.
bool putRow(RowRing &ring, int columns, qint64 bytes, uchar mark)
{
    if (!ring.beginRow(columns)) {
        return false;
    }
    for (int i = 0; i < columns; ++i) {
        uchar *const cell = ring.room(bytes);
        if (cell == nullptr) {
            return false;
        }
        std::memset(cell, mark, static_cast<size_t>(bytes));
        ring.setCell(i, cell);
        ring.use(cell + bytes);
    }
    ring.endRow();
    return true;
}

bool isFilled(const uchar *cell, qint64 bytes, uchar mark)
{
    return std::all_of(cell, cell + bytes, [mark](uchar byte) { return byte == mark; });
}

qint64 sizeOf(int row)
{
    return 1 + row * 7 % 113;
}

TEST(RowRing, EndsWithoutRows)
{
    RowRing ring(1024);
    ring.finish();
    EXPECT_EQ(ring.next(), nullptr);
}

TEST(RowRing, DeliversUnsetCellsAsMissing)
{
    RowRing ring(1024);
    ASSERT_TRUE(ring.beginRow(2));
    ring.endRow();
    ring.finish();
    const uchar *const *const cells = ring.next();
    ASSERT_NE(cells, nullptr);
    EXPECT_EQ(cells[1], cell::missingTextCell());
    EXPECT_EQ(ring.next(), nullptr);
}

// Rows of many sizes pass the end of the block at every possible place.
TEST(RowRing, KeepsOrderAndContentAcrossTheEndOfTheBlock)
{
    constexpr int kRows = 20000;
    constexpr int kColumns = 3;
    for (const qint64 bytes : {600, 1000, 4096, 300000}) {
        RowRing ring(bytes);
        std::thread producer([&] {
            for (int i = 0; i < kRows; ++i) {
                EXPECT_TRUE(putRow(ring, kColumns, sizeOf(i), static_cast<uchar>(i)));
            }
            ring.finish();
        });
        for (int i = 0; i < kRows; ++i) {
            const uchar *const *const cells = ring.next();
            ASSERT_NE(cells, nullptr);
            for (int column = 0; column < kColumns; ++column) {
                ASSERT_TRUE(isFilled(cells[column], sizeOf(i), static_cast<uchar>(i)))
                    << "row " << i << " of " << bytes;
            }
        }
        EXPECT_EQ(ring.next(), nullptr);
        producer.join();
    }
}

// Such a row needs the whole block, wherever the rows before it have ended.
TEST(RowRing, AcceptsARowOfTheSizeOfTheBlock)
{
    constexpr qint64 kBytes = 4096;
    constexpr qint64 kCell = kBytes - 16;
    RowRing ring(kBytes);
    std::thread producer([&] {
        for (int i = 0; i < 50; ++i) {
            EXPECT_TRUE(putRow(ring, 1, i % 3 == 0 ? 100 : kCell, static_cast<uchar>(i)));
        }
        ring.finish();
    });
    for (int i = 0; i < 50; ++i) {
        const uchar *const *const cells = ring.next();
        ASSERT_NE(cells, nullptr);
        EXPECT_TRUE(isFilled(cells[0], i % 3 == 0 ? 100 : kCell, static_cast<uchar>(i)));
    }
    EXPECT_EQ(ring.next(), nullptr);
    producer.join();
}

TEST(RowRing, RefusesALargerRowWithoutWaiting)
{
    constexpr qint64 kBytes = 4096;
    RowRing ring(kBytes);
    ASSERT_TRUE(putRow(ring, 1, 100, 1));
    EXPECT_FALSE(putRow(ring, 1, kBytes - 15, 2));
    EXPECT_EQ(ring.tooLargeBytes(), kBytes + 1);
    ring.finish();
    EXPECT_NE(ring.next(), nullptr); // the row before it is complete
    EXPECT_EQ(ring.next(), nullptr);
}

TEST(RowRing, StopEndsAWaitingProducerAndConsumer)
{
    RowRing full(1024);
    std::thread producer([&] {
        while (putRow(full, 1, 100, 1)) {
        }
    });
    RowRing empty(1024);
    std::thread consumer([&] { EXPECT_EQ(empty.next(), nullptr); });
    full.stop();
    empty.stop();
    producer.join();
    consumer.join();
    EXPECT_EQ(full.tooLargeBytes(), 0);
}

} // namespace
} // namespace corvanta::stat
