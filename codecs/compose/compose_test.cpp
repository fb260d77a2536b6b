// Escapes at every position of a vector, and the draining of the block.
#include "codecs/compose/escape.h"
#include "codecs/compose/text_block.h"

#include <gtest/gtest.h>

using namespace corvanta::compose;

namespace {

template <class Escapes> std::u16string escapedByVectors(std::u16string_view text)
{
    // Exactly the room that is needed: the sanitizer sees one unit more.
    const auto n = static_cast<qsizetype>(text.size());
    std::u16string out(static_cast<size_t>(escapedSize<Escapes>(text.data(), n)), u'\0');
    const char16_t *const end = putEscaped<Escapes>(text.data(), n, out.data());
    EXPECT_EQ(end - out.data(), static_cast<qsizetype>(out.size()));
    return out;
}

template <class Escapes> std::u16string escapedByUnits(std::u16string_view text)
{
    std::u16string out;
    for (const char16_t unit : text) {
        const std::u16string_view replacement = Escapes::replacement(unit);
        out += replacement.empty() ? std::u16string_view(&unit, 1) : replacement;
    }
    return out;
}

struct Bytes
{
    std::string all;
    std::vector<qint64> sizes;
    bool isFull = false;

    TextBlock::Drain drain()
    {
        return [this](const void *bytes, qint64 n) {
            all.append(static_cast<const char *>(bytes), static_cast<size_t>(n));
            sizes.push_back(n);
            return !isFull;
        };
    }
};

} // namespace

template <class Escapes> class EscapesTest : public testing::Test
{
};
using AllEscapes = testing::Types<JsonEscapes, JsonEscapesWithLineFeed, JsonStrictEscapes,
                                  XmlTextEscapes, XmlAttributeEscapes, XmlStrictEscapes>;
TYPED_TEST_SUITE(EscapesTest, AllEscapes);

/// Sizes around the vector width, a reserved character at each one or two positions.
TYPED_TEST(EscapesTest, EveryPositionOfAVectorIsChecked)
{
    for (size_t n = 0; n <= 35; ++n) {
        std::u16string plain;
        for (size_t i = 0; i < n; ++i) {
            plain += static_cast<char16_t>(
                i % 3 == 0 ? 0x2122 : u'a' + i % 26); // 0x2122 holds 0x22, a quote
        }
        ASSERT_EQ(escapedByVectors<TypeParam>(plain), plain);
        for (const char16_t special : {u'"', u'\\', u'\n', u'<', u'>', u'&', u'\'', u'\x01',
                                       u'\x1F', u' ', u'\xD800', u'\xFFFE', u'\xFFFF'}) {
            for (size_t first = 0; first < n; ++first) {
                for (size_t second = first; second < n; ++second) {
                    std::u16string text = plain;
                    text[first] = text[second] = special;
                    ASSERT_EQ(escapedByVectors<TypeParam>(text), escapedByUnits<TypeParam>(text))
                        << n << ' ' << first;
                }
            }
        }
    }
}

TEST(Escapes, AreThoseOfTheSyntax)
{
    const std::u16string text = u"a\"b\\c\nd<e>f&g'h\x01";
    EXPECT_EQ(escapedByVectors<JsonEscapes>(text), u"a\\\"b\\\\c\nd<e>f&g'h\x01");
    EXPECT_EQ(escapedByVectors<JsonEscapesWithLineFeed>(text), u"a\\\"b\\\\c\\nd<e>f&g'h\x01");
    EXPECT_EQ(escapedByVectors<XmlTextEscapes>(text), u"a\"b\\c\nd&lt;e>f&amp;g'h\x01");
    EXPECT_EQ(escapedByVectors<XmlAttributeEscapes>(text), u"a\"b\\c\nd<e>f&amp;g&quot;h\x01");
    EXPECT_EQ(escapedByVectors<JsonStrictEscapes>(text + u"\r\t\x7F"),
              u"a\\\"b\\\\c\\nd<e>f&g'h\\u0001\\r\\t\x7F");
    EXPECT_EQ(escapedByVectors<XmlStrictEscapes>(text + u"\r\t\xFFFF"),
              u"a&quot;b\\c&#10;d&lt;e&gt;f&amp;g'h\xFFFF&#13;&#9;\xFFFF");
}

TEST(TextBlock, DrainsPieceByPieceWithoutLosingAnything)
{
    for (const Encoding encoding : {Encoding::Utf8, Encoding::Utf16Le}) {
        Bytes bytes;
        TextBlock block(encoding, bytes.drain());
        std::u16string expected;
        for (int i = 0; i < 40'000; ++i) {
            // 11 units with a pair at the end: a piece often ends inside a pair, which must stay
            // whole.
            const std::u16string piece =
                u"row \u20AC " + std::u16string(static_cast<size_t>(i % 7), u'x') + u"\U0001F600";
            block.append(std::u16string_view(piece).substr(0, piece.size() - 1));
            block.append(std::u16string_view(piece).substr(piece.size() - 1));
            expected += piece;
        }
        block.drainAll();
        EXPECT_EQ(bytes.all, encode(expected, encoding));
        EXPECT_GT(bytes.sizes.size(), 2U);
        EXPECT_EQ(block.failure(), TextBlock::Failure::None);
    }
}

TEST(TextBlock, TakesPiecesUpToItsSizeAndRefusesLongerOnes)
{
    for (const qsizetype units : {TextBlock::kMaxUnits, TextBlock::kMaxUnits + 1}) {
        Bytes bytes;
        TextBlock block(Encoding::Utf8, bytes.drain());
        block.append(u"before");
        // Three bytes for each unit: more than the lower half takes in one call.
        const std::u16string large(static_cast<size_t>(units), u'\u20AC');
        block.append(large);
        block.append(u"after");
        block.drainAll();
        const bool fits = units == TextBlock::kMaxUnits;
        EXPECT_EQ(block.failure(), fits ? TextBlock::Failure::None : TextBlock::Failure::TooLarge);
        EXPECT_EQ(bytes.all,
                  fits ? encode(u"before" + large + u"after", Encoding::Utf8) : "before");
    }
}

TEST(TextBlock, TakesNothingAfterAFailedDrain)
{
    Bytes bytes;
    bytes.isFull = true;
    TextBlock block(Encoding::Utf8, bytes.drain());
    block.append(u"text");
    block.drainAll();
    block.append(u"more");
    block.drainAll();
    EXPECT_EQ(block.failure(), TextBlock::Failure::Drain);
    EXPECT_EQ(bytes.sizes.size(), 1U);
}

TEST(TextBlock, LoneSurrogatesAreReplacedInUtf8Only)
{
    const std::u16string text = u"a\xD83D"
                                u"b\xDE00";
    EXPECT_EQ(encode(text, Encoding::Utf8), "a\xEF\xBF\xBD"
                                            "b\xEF\xBF\xBD");
    EXPECT_EQ(encode(text, Encoding::Utf16Le), std::string("a\0\x3D\xD8"
                                                           "b\0\x00\xDE",
                                                           8));
    for (const Encoding encoding : {Encoding::Utf8, Encoding::Utf16Le}) {
        Bytes bytes;
        TextBlock block(encoding, bytes.drain());
        block.append(u"x\xD83D"); // nothing follows: it stays alone
        block.drainAll();
        block.append(u"\xDE00y");
        block.drainAll();
        EXPECT_EQ(bytes.all, encode(u"x\xD83D", encoding) + encode(u"\xDE00y", encoding));
    }
}
