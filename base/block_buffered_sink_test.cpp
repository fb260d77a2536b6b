// Checks which bytes a block-buffered sink writes to its target, and when.
#include "base/block_buffered_sink.h"

#include <gtest/gtest.h>

#include <vector>

namespace corvanta {
namespace {

constexpr qint64 kBlock = BlockBufferedSink::kBlockBytes;

// Records the size of every write to the target and fails one of them.
class RecordingSink final : public ByteSink
{
public:
    struct Log
    {
        std::vector<qint64> writes = {};
        int failedCall = -1;
        int calls = 0;
        QByteArray bytes = {};
    };
    explicit RecordingSink(Log &log)
        : m_log(log)
    {
    }
    bool write(const void *bytes, qint64 n) override
    {
        if (m_log.calls++ == m_log.failedCall || !m_sink.write(bytes, n)) {
            return false;
        }
        m_log.writes.push_back(n);
        m_log.bytes = m_sink.bytes();
        return true;
    }
    bool seek(qint64 offset) override { return m_sink.seek(offset); }
    qint64 position() const override { return m_sink.position(); }
    bool flush() override { return true; }

private:
    Log &m_log;
    MemorySink m_sink;
};

QByteArray numbered(qint64 bytes)
{
    QByteArray text(bytes, Qt::Uninitialized);
    for (qint64 i = 0; i < bytes; ++i) {
        text[i] = static_cast<char>(i * 31 >> 3);
    }
    return text;
}

bool put(ByteSink &sink, QByteArrayView bytes)
{
    return sink.write(bytes.data(), bytes.size());
}

TEST(BlockBufferedSink, WritesNothingToTheTargetBeforeAFlush)
{
    RecordingSink::Log log;
    RecordingSink target(log);
    BlockBufferedSink sink(target);
    QByteArray text = numbered(2 * kBlock + 100);
    for (qsizetype at = 0; at < text.size(); at += 70'001) {
        ASSERT_TRUE(put(sink, QByteArrayView(text).sliced(at).first(
                                  qMin<qsizetype>(70'001, text.size() - at))));
    }
    // Seek back over the edge of a block, as for a local header, and return to the end.
    ASSERT_TRUE(sink.seek(kBlock - 2));
    ASSERT_TRUE(put(sink, "HEAD"));
    text.replace(kBlock - 2, 4, "HEAD");
    ASSERT_TRUE(sink.seek(text.size()));
    EXPECT_TRUE(log.writes.empty());
    ASSERT_TRUE(sink.flush());
    EXPECT_EQ(log.writes, (std::vector<qint64>{kBlock, kBlock, 100}));
    EXPECT_TRUE(log.bytes == text);
    ASSERT_TRUE(put(sink, "tail"));
    ASSERT_TRUE(sink.flush());
    EXPECT_TRUE(log.bytes == text + "tail");
}

TEST(BlockBufferedSink, SeeksWithinTheRegionOnly)
{
    RecordingSink::Log log;
    RecordingSink target(log);
    BlockBufferedSink sink(target);
    EXPECT_FALSE(sink.seek(kBlock));
    EXPECT_FALSE(sink.seek(-1));
    ASSERT_TRUE(put(sink, numbered(kBlock)));
    ASSERT_TRUE(sink.seek(10));
    EXPECT_TRUE(
        sink.seek(kBlock)); // the end of the written bytes, although no block starts there yet
    EXPECT_FALSE(sink.seek(kBlock + 1));
    EXPECT_EQ(sink.position(), kBlock);
    ASSERT_TRUE(sink.flush());
    EXPECT_FALSE(sink.seek(kBlock - 1));
    EXPECT_TRUE(sink.seek(kBlock));
    EXPECT_TRUE(sink.seek(2 * kBlock - 1));
    EXPECT_FALSE(sink.seek(2 * kBlock));
}

TEST(BlockBufferedSink, FailedFlushContinuesWhereItStopped)
{
    const QByteArray text = numbered(3 * kBlock + 5);
    for (int failedCall = 0; failedCall < 4; ++failedCall) {
        RecordingSink::Log log{.failedCall = failedCall};
        RecordingSink target(log);
        BlockBufferedSink sink(target);
        ASSERT_TRUE(put(sink, text));
        EXPECT_FALSE(sink.flush());
        EXPECT_EQ(sink.position(), text.size());
        EXPECT_TRUE(sink.flush());
        EXPECT_TRUE(log.bytes == text) << failedCall;
    }
}

} // namespace
} // namespace corvanta
