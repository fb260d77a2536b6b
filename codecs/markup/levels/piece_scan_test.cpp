// Scans of random texts in pieces on several threads find what one scan of the whole text finds:
// kinds, exceptions and their places, wherever the text is cut.
#include "tests/support/failing_source.h"
#include "tests/support/piece_kinds.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

using namespace corvanta;
using namespace corvanta::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int kTexts = 400;
constexpr size_t kColumns = 3;
constexpr int kWorkers = 2;

/// Texts that are regular for some rows, so that exceptions are in later pieces.
class RandomText
{
public:
    explicit RandomText(unsigned seed)
        : m_random(seed)
    {
    }
    size_t below(size_t n) { return m_random() % n; }
    template <size_t N> std::string oneOf(const std::array<const char *, N> &all)
    {
        return all[below(N)];
    }

private:
    std::mt19937 m_random;
};

/// Rows of equal kinds, with something else now and then.
std::string csvText(RandomText &random)
{
    static constexpr std::array kUsual{"1", "27", "2.5", "2026-01-31", "true", "", "\"7\""};
    static constexpr std::array kRare{"007",
                                      "12345678901234567890",
                                      "x",
                                      "5\" x",
                                      "\"a\n1,2\"",
                                      "\"a\"\"\n,\"",
                                      "\"open",
                                      "2026-01-31T04:30Z",
                                      "a\rb",
                                      "\n1,2,3",
                                      "\xEF\xBB\xBF",
                                      "\"a\"b",
                                      "1,2",
                                      "1\"\"",
                                      "\n#c\"\n1,2",
                                      "\r\n\r\n",
                                      "NA",
                                      "2026-01-31T04:30"};
    const std::array<std::string, kColumns> usual{random.oneOf(kUsual), random.oneOf(kUsual),
                                                  random.oneOf(kUsual)};
    const size_t rareness = 5 + random.below(200);
    const size_t rows = random.below(120);
    const std::string lineEnd = random.below(3) == 0 ? "\r\n" : "\n";
    std::string text = random.below(4) == 0 ? "\xEF\xBB\xBF" : "";
    text += "a,b,c" + lineEnd;
    for (size_t row = 0; row < rows; ++row) {
        for (size_t i = 0; i < kColumns; ++i) {
            const bool isRare = random.below(rareness) == 0;
            text += (i > 0 ? "," : "") + (isRare ? random.oneOf(kRare) : usual[i]);
        }
        text += row + 1 < rows || random.below(2) == 0 ? lineEnd : "";
    }
    return text;
}

std::string jsonText(RandomText &random)
{
    static constexpr std::array kUsual{"1", "2.5", "\"2026-01-31\"", "true", "null", "\"x\""};
    static constexpr std::array kRare{"12345678901234567890",
                                      "\"\\u0041\"",
                                      "\"a\n{\"",
                                      "{\"a\":1,\n\"b\":2}",
                                      "[1,2]",
                                      "\"2026-01-31T04:30Z\"",
                                      "nul",
                                      "\"open",
                                      "}",
                                      "NaN",
                                      "\"\\n{\"",
                                      "1e3"};
    static constexpr std::array kRareLines{"", "word", "[1]", "7", "{}", "{\"z\":1}", "{", "\r"};
    constexpr std::string_view kMembers = "abcdef";
    std::array<std::string, kMembers.size()> usual;
    std::ranges::generate(usual, [&] { return random.oneOf(kUsual); });
    const size_t rareness = 5 + random.below(300);
    const size_t rows = random.below(80);
    const std::string lineEnd = random.below(3) == 0 ? "\r\n" : "\n";
    std::string text = random.below(4) == 0 ? "\xEF\xBB\xBF" : "";
    for (size_t row = 0; row < rows; ++row) {
        if (random.below(rareness) == 0) {
            text += random.oneOf(kRareLines) + lineEnd;
        }
        // The first record lacks a member that others have, as in real files.
        std::string members;
        for (size_t i = 0; i < kMembers.size(); ++i) {
            const bool isRare = random.below(rareness) == 0;
            if (i != 1 || row % 3 != 0) {
                members += std::string(members.empty() ? "" : ",") + '"' + kMembers[i] +
                           "\":" + (isRare ? random.oneOf(kRare) : usual[i]);
            }
        }
        text += '{' + members;
        text += "}" + lineEnd;
    }
    return text;
}

/// Compare `kinds(source, pieceBytes, workers)` for pieces of all sizes with that for one piece.
template <class Kinds> void expectSameKinds(const std::string &text, const Kinds &kinds)
{
    const QByteArrayView bytes(text.data(), static_cast<qsizetype>(text.size()));
    MemorySource whole(bytes);
    const std::string expected = kinds(whole, qsizetype(0), 0);
    for (const qsizetype pieceBytes : {17, 50, 200, 1000}) {
        for (const int workers : {0, kWorkers}) {
            MemorySource source(bytes, 37);
            ASSERT_EQ(kinds(source, pieceBytes, workers), expected)
                << "pieces of " << pieceBytes << ", workers " << workers << ", text:\n"
                << text;
        }
    }
}

} // namespace

TEST(PieceScan, FindsTheSameKindsInTextsWithSeparators)
{
    for (unsigned seed = 0; seed < kTexts; ++seed) {
        RandomText random(seed);
        const std::string text = csvText(random);
        const bool fillsRagged = random.below(2) == 0;
        expectSameKinds(text, [&](ByteSource &source, qsizetype pieceBytes, int workers) {
            return csvKinds(source, fillsRagged, pieceBytes, workers);
        });
    }
}

TEST(PieceScan, FindsTheSameKindsInJsonLines)
{
    const std::vector<markup::Level> flat{{QString(),
                                           QString(),
                                           {{u"a"_s, u"a"_s},
                                            {u"C"_s, u"c"_s},
                                            {u"d"_s, u"d"_s},
                                            {u"e"_s, u"e"_s},
                                            {u"f"_s, u"f"_s},
                                            {u"b"_s, u"b"_s}}}};
    const std::vector<markup::Level> nested{{QString(), QString(), {{u"a"_s, u"a"_s}}},
                                            {u"b"_s, QString(), {{QString(), u"b"_s}}}};
    for (unsigned seed = 0; seed < kTexts; ++seed) {
        RandomText random(seed);
        const std::string text = jsonText(random);
        expectSameKinds(text, [&](ByteSource &source, qsizetype pieceBytes, int workers) {
            return jsonKinds(source, seed % 4 == 0 ? nested : flat, pieceBytes, workers);
        });
    }
}

/// The rows before a failure count, and the incomplete one does not.
TEST(PieceScan, EndsWhereTheSourceFails)
{
    const std::string text = "a,b,c\n1,2,3\n4,5,6\n7,8,x";
    for (size_t size = 6; size < text.size(); ++size) {
        const QByteArrayView bytes(text.data(), static_cast<qsizetype>(size));
        test::FailingSource whole(bytes);
        const std::string expected = csvKinds(whole, false, 0, 0);
        test::FailingSource source(bytes);
        EXPECT_EQ(csvKinds(source, false, 8, kWorkers), expected) << size;
    }
}
