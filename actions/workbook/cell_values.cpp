// A column is a key column if all its cells are keys, a number column if all are numbers, and a
// text column otherwise. Dates are texts unless the parameters ask for serials.
#include "actions/workbook/cell_values.h"

#include "base/number_cell.h"
#include "base/time/iso_time.h"

#include <cmath>

namespace corvanta {

using sheet::CellKind;
using sheet::NumberForm;

namespace {

/// The bit of a number that is read as one. -0 and very large numbers are not integers: an output
/// with integers would lose the sign, or show digits that the workbook does not have.
quint16 contentOfNumber(double value)
{
    constexpr double kExactIntegers = 0x1p53;
    if (cell::isKey(value) && !std::signbit(value)) {
        return kHasKeys;
    }
    const bool isInteger = value == std::floor(value) && std::abs(value) < kExactIntegers &&
                           !(value == 0 && std::signbit(value));
    return isInteger ? kHasIntegers : kHasNumbers;
}

/// The bit of a date that is read as text.
quint16 contentOfDate(NumberForm form, double serial, bool uses1904)
{
    // The date system of 1900 has a 29 February 1900, which the calendar does not have.
    constexpr double kFictitiousDay = 60;
    const double day = std::floor(serial);
    if (form == NumberForm::Time && day == 0) {
        return kHasTimes;
    }
    const bool isDate = form == NumberForm::Date || form == NumberForm::DateTime;
    if (!isDate || (!uses1904 && (day < 1 || day == kFictitiousDay))) {
        return kHasOddTimes;
    }
    return form == NumberForm::DateTime || day != serial ? kHasDateTimes : kHasDates;
}

/// The words do not depend on the language of the workbook. Returns the number of units.
int putBoolean(bool value, char16_t *out)
{
    const std::u16string_view text = value ? u"TRUE" : u"FALSE";
    return static_cast<int>(text.copy(out, text.size()));
}

/// The bit of an ISO 8601 text: a date, a date with a time, or a time without a date.
quint16 contentOfIsoText(std::u16string_view text)
{
    constexpr size_t kDateUnits = 10; // 2024-02-29
    const bool isDate = text.size() >= kDateUnits && text[4] == u'-';
    const auto time = parseIsoTime(text) ? kHasTimes : kHasOddTimes;
    return !isDate ? time : text.size() == kDateUnits ? kHasDates : kHasDateTimes;
}

} // namespace

cell::Type typeOf(quint16 content)
{
    if ((content & kAllTexts) != 0 || content == 0) {
        return cell::Type::Text;
    }
    return content == kHasKeys ? cell::Type::Key : cell::Type::Double;
}

quint16 ValueRules::contentOf(const sheet::SheetCell &cell) const
{
    switch (cell.kind) {
    case CellKind::Number:
        return cell.form != NumberForm::General && datesAreTexts
                   ? contentOfDate(cell.form, cell.number, uses1904)
                   : contentOfNumber(cell.number);
    case CellKind::Text:
        // An empty text is nothing that a program shows: formulas use it for "no value".
        return cell.text.empty() ? 0 : kHasTexts;
    case CellKind::Boolean:
        return kHasBooleans;
    case CellKind::Error:
        return errorsAreTexts ? kHasTexts : 0;
    case CellKind::IsoDate:
        break;
    }
    if (datesAreTexts) {
        return contentOfIsoText(cell.text);
    }
    const auto serial = sheet::serialOfIsoText(cell.text, uses1904);
    return serial ? contentOfNumber(*serial) : quint16(kHasTexts);
}

/// A text that is not a date is missing; contentOf() makes its column a text column anyway.
double ValueRules::numberOf(const sheet::SheetCell &cell) const
{
    return cell.kind == CellKind::IsoDate
               ? sheet::serialOfIsoText(cell.text, uses1904).value_or(cell::missingDouble())
               : cell.number;
}

/// The text of a number, date or boolean.
int ValueRules::putText(const sheet::SheetCell &cell, char16_t *out) const
{
    return cell.kind == CellKind::Boolean ? putBoolean(cell.number != 0, out)
                                          : putNumber(cell, out);
}

int ValueRules::putNumber(const sheet::SheetCell &cell, char16_t *out) const
{
    // A number outside the calendar has no date text; it keeps its digits.
    const int units = datesAreTexts ? sheet::putDateText(cell.form, cell.number, uses1904, out) : 0;
    return units > 0 ? units
                     : cell::putNumberText(cell::Type::Double,
                                           reinterpret_cast<const uchar *>(&cell.number), out);
}

const uchar *ValueRules::cellFor(const sheet::SheetCell &cell, cell::Type type,
                                 RowBuffer *buffer) const
{
    if (cell.kind == CellKind::Error && !errorsAreTexts) {
        return nullptr;
    }
    if (type != cell::Type::Text) {
        if (cell.kind == CellKind::Text) {
            return nullptr; // an empty one
        }
        const double value = numberOf(cell);
        return type == cell::Type::Key ? keyCell(buffer, static_cast<quint32>(value))
                                       : doubleCell(buffer, value);
    }
    if (cell.kind == CellKind::Number || cell.kind == CellKind::Boolean) {
        char16_t text[sheet::kDateTextUnits];
        return textCell(buffer, text, putText(cell, text));
    }
    return textCell(buffer, cell.text.data(), static_cast<qsizetype>(cell.text.size()));
}

/// The text that the cell gets in a text column.
QString ValueRules::textOf(const sheet::SheetCell &cell) const
{
    if (cell.kind == CellKind::Number || cell.kind == CellKind::Boolean) {
        char16_t text[sheet::kDateTextUnits];
        const int units = putText(cell, text);
        return QString::fromUtf16(text, units);
    }
    return QString::fromUtf16(cell.text.data(), static_cast<qsizetype>(cell.text.size()));
}

} // namespace corvanta
