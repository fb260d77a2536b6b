#include "codecs/stat/date_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

using namespace Qt::StringLiterals;

namespace corvanta::stat {

namespace {

std::string dateText(DateKind kind, double number)
{
    char text[kDateChars];
    return {text, static_cast<size_t>(putDateText(kind, number, text))};
}

} // namespace

TEST(DateText, NamesOfFormats)
{
    struct Case
    {
        Format format;
        QString name;
        DateKind kind;
    };
    const Case cases[] = {
        {Format::Sas, u"DATE9."_s, DateKind::SasDate},
        {Format::Sas, u"DDMMYYP10."_s, DateKind::SasDate},
        {Format::Sas, u"YYQRS"_s, DateKind::SasDate},
        {Format::Sas, u"DATEP"_s, DateKind::None}, // has no separator
        {Format::Sas, u"B8601DN"_s, DateKind::SasDateOfSeconds},
        {Format::SasTransport, u"DATETIME20.3"_s, DateKind::SasDateTime},
        {Format::SasTransport, u"TOD"_s, DateKind::Time},
        {Format::Sas, u"BEST12."_s, DateKind::None},
        {Format::Sas, u"ADATE"_s, DateKind::None}, // of SPSS
        {Format::SpssSav, u"ADATE10"_s, DateKind::SpssDate},
        {Format::SpssPor, u"DTIME"_s, DateKind::Time},
        {Format::SpssSav, u"YMDHMS19.2"_s, DateKind::SpssDateTime},
        {Format::SpssSav, u"F8.2"_s, DateKind::None},
        {Format::Stata, u"%td"_s, DateKind::SasDate},
        {Format::Stata, u"%-d"_s, DateKind::SasDate},
        {Format::Stata, u"%-tcCCYY"_s, DateKind::StataClock},
        {Format::Stata, u"%tC"_s, DateKind::StataLeapClock},
        {Format::Stata, u"%tbcal"_s, DateKind::None},
        {Format::Stata, u"%t"_s, DateKind::None},
        {Format::Stata, u"%9.0g"_s, DateKind::None},
    };
    for (const Case &one : cases) {
        EXPECT_EQ(dateKindOf(one.format, one.name), one.kind) << one.name.toStdString();
    }
}

TEST(DateText, UnitsAndEpochs)
{
    struct Case
    {
        DateKind kind;
        double number;
        const char *text;
    };
    const Case cases[] = {
        {DateKind::SasDate, 0, "1960-01-01"},
        {DateKind::SasDate, 24432, "2026-11-22"},
        {DateKind::SasDate, -0.25, "1959-12-31"}, // the day that it is in
        {DateKind::SasDateTime, 2110941000, "2026-11-22T04:30:00"},
        {DateKind::SasDateTime, -0.5, "1959-12-31T23:59:59.5"},
        {DateKind::SasDateOfSeconds, 2110941000, "2026-11-22"},
        {DateKind::Time, 16200.000001, "04:30:00.000001"},
        {DateKind::Time, -3661, "-01:01:01"},
        {DateKind::Time, 360000, "100:00:00"},
        {DateKind::SpssDate, 14014684800, "2026-11-22"},
        {DateKind::SpssDateTime, 0, "1582-10-14T00:00:00"},
        {DateKind::StataClock, 2110941000250, "2026-11-22T04:30:00.25"},
        // The second after the first leap second, and after all 27.
        {DateKind::StataLeapClock, 394416000000, "1972-07-01T00:00:00"},
        {DateKind::StataLeapClock, 394416001000, "1972-07-01T00:00:00"},
        {DateKind::StataLeapClock, 394416002000, "1972-07-01T00:00:01"},
        {DateKind::StataLeapClock, 1798848027000, "2017-01-01T00:00:00"},
        {DateKind::StataWeek, 3484, "2027-01-01"},
        {DateKind::StataWeek, 3483, "2026-12-24"}, // the 52nd
        {DateKind::StataMonth, 803, "2026-12-01"},
        {DateKind::StataMonth, -1, "1959-12-01"},
        {DateKind::StataQuarter, 267, "2026-10-01"},
        {DateKind::StataHalf, 133, "2026-07-01"},
        {DateKind::StataYear, 2026, "2026-01-01"},
    };
    for (const Case &one : cases) {
        EXPECT_EQ(dateText(one.kind, one.number), one.text) << one.number;
    }
}

/// Such a number is printed as a number, and counted.
TEST(DateText, OutsideOfTheCalendar)
{
    EXPECT_EQ(dateText(DateKind::SasDate, -715509), "0001-01-01");
    EXPECT_EQ(dateText(DateKind::SasDate, -715510), "");
    EXPECT_EQ(dateText(DateKind::SasDate, 2936549), "9999-12-31");
    EXPECT_EQ(dateText(DateKind::SasDate, 2936550), "");
    EXPECT_EQ(dateText(DateKind::StataYear, 0), "");
    EXPECT_EQ(dateText(DateKind::StataYear, 9999), "9999-01-01");
    EXPECT_EQ(dateText(DateKind::StataYear, 10000), "");
    for (const double odd : {std::numeric_limits<double>::quiet_NaN(),
                             std::numeric_limits<double>::infinity(), 1e300, -1e18}) {
        for (const DateKind kind : {DateKind::SasDate, DateKind::SasDateTime, DateKind::Time,
                                    DateKind::StataLeapClock, DateKind::StataWeek}) {
            EXPECT_EQ(dateText(kind, odd), "") << odd;
        }
    }
}

} // namespace corvanta::stat
