// codecs/sheet/cell_text.h
// Text of worksheet cells: escaping, column letters, hyperlink texts, date serials.
//
// Format: ECMA-376 part 1, 18.3.1.4 (c), 18.18.37 (ST_CellRef), 22.9.2.19 (ST_Xstring, the _xHHHH_
// form).
#pragma once
#include <QDateTime>
#include <QHash>
#include <QLocale>
#include <QString>
#include <QtGlobal>

#include <array>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace corvanta::sheet {

/// Characters that a cell may hold in the spreadsheet application, plus one.
inline constexpr qsizetype kCellCharLimit = 32768;
/// The most bytes that one unit becomes: "_x000A_".
inline constexpr qsizetype kMaxBytesPerUnit = 7;
/// Bytes that escapeText() may write behind its result.
inline constexpr qsizetype kEscapeSlackBytes = 8;
/// Texts up to this many units cannot reach kCellCharLimit, whatever they hold.
inline constexpr qsizetype kShortTextUnits = (kCellCharLimit - 1) / kMaxBytesPerUnit;

/// Escape cell text into UTF-8: "<", "&", control characters as _x00HH_, an underscore that starts
/// such a form as _x005F_, U+FFFE as "_"; ">" and quotes stay. `out` has room for n *
/// kMaxBytesPerUnit + kEscapeSlackBytes. Returns the place behind.
char *escapeText(const char16_t *text, qsizetype n, char *out);

/// What escapeLongText() does at kCellCharLimit.
enum class AtLimit { Crop, Warn };

/// escapeText() for any length. From the piece on with which the text reaches kCellCharLimit
/// characters, Crop ends it and Warn calls `tooLong` for every piece. Ends when it grows beyond
/// `mostChars` characters. Returns the characters (UTF-16 units of the escaped text); greater than
/// `mostChars` when it ended early.
qsizetype escapeLongText(const char16_t *text, qsizetype n, AtLimit atLimit, qsizetype mostChars,
                         const std::function<void()> &tooLong, std::vector<char> *out);

/// Column letters of a 0-based position: 0 -> A, 25 -> Z, 26 -> AA.
QByteArray columnLetters(int column0);

/// A text of the form URL("label","url") or URL("url").
struct LinkText
{
    std::u16string_view label;
    std::u16string_view url;
};
/// The parts of such a text; nothing when it does not begin with URL( or is shorter than 5 units.
std::optional<LinkText> parseLink(std::u16string_view text);

/// Turns date texts into serial numbers (days since 1899-12-30, with fraction).
///
/// Formats of fixed-width numbers are parsed here; all others by Qt, whose answers are remembered
/// because tables repeat their dates. Threads: one at a time.
class DateParser
{
public:
    /// `format` in Qt's date-time syntax. `monthFix`: serials below 61 count one less, as the
    /// spreadsheet application has a 29 February 1900.
    DateParser(const QString &format, const QLocale &locale, bool monthFix);

    /// Nothing when the text is no such date, or lies before the first serial (1).
    std::optional<double> serial(std::u16string_view text);

private:
    enum class Field : quint8 { Literal, Year, Month, Day, Hour, Minute, Second, Millisecond };
    struct Token
    {
        Field field;
        quint8 digits;
        char16_t literal;
    };
    void compile();
    std::optional<qint64> fixedWidthMs(std::u16string_view text) const;
    std::optional<qint64> slowMs(std::u16string_view text);

    QString m_format;
    QString m_zoneText; // goes in front of a text for Qt
    QLocale m_locale;
    bool m_monthFix;
    std::vector<Token> m_tokens; // empty: Qt parses
    size_t m_width = 0;
    QHash<QString, std::optional<qint64>> m_known;
};

} // namespace corvanta::sheet
