// Widths of cells, from the characters that a spreadsheet program shows.
//
//   | margin | text, number or date | margin |      a cell
//   | margin | name, perhaps bold | button | margin |      a header cell
//
// Each character counts as a digit, which is a little wider than the average letter.
#include "codecs/sheet/column_meter.h"

#include "base/mapped.h"

#include <algorithm>
#include <cmath>

namespace corvanta::sheet {

namespace {

// In digits of the default font.
constexpr double kMargins = 2;
constexpr double kSmallest = 9;
constexpr double kWidest = 60;
constexpr double kFilterButton = 3;
constexpr double kBoldFactor = 1.1;
/// Programs show at most this many characters of a decimal number without a format.
constexpr double kGeneralDigits = 11;

/// East Asian characters are twice as wide as a digit.
bool isWide(char16_t unit)
{
    constexpr char16_t kFirstWide = 0x1100;
    return (unit >= kFirstWide && unit < 0x1160) || (unit >= 0x2E80 && unit < 0xD7B0) ||
           (unit >= 0xF900 && unit < 0xFB00) || (unit >= 0xFF00 && unit < 0xFF61);
}

/// The width of the longest line. Texts are only measured as far as columns can be wide.
double widthOfText(std::u16string_view text)
{
    double widest = 0;
    double line = 0;
    // A line feed in a cell is shown as such only if the cell is set to wrap its text.
    for (const char16_t unit : text.substr(0, static_cast<size_t>(kWidest) * 4)) {
        line = unit == u'\n' ? 0 : line + (isWide(unit) ? 2 : 1);
        widest = std::max(widest, line);
    }
    return widest;
}

/// The width of what a number format adds to the digits of a number: its longest section.
double widthOfFormat(const QString &code)
{
    const QStringList sections = code.split(u';'); // at least one
    return static_cast<double>(std::ranges::max(sections, {}, &QString::size).size());
}

} // namespace

ColumnMeter::ColumnMeter(Setup setup)
    : m_setup(std::move(setup))
    , m_widths(m_setup.columns.size())
{
    m_formatWidths = mapped<std::vector<double>>(m_setup.formats, widthOfFormat);
    m_formatWidths.resize(m_setup.columns.size());
}

/// Bold characters are wider, and a filter button covers the end of the text.
void ColumnMeter::addHeader(bool isBold, bool hasButton)
{
    for (size_t i = 0; i < m_widths.size(); ++i) {
        const double width = widthOfText(m_setup.columns[i].name.toStdU16String());
        m_widths[i] = std::max(m_widths[i], width * (isBold ? kBoldFactor : 1) +
                                                (hasButton ? kFilterButton : 0));
    }
}

void ColumnMeter::add(const RowView &row)
{
    for (size_t i = 0; i < m_widths.size(); ++i) {
        m_widths[i] = std::max(m_widths[i], widthOf(i, row));
    }
    ++m_rows;
}

double ColumnMeter::widthOf(size_t column, const RowView &row) const
{
    const Column &one = m_setup.columns[column];
    const uchar *const cell = row.cells[one.input];
    switch (row.type(one.input)) {
    case cell::Type::Key: {
        const auto key = loadNative<quint32>(cell);
        return cell::isMissingKey(key) ? 0 : numberWidth(column, key);
    }
    case cell::Type::Double: {
        const auto value = loadNative<double>(cell);
        // The others are left out, or short texts.
        return std::isfinite(value) ? numberWidth(column, value) : 0;
    }
    case cell::Type::Text:
        break;
    }
    return textWidth(column, cell::readText(cell).view());
}

double ColumnMeter::numberWidth(size_t column, double value) const
{
    constexpr double kWithSeparators = 4.0 / 3; // of thousands
    const double size = std::abs(value);
    const double digits = (size < 10 ? 1 : std::floor(std::log10(size)) + 1) + (value < 0 ? 1 : 0);
    if (m_formatWidths[column] > 0) {
        return digits * kWithSeparators + m_formatWidths[column];
    }
    std::array<char, kNumberChars> text{};
    const auto length = static_cast<double>(
        m_setup.floatFormat.put(value, text.data(), static_cast<qsizetype>(text.size())));
    return std::max(digits, std::min(length, kGeneralDigits));
}

double ColumnMeter::textWidth(size_t column, std::u16string_view text) const
{
    // What a formula shows is known only to the program that calculates it.
    if (text.empty() || m_setup.columns[column].kind == Column::Kind::Formula) {
        return 0;
    }
    if (m_setup.urlTag) {
        if (const auto link = parseLink(text)) {
            return widthOfText(link->label);
        }
    }
    const int digits = m_setup.dateDigits[column];
    if (digits > 0) {
        // Programs show the date in its format, whatever the text is.
        return std::max<double>(digits, m_formatWidths[column]) - kMargins;
    }
    return widthOfText(text);
}

std::vector<double> ColumnMeter::widths() const
{
    return mapped<std::vector<double>>(m_widths, [](double width) {
        return std::clamp(std::ceil(width + kMargins), kSmallest, kWidest);
    });
}

} // namespace corvanta::sheet
