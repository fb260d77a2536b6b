#include "base/block_buffered_sink.h"
#include "base/cached_source.h"

#include <gtest/gtest.h>

#include <vector>

namespace corvanta {
namespace {

constexpr qint64 kBlock = BlockBufferedSink::kBlockBytes;

// Notes the size of every write that reaches the network; refuses one of them.
class NotingSink final : public ByteSink
{
public:
    struct Notes
    {
        std::vector<qint64> writes = {};
        int refused = -1;
        int calls = 0;
        QByteArray bytes = {};
    };
    explicit NotingSink(Notes &notes)
        : m_notes(notes)
    {
    }
    bool write(const void *bytes, qint64 n) override
    {
        if (m_notes.calls++ == m_notes.refused || !m_sink.write(bytes, n)) {
            return false;
        }
        m_notes.writes.push_back(n);
        m_notes.bytes = m_sink.bytes();
        return true;
    }
    bool seek(qint64 offset) override { return m_sink.seek(offset); }
    qint64 position() const override { return m_sink.position(); }
    bool flush() override { return true; }

private:
    Notes &m_notes;
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

TEST(BlockBufferedSink, NothingReachesTheTargetBeforeAFlush)
{
    NotingSink::Notes notes;
    NotingSink target(notes);
    BlockBufferedSink sink(target);
    QByteArray text = numbered(2 * kBlock + 100);
    for (qsizetype at = 0; at < text.size(); at += 70'001) {
        ASSERT_TRUE(put(sink, QByteArrayView(text).sliced(at).first(
                                  qMin<qsizetype>(70'001, text.size() - at))));
    }
    // A step back over a block's edge, as for a local header, and to the end again.
    ASSERT_TRUE(sink.seek(kBlock - 2));
    ASSERT_TRUE(put(sink, "HEAD"));
    text.replace(kBlock - 2, 4, "HEAD");
    ASSERT_TRUE(sink.seek(text.size()));
    EXPECT_TRUE(notes.writes.empty());
    ASSERT_TRUE(sink.flush());
    EXPECT_EQ(notes.writes, (std::vector<qint64>{kBlock, kBlock, 100}));
    EXPECT_TRUE(notes.bytes == text);
    ASSERT_TRUE(put(sink, "tail"));
    ASSERT_TRUE(sink.flush());
    EXPECT_TRUE(notes.bytes == text + "tail");
}

TEST(BlockBufferedSink, SeeksWithinTheRegionOnly)
{
    NotingSink::Notes notes;
    NotingSink target(notes);
    BlockBufferedSink sink(target);
    EXPECT_FALSE(sink.seek(kBlock));
    EXPECT_FALSE(sink.seek(-1));
    ASSERT_TRUE(put(sink, numbered(kBlock)));
    ASSERT_TRUE(sink.seek(10));
    EXPECT_TRUE(sink.seek(kBlock)); // the end of what is written, though no block begins there yet
    EXPECT_FALSE(sink.seek(kBlock + 1));
    EXPECT_EQ(sink.position(), kBlock);
    ASSERT_TRUE(sink.flush());
    EXPECT_FALSE(sink.seek(kBlock - 1));
    EXPECT_TRUE(sink.seek(kBlock));
    EXPECT_TRUE(sink.seek(2 * kBlock - 1));
    EXPECT_FALSE(sink.seek(2 * kBlock));
}

TEST(BlockBufferedSink, AFailedFlushGoesOnWhereItStopped)
{
    const QByteArray text = numbered(3 * kBlock + 5);
    for (int refused = 0; refused < 4; ++refused) {
        NotingSink::Notes notes{.refused = refused};
        NotingSink target(notes);
        BlockBufferedSink sink(target);
        ASSERT_TRUE(put(sink, text));
        EXPECT_FALSE(sink.flush());
        EXPECT_EQ(sink.position(), text.size());
        EXPECT_TRUE(sink.flush());
        EXPECT_TRUE(notes.bytes == text) << refused;
    }
}

// Notes the reads that reach the network.
class NotingSource final : public ByteSource
{
public:
    NotingSource(QByteArrayView bytes, std::vector<qint64> &reads)
        : m_source(bytes)
        , m_reads(reads)
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        const qint64 got = m_source.read(buffer, n);
        m_reads.push_back(got);
        return got;
    }
    qint64 size() override { return m_source.size(); }
    bool seek(qint64 offset) override { return m_source.seek(offset); }

private:
    MemorySource m_source;
    std::vector<qint64> &m_reads;
};

TEST(CachedSource, SmallReadsBecomeFewLargeOnes)
{
    const QByteArray text = numbered(200'000);
    std::vector<qint64> reads;
    CachedSource source(std::make_unique<NotingSource>(text, reads));
    QByteArray back(text.size(), '\0');
    for (qsizetype at = 0; at < text.size(); at += 100) {
        ASSERT_EQ(readFully(source, back.data() + at, 100), 100);
    }
    EXPECT_TRUE(back == text);
    EXPECT_EQ(reads, (std::vector<qint64>{65536, 65536, 65536, 3392, 0}));
    char byte = 0;
    EXPECT_EQ(source.read(&byte, 1), 0);
}

TEST(CachedSource, SeeksAnywhere)
{
    const QByteArray text = numbered(150'000);
    std::vector<qint64> reads;
    CachedSource source(std::make_unique<NotingSource>(text, reads));
    for (const qint64 offset : {149'990LL, 140'000LL, 65'535LL, 0LL, 65'536LL, 149'999LL}) {
        QByteArray piece(200, '\0');
        ASSERT_TRUE(source.seek(offset));
        piece.resize(readFully(source, piece.data(), piece.size()));
        EXPECT_EQ(piece, text.mid(offset, 200)) << offset;
    }
    EXPECT_FALSE(source.seek(150'001));
    EXPECT_FALSE(source.seek(-1));
}

} // namespace
} // namespace corvanta
