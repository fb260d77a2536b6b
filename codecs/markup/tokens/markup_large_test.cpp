// Documents and tokens that are large: memory stays that of one record, time stays linear.
#include "codecs/markup/levels/level_extractor.h"
#include "codecs/markup/tokens/xml_tokenizer.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <cstring>

using namespace corvanta;
using namespace corvanta::markup;
using namespace Qt::StringLiterals;

namespace {

/// `head`, then `piece` a number of times, then `tail`, in reads of at most `readBytes`.
class RepeatingSource final : public ByteSource
{
public:
    RepeatingSource(QByteArray head, QByteArray piece, qint64 times, QByteArray tail,
                    qint64 readBytes)
        : m_head(std::move(head))
        , m_piece(std::move(piece))
        , m_tail(std::move(tail))
        , m_times(times)
        , m_readBytes(readBytes)
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        const qint64 take = std::min({n, m_readBytes, m_at.size()});
        std::memcpy(buffer, m_at.data(), static_cast<size_t>(take));
        m_at = m_at.sliced(take);
        if (m_at.isEmpty() && m_times >= 0) {
            m_at = m_times-- > 0 ? QByteArrayView(m_piece) : QByteArrayView(m_tail);
        }
        return take;
    }
    qint64 size() override { return -1; }
    bool seek(qint64) override { return false; }

private:
    QByteArray m_head;
    QByteArray m_piece;
    QByteArray m_tail;
    qint64 m_times;
    qint64 m_readBytes;
    QByteArrayView m_at = m_head;
};

qint64 peakKiB()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

} // namespace

// Beyond 4 GiB also every count of bytes in 32 bits would show.
TEST(LargeDocument, NeedsMemoryOfOneRecord)
{
    const QByteArray record =
        R"({"id":12345,"name":"Zoë & Sons","lines":[{"q":1,"note":"a \"quoted\" note"},)"
        R"({"q":2,"note":null}],"filler":")" +
        QByteArray(800, 'x') + "\"},\n";
    const qint64 records = (qint64(1) << 32) / record.size() + 1000;
    RepeatingSource source(R"({"skipped":[1,2,{"a":3}],"orders":[)", record, records,
                           "{\"id\":\"last\"}]}", 1 << 20);
    JSONTokenizer tokenizer(source, 3 << 20, u"");
    const std::vector<Level> levels{
        {u"orders"_s, QString(), {{u"id"_s, u"id"_s}}},
        {u"lines"_s, QString(), {{u"q"_s, u"q"_s}, {u"note"_s, u"note"_s}}}};
    LevelExtractor extractor(levels, {});
    extractor.beginDocument(tokenizer);
    BlockArena arena;
    qint64 rows = 0;
    auto row = extractor.next(arena);
    for (; row && *row; row = extractor.next(arena)) {
        arena.reset();
        ++rows;
    }
    EXPECT_TRUE(row);
    EXPECT_EQ(rows, records * 2 + 1);
    EXPECT_EQ(tokenizer.line(), records + 1);
    EXPECT_LT(peakKiB(), 100 * 1024);
}

// Pieces of 1 KiB: a scan that began again after each would read half a terabyte a hundred times
// over.
TEST(LargeToken, IsReadInLinearTime)
{
    constexpr qint64 kBytes = 100 << 20;
    constexpr qint64 kReadBytes = 1024;
    const QByteArray piece(8192, 'x');
    const auto sourceOf = [&](const char *head, const char *tail) {
        return RepeatingSource(head, piece, kBytes / piece.size(), tail, kReadBytes);
    };
    RepeatingSource string = sourceOf("[\"", "\"]");
    JSONTokenizer json(string, 0, u"");
    ASSERT_EQ(json.nextToken(), Token::Start);
    ASSERT_EQ(json.nextToken(), Token::Text);
    EXPECT_EQ(json.rawText().size, kBytes);
    for (const auto &[head, tail, token] : {std::tuple{"<a>", "</a>", Token::Text},
                                            {"<a><![CDATA[", "]]>", Token::Clear},
                                            {"<a><!--", "-->", Token::Clear}}) {
        RepeatingSource source = sourceOf(head, tail);
        XMLTokenizer xml(source, 0);
        ASSERT_TRUE(xml.setEncoding(CharMode::Utf8, {}, InvalidBytes::Fail));
        ASSERT_EQ(xml.nextToken(), Token::Start);
        ASSERT_EQ(xml.nextToken(), token) << head;
        EXPECT_EQ(xml.rawText().size, kBytes) << head;
    }
    RepeatingSource source = sourceOf("<a b='", "'/>");
    XMLTokenizer xml(source, 0);
    ASSERT_TRUE(xml.setEncoding(CharMode::Utf8, {}, InvalidBytes::Fail));
    ASSERT_EQ(xml.nextToken(), Token::Start);
    EXPECT_EQ(xml.attributeValue(0).size, kBytes);
}

TEST(LargeToken, BeyondTheLimitIsRejected)
{
    const QByteArray piece(1 << 20, 'x');
    RepeatingSource source("[\"", piece, 300, "\"]", 1 << 20);
    JSONTokenizer tokenizer(source, 0, u"");
    ASSERT_EQ(tokenizer.nextToken(), Token::Start);
    ASSERT_EQ(tokenizer.nextToken(), Token::Error);
    EXPECT_EQ(tokenizer.errorCode(), MarkupError::NoMemory);
}
