#include "codecs/deflate/crc32.h"
#include "codecs/deflate/deflate_stream.h"
#include "codecs/deflate/inflater.h"
#include "tests/support/sweeps.h"

#include <QString>

#include <gtest/gtest.h>
#include <zlib.h>

#include <future>
#include <random>

namespace corvanta::deflate {
namespace {

using namespace Qt::StringLiterals;

constexpr Level kLevels[] = {
    {Engine::Isal, 1}, {Engine::Isal, 2}, {Engine::Isal, 3}, {Engine::Zlib, 1}, {Engine::Zlib, 6}};

// Text with near and distant repeats: matches reach back over the start of every block.
std::string textOf(size_t bytes)
{
    std::mt19937 random(7);
    std::string text;
    while (text.size() < bytes) {
        text += "<c r=\"B" + std::to_string(random() % 5000) + "\"><v>" +
                std::to_string(random() % 97) + "</v></c>";
    }
    text.resize(bytes);
    return text;
}

std::string noiseOf(size_t bytes)
{
    std::mt19937 random(11);
    std::string noise(bytes, '\0');
    std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(random()); });
    return noise;
}

struct Inflated
{
    std::string bytes;
    Inflater::State state = Inflater::State::More;
};

Inflated inflateBy(Inflater &inflater, std::string_view packed, size_t inputPiece,
                   size_t outputPiece)
{
    Inflated result;
    std::vector<char> room(outputPiece);
    size_t at = 0;
    for (size_t idle = 0; result.state == Inflater::State::More && idle < 3;) {
        const auto step = inflater.inflate(packed.substr(at, inputPiece), room);
        at += step.consumed;
        result.bytes.append(room.data(), step.produced);
        result.state = step.state;
        idle = step.consumed + step.produced == 0 ? idle + 1 : 0;
    }
    return result;
}

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.data(), static_cast<size_t>(bytes.size())};
}

struct Packed
{
    QByteArray bytes;
    Totals totals;
};

Packed pack(std::string_view text, const StreamOptions &options, size_t piece, bool throughRoom)
{
    MemorySink sink;
    DeflateStream stream(sink, options);
    stream.begin();
    for (size_t at = 0; at < text.size(); at += piece) {
        const std::string_view part = text.substr(at, piece);
        if (throughRoom) {
            auto room = stream.room(part.size());
            EXPECT_TRUE(room);
            std::copy(part.begin(), part.end(), room->begin());
            stream.commit(part.size());
        } else {
            EXPECT_TRUE(stream.write(part));
        }
    }
    const auto totals = stream.finish();
    EXPECT_TRUE(totals);
    return {sink.bytes(), *totals};
}

TEST(Deflate, EveryLevelReadsBackWithBothInflaters)
{
    const std::string texts[] = {"",
                                 "a",
                                 textOf(kBlockBytes - 1),
                                 textOf(kBlockBytes),
                                 textOf(kBlockBytes + 1),
                                 textOf(3 * kBlockBytes + 77),
                                 noiseOf(2 * kBlockBytes + 5)};
    for (const Level level : kLevels) {
        for (const std::string &text : texts) {
            const Packed packed = pack(text, {.level = level}, 200'000, true);
            SCOPED_TRACE(testing::Message()
                         << int(level.engine) << '-' << level.level << " of " << text.size());
            EXPECT_EQ(packed.totals.size, qint64(text.size()));
            EXPECT_EQ(packed.totals.compressedSize, packed.bytes.size());
            EXPECT_EQ(packed.totals.crc,
                      ::crc32_z(0, reinterpret_cast<const Bytef *>(text.data()), text.size()));
            EXPECT_LE(packed.bytes.size(), qint64(text.size() + text.size() / 1000 + 64));
            for (auto make : {makeInflater, makeZlibInflater}) {
                const auto inflater = make();
                const Inflated back = inflateBy(*inflater, viewOf(packed.bytes), 100'000, 70'000);
                EXPECT_EQ(back.state, Inflater::State::End);
                EXPECT_TRUE(back.bytes == text);
            }
        }
    }
}

// Without the 32 KiB before it, a block would have to write its first matches as literals.
TEST(Deflate, BlocksUseEarlierContentAsDictionary)
{
    const std::string record = noiseOf(16'000);
    std::string text;
    while (text.size() < 2 * kBlockBytes) {
        text += record;
    }
    for (const Level level : {Level{}, Level{Engine::Zlib, 6}}) {
        const auto deflater = makeDeflater(level);
        std::vector<char> out;
        const std::span<const char> window(text.data(), kWindowBytes);
        const std::span<const char> block(text.data() + kWindowBytes, kWindowBytes);
        EXPECT_LT(deflater->compress(window, block, Ending::Last, out), 4'000U);
        EXPECT_GT(deflater->compress({}, block, Ending::Last, out), 16'000U);
    }
}

TEST(Deflate, BytesDependOnlyOnTheContent)
{
    const std::string text = textOf(5 * kBlockBytes + 1234);
    for (const Level level : {Level{}, Level{Engine::Zlib, 1}}) {
        const QByteArray expected = pack(text, {level, 0}, text.size(), false).bytes;
        for (const int workers : {0, 1, 2, 5}) {
            EXPECT_EQ(pack(text, {level, workers}, kMaxRoomBytes, true).bytes, expected) << workers;
            EXPECT_EQ(pack(text, {level, workers}, 4099, true).bytes, expected) << workers;
            EXPECT_EQ(pack(text, {level, workers}, 65'536, false).bytes, expected) << workers;
        }
    }
}

// The order in which deflaters get blocks depends on timing.
TEST(Deflate, BytesDoNotDependOnEarlierUseOfADeflater)
{
    const std::string text = textOf(kBlockBytes + kWindowBytes);
    const std::string noise = noiseOf(kBlockBytes);
    for (const Level level : kLevels) {
        for (const size_t window : {size_t(0), size_t(100), kWindowBytes}) {
            for (const size_t size : {size_t(3), size_t(500), size_t(70'000), kBlockBytes}) {
                const std::span<const char> dictionary(text.data(), window);
                const std::span<const char> block(text.data() + window, size);
                std::vector<char> out;
                const auto compressed = [&](Deflater &deflater) {
                    const size_t n = deflater.compress(dictionary, block, Ending::Last, out);
                    return QByteArray(out.data(), static_cast<qsizetype>(n));
                };
                const QByteArray expected = compressed(*makeDeflater(level));
                const auto used = makeDeflater(level);
                for (const std::string_view before :
                     {std::string_view(text), std::string_view(noise),
                      std::string_view(text).substr(77, 5000)}) {
                    used->compress({}, before, Ending::Continued, out);
                    EXPECT_TRUE(compressed(*used) == expected)
                        << int(level.engine) << '-' << level.level << ' ' << window << ' ' << size;
                }
            }
        }
    }
}

TEST(Deflate, RoomRequestedAtAFullBlockChangesNothing)
{
    const std::string text = textOf(kBlockBytes);
    MemorySink sink;
    DeflateStream stream(sink);
    stream.begin();
    EXPECT_TRUE(stream.write(text));
    EXPECT_TRUE(stream.room(kMaxRoomBytes));
    EXPECT_TRUE(stream.finish());
    EXPECT_EQ(sink.bytes(), pack(text, {}, text.size(), false).bytes);
}

TEST(Deflate, AFailedWriteEndsTheStream)
{
    const std::string text = textOf(9 * kBlockBytes + 99);
    const QByteArray expected = pack(text, {}, text.size(), false).bytes;
    for (const int workers : {0, 2}) {
        // The sink accepts the writes after the refused one: none may follow it.
        test::forEveryFailedWrite(10, [&](test::FailingSink &sink) {
            DeflateStream stream(sink, {{}, workers});
            stream.begin();
            const bool isWritten = static_cast<bool>(stream.write(text));
            const auto finished = stream.finish();
            ASSERT_FALSE(finished) << isWritten;
            EXPECT_EQ(finished.fault().code, Error::WriteFailed);
            EXPECT_LT(sink.bytes().size(), expected.size());
            EXPECT_TRUE(expected.startsWith(sink.bytes()));
        });
    }
}

TEST(Deflate, SeveralStreamsCanFollowEachOther)
{
    const std::string text = textOf(2 * kBlockBytes);
    MemorySink sink;
    DeflateStream stream(sink);
    for (int i = 0; i < 2; ++i) {
        stream.begin();
        EXPECT_TRUE(stream.write(text));
        EXPECT_TRUE(stream.finish());
    }
    const QByteArray once = pack(text, {}, text.size(), false).bytes;
    EXPECT_EQ(sink.bytes(), once + once);
}

// A sink that blocks its first write until the test releases it.
TEST(Deflate, StopEndsAWaitingCall)
{
    std::promise<void> isWriting;
    std::promise<void> goOn;
    test::FailingSink sink([&](int call) {
        if (call == 0) {
            isWriting.set_value();
            goOn.get_future().wait();
        }
        return false;
    });
    DeflateStream stream(sink, {{}, 1});
    stream.begin();
    const std::string text = textOf(20 * kBlockBytes);
    auto writing = std::async(std::launch::async, [&] { return stream.write(text); });
    isWriting.get_future().wait();
    stream.stop();
    goOn.set_value();
    const auto result = writing.get();
    ASSERT_FALSE(result);
    EXPECT_EQ(result.fault().code, Error::Stopped);
    EXPECT_EQ(stream.finish().fault().code, Error::Stopped);
}

TEST(Inflate, AcceptsSmallPiecesAndRejectsDamage)
{
    const std::string text = textOf(3000);
    const QByteArray packed = pack(text, {}, text.size(), false).bytes;
    for (auto make : {makeInflater, makeZlibInflater}) {
        const auto inflater = make();
        test::forEverySplit([&](size_t piece) {
            EXPECT_EQ(inflateBy(*inflater, viewOf(packed), piece, piece).bytes, text);
            inflater->reset();
        });
        test::forEveryTruncation(packed, [&](const QByteArray &cut) {
            const Inflated back = inflateBy(*inflater, viewOf(cut), 50, 5000);
            EXPECT_NE(back.state, Inflater::State::End);
            inflater->reset();
        });
        EXPECT_EQ(inflateBy(*inflater, "\xff\xff\xff\xff", 4, 5000).state, Inflater::State::Bad);
        inflater->reset();
    }
}

TEST(Crc32, EqualsZlibsAndJoins)
{
    EXPECT_EQ(crc32(0, std::string_view("123456789")),
              0xCBF43926U); // the check value of the polynomial
    const std::string text = textOf(5000);
    const std::string_view view = text;
    EXPECT_EQ(crc32Join(crc32(0, view.substr(0, 1234)), crc32(0, view.substr(1234)), 5000 - 1234),
              crc32(0, view));
    EXPECT_EQ(crc32Join(77, 0, 0), 77U);
}

TEST(Level, IsParsedFromText)
{
    EXPECT_EQ(parseLevel(u"isal-3")->level, 3);
    EXPECT_EQ(parseLevel(u"zlib-9")->engine, Engine::Zlib);
    for (const QString &bad :
         {u""_s, u"isal"_s, u"isal-0"_s, u"isal-4"_s, u"zlib-0"_s, u"zlib-10"_s, u"lzma-2"_s}) {
        EXPECT_FALSE(parseLevel(bad)) << bad.toStdString();
    }
}

} // namespace
} // namespace corvanta::deflate
