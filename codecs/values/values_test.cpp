// What values are, what columns are, and that no number loses a digit.
#include "base/number.h"
#include "codecs/values/column_scan.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

using namespace corvanta;
using namespace corvanta::values;

namespace {

/// "K" an integer for a K cell, "i" and "d" other numbers, with "!" if a double does not hold them;
/// "b", "D", "T", "t" and "-" for booleans, dates, date-times, times and texts; "z" in UTC.
std::string shown(std::string_view text, char decimalPoint = '.')
{
    const Form form = formOf(text, decimalPoint);
    const std::string letters = form.isKey ? "-KdbDTt" : "-idbDTt";
    return letters[static_cast<size_t>(form.kind)] + std::string(form.isExact ? "" : "!") +
           (form.isUtc ? "z" : "");
}

/// The kind and the letter of a column, and what made it a text.
std::string columnOf(std::initializer_list<std::string_view> texts)
{
    ColumnScan scan;
    int row = 0;
    for (const std::string_view text : texts) {
        ++row;
        scan.add(text, [&] { return QString::number(row); });
    }
    const ColumnResult found = scan.result();
    const std::string why = (found.exception + u'@' + found.exceptionPlace).toStdString();
    return std::string(1, "-idbDTt"[static_cast<size_t>(found.kind)]) + found.letter +
           (found.exception.isNull()
                ? ""
                : " " + why + " " + "-idbDTt"[static_cast<size_t>(found.before)]);
}

/// Digits without zeros at both ends, and the power of ten of the first one.
std::pair<std::string, int> valueOf(std::string_view text)
{
    std::string digits;
    int power = 0;
    bool isFraction = false;
    size_t at = text[0] == '-' ? 1 : 0;
    for (; at < text.size() && text[at] != 'e' && text[at] != 'E'; ++at) {
        if (text[at] == '.') {
            isFraction = true;
            continue;
        }
        power += isFraction ? (digits.empty() && text[at] == '0' ? -1 : 0)
                            : (digits.empty() && text[at] == '0' ? 0 : 1);
        if (!digits.empty() || text[at] != '0') {
            digits += text[at];
        }
    }
    power += at < text.size() ? std::stoi(std::string(text.substr(at + 1))) : 0;
    digits.erase(digits.find_last_not_of('0') + 1);
    return {digits, digits.empty() ? 0 : power};
}

} // namespace

TEST(ValueForm, OfNumbers)
{
    const std::pair<const char *, const char *> cases[] = {
        {"0", "K"},
        {"7", "K"},
        {"4294967293", "K"},
        {"4294967294", "i"},
        {"-1", "i"},
        {"999999999999999", "i"},
        {"1234567890123456", "i!"},
        {"9223372036854775807", "i!"},
        {"9223372036854775808", "d!"},
        {"-0", "d"},
        {"1.50", "d"},
        {"1e3", "d"},
        {"1E+05", "d"},
        {"-.5", "d"},
        {"5.", "d"},
        {"0.0", "d"},
        {"1.7e-302", "d!"},
        {"0.123456789012345", "d"},
        {"0.1234567890123456", "d!"},
        {"1.10000000000000000000", "d"},
        {"123456789012345.6", "d!"},
        {"1e400", "d!"},
        {"1e-400", "d!"},
        {"0.1e300", "d"},
        {"1e300", "d!"},
        {"12345678901234567890e-5", "d!"},
        // What is not a number, or would lose characters as one.
        {"", "-"},
        {"-", "-"},
        {".", "-"},
        {"-.", "-"},
        {"007", "-"},
        {"00", "-"},
        {"00.5", "-"},
        {"+1", "-"},
        {"1,000", "-"},
        {"1 000", "-"},
        {" 1", "-"},
        {"1 ", "-"},
        {"1e", "-"},
        {"1e+", "-"},
        {"1e5x", "-"},
        {"1e99999999999", "d!"},
        {"0x10", "-"},
        {"nan", "-"},
        {"inf", "-"},
        {"1-2", "-"},
        {"12-34-56", "-"},
        {"1.2.3", "-"},
        {"12%", "-"},
        {"--1", "-"}};
    for (const auto &[text, wanted] : cases) {
        EXPECT_EQ(shown(text), wanted) << text;
    }
    EXPECT_EQ(shown("1,50", ','), "d");
    EXPECT_EQ(shown("1.234,5", ','), "-");
    EXPECT_EQ(shown("1.5", ','), "-");
}

TEST(ValueForm, OfDatesTimesAndBooleans)
{
    const std::pair<const char *, const char *> cases[] = {{"2026-01-31", "D"},
                                                           {"2024-02-29", "D"},
                                                           {"1900-02-29", "-"},
                                                           {"2000-02-29", "D"},
                                                           {"0000-01-01", "-"},
                                                           {"0001-01-01", "D"},
                                                           {"9999-12-31", "D"},
                                                           {"2026-04-31", "-"},
                                                           {"2026-13-01", "-"},
                                                           {"2026-1-31", "-"},
                                                           {"2026-01-3", "-"},
                                                           {"2026-01", "-"},
                                                           {"2026-01-31T", "-"},
                                                           {"2026-01-31Z", "-"},
                                                           {"-2026-01-31", "-"},
                                                           {"20260131", "K"},
                                                           {"2026/01/31", "-"},
                                                           {"2026-01-31T04:30", "T"},
                                                           {"2026-01-31 04:30:05", "T"},
                                                           {"2026-01-31T04:30:05.25", "T"},
                                                           {"2026-01-31T04:30:05.123456", "T"},
                                                           {"2026-01-31T04:30:05.1234567", "-"},
                                                           {"2026-01-31T04:30:05.", "-"},
                                                           {"2026-01-31T24:00", "-"},
                                                           {"2026-01-31T04:60", "-"},
                                                           {"2026-01-31T04:30:60", "-"},
                                                           {"2026-01-31T04:30:05Z", "Tz"},
                                                           {"2026-01-31T04:30+01:00", "-"},
                                                           {"2026-01-31x04:30", "-"},
                                                           {"2026-02-30T04:30", "-"},
                                                           {"04:30", "t"},
                                                           {"04:30:05", "t"},
                                                           {"23:59:59.999", "t"},
                                                           {"24:00", "-"},
                                                           {"4:30", "-"},
                                                           {"04:30Z", "-"},
                                                           {"04:3", "-"},
                                                           {"04:30:5", "-"},
                                                           {"true", "b"},
                                                           {"False", "b"},
                                                           {"TRUE", "b"},
                                                           {"tRUE", "-"},
                                                           {"yes", "-"},
                                                           {"t", "-"}};
    for (const auto &[text, wanted] : cases) {
        EXPECT_EQ(shown(text), wanted) << text;
    }
}

TEST(ColumnScan, JoinsKinds)
{
    EXPECT_EQ(columnOf({}), "-U");
    EXPECT_EQ(columnOf({"1", "2"}), "iK");
    EXPECT_EQ(columnOf({"1", "-2"}), "iF");
    EXPECT_EQ(columnOf({"4294967294"}), "iF");
    EXPECT_EQ(columnOf({"1", "1.5", "2"}), "dF");
    EXPECT_EQ(columnOf({"2026-01-31 04:30", "2026-01-31"}), "TU");
    EXPECT_EQ(columnOf({"2026-01-31", "2026-02-01"}), "DU");
    EXPECT_EQ(columnOf({"04:30"}), "tU");
    EXPECT_EQ(columnOf({"true", "false"}), "bU");
    EXPECT_EQ(columnOf({"2026-01-31T04:30Z", "2026-01-31T04:31Z"}), "TU");
}

TEST(ColumnScan, NamesTheValueThatDecides)
{
    EXPECT_EQ(columnOf({"1", "2", "n/a", "x"}), "-U n/a@3 i");
    EXPECT_EQ(columnOf({"x", "1"}), "-U x@1 -");
    EXPECT_EQ(columnOf({"1", "007"}), "-U 007@2 i");
    EXPECT_EQ(columnOf({"1.5", "12345678901234567", "1"}), "dU 12345678901234567@2 d");
    EXPECT_EQ(columnOf({"12345678901234567", "1", "x"}), "-U x@3 i");
    EXPECT_EQ(columnOf({"2026-01-31", "04:30"}), "-U 04:30@2 D");
    EXPECT_EQ(columnOf({"true", "1"}), "-U 1@2 b");
    EXPECT_EQ(columnOf({"2026-01-31T04:30", "2026-01-31T04:30Z"}), "-U 2026-01-31T04:30Z@2 T");
    EXPECT_EQ(columnOf({""}), "-U @1 -");
    EXPECT_EQ(columnOf({std::string(500, 'x')}), "-U " + std::string(60, 'x') + "...@1 -");
}

TEST(ColumnScan, KeepsTheTypesOfAFormatThatHasThem)
{
    const auto place = [] { return QString(); };
    ColumnScan numbers;
    numbers.addNumber("12345678901234567890", place);
    numbers.addNumber("1", place);
    EXPECT_EQ(numbers.result().kind, Kind::Decimal); // of more than 64 bits
    EXPECT_EQ(numbers.result().letter, 'U');         // a double would lose digits
    ColumnScan digits;
    digits.addText("12", place);
    EXPECT_EQ(digits.result().kind, Kind::Text);
    ColumnScan dates;
    dates.addText("2026-01-31", place);
    EXPECT_EQ(dates.result().kind, Kind::Date);
    dates.addNumber("12", place);
    EXPECT_EQ(dates.result().kind, Kind::Text);
    ColumnScan booleans;
    booleans.addBoolean("true", place);
    EXPECT_EQ(booleans.result().kind, Kind::Boolean);
    booleans.addText("true", place);
    EXPECT_EQ(booleans.result().kind, Kind::Text);
}

/// Every number that is exact reads back to the same value; every text of few digits is exact.
TEST(ValueForm, NoNumberLosesADigit)
{
    constexpr int kNumbers = 200'000;
    std::mt19937 random(7); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same numbers in each run
    const auto digits = [&](int n) {
        std::string text;
        for (int i = 0; i < n; ++i) {
            text += static_cast<char>('0' + (random() % 3 == 0 ? 0 : random() % 10));
        }
        return text;
    };
    EXPECT_FALSE(formOf("9737228.13882082e10").isExact); // would become 97372281388208192
    EXPECT_TRUE(formOf("1e20").isExact);
    int exact = 0;
    for (int i = 0; i < kNumbers; ++i) {
        std::string text = (random() % 4 == 0 ? "-" : "") + digits(static_cast<int>(random() % 12));
        text += random() % 2 == 0 ? "." + digits(static_cast<int>(random() % 12)) : "";
        text +=
            random() % 4 == 0 ? "e" + std::to_string(static_cast<int>(random() % 700) - 350) : "";
        const Form form = formOf(text);
        if (form.kind == Kind::Text || !form.isExact) {
            continue;
        }
        ++exact;
        double value = 0;
        ASSERT_TRUE(parseDouble(std::string_view(text), &value)) << text;
        char out[kNumberChars];
        const std::string back(out, static_cast<size_t>(putShortest(value, out)));
        ASSERT_EQ(valueOf(back), valueOf(text)) << text << " became " << back;
    }
    EXPECT_GT(exact, kNumbers / 10);
}
