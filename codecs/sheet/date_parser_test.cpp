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

} // namespace
} // namespace corvanta::sheet
