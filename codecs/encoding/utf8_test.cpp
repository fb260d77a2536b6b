// Texts of other encodings as UTF-8, and UTF-8 in other encodings.
#include "codecs/encoding/utf8_encoder.h"
#include "codecs/encoding/utf8_source.h"
#include "tests/support/failing_source.h"
#include "tests/support/sweeps.h"

#include <gtest/gtest.h>

using namespace corvanta;
using namespace corvanta::encoding;

namespace {

constexpr char kAuto[] = "auto";

/// All bytes, read in pieces of `piece` bytes; "failed" at a failure.
QByteArray readAll(ByteSource &source, qint64 piece)
{
    QByteArray all;
    QByteArray part(piece, '\0');
    for (;;) {
        const qint64 got = source.read(part.data(), piece);
        if (got <= 0) {
            return got < 0 ? all + "failed" : all;
        }
        all.append(part.data(), got);
    }
}

struct Case
{
    const char *encoding; // given
    QByteArray bytes;
    QByteArray text;
    const char *found; // encoding
    bool isAssumed;
};

/// Enough ASCII lines that no block of the source holds all of them.
QByteArray manyLines()
{
    return QByteArray("some text\n").repeated(60000);
}

const Case kCases[] = {
    {kAuto, "", "", "UTF-8", false},
    {kAuto, "a,b\n1,2\n", "a,b\n1,2\n", "UTF-8", false},
    {kAuto, "M\xC3\xBCller\n", "M\xC3\xBCller\n", "UTF-8", false},
    {kAuto, "M\xFCller\n", "M\xC3\xBCller\n", "windows-1252", true},
    {kAuto,
     "\xEF\xBB\xBF"
     "a\xFF\n",
     "\xEF\xBB\xBF"
     "a\xFF\n",
     "UTF-8", false},
    {kAuto,
     QByteArray("\xFF\xFE"
                "a\0\xFC\0",
                6),
     "a\xC3\xBC", "UTF-16LE", false},
    {kAuto, QByteArray("\xFE\xFF\0a\0\xFC", 6), "a\xC3\xBC", "UTF-16BE", false},
    {kAuto, QByteArray("\xFF\xFE\0\0a\0\0\0", 8), "a", "UTF-32LE", false},
    {kAuto, QByteArray("a\0,\0\x0D\x54\n\0", 8), "a,\xE5\x90\x8D\n", "UTF-16LE", true},
    {kAuto, QByteArray("a,b\n1,\0\n", 8), QByteArray("a,b\n1,\0\n", 8), "UTF-8", false},
    {kAuto, QByteArray("abc\0\nd", 6), QByteArray("abc\0\nd", 6), "UTF-8", false},
    {kAuto, QByteArray("\0a\0,\x54\x0D\0\n", 8), "a,\xE5\x90\x8D\n", "UTF-16BE", true},
    {kAuto, QByteArray("a\0b\0\0c\n", 7), QByteArray("a\0b\0\0c\n", 7), "UTF-8", false},
    {kAuto, QByteArray("a\nb\0cdefgh\n", 11), QByteArray("a\nb\0cdefgh\n", 11), "UTF-8", false},
    {kAuto, manyLines() + "\xE9t\xE9", manyLines() + "\xC3\xA9t\xC3\xA9", "windows-1252", true},
    {"utf-8", "a\xFF\xC3", "a\xFF\xC3", "utf-8", false},
    {"latin1", "\x80\xFC", "\xC2\x80\xC3\xBC", "latin1", false},
    {"shift_jis", "\x96\xBC,\x81", "\xE5\x90\x8D,\xEF\xBF\xBD", "shift_jis", false},
    {"UTF-16LE", QByteArray("a\0\0\xD8z\0", 6), "a\xEF\xBF\xBDz", "UTF-16LE", false},
};

} // namespace

TEST(Utf8Source, FindsAndConvertsEncodingsWhateverTheSizesOfReads)
{
    for (const Case &one : kCases) {
        test::forEverySplit([&](int piece) {
            const bool isLarge = one.bytes.size() > 1000;
            MemorySource bytes(one.bytes, isLarge && piece > 0 ? piece + 1000 : piece);
            Utf8Source source(bytes, one.encoding, "windows-1252");
            ASSERT_TRUE(source.isKnown());
            EXPECT_TRUE(readAll(source, isLarge ? 5000 : 3) == one.text) << one.bytes.constData();
            EXPECT_EQ(source.encoding(), one.found);
            EXPECT_EQ(source.isAssumed(), one.isAssumed);
        });
    }
}

TEST(Utf8Source, CountsWhatIsNotInTheEncoding)
{
    MemorySource bytes(QByteArrayView("a\n\x81\n\xFF\n"));
    Utf8Source source(bytes, "shift_jis");
    readAll(source, 100);
    EXPECT_EQ(source.replaced().count(), 2);
    EXPECT_EQ(source.replaced().first(), QStringLiteral("line 2"));
    const QByteArray mixed = "a\xC3\xBC" + manyLines() + "\xFF";
    MemorySource late(mixed);
    Utf8Source utf8(late, kAuto, "windows-1252");
    readAll(utf8, 100000);
    EXPECT_TRUE(utf8.hasInvalidUtf8());
    EXPECT_EQ(utf8.encoding(), "UTF-8");
}

TEST(Utf8Source, ChecksCharactersThatAreCutBetweenReads)
{
    const QByteArray valid = "\xC3\xBC\xE5\x90\x8D"
                             "a\xF0\x9F\x98\x80";
    const std::pair<QByteArray, bool> cases[] = {{valid, false},
                                                 {valid + "\xF0\x9F\x98", true},
                                                 {"\xE5\x90" + valid, true},
                                                 {"\xF0\x9F\x98"
                                                  "a",
                                                  true}};
    for (const auto &[bytes, isInvalid] : cases) {
        for (qint64 piece = 1; piece <= bytes.size(); ++piece) {
            MemorySource memory(bytes);
            Utf8Source source(memory, "UTF-8");
            EXPECT_EQ(readAll(source, piece), bytes);
            EXPECT_EQ(source.hasInvalidUtf8(), isInvalid) << bytes.toHex().constData() << piece;
        }
    }
}

TEST(Utf8Source, DeliversTheBytesBeforeAFailure)
{
    for (const char *encoding : {kAuto, "utf-8", "latin1"}) {
        test::FailingSource bytes("a,b\nc");
        Utf8Source source(bytes, encoding, "latin1");
        EXPECT_EQ(readAll(source, 2), "a,b\ncfailed") << encoding;
    }
    MemorySource none("");
    EXPECT_FALSE(Utf8Source(none, "no such encoding").isKnown());
}

TEST(Utf8Encoder, ReplacesWhatTheEncodingLacks)
{
    auto latin1 = Utf8Encoder::open("latin1");
    ASSERT_TRUE(latin1);
    EXPECT_EQ(latin1->encode("M\xC3\xBCller\n").toByteArray(), "M\xFCller\n");
    EXPECT_EQ(latin1->encode("a\n\xE5\x90\x8D\xF0\x9F\x98\x80\n").toByteArray(), "a\n??\n");
    EXPECT_EQ(latin1->replaced().count(), 2);
    EXPECT_EQ(latin1->replaced().first(), QStringLiteral("line 3"));
    auto wide = Utf8Encoder::open("UTF-16BE");
    ASSERT_TRUE(wide);
    const QByteArray text("\xC3\xBC\n", 3);
    EXPECT_EQ(wide->encode(text.repeated(50000)).toByteArray(),
              QByteArray("\0\xFC\0\n", 4).repeated(50000));
    auto states = Utf8Encoder::open("ISO-2022-JP");
    ASSERT_TRUE(states);
    const QByteArray start = states->encode("\xE5\x90\x8D").toByteArray();
    EXPECT_EQ(start + states->finish().toByteArray(), "\x1B$BL>\x1B(B");
    EXPECT_FALSE(Utf8Encoder::open("no such encoding"));
    EXPECT_FALSE(Utf8Encoder::open(""));
}
