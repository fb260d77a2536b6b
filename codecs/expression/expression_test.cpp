#include "codecs/expression/condition.h"

#include <gtest/gtest.h>

#include <limits>

using namespace corvanta;
using namespace corvanta::expression;
using namespace Qt::StringLiterals;

namespace {

/// The bytes of a text cell, aligned as in a RowBuffer.
struct TextCell
{
    explicit TextCell(const QString &text)
    {
        const quint32 code = text.isNull() ? 0 : cell::codeOfText(text.size());
        const int lengthBytes = cell::lengthBytes(code);
        start = storage + (lengthBytes % 2);
        std::memcpy(cell::putLength(start, code, lengthBytes), text.utf16(),
                    size_t(text.size()) * 2);
    }
    alignas(2) uchar storage[64];
    uchar *start;
};

/// A row with the columns k (K), f (F), u, v and "a b" (U).
struct SampleRow
{
    SampleRow(quint32 key, double number, const QString &u, const QString &v)
        : k(key)
        , f(number)
        , texts{TextCell(u), TextCell(v), TextCell(u"blank"_s)}
        , cells{reinterpret_cast<const uchar *>(&k), reinterpret_cast<const uchar *>(&f),
                texts[0].start, texts[1].start, texts[2].start}
    {
    }
    RowView view() const
    {
        static const QString names[] = {u"k"_s, u"f"_s, u"u"_s, u"v"_s, u"a b"_s};
        static const MetaInfo types[] = {MetaInfo(cell::Type::Key), MetaInfo(cell::Type::Double),
                                         MetaInfo(), MetaInfo(), MetaInfo()};
        return {cells, names, types, 5};
    }
    quint32 k;
    double f;
    TextCell texts[3];
    const uchar *cells[5];
};

/// "1", "0", or what is wrong and where. The texts of column v are numbers.
QString resultOf(const QString &text, const SampleRow &row)
{
    const auto parsed = parse(text);
    if (!parsed) {
        return u"%1: %2"_s.arg(QString::number(parsed.fault().offset), parsed.fault().detail);
    }
    auto bound = Condition::bind(*parsed, row.view(),
                                 {TextOrder::CodePoints, TextOrder::CodePoints,
                                  TextOrder::CodePoints, TextOrder::Numbers, TextOrder::Words});
    if (!bound) {
        return u"%1: %2"_s.arg(QString::number(bound.fault().offset), bound.fault().detail);
    }
    const auto isTrue = bound->isTrue(row.view());
    return isTrue ? QString::number(int(*isTrue)) : isTrue.fault().detail;
}

TEST(Expression, ComparesNumbersTextsAndColumns)
{
    const SampleRow row(7, 2.5, u"abc"_s, u"07.0"_s);
    for (const auto &[text, expected] : std::initializer_list<std::pair<QString, int>>{
             {u"k = 7"_s, 1},
             {u"k == 7 and k <> 8"_s, 1},
             {u"k != 7"_s, 0},
             {u"7 <= k"_s, 1},
             {u"f > -1e3"_s, 1},
             {u"f<2.5"_s, 0},
             {u"f>=.25e1"_s, 1},
             {u"k > f"_s, 1},
             {u"v = 7"_s, 1},
             {u"v = k"_s, 1},
             {u"u = 'abc'"_s, 1},
             {u"u < 'abd' AND NOT u < 'abc'"_s, 1},
             {u"u < 'ab'"_s, 0},
             {u"\"a b\" = 'blank'"_s, 1},
             {u"1 < 2"_s, 1},
             {u"not (k = 7 or f = 2)"_s, 0},
             {u"k = 1 or k = 2 or k = 7 and f = 2.5"_s, 1},
             {u"k = 7 or k = 8 and f = 0"_s, 1},
         }) {
        EXPECT_EQ(resultOf(text, row), QString::number(expected)) << qPrintable(text);
    }
}

TEST(Expression, MissingCellsAreUnknown)
{
    const SampleRow row(cell::kMissingKey, cell::missingDouble(), QString(), QString());
    for (const QString &text : {u"k = 7"_s, u"not k = 7"_s, u"f < 1"_s, u"u = 'a'"_s, u"u != 'a'"_s,
                                u"u = 7"_s, u"k = k"_s, u"k = 1 and 1 = 1"_s, u"v = 1 or 1 = 2"_s,
                                u"k is not null"_s, u"not u is null"_s}) {
        EXPECT_EQ(resultOf(text, row), u"0"_s) << qPrintable(text);
    }
    for (const QString &text : {u"k is null"_s, u"f IS NULL and u is null"_s, u"k = 1 or 1 = 1"_s,
                                u"not (k = 1 and 1 = 2)"_s}) {
        EXPECT_EQ(resultOf(text, row), u"1"_s) << qPrintable(text);
    }
    // An empty text is not missing, and a NaN is not equal to anything.
    const SampleRow empty(1, std::numeric_limits<double>::quiet_NaN(), u""_s, u"1"_s);
    EXPECT_EQ(resultOf(u"u is not null and u = ''"_s, empty), u"1"_s);
    EXPECT_EQ(resultOf(u"f = f or f < 1 or f >= 1"_s, empty), u"0"_s);
    EXPECT_EQ(resultOf(u"f != 1"_s, empty), u"1"_s);
}

TEST(Expression, TextsAreOrderedByCodePoint)
{
    // U+FF5E is below U+1F600, whose UTF-16 units are below it.
    const SampleRow row(1, 1, u"\uFF5E"_s, u"1"_s);
    EXPECT_EQ(resultOf(u"u < '\U0001F600'"_s, row), u"1"_s);
    EXPECT_EQ(resultOf(u"u > 'z' and u > '\u00FF'"_s, row), u"1"_s);
}

TEST(Expression, WordsAreComparedByTimeAndWithoutLetterCase)
{
    const auto isTrue = [](const QString &text, const QString &value) {
        TextCell cell(value);
        const uchar *const cells[] = {cell.start};
        const QString names[] = {u"w"_s};
        const MetaInfo types[] = {MetaInfo()};
        const RowView row{cells, names, types, 1};
        auto bound = Condition::bind(*parse(text), row, {TextOrder::Words});
        return bound && *bound->isTrue(row);
    };
    EXPECT_TRUE(resultOf(u"k = true"_s, SampleRow(1, 1, u""_s, u"1"_s))
                    .startsWith(u"4: the text 'true' cannot"));
    EXPECT_TRUE(isTrue(u"w = true and w = 'true' and w > false and not w = 'FALSE'"_s, u"TRUE"_s));
    EXPECT_TRUE(isTrue(u"w >= '2026-01-31T04:30' and w < '2026-01-31 04:31' and w > '2026-01-31'"_s,
                       u"2026-01-31 04:30:05"_s));
    EXPECT_TRUE(isTrue(u"w < '2026-01-31T04:30:05.25Z' and w >= '2026-01-31 04:30:05'"_s,
                       u"2026-01-31T04:30:05Z"_s));
    EXPECT_TRUE(
        isTrue(u"w = '2026-01-31' and w = '2026-01-31T00:00:00.000Z' and w < '2026-01-31T1'"_s,
               u"2026-01-31 00:00"_s));
    EXPECT_TRUE(isTrue(u"w = '04:30:00' and w > '04:29:59.9'"_s, u"04:30"_s));
}

TEST(Expression, QuotesAreDoubled)
{
    const SampleRow row(1, 1, u"it's"_s, u"1"_s);
    EXPECT_EQ(resultOf(u"u = 'it''s'"_s, row), u"1"_s);
    EXPECT_EQ(resultOf(u"u = \"a\"\"b\""_s, row), u"4: a\"b"_s);
}

TEST(Expression, FaultsNameTheirPlace)
{
    const SampleRow row(1, 1, u"abc"_s, u"x"_s);
    for (const auto &[text, expected] : std::initializer_list<std::pair<QString, QString>>{
             {u""_s, u"0: expected a column, a number or a text in single quotes, found the end"_s},
             {u"k"_s, u"1: expected = != < <= > >= or 'is null', found the end"_s},
             {u"k = "_s,
              u"4: expected a column, a number or a text in single quotes, found the end"_s},
             {u"k = 1 f"_s, u"6: expected 'and', 'or' or the end, found 'f'"_s},
             {u"(k = 1"_s, u"6: expected ')', found the end"_s},
             {u"k = 'a"_s, u"4: the quote that begins here is never closed"_s},
             {u"k = 12abc"_s, u"4: '12abc' is not a number"_s},
             {u"k = null"_s, u"4: compare with 'is null' or 'is not null'"_s},
             {u"k is 7"_s, u"5: expected 'null' or 'not null', found '7'"_s},
             {u"k is not"_s, u"8: expected 'null', found the end"_s},
             {u"k = 1; k"_s, u"5: unexpected character ';'"_s},
             {u"none = 1"_s, u"0: none"_s},
             {u"k = 'a'"_s, u"4: the text 'a' cannot be compared with the numbers of column 'k'; a "
                            "number is written without quotes"_s},
             {u"1 = 'a'"_s, u"4: the text 'a' cannot be compared with a number; a number is "
                            "written without quotes"_s},
             {u"u > 10"_s,
              u"column 'u' holds texts (here 'abc'), which cannot be compared with the "
              "number 10; state its kind ('u=decimal' in 'kinds'; convert: --types), make the text "
              "a missing value (nullValues of readCSV), or write a text in single quotes"_s},
             {u"k < u"_s, u"column 'u' holds texts (here 'abc'), which cannot be compared with the "
                          "numbers of column 'k'; state its kind ('u=decimal' in 'kinds'; convert: "
                          "--types), make the text a missing value (nullValues of readCSV), or "
                          "write a text in single quotes"_s},
             {u"v > 1"_s, u"'x' in column 'v' is not a number"_s},
         }) {
        EXPECT_EQ(resultOf(text, row), expected) << qPrintable(text);
    }
}

TEST(Expression, DepthIsBoundedButNotLength)
{
    const SampleRow row(1, 1, u"a"_s, u"1"_s);
    const auto nested = [](int depth) {
        return u"("_s.repeated(depth) + u"k = 1"_s + u")"_s.repeated(depth);
    };
    EXPECT_EQ(resultOf(nested(kMaxDepth), row), u"1"_s);
    EXPECT_EQ(resultOf(nested(kMaxDepth + 1), row), u"101: more than 100 parentheses are open"_s);
    EXPECT_EQ(resultOf(u"not "_s.repeated(100000) + u"k = 1"_s, row),
              u"404: more than 100 parentheses are open"_s);
    EXPECT_EQ(resultOf(u"k = 2 or "_s.repeated(100000) + u"k = 1"_s, row), u"1"_s);
}

} // namespace
