// Turns date texts into the serial numbers of worksheets (ECMA-376 part 1, 18.17.4.1).
#pragma once
#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QtGlobal>

#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace corvanta::sheet {

/// The serial of the first day that worksheets can show as a date.
inline constexpr double kFirstSerial = 1;

/// Whether a format has years of two digits only, which are read as years of the 20th century.
bool hasShortYears(const QString &format);

/// Formats of fixed-width numbers are parsed here; all others by Qt, whose results are cached,
/// because tables repeat their dates. A text that does not have the fixed width, or is not a date,
/// is given to Qt as well, which accepts more. Dates without a time zone count as UTC, so that no
/// hour is missing. Threads: one at a time.
class DateParser
{
public:
    /// `format` has Qt's date-time syntax (QDateTime::fromString). `locale` gives the names of
    /// months and days. `monthFix`: serials below 61 are decreased by one, as the spreadsheet
    /// application has a 29 February 1900.
    DateParser(const QString &format, const QLocale &locale, bool monthFix);
    /// For dates in the form of ISO 8601: yyyy-MM-dd, after a "T" or a space also a time hh:mm with
    /// optional seconds, fraction and zone. The zone is ignored: the serial is that of the date and
    /// time in the text.
    static DateParser iso(bool monthFix);

    /// Days since 1899-12-30, with fraction; std::nullopt when the text does not have the format.
    /// Below kFirstSerial for dates that worksheets cannot hold.
    std::optional<double> serial(std::u16string_view text);
    /// Milliseconds since 1970-01-01; std::nullopt when the text does not have the format.
    std::optional<qint64> msSince1970(std::u16string_view text);

private:
    /// What a token reads; the fields that a format lacks have Qt's defaults.
    enum class Field : quint8 { Literal, Year, Month, Day, Hour, Minute, Second, Millisecond };
    /// A number of fixed width, or one literal character.
    struct Token
    {
        Field field;
        quint8 digits;    ///< characters in the text
        char16_t literal; ///< of Field::Literal
    };
    static std::optional<Token> tokenOf(QStringView run);
    void compile();
    // Milliseconds since 1970-01-01; std::nullopt when the text does not have the format.
    std::optional<qint64> fixedWidthMs(std::u16string_view text) const;
    std::optional<qint64> slowMs(std::u16string_view text);
    std::optional<qint64> parsedMs(const QString &text) const;

    QString m_format;
    QString m_zoneText; // prefix of each text that Qt parses
    QLocale m_locale;
    bool m_monthFix;
    bool m_isIso = false;        // m_format is the form without a time
    std::vector<Token> m_tokens; // empty: Qt parses
    size_t m_width = 0;          // units of a text that m_tokens match
    std::unordered_map<QString, std::optional<qint64>> m_known; // cached results of parsedMs()
};

} // namespace corvanta::sheet
