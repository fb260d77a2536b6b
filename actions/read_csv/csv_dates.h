// Converts dates of one format to ISO 8601.
#pragma once
#include "codecs/sheet/date_parser.h"

#include <string_view>

namespace corvanta {

/// Threads: one at a time.
class CsvDates
{
public:
    /// Units that toIso() may write.
    static constexpr int kUnits = 32;

    /// `format` has Qt's date-time syntax. Names of months and days are English. Years of two
    /// digits are 1969 to 2068, as for POSIX.
    explicit CsvDates(const QString &format);

    /// Write the date, the time, or both with a "T" between them, as the format has them. Returns
    /// the number of units; 0 if the text does not have the format.
    int toIso(std::u16string_view text, char16_t *out);
    /// The same for UTF-8.
    int toIso(std::string_view text, char16_t *out);

private:
    sheet::DateParser m_parser;
    bool m_hasDate;
    bool m_hasTime;
    bool m_hasShortYears;
};

} // namespace corvanta
