// Compares number and UTF conversion with the C library and Qt, and checks the length codes of
// cells. Other tests would not notice a wrong last digit.
#include "base/cell.h"
#include "base/nearest_name.h"
#include "base/number.h"
#include "base/time/iso_time.h"
#include "base/utf.h"

#include <QByteArray>
#include <QString>

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <random>
#include <vector>

using namespace corvanta;
using namespace Qt::StringLiterals;

namespace {

QByteArray general(double value, int precision)
{
    std::array<char, kNumberChars> out{};
    return QByteArray(out.data(), putGeneral(value, precision, out.data()));
}

QByteArray viaUtf16(const QByteArray &utf8)
{
    std::vector<char16_t> wide(static_cast<size_t>(utf8.size()) + 1);
    const qsizetype units = utf8ToUtf16(utf8.constData(), utf8.size(), wide.data());
    QByteArray back(units * 3, '\0');
    back.resize(utf16ToUtf8(wide.data(), units, back.data()));
    return back;
}

} // namespace

TEST(NearestName, HasTheFewestChanges)
{
    const QStringList known = u"run check convert sheetName sheetIdx ToDate"_s.split(u' ');
    const std::pair<QString, QString> cases[] = {
        {u"rnu"_s, u"run"_s},
        {u"chek"_s, u"check"_s},
        {u"conv"_s, u"convert"_s},
        {u"ToDat"_s, u"ToDate"_s},
        {u"SHEETNAME"_s, u"sheetName"_s},
        {u"sheetNam"_s, u"sheetName"_s},
        {u"sheetidx"_s, u"sheetIdx"_s},
    };
    for (const auto &[name, nearest] : cases) {
        EXPECT_EQ(nearestName(name, known), nearest) << name.toStdString();
    }
    EXPECT_TRUE(nearestNameHint(u"x"_s, {}).isEmpty());
    // A beginning of three characters wins against a name with fewer changes.
    const QStringList attributes = u"header separator sepia"_s.split(u' ');
    EXPECT_EQ(nearestName(u"separ"_s, attributes), u"separator"_s);
    EXPECT_EQ(nearestName(u"sepi"_s, attributes), u"sepia"_s);
    EXPECT_EQ(nearestName(u"he"_s, {u"header"_s, u"hex"_s}), u"hex"_s);
    EXPECT_EQ(nearestName(u"collumn"_s, {u"col"_s, u"column"_s}), u"column"_s);
    EXPECT_EQ(nearestName(u"sep"_s, {u"header"_s, u"separator"_s}), u"separator"_s);
    // At most a third of the longer name changes, or one of several characters.
    for (const auto &far : {u"xyz"_s, u"hdr"_s, u"sapis"_s, u""_s}) {
        EXPECT_EQ(nearestName(far, attributes), QString()) << far.toStdString();
    }
    EXPECT_EQ(nearestName(u"k"_s, {u"x"_s}), QString());
    EXPECT_EQ(nearestName(u"tt"_s, {u"t"_s}), u"t"_s);
    EXPECT_EQ(nearestName(u"heeadr"_s, attributes), u"header"_s);
    // A swap of neighbours is one change, and long texts end.
    EXPECT_EQ(nearestName(u"ab"_s, {u"acc"_s, u"ba"_s}), u"ba"_s);
    const QString longName(1'000'000, u'x');
    EXPECT_EQ(nearestName(longName, {longName + u'y', u"z"_s}), longName + u'y');
}

TEST(Number, GeneralEqualsPrintf)
{
    std::mt19937_64 random(1);
    std::array<char, 64> expected{};
    for (int i = 0; i < 20000; ++i) {
        const double value = std::bit_cast<double>(random());
        if (std::isnan(value)) {
            continue;
        }
        for (const int precision : {6, 16}) {
            std::snprintf(expected.data(), expected.size(), "%.*g", precision, value);
            ASSERT_EQ(general(value, precision).toStdString(), expected.data());
        }
    }
}

/// Numbers as tables hold them: few digits, halves of the last one, next to powers of ten.
TEST(Number, GeneralEqualsPrintfForCommonNumbers)
{
    std::mt19937_64 random(3);
    std::array<char, 64> expected{};
    for (int i = 0; i < 200000; ++i) {
        const double power = std::pow(10.0, static_cast<int>(random() % 24) - 8);
        const double digits = static_cast<double>(random() % 20'000'000) / (i % 2 == 0 ? 2 : 1);
        double value = i % 5 == 0 ? power : digits * power / 1e6;
        value = i % 3 == 0 ? std::nextafter(value, i % 2 == 0 ? 0 : 1e300) : value;
        value = i % 7 == 0 ? -value : value;
        for (const int precision : {1, 2, 6, 7, 9, 10, 15}) {
            std::snprintf(expected.data(), expected.size(), "%.*g", precision, value);
            ASSERT_EQ(general(value, precision).toStdString(), expected.data());
        }
    }
}

TEST(Number, ShortestReadsBackAsTheSameNumber)
{
    const std::pair<double, const char *> cases[] = {{0.25, "0.25"},
                                                     {7, "7"},
                                                     {1e300, "1e+300"},
                                                     {100000, "100000"},
                                                     {-0.0, "-0"},
                                                     {1e-7, "1e-07"},
                                                     {0.1 + 0.2, "0.30000000000000004"},
                                                     {1e16, "10000000000000000"}};
    for (const auto &[value, text] : cases) {
        EXPECT_EQ(shortestText(value).toStdString(), text);
    }
    std::mt19937_64 random(2);
    // Few decimals, and the numbers next to them, around the limit of 15 digits.
    for (int i = 0; i < 20000; ++i) {
        const auto digits = static_cast<double>(random() >> (14 + i % 40));
        const double value = (i % 2 == 0 ? digits : -digits) / std::pow(10, i % 7);
        for (const double near : {value, std::nextafter(value, 0), std::nextafter(value, 1e300)}) {
            std::array<char, kNumberChars> text{};
            const auto end = std::to_chars(text.data(), text.data() + text.size(), near,
                                           std::chars_format::fixed);
            const double size = std::fabs(near);
            if (size == 0 || (size >= 1e-5 && size < 1e17)) {
                ASSERT_EQ(shortestText(near).toStdString(), std::string(text.data(), end.ptr));
            }
        }
    }
    for (int i = 0; i < 20000; ++i) {
        const double value = std::bit_cast<double>(random());
        double back = 0;
        if (!std::isnan(value)) {
            ASSERT_TRUE(parseDouble(shortestText(value).toStdU16String(), &back));
            ASSERT_EQ(back, value);
        }
    }
}

TEST(Number, ParsingAcceptsOnlyWholeTexts)
{
    double value = 0;
    for (const char16_t *bad :
         {u"", u" 1", u"1 ", u"1,5", u"abc", u"--1", u"+-1", u"nan(1)", u"0x10", u"1e"}) {
        EXPECT_FALSE(parseDouble(std::u16string_view(bad), &value))
            << QString::fromUtf16(bad).toStdString();
    }
    EXPECT_TRUE(parseDouble(std::u16string_view(u"1e999"), &value) && std::isinf(value));
    EXPECT_TRUE(parseDouble(std::u16string_view(u"-inf"), &value) && std::isinf(value) &&
                value < 0);
    EXPECT_TRUE(parseDouble(std::u16string_view(u"+2.5"), &value) && value == 2.5);
    quint64 whole = 0;
    EXPECT_TRUE(parseUInt(std::u16string_view(u"4294967295"), 0xFFFFFFFFU, &whole));
    EXPECT_FALSE(parseUInt(std::u16string_view(u"4294967296"), 0xFFFFFFFFU, &whole));
    EXPECT_FALSE(parseUInt(std::u16string_view(u"99999999999999999999"), ~quint64(0), &whole));
}

TEST(FloatFormat, AcceptsExactlyOneDoubleConversion)
{
    FloatFormat format;
    for (const char *bad :
         {"x", "%d", "%s", "%n", "%*f", "%1$f", "%Lf", "%f%f", "%", "%.9999f", "%.f%"}) {
        EXPECT_FALSE(format.set(QString::fromLatin1(bad))) << bad;
    }
    const std::pair<const char *, const char *> good[] = {
        {"%.2f", "3.25"}, {"%+08.1lf", "+00003.2"}, {"%% %e x", "% 3.250000e+00 x"},
        {"%.3g", "3.25"}, {"%g", "3.25"},           {"", "3.25"}};
    for (const auto &[text, printed] : good) {
        ASSERT_TRUE(format.set(QString::fromLatin1(text))) << text;
        QByteArray out;
        format.append(3.25, &out);
        EXPECT_EQ(out.toStdString(), printed);
    }
    ASSERT_TRUE(format.set(QString()));
    EXPECT_FALSE(format.set(QStringLiteral("%d")));
    QByteArray shortest;
    format.append(0.1 + 0.2, &shortest);
    EXPECT_EQ(shortest, "0.30000000000000004");
    ASSERT_TRUE(format.set(QStringLiteral("%.999f")));
    QByteArray out;
    format.append(1e300, &out);
    EXPECT_EQ(out.size(), 301 + 1 + 999);
}

TEST(Utf, FindsTheEndOfAsciiAtEveryPlace)
{
    for (qsizetype n = 0; n < 40; ++n) {
        for (qsizetype at = 0; at <= n; ++at) {
            QString text(n, u'x');
            text.replace(at, at < n ? 1 : 0, at < n ? u"\u00E9"_s : QString());
            const QByteArray utf8 = text.toUtf8();
            ASSERT_EQ(viaUtf16(utf8), utf8) << n << ' ' << at;
            std::vector<char16_t> wide(static_cast<size_t>(utf8.size()));
            ASSERT_EQ(asciiToUtf16(utf8.constData(), utf8.size(), wide.data()), at);
        }
    }
}

TEST(Utf, ConvertsEveryPlaneAndReplacesBrokenSequences)
{
    QString all;
    for (const char32_t c :
         {U'a', U'\u00e9', U'\u20ac', U'\ud7ff', U'\ue000', U'\U0001F600', U'\U0010FFFF'}) {
        all += QString(20, QLatin1Char('x')) + QString::fromUcs4(&c, 1);
    }
    EXPECT_EQ(viaUtf16(all.toUtf8()), all.toUtf8());
    for (const char *bad :
         {"\x80", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82", "a\xFF"}) {
        EXPECT_TRUE(viaUtf16(bad).contains("\xEF\xBF\xBD")) << bad;
    }
    std::array<char16_t, 4> latin1{};
    ASSERT_EQ(utf8OrLatin1ToUtf16("\xE9\xC3\xA9z", 4, latin1.data()), 3);
    EXPECT_EQ(std::u16string_view(latin1.data(), 3), u"\u00e9\u00e9z");
    Utf8Stop stop = Utf8Stop::Invalid;
    EXPECT_EQ(wellFormedUtf8("a\u20ac\xF4\x8F\xBF", 7, &stop), 4);
    EXPECT_EQ(stop, Utf8Stop::Truncated);
    EXPECT_EQ(wellFormedUtf8("a\u20ac\xF4\x90\x80", 7, &stop), 4); // beyond the last code point
    EXPECT_EQ(stop, Utf8Stop::Invalid);
    const char16_t lone[] = {0xD800, u'x', 0xDC00};
    std::array<char, 9> out{};
    EXPECT_EQ(QByteArray(out.data(), utf16ToUtf8(lone, 3, out.data())),
              "\xEF\xBF\xBDx\xEF\xBF\xBD");
}

TEST(Cell, LengthCodesOfAllFourSizesReadBack)
{
    const std::pair<quint32, int> cases[] = {{0, 1},
                                             {1, 1},
                                             {126, 1},
                                             {127, 2},
                                             {127 * 128 - 1, 2},
                                             {127 * 128, 3},
                                             {127 * 128 * 128 - 1, 3},
                                             {127 * 128 * 128, 4},
                                             {(1U << 28) - 1, 4}};
    for (const auto &[code, bytes] : cases) {
        std::array<uchar, 4> out{};
        EXPECT_EQ(cell::lengthBytes(code), bytes);
        EXPECT_EQ(cell::putLength(out.data(), code, bytes), out.data() + bytes);
        EXPECT_EQ(cell::readText(out.data()).code, code);
        EXPECT_EQ(cell::readText(out.data()).units, out.data() + bytes);
    }
}

TEST(IsoTime, ReadsTheCalendarAndRejectsEverythingElse)
{
    // All days of the calendar, against Qt's.
    const qint64 epoch = QDate(1970, 1, 1).toJulianDay();
    for (QDate day(1, 1, 1); day.year() <= 9999; day = day.addDays(day.day() == 28 ? 1 : 9)) {
        const std::u16string text = day.toString(Qt::ISODate).toStdU16String();
        ASSERT_EQ(parseIsoDate(text), day.toJulianDay() - epoch) << day.toString().toStdString();
    }
    for (const char16_t *bad :
         {u"", u"2026-1-31", u"2026-02-29", u"1900-02-29", u"0000-01-01", u"2026-13-01",
          u"2026-00-01", u"2026-01-00", u"2026/01/01", u"+026-01-01", u"2026-01-01 "}) {
        EXPECT_FALSE(parseIsoDate(bad)) << QString::fromUtf16(bad).toStdString();
    }
    EXPECT_EQ(parseIsoTime(u"04:30"), 16'200'000'000'000);
    EXPECT_EQ(parseIsoTime(u"23:59:59.123456789"), 86'399'123'456'789);
    EXPECT_EQ(parseIsoTime(u"00:00:00.5"), 500'000'000);
    for (const char16_t *bad : {u"", u"4:30", u"24:00:00", u"04:60", u"04:30:60", u"04:30:05.",
                                u"04:30:05.1234567890", u"04:30:05,5", u"04:30:0", u"04-30-05"}) {
        EXPECT_FALSE(parseIsoTime(bad)) << QString::fromUtf16(bad).toStdString();
    }
    const auto moment = parseIsoDateTime(u"1969-12-31T23:00:00.25Z");
    ASSERT_TRUE(moment);
    EXPECT_EQ(moment->day, -1);
    EXPECT_EQ(moment->nanoseconds, 82'800'250'000'000);
    EXPECT_TRUE(moment->isUtc);
    EXPECT_EQ(parseIsoDateTime(u"1970-01-02")->day, 1);
    EXPECT_FALSE(parseIsoDateTime(u"1970-01-02 04:30")->isUtc);
    for (const char16_t *bad : {u"1970-01-02T", u"1970-01-02Z", u"1970-01-02T04:30+01:00",
                                u"1970-01-02x04:30", u"T04:30"}) {
        EXPECT_FALSE(parseIsoDateTime(bad)) << QString::fromUtf16(bad).toStdString();
    }
}
