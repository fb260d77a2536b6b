// What decides the type of a column and the kind of a file. A wrong answer changes values without a
// message.
#include "base/text/binary_kind.h"
#include "base/text/json_number.h"
#include "base/text/number_value.h"
#include "base/text/unmarked_utf16.h"

#include <QString>

#include <gtest/gtest.h>

#include <limits>
#include <string>

using namespace corvanta;
using namespace std::string_view_literals;

namespace {

/// The units of a text as bytes, least significant byte first unless `isBigEndian`.
std::string utf16Bytes(std::u16string_view text, bool isBigEndian)
{
    std::string bytes;
    for (const char16_t unit : text) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += isBigEndian ? high : low;
        bytes += isBigEndian ? low : high;
    }
    return bytes;
}

} // namespace

TEST(BinaryKind, IsFoundByWholeSignaturesOnly)
{
    const std::pair<std::string_view, const char *> files[] = {
        {"PK\x03\x04more"sv, "a zip archive or a workbook"},
        {"PK\x05\x06"sv, "a zip archive or a workbook"},
        {"\xD0\xCF\x11\xE0\xA1\xB1"sv, "a legacy Office file"},
        {"PAR1\x15\x04"sv, "a Parquet file"},
        {"\x1F\x8B\x08\0"sv, "a gzip file"},
        {"Rar!\x1A\x07\x01\0"sv, "a RAR archive"},
        {"$FL2@(#)"sv, "an SPSS file"},
        {"%PDF-1.7"sv, "a PDF document"},
        {"\x89PNG\r\n\x1A\n"sv, "an image"},
        {"\xFF\xD8\xFF\xE0"sv, "an image"},
        {"\x7F\x45LF\x02"sv, "a program"},
    };
    for (const auto &[bytes, name] : files) {
        EXPECT_STREQ(describe(binaryKind(bytes)), name);
        EXPECT_EQ(binaryKind(bytes.substr(0, 2)), BinaryKind::None) << name;
        EXPECT_EQ(binaryKind(std::string(" ").append(bytes)), BinaryKind::None) << name;
    }
    for (const std::string_view text : {""sv, "PK;city"sv, "PAR1;2"sv, "Rar!;a"sv, "%PDF"sv}) {
        EXPECT_EQ(binaryKind(text), BinaryKind::None) << text;
    }
}

TEST(JsonNumber, IsWhatTheFormatDefines)
{
    for (const std::string_view good : {"0", "-0", "7", "10", "-12.50", "0.1", "1e5", "1E+05",
                                        "0e0", "-1.5e-300", "123456789012345678901234567890"}) {
        EXPECT_TRUE(isJsonNumber(good)) << good;
        EXPECT_TRUE(isJsonNumber(std::u16string_view(std::u16string(good.begin(), good.end()))));
    }
    for (const std::string_view bad :
         {"",   "-",    "+1", "01", "-01", "00",  "1.",  ".5",  "-.5",   "1e", "1e+",
          "e5", "1.e5", " 1", "1 ", "1,5", "0x1", "nan", "inf", "1e5.5", "1-", "--1"}) {
        EXPECT_FALSE(isJsonNumber(bad)) << bad;
        EXPECT_FALSE(isJsonNumber(std::u16string_view(std::u16string(bad.begin(), bad.end()))));
    }
}

TEST(NumberValue, KeysEndBeforeTheMissingOnes)
{
    quint32 key = 5;
    EXPECT_TRUE(parseKey("4294967293", &key));
    EXPECT_EQ(key, 4294967293U);
    for (const std::string_view bad : {"4294967294", "4294967295", "-1", "1.0", "", " 1", "1e3"}) {
        EXPECT_FALSE(parseKey(bad, &key)) << bad;
        EXPECT_EQ(key, 4294967293U) << bad;
    }
}

TEST(NumberValue, TheDecimalPointIsTheGivenOne)
{
    const struct
    {
        std::string_view text;
        char point;
        bool isNumber;
        double value;
    } cases[] = {
        {"1,5", ',', true, 1.5},  {"-1,5e2", ',', true, -150}, {"7", ',', true, 7},
        {"1.5", ',', false, 0},   {"1.000,5", ',', false, 0},  {"1,5,0", ',', false, 0},
        {"1,5", '.', false, 0},   {"1.5", '.', true, 1.5},     {"", ',', false, 0},
        {"1'5", '\'', true, 1.5}, {",5", ',', true, 0.5},
    };
    for (const auto &each : cases) {
        double value = 0;
        ASSERT_EQ(parseLocalDouble(each.text, each.point, &value), each.isNumber) << each.text;
        EXPECT_TRUE(!each.isNumber || value == each.value) << each.text;
        const std::u16string wide(each.text.begin(), each.text.end());
        EXPECT_EQ(parseLocalDouble(std::u16string_view(wide), each.point, &value), each.isNumber);
    }
    double value = 0;
    EXPECT_TRUE(parseLocalDouble(std::string_view(std::string(62, '0') + ",5"), ',', &value));
    EXPECT_EQ(value, 0.5);
    EXPECT_FALSE(parseLocalDouble(std::string_view(std::string(63, '0') + ",5"), ',', &value));
}

TEST(NumberValue, DigitsThatAreTooManyForADoubleAreNotANumber)
{
    double value = 0;
    for (const std::string_view good : {"1e308", "-1e308", "inf", "-inf", "1e-999"}) {
        EXPECT_TRUE(parseFinite(good, &value)) << good;
    }
    for (const std::string_view bad : {"1e309", "-1e309", "", "x"}) {
        EXPECT_FALSE(parseFinite(bad, &value)) << bad;
    }
}

// Integers that are equal as doubles differ in their remainders.
TEST(NumberValue, TheRestOfALargeIntegerIsExact)
{
    const struct
    {
        const char16_t *text;
        qint64 rest;
    } cases[] = {
        {u"9007199254740991", 0},
        {u"9007199254740992", 0},
        {u"9007199254740993", 1},
        {u"-9007199254740993", -1},
        {u"9007199254740995", -1},
        {u"18446744073709551615", -1},
        {u"18446744073709550593", -1023},
        {u"-18446744073709551614", 2},
        {u"18446744073709551616", 0},
        {u"9007199254740993.0", 1},
        {u"+9007199254740993", 1},
        {u"9007199254740993.5", 0},
        {u"1e300", 0},
        {u"12", 0},
    };
    for (const auto &each : cases) {
        double value = 0;
        ASSERT_TRUE(parseDouble(std::u16string_view(each.text), &value));
        EXPECT_EQ(integerRest(each.text, value), each.rest)
            << QString::fromUtf16(each.text).toStdString();
    }
}

TEST(UnmarkedUtf16, IsToldFromTextsOfBytes)
{
    const std::u16string_view texts[] = {
        u"id;name\n1;Zo\u00eb\n",
        // Only separators, digits and line ends have a zero byte.
        u"\u0438\u043C\u044F;\u0433\u043E\u0440\u043E\u0434\n\u041E\u043B\u044C\u0433\u0430;1\n",
        u"x\n\U0001F601\n",
    };
    for (const std::u16string_view text : texts) {
        EXPECT_STREQ(unmarkedUtf16(utf16Bytes(text, false)), "UTF-16LE");
        EXPECT_STREQ(unmarkedUtf16(utf16Bytes(text, true)), "UTF-16BE");
    }
    // The beginning of a file may end in the middle of a character.
    EXPECT_STREQ(unmarkedUtf16(utf16Bytes(u"abcdefgh\n\xD83D", false)), "UTF-16LE");
    const std::string others[] = {
        "",
        "id;name\n1;a\n",
        std::string("id;na\0me\n1;a\n", 13),
        std::string(64, '\0'),
        utf16Bytes(u"abcdefghijkl\xDC00z\n", false), // a lone surrogate
        "\xD0\x98\xD0\xBC\xD1\x8F;1\n",              // the same letters in UTF-8
        std::string("\xE9\xE8\xE9\0\xE9\n", 6),      // a zero, but not at the line feed
    };
    for (const std::string &bytes : others) {
        EXPECT_EQ(unmarkedUtf16(bytes), nullptr) << bytes;
    }
}
