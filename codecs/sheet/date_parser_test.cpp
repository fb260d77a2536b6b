#include "codecs/sheet/date_parser.h"

#include <gtest/gtest.h>

#include <ctime>

namespace corvanta::sheet {
namespace {

std::optional<double> serialOf(const QString &format, const QString &text)
{
    return DateParser(format, QLocale::c(), true).serial(text.toStdU16String());
}

TEST(DateParser, IgnoresTheHoursThatDaylightSavingSkips)
{
    // On these days the clocks went from 0 to 1 and from 2 to 3.
    for (const char *zone : {"America/Sao_Paulo", "Europe/Berlin", "UTC"}) {
        qputenv("TZ", zone);
        tzset();
        EXPECT_EQ(serialOf(QStringLiteral("d MMM yyyy"), QStringLiteral("4 Nov 2018")), 43408)
            << zone;
        EXPECT_EQ(serialOf(QStringLiteral("d.M.yyyy h:mm"), QStringLiteral("29.3.2026 2:30")),
                  46110 + 2.5 / 24)
            << zone;
        EXPECT_EQ(serialOf(QStringLiteral("'at' h:mm AP 'on the' d MMM yyyy"),
                           QStringLiteral("at 12:15 AM on the 4 Nov 2018")),
                  43408 + 0.25 / 24)
            << zone;
        EXPECT_EQ(serialOf(QStringLiteral("d/M/yyyy hh:mm t"),
                           QStringLiteral("1/6/2024 06:00 UTC+02:00")),
                  45444.25)
            << zone;
    }
}

TEST(DateParser, ReadsDatesInTheFormOfIso8601)
{
    DateParser parser = DateParser::iso(true);
    const auto serial = [&](const char16_t *text) { return parser.serial(text); };
    EXPECT_EQ(serial(u"2024-02-29"), 45351);
    for (const char16_t *text :
         {u"2024-02-29T06:00", u"2024-02-29 06:00:00", u"2024-02-29t06:00:00.000Z",
          u"2024-02-29T06:00:00,0+02:00", u"2024-02-29T06:00-0500", u"2024-02-29 06:00+01"}) {
        EXPECT_EQ(serial(text), 45351.25) << QString::fromUtf16(text).toStdString();
    }
    EXPECT_EQ(serial(u"2024-02-29T06:00:00.5"), 45351.25 + 0.5 / 86400);
    for (const char16_t *text : {u"2023-02-29", u"20240229", u"2024-2-9", u"29.02.2024", u"2024",
                                 u"2024-02-29T", u"2024-02-29X06:00", u"2024-02-29T25:00",
                                 u"2024-02-29T06", u"2024-02-29T06:00 o'clock"}) {
        EXPECT_FALSE(serial(text)) << QString::fromUtf16(text).toStdString();
    }
    // Dates that a worksheet cannot hold are dates all the same.
    EXPECT_LT(serial(u"1850-01-01").value(), kFirstSerial);
}

TEST(DateParser, FindsYearsOfTwoDigits)
{
    for (const char16_t *format : {u"d/M/yy", u"yyMMdd", u"'y' yy", u"yyyyyy"}) {
        EXPECT_TRUE(hasShortYears(QString::fromUtf16(format)));
    }
    for (const char16_t *format : {u"", u"dd/MM/yyyy", u"d 'of yy' yyyy", u"hh:mm", u"y"}) {
        EXPECT_FALSE(hasShortYears(QString::fromUtf16(format)));
    }
    EXPECT_EQ(serialOf(QStringLiteral("yyyyMMdd"), QStringLiteral("20240229")), 45351);
    EXPECT_EQ(serialOf(QStringLiteral("yy-MM-dd"), QStringLiteral("24-02-29")), 8826);
}

} // namespace
} // namespace corvanta::sheet
