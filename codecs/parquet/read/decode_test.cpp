// The decoders of levels, indexes, values and pages, and the writers of the same forms.
#include "base/bytes.h"
#include "codecs/parquet/encoding/codec.h"
#include "codecs/parquet/encoding/rle_hybrid.h"
#include "codecs/parquet/read/cell_block.h"
#include "codecs/parquet/read/encodings.h"
#include "codecs/parquet/read/logical_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace corvanta;
using namespace corvanta::parquet;

namespace {

/// Bytes followed by the readable bytes that decoders need.
std::vector<uchar> withTail(const std::vector<char> &bytes)
{
    std::vector<uchar> all(bytes.begin(), bytes.end());
    all.resize(all.size() + kPageTailBytes);
    return all;
}

Column columnOf(Form form, qint32 physical, int valueBytes)
{
    Column column;
    column.form = form;
    column.physical = physical;
    column.valueBytes = valueBytes;
    return column;
}

std::u16string textAt(const CellBlock &block, qsizetype row)
{
    const uchar *const cell = block.cell(row);
    EXPECT_EQ(reinterpret_cast<quintptr>(cell::readText(cell).units) % 2, 0U);
    return std::u16string(cell::readText(cell).view());
}

QByteArray logical(const Column &column, const QByteArray &stored)
{
    QByteArray text(maxLogicalChars(column, stored.size()), '\0');
    text.resize(putLogical(column, {stored.constData(), size_t(stored.size())}, text.data()));
    return text;
}

template <class T> QByteArray stored(T value)
{
    QByteArray bytes(sizeof value, '\0');
    storeLE(value, bytes.data());
    return bytes;
}

} // namespace

TEST(RleHybrid, RandomIndexesReadBackInPiecesOfAnySize)
{
    std::mt19937 random(1);
    for (const int width : {0, 1, 2, 3, 7, 8, 9, 17, 31, 32}) {
        const quint32 mask = width == 32 ? ~0U : (1U << width) - 1;
        std::vector<quint32> indexes(5000);
        quint32 value = 0;
        for (quint32 &index : indexes) {
            value = random() % 16 < 3 ? quint32(random()) & mask : value; // runs and noise
            index = value;
        }
        std::vector<char> bytes;
        appendIndexes(indexes, width, bytes);
        const std::vector<uchar> all = withTail(bytes);
        for (const qsizetype piece : {1, 3, 8, 1000, 5000}) {
            HybridDecoder decoder({all.data(), bytes.size()}, width);
            std::vector<quint32> back(indexes.size());
            for (qsizetype at = 0; at < qsizetype(back.size()); at += piece) {
                ASSERT_TRUE(
                    decoder.read(back.data() + at, std::min(piece, qsizetype(back.size()) - at)));
            }
            EXPECT_EQ(back, indexes) << width << " bits, pieces of " << piece;
        }
    }
}

TEST(RleHybrid, LevelsAreWrittenAsRunsOfGroups)
{
    std::vector<uchar> levels(16, 1);
    levels.insert(levels.end(), 8, 0);
    levels.insert(levels.end(), {1, 0, 1, 0, 0, 0, 0, 1, 1});
    std::vector<char> bytes;
    appendLevels(levels, bytes);
    const std::vector<char> expected{32, 1, 16, 0, 5, char(0x85), 1};
    EXPECT_EQ(bytes, expected);

    // A packed run ends at 63 groups.
    levels.clear();
    for (int i = 0; i < 64 * 8; ++i) {
        levels.push_back(i % 2);
    }
    bytes.clear();
    appendLevels(levels, bytes);
    EXPECT_EQ(bytes.size(), 1U + 63 + 1 + 1);
    EXPECT_EQ(uchar(bytes[0]), 63 << 1 | 1);
    EXPECT_EQ(uchar(bytes[64]), 1 << 1 | 1);
}

TEST(RleHybrid, DamageIsRejected)
{
    quint32 out[32];
    uchar level[32];
    const auto fails = [&](std::vector<char> bytes, int width, qsizetype n) {
        const std::vector<uchar> all = withTail(bytes);
        return !HybridDecoder({all.data(), bytes.size()}, width).read(out, n);
    };
    EXPECT_TRUE(fails({}, 3, 1));
    EXPECT_TRUE(fails({16}, 3, 1));          // no value after the header
    EXPECT_TRUE(fails({4, 9}, 3, 1));        // 9 has four bits
    EXPECT_TRUE(fails({4, 1}, 3, 3));        // two values only
    EXPECT_TRUE(fails({5, 1, 2, 3}, 3, 9));  // a packed run that ends after eight values
    EXPECT_FALSE(fails({5, 1, 2, 3}, 3, 8)); // but no more are needed
    EXPECT_TRUE(
        fails({char(0xff), char(0xff), char(0xff), char(0xff), char(0xff), char(0xff), 1}, 3, 1));
    const std::vector<uchar> two = withTail({4, 2});
    EXPECT_FALSE(HybridDecoder({two.data(), 2}, 1).read(level, 1)); // a level above 1
}

TEST(CellBlock, TextsLoseTrailingZerosAndInvalidBytesAreLatin1)
{
    using namespace std::string_view_literals;
    const std::string longText(40000, 'y');
    const std::string_view values[] = {"abc\0\0"sv,       "\0\0"sv, ""sv,
                                       "a\0b"sv,          "\xE9"sv, "\xF0\x9F\x98\x80"sv,
                                       "x\xC3\xA9\xC3"sv, longText};
    CellBlock block;
    convertBytes(columnOf(Form::Text, kByteArray, 0), values, block);
    const std::u16string expected[] = {u"abc",
                                       u"",
                                       u"",
                                       std::u16string(u"a\0b", 3),
                                       u"\u00e9",
                                       u"\U0001F600",
                                       u"x\u00e9\u00c3",
                                       std::u16string(40000, u'y')};
    for (size_t i = 0; i < std::size(values); ++i) {
        EXPECT_EQ(textAt(block, qsizetype(i)), expected[i]) << i;
        EXPECT_FALSE(cell::readText(block.cell(qsizetype(i))).isMissing());
    }
    // Lengths around the change of the code's size, in texts that shrink when converted to UTF-16.
    for (const int n : {125, 126, 127, 16255, 16256, 16257}) {
        std::string accents;
        for (int i = 0; i < n; ++i) {
            accents += "\xC3\xA9";
        }
        const std::string_view two[] = {accents, "end"};
        convertBytes(columnOf(Form::Text, kByteArray, 0), two, block);
        EXPECT_EQ(textAt(block, 0), std::u16string(size_t(n), u'\u00e9'));
        EXPECT_EQ(textAt(block, 1), u"end");
    }
}

TEST(CellBlock, Int96TakesItsSignFromTheNextByte)
{
    std::vector<uchar> values(24 + 1, 0);
    storeLE(qint32(-2), values.data());
    storeLE(qint64(5), values.data() + 4);
    values[12] = 0x80; // the first byte of the second value
    CellBlock block;
    convertFixed(columnOf(Form::DoubleFromInt96, kInt96, 12), values.data(), 2, block);
    const double high = double(qint64(5) ^ 0xFFFFFFFFLL);
    EXPECT_EQ(loadNative<double>(block.cell(0)), -1.0 - 1.0 - high * 4294967296.0);
    EXPECT_EQ(loadNative<double>(block.cell(1)), 128.0);
    values[12] = 0x7F;
    convertFixed(columnOf(Form::DoubleFromInt96, kInt96, 12), values.data(), 1, block);
    EXPECT_EQ(loadNative<double>(block.cell(0)), 5 * 4294967296.0 - 2);
    // Values that become other numbers are marked.
    Column column = columnOf(Form::DoubleFromInt96, kInt96, 12);
    column.loss = Loss::OtherNumber;
    convertFixed(column, values.data(), 1, block);
    EXPECT_EQ(block.changed, std::vector<uchar>{1}); // the low part is not negative
    storeLE(qint32(2), values.data());
    reserveRows(column, 2, block);
    convertFixed(column, values.data(), 1, block);
    EXPECT_TRUE(block.changed.empty());
    values[12] = 0x80;
    convertFixed(column, values.data(), 2, block);
    EXPECT_EQ(block.changed, (std::vector<uchar>{1, 0}));
}

TEST(CellBlock, NumbersOfEveryFormAreConverted)
{
    const std::tuple<Form, QByteArray, double> cases[] = {
        {Form::Key32, stored<qint32>(-7), 4294967289.0},
        {Form::KeyLow32, stored<qint64>(0x1234567890LL), double(0x34567890)},
        {Form::DoubleFromInt64, stored<qint64>(-9007199254740993LL), -9007199254740992.0},
        {Form::DoubleFromUint64, stored<quint64>(1ULL << 63), 9223372036854775808.0},
        {Form::DoubleFromInt32, stored<qint32>(-7), -7},
        {Form::DoubleFromUint32, stored<quint32>(4294967295U), 4294967295.0},
        {Form::DoubleFromFloat, stored<float>(1.1F), double(1.1F)},
        {Form::Double, stored<double>(-0.1), -0.1},
        {Form::DoubleFromHalf, stored<quint16>(0xC500), -5},
        {Form::DoubleFromHalf, stored<quint16>(0x0001), std::ldexp(1.0, -24)},
        {Form::KeyFromBoolean, QByteArray("\x01"), 1},
    };
    for (const auto &[form, bytes, expected] : cases) {
        CellBlock block;
        QByteArray padded = bytes + '\0';
        convertFixed(columnOf(form, 0, int(bytes.size())), reinterpret_cast<uchar *>(padded.data()),
                     1, block);
        const double value = block.cellBytes == 4 ? loadNative<quint32>(block.cell(0))
                                                  : loadNative<double>(block.cell(0));
        EXPECT_EQ(value, expected) << int(form);
    }
}

TEST(LogicalText, DatesTimesAndDecimalsArePrinted)
{
    Column date = columnOf(Form::TextDate, kInt32, 4);
    const std::pair<qint32, const char *> dates[] = {
        {0, "1970-01-01"},       {-1, "1969-12-31"},      {11016, "2000-02-29"},
        {19782, "2024-02-29"},   {-719162, "0001-01-01"}, {-719529, "-0001-12-31"},
        {2932897, "10000-01-01"}};
    for (const auto &[day, text] : dates) {
        EXPECT_EQ(logical(date, stored(day)), text);
    }
    Column stamp = columnOf(Form::TextTimestamp, kInt64, 8);
    stamp.detail = {0, 1'000'000, 6, true};
    EXPECT_EQ(logical(stamp, stored<qint64>(-1)), "1969-12-31T23:59:59.999999Z");
    EXPECT_EQ(logical(stamp, stored<qint64>(1574799102501000)), "2019-11-26T20:11:42.501Z");
    Column time = columnOf(Form::TextTime, kInt32, 4);
    time.detail = {0, 1000, 3, false};
    EXPECT_EQ(logical(time, stored<qint32>(86399999)), "23:59:59.999");
    // Damaged, but recognizable.
    EXPECT_EQ(logical(time, stored<qint32>(-1)), "-00:00:00.001");
    EXPECT_EQ(logical(time, stored<qint32>(-5400000)), "-01:30:00");
    EXPECT_EQ(logical(time, stored<qint32>(90000000)), "25:00:00");
    time.physical = kInt64, time.valueBytes = 8;
    EXPECT_EQ(logical(time, stored(std::numeric_limits<qint64>::min())),
              "-2562047788015:12:55.808");
    Column int96 = columnOf(Form::TextInt96, kInt96, 12);
    int96.detail = {0, 1'000'000'000, 9, false};
    EXPECT_EQ(logical(int96, stored<qint64>(1) + stored<qint32>(2440588)),
              "1970-01-01T00:00:00.000000001");

    Column decimal = columnOf(Form::TextDecimal, kInt64, 8);
    decimal.detail.scale = 2;
    const std::pair<qint64, const char *> decimals[] = {
        {0, "0.00"},
        {5, "0.05"},
        {-5, "-0.05"},
        {12345, "123.45"},
        {std::numeric_limits<qint64>::min(), "-92233720368547758.08"}};
    for (const auto &[value, text] : decimals) {
        EXPECT_EQ(logical(decimal, stored(value)), text);
    }
    decimal.physical = kFixedLenByteArray;
    EXPECT_EQ(logical(decimal, QByteArray::fromHex("ffffffffffffffffffffffffffffff85")), "-1.23");
    EXPECT_EQ(logical(decimal, QByteArray::fromHex("00ffffffffffffffffffffffffffffffff")),
              "3402823669209384634633746074317682114.55");
    EXPECT_EQ(logical(columnOf(Form::TextUuid, kFixedLenByteArray, 16),
                      QByteArray::fromHex("00112233445566778899aabbccddeeff")),
              "00112233-4455-6677-8899-aabbccddeeff");
    EXPECT_EQ(logical(columnOf(Form::TextUint64, kInt64, 8), stored(~quint64(0))),
              "18446744073709551615");
    EXPECT_EQ(
        logical(columnOf(Form::TextInt64, kInt64, 8), stored(std::numeric_limits<qint64>::min())),
        "-9223372036854775808");
}

TEST(Encodings, SizesBeyondTheBytesAreRejected)
{
    std::vector<uchar> out;
    const Column numbers = columnOf(Form::KeyLow32, kInt64, 8);
    const Column texts = columnOf(Form::Text, kByteArray, 0);
    const auto isRead = [&](qint32 encoding, const Column &column, const std::vector<char> &bytes,
                            qint32 maxValues) {
        const std::vector<uchar> all = withTail(bytes);
        return bool(toPlain(encoding, column, {all.data(), bytes.size()}, maxValues, out));
    };
    const std::vector<char> one{char(0x80), 1, 4, 1, 6}; // block 128, 4 miniblocks, 1 value: 3
    EXPECT_TRUE(isRead(kDeltaBinaryPacked, numbers, one, 1));
    EXPECT_EQ(loadLE<qint64>(out.data()), 3);
    EXPECT_FALSE(isRead(kDeltaBinaryPacked, numbers, one, 0));
    EXPECT_FALSE(isRead(kDeltaBinaryPacked, numbers, {char(0x80), 1, 0, 1, 6}, 9)); // no miniblocks
    EXPECT_FALSE(isRead(kDeltaBinaryPacked, numbers, {char(0x80), 1, 4, 2, 6}, 9)); // no block
    EXPECT_FALSE(isRead(kDeltaBinaryPacked, numbers, {char(0x80), 1, 4, 2, 6, 0, 65, 0, 0, 0}, 9));
    EXPECT_FALSE(isRead(kDeltaLengthByteArray, texts, one, 1)); // three bytes missing
    const std::vector<char> minusOne{char(0x80), 1, 4, 1, 1};
    EXPECT_FALSE(isRead(kDeltaLengthByteArray, texts, minusOne, 1));
    std::vector<char> prefixOfNothing = one; // shares three bytes with the value before the first
    prefixOfNothing.insert(prefixOfNothing.end(), one.begin(), one.end());
    prefixOfNothing.insert(prefixOfNothing.end(), {'a', 'b', 'c'});
    EXPECT_FALSE(isRead(kDeltaByteArray, texts, prefixOfNothing, 1));
    EXPECT_FALSE(isRead(kByteStreamSplit, numbers, std::vector<char>(24, 'x'), 2));
}

TEST(Codec, EveryCodecReturnsItsInput)
{
    std::vector<char> page(100000);
    for (size_t i = 0; i < page.size(); ++i) {
        page[i] = static_cast<char>(i * i >> 9);
    }
    for (const qint32 codec : {kSnappy, kGzip, kBrotli, kZstd, kLz4Raw}) {
        const auto compressor = makeCompressor(codec);
        const auto decompressor = makeDecompressor(codec);
        std::vector<char> packed(compressor->maxBytes(page.size()));
        packed.resize(*compressor->compress(page, packed.data()));
        const std::span<const uchar> in(reinterpret_cast<const uchar *>(packed.data()),
                                        packed.size());
        std::vector<uchar> back(page.size());
        for (int round = 0; round < 2; ++round) {
            ASSERT_TRUE(decompressor->uncompress(in, back)) << codec;
            EXPECT_TRUE(std::equal(page.begin(), page.end(), back.begin(),
                                   [](char a, uchar b) { return uchar(a) == b; }));
        }
        for (const size_t wrong : {page.size() - 1, page.size() + 1, size_t(0)}) {
            back.resize(wrong);
            EXPECT_FALSE(decompressor->uncompress(in, back)) << codec << " into " << wrong;
        }
        back.resize(page.size());
        EXPECT_FALSE(decompressor->uncompress(in.first(in.size() / 2), back)) << codec;
    }
    EXPECT_FALSE(makeDecompressor(kLzo));
    EXPECT_FALSE(makeDecompressor(kUncompressed));
}
