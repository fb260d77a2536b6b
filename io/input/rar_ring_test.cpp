// The ring without an archive: order, wrapping, the end of the data, and abort() during waits.
#include "io/input/rar_ring.h"

#include <QByteArray>

#include <gtest/gtest.h>

#include <random>
#include <thread>

using namespace corvanta;
using namespace corvanta::input;

namespace {

char pattern(size_t i)
{
    return static_cast<char>(i * 31 + i / 251);
}

std::vector<char> patternBytes(size_t from, size_t n)
{
    std::vector<char> bytes(n);
    for (size_t i = 0; i < n; ++i) {
        bytes[i] = pattern(from + i);
    }
    return bytes;
}

} // namespace

TEST(RarRing, KeepsOrderWithManyWrapsAndLargeBlocks)
{
    constexpr size_t kTotal = 300'000;
    RarRing ring(1000, 200);
    std::thread producer([&] {
        std::mt19937 random(1);
        for (size_t at = 0; at < kTotal;) {
            const size_t n = std::min<size_t>(random() % 3000 + 1, kTotal - at);
            if (!ring.put(patternBytes(at, n))) {
                return;
            }
            at += n;
        }
        ring.finish({});
    });
    std::mt19937 random(2);
    std::vector<char> out(2500);
    size_t done = 0;
    for (qint64 got = 1; got > 0;) {
        const size_t want = random() % out.size() + 1;
        got = ring.take(out.data(), static_cast<qint64>(want));
        for (size_t i = 0; i < static_cast<size_t>(got); ++i) {
            ASSERT_EQ(out[i], pattern(done + i));
        }
        done += static_cast<size_t>(got);
        ASSERT_TRUE(static_cast<size_t>(got) == want || done == kTotal) << "short only at the end";
    }
    producer.join();
    EXPECT_EQ(done, kTotal);
    EXPECT_TRUE(ring.outcome());
}

TEST(RarRing, DeliversTheBytesBeforeTheFailure)
{
    RarRing ring(100, 50);
    ASSERT_TRUE(ring.put(patternBytes(0, 10)));
    ring.finish(Fault{platform::RarError::Damaged, QStringLiteral("why")});
    std::vector<char> out(20);
    EXPECT_EQ(ring.take(out.data(), 20), 10);
    EXPECT_EQ(ring.take(out.data(), 20), 0);
    ASSERT_FALSE(ring.outcome());
    EXPECT_EQ(ring.outcome().fault().detail, QStringLiteral("why"));
}

TEST(RarRing, AbortEndsAWaitingProducerAndAWaitingConsumer)
{
    for (int i = 0; i < 200; ++i) {
        RarRing full(100, 50);
        std::thread producer([&] {
            while (full.put(patternBytes(0, 70))) {
            }
        });
        RarRing empty(100, 50);
        std::thread consumer([&] {
            char byte = 0;
            EXPECT_EQ(empty.take(&byte, 1), 0);
        });
        full.abort();
        empty.abort();
        producer.join();
        consumer.join();
    }
}
