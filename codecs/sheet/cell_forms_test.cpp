#include "codecs/sheet/cell_area.h"
#include "codecs/sheet/cell_text.h"
#include "codecs/sheet/date_text.h"
#include "codecs/sheet/number_format.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace corvanta::sheet {

namespace {

std::string dateText(NumberForm form, double serial, bool uses1904 = false)
{
    char16_t text[kDateTextUnits];
    return QString::fromUtf16(text, putDateText(form, serial, uses1904, text)).toStdString();
}

/// "B2:D9" for an area, "-" for none; "*" is an open end.
QString shown(const std::optional<CellArea> &area)
{
    if (!area) {
        return u"-"_s;
    }
    const bool isOpenBelow = area->lastRow == CellArea().lastRow;
    const bool isOpenRight = area->lastColumn == CellArea().lastColumn;
    return cellName(area->firstColumn, area->firstRow) + u':' +
           (isOpenRight ? u"*"_s : QString::fromLatin1(columnLetters(area->lastColumn))) +
           (isOpenBelow ? u"*"_s : QString::number(area->lastRow + 1));
}

} // namespace

TEST(CellArea, EveryForm)
{
    const std::pair<QString, QString> cases[] = {
        {u"B2:D9"_s, u"B2:D9"_s},
        {u" $b$2 : d9 "_s, u"B2:D9"_s},
        {u"B2"_s, u"B2:B2"_s},
        {u"B2:"_s, u"B2:**"_s},
        {u":D9"_s, u"A1:D9"_s},
        {u"A:C"_s, u"A1:C*"_s},
        {u"3:10"_s, u"A3:*10"_s},
        {u"D9:B2"_s, u"B2:D9"_s}, // opposite corners
        {u"XFD1048576"_s, u"XFD1048576:XFD1048576"_s},
        {u"XFE1"_s, u"-"_s},
        {u"A1048577"_s, u"-"_s},
        {u"A0"_s, u"-"_s},
        {u""_s, u"-"_s},
        {u":"_s, u"-"_s},
        {u"B"_s, u"-"_s},
        {u"2"_s, u"-"_s},
        {u"B2:C3:D4"_s, u"-"_s},
        {u"B2x"_s, u"-"_s},
        {u"AAAAAAAAAAAAAAA1"_s, u"-"_s},
        {u"A99999999999999999999"_s, u"-"_s},
    };
    for (const auto &[text, expected] : cases) {
        EXPECT_EQ(shown(parseArea(text)), expected) << text.toStdString();
    }
    const auto named = parseSheetArea(u"'It''s! here'!$A$1:B2");
    ASSERT_TRUE(named);
    EXPECT_EQ(named->sheet, u"It's! here"_s);
    EXPECT_EQ(shown(named->area), u"A1:B2"_s);
    EXPECT_EQ(parseSheetArea(u"A1")->sheet, QString());
    EXPECT_FALSE(parseSheetArea(u"Sheet1!"));
}

TEST(ColumnLetters, CarryOver)
{
    const std::pair<int, const char *> cases[] = {{0, "A"},     {25, "Z"},     {26, "AA"},
                                                  {51, "AZ"},   {52, "BA"},    {701, "ZZ"},
                                                  {702, "AAA"}, {16383, "XFD"}};
    for (const auto &[column, letters] : cases) {
        EXPECT_EQ(columnLetters(column), letters);
    }
}

TEST(NumberFormat, FormsOfCodes)
{
    const std::pair<std::u16string_view, NumberForm> cases[] = {
        {u"[Red][$-409]d/m/yy \"at\" h:mm\\.ss AM/PM;General;@", NumberForm::DateTime},
        {u"yyyy-mm-dd", NumberForm::Date},
        {u"mm", NumberForm::Date},
        {u"mmm 0", NumberForm::Date},  // the name of a month
        {u"m 0", NumberForm::General}, // not a name
        {u"h:mm", NumberForm::Time},
        {u"A/P", NumberForm::Time},
        {u"[h]:mm:ss", NumberForm::Duration},
        {u"[MM]", NumberForm::Duration},
        {u"[hm]", NumberForm::General},
        {u"[Red]0.00", NumberForm::General},
        {u"0.00E+00", NumberForm::General}, // an exponent
        {u"e", NumberForm::Date},           // a year of an era
        {u"General", NumberForm::General},
        {u"\"day\" 0", NumberForm::General},
        {u"\\d0", NumberForm::General},
        {u"_d0*h", NumberForm::General},
        {u"0;yyyy", NumberForm::General}, // the second section
        {u"[", NumberForm::General},
        {u"\"", NumberForm::General},
        {u"\\", NumberForm::General},
    };
    for (const auto &[code, form] : cases) {
        EXPECT_EQ(formOfCode(code), form) << QString::fromUtf16(code.data()).toStdString();
    }
    std::string builtIn;
    for (int id = -1; id < 60; ++id) {
        builtIn += "-dtbD"[static_cast<int>(formOfBuiltIn(id))];
    }
    // General, date, time, both, duration; ids from -1.
    EXPECT_EQ(builtIn, "---------------ddddttttb----dddddttttd--------tDt--dddddttdd-");
}

TEST(NumberFormat, FaultsOfCodes)
{
    const std::pair<QString, FormatFault> cases[] = {
        {u"0.00;[Red]-0.00;\"zero\";@"_s, FormatFault::None},
        {u""_s, FormatFault::Empty},
        {QString(255, u'0'), FormatFault::None},
        {QString(256, u'0'), FormatFault::Long},
        {u"0\t"_s, FormatFault::Character},
        {u"0\"m"_s, FormatFault::Quote},
        {u"[Red"_s, FormatFault::Bracket},
        {u"0 kg"_s, FormatFault::Letter},
        {u"0 \"kg\""_s, FormatFault::None},
        {u"0;0;0;@"_s, FormatFault::None},
        {u"0;0;0;@;0"_s, FormatFault::Sections},
        {u"0\\"_s, FormatFault::End},
        {u"0_"_s, FormatFault::End},
    };
    for (const auto &[code, fault] : cases) {
        EXPECT_EQ(faultOfCode(code.toStdU16String()), fault) << code.toStdString();
    }
}

TEST(SheetDates, SerialsAsTexts)
{
    struct Case
    {
        NumberForm form;
        double serial;
        const char *text;
        const char *text1904;
    };
    const Case cases[] = {
        {NumberForm::Date, 46348, "2026-11-22", "2030-11-23"},
        {NumberForm::Date, 46348.1875, "2026-11-22T04:30:00", "2030-11-23T04:30:00"},
        {NumberForm::DateTime, 46348, "2026-11-22T00:00:00", "2030-11-23T00:00:00"},
        {NumberForm::Date, 1, "1900-01-01", "1904-01-02"},
        {NumberForm::Date, 59, "1900-02-28", "1904-02-29"},
        {NumberForm::Date, 60, "1900-02-29", "1904-03-01"},
        {NumberForm::Date, 61, "1900-03-01", "1904-03-02"},
        {NumberForm::Date, 0, "00:00:00", "1904-01-01"},
        {NumberForm::Time, 0.99999999999, "23:59:59.999", "23:59:59.999"},
        {NumberForm::Time, 1.5, "1900-01-01T12:00:00", "1904-01-02T12:00:00"},
        {NumberForm::Duration, -1.5, "-36:00:00", "-36:00:00"},
        {NumberForm::Duration, 0.0000115741, "0:00:01", "0:00:01"},
        {NumberForm::Date, 2958465, "9999-12-31", ""},
        {NumberForm::Date, 2958466, "", ""},
        {NumberForm::Date, -1, "", ""},
        {NumberForm::General, 46348, "", ""},
    };
    for (const Case &one : cases) {
        EXPECT_EQ(dateText(one.form, one.serial), one.text) << one.serial;
        EXPECT_EQ(dateText(one.form, one.serial, true), one.text1904) << one.serial;
    }
}

TEST(SheetDates, IsoTextsAsSerials)
{
    EXPECT_EQ(serialOfIsoText(u"2026-11-22", false), 46348);
    EXPECT_EQ(serialOfIsoText(u"2026-11-22T12:00:00", true), 44886.5);
    EXPECT_EQ(serialOfIsoText(u"06:00:00", true), 0.25);
    EXPECT_FALSE(serialOfIsoText(u"25:00:00", false));
    EXPECT_FALSE(serialOfIsoText(u"2026-13-01", false));
    EXPECT_FALSE(serialOfIsoText(u"", false));
}

TEST(CellText, Links)
{
    const auto isLink = [](std::u16string_view text, std::u16string_view label,
                           std::u16string_view url) {
        const auto link = parseLink(text);
        return link && link->label == label && link->url == url;
    };
    EXPECT_TRUE(isLink(u"URL(\"a\",\"bc\")", u"a", u"bc"));
    // Kept for saved graphs: with a shorter address the whole text is both.
    EXPECT_TRUE(isLink(u"URL(\"a\",\"b\")", u"a\",\"b", u"a\",\"b"));
    EXPECT_TRUE(isLink(u"URL(\"b\")", u"b", u"b"));
    EXPECT_FALSE(parseLink(u"URL("));
    EXPECT_FALSE(parseLink(u"url(\"b\")"));
    EXPECT_FALSE(parseLink(u""));
}

} // namespace corvanta::sheet
