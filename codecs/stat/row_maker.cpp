// A value of the library becomes a cell in the ring:
//
//   number   8 bytes, a double; or a text: a date in ISO form, a label, or its digits
//   text     1 to 4 bytes of length code, then UTF-16 units (base/cell.h); decoded directly into
//            the ring, 4 bytes after the start of the room, because the code depends on the length
//   missing  a cell outside the ring, shared by all rows
#include "codecs/stat/row_maker.h"

#include "base/number.h"
#include "codecs/stat/date_text.h"

#include <QChar>

#include <algorithm>
#include <array>
#include <cstring>

namespace corvanta::stat {

namespace {

/// The value of any numeric type. Other types do not occur in numeric variables.
inline double numberOf(const readstat_value_t &value)
{
    switch (value.type) {
    case READSTAT_TYPE_DOUBLE:
        return value.v.double_value;
    case READSTAT_TYPE_FLOAT:
        return static_cast<double>(value.v.float_value);
    case READSTAT_TYPE_INT32:
        return value.v.i32_value;
    case READSTAT_TYPE_INT16:
        return value.v.i16_value;
    case READSTAT_TYPE_INT8:
        return value.v.i8_value;
    case READSTAT_TYPE_STRING:
    case READSTAT_TYPE_STRING_REF:
        break;
    }
    return cell::missingDouble();
}

/// The text of a string.
const char *textOf(const readstat_value_t &value)
{
    return value.v.string_value == nullptr ? "" : value.v.string_value;
}

/// One cell for all missing values of a type, outside the ring.
const uchar *missingCell(cell::Type type)
{
    return type == cell::Type::Text ? cell::missingTextCell() : cell::missingDoubleCell();
}

/// A length code has at most 4 bytes; it is put directly before the units.
constexpr qsizetype kLengthRoom = 4;

} // namespace

bool RowMaker::begin(qint64 row)
{
    m_row = row;
    return m_ring.beginRow(static_cast<int>(m_columns.size()));
}

inline bool RowMaker::isMissing(const ColumnPlan &plan, const readstat_value_t &value,
                                readstat_variable_t *variable)
{
    if (value.is_system_missing || value.is_tagged_missing) {
        return true;
    }
    if (plan.hasMissingRanges && readstat_value_is_defined_missing(value, variable) != 0) {
        m_findings.userMissing.add([&] { return place(plan); });
        return true;
    }
    return false;
}

bool RowMaker::put(int column, const readstat_value_t &value, readstat_variable_t *variable)
{
    const ColumnPlan &plan = m_columns[static_cast<size_t>(column)];
    const bool isText = value.type == READSTAT_TYPE_STRING;
    if (isMissing(plan, value, variable)) {
        if (plan.labels != nullptr) {
            noteLabel(plan, value);
        }
        m_ring.setCell(column, missingCell(plan.type));
        return true;
    }
    if (plan.type == cell::Type::Double) {
        return putNumber(column, numberOf(value));
    }
    if (plan.labels != nullptr) {
        const uchar *const label =
            isText ? plan.labels->find(textOf(value)) : plan.labels->find(numberOf(value));
        if (label != nullptr) {
            m_ring.setCell(column, label);
            return true;
        }
    }
    if (plan.longTextAt >= 0) {
        return putLongText(column);
    }
    if (!isText) {
        return putOwn(column, numberOf(value));
    }
    const char *const text = textOf(value);
    return putText(column, text, static_cast<qsizetype>(std::strlen(text)));
}

/// The cell is the number itself, in the byte order of the machine.
inline bool RowMaker::putNumber(int column, double number)
{
    uchar *const bytes = m_ring.room(cell::kDoubleBytes);
    if (bytes == nullptr) {
        return false;
    }
    storeNative(number, bytes);
    m_ring.setCell(column, bytes);
    m_ring.use(bytes + cell::kDoubleBytes);
    return true;
}

/// Room in the ring for the cell of a text of `n` bytes.
inline uchar *RowMaker::roomForText(qsizetype n)
{
    return m_ring.room(kLengthRoom +
                       m_decoder.maxUnits(n) * static_cast<qsizetype>(sizeof(char16_t)));
}

/// The text is decoded directly into the ring. The length code precedes the units, but its size
/// depends on their number: it is put into the last bytes of the room that is kept for it.
inline bool RowMaker::putText(int column, const char *text, qsizetype n)
{
    uchar *const bytes = roomForText(n);
    if (bytes == nullptr) {
        return false;
    }
    auto *const units = reinterpret_cast<char16_t *>(bytes + kLengthRoom);
    qsizetype count = 0;
    Decoded result = m_decoder.decode(text, n, units, &count);
    if (m_isDecoded &&
        std::find(units, units + count, QChar::ReplacementCharacter) != units + count) {
        result = Decoded::Replaced;
    }
    if (result != Decoded::Complete) {
        countLoss(result, m_columns[static_cast<size_t>(column)]);
    }
    const quint32 code = cell::codeOfText(count);
    const int lengthBytes = cell::lengthBytes(code);
    uchar *const cell = bytes + kLengthRoom - lengthBytes;
    cell::putLength(cell, code, lengthBytes);
    m_ring.setCell(column, cell);
    m_ring.use(reinterpret_cast<uchar *>(units + count));
    return true;
}

/// The value of the library is not used: the texts are hidden from it.
bool RowMaker::putLongText(int column)
{
    const ColumnPlan &plan = m_columns[static_cast<size_t>(column)];
    const auto found = m_longTexts->find(plan.longTextAt);
    if (m_longTexts->fault()) {
        return false;
    }
    if (!found) {
        m_findings.lostTexts.add([&] { return place(plan); });
        m_ring.setCell(column, missingCell(plan.type));
        return true;
    }
    // The ring refuses a text that is too long before memory is allocated for it.
    if (roomForText(found->bytes) == nullptr) {
        return false;
    }
    m_longText.resize(static_cast<size_t>(found->bytes));
    return m_longTexts->read(*found, m_longText.data()) &&
           putText(column, m_longText.data(), found->bytes);
}

/// A number in a column of texts: a date, or a value without a label.
bool RowMaker::putOwn(int column, double number)
{
    std::array<char, kDateChars> text{};
    const ColumnPlan &plan = m_columns[static_cast<size_t>(column)];
    int n = plan.date == DateKind::None ? 0 : putDateText(plan.date, number, text.data());
    if (n == 0) {
        n = putShortest(number, text.data());
        if (plan.date != DateKind::None) {
            m_findings.badDates.add([&] { return place(plan); });
        }
    }
    return putAscii(column, text.data(), n);
}

bool RowMaker::putAscii(int column, const char *text, int n)
{
    uchar *const bytes = m_ring.room(cell::textCellBytes(n) + 1);
    if (bytes == nullptr) {
        return false;
    }
    // One byte of length, after which the units are at an even address.
    uchar *const cell = bytes + 1;
    auto *const units = reinterpret_cast<char16_t *>(cell::putLength(cell, cell::codeOfText(n), 1));
    std::copy_n(text, n, units);
    m_ring.setCell(column, cell);
    m_ring.use(reinterpret_cast<uchar *>(units + n));
    return true;
}

// ---- Findings.

/// Missing values stay missing, also if they have a label.
void RowMaker::noteLabel(const ColumnPlan &plan, const readstat_value_t &value)
{
    bool hasLabel = false;
    if (value.is_tagged_missing) {
        hasLabel = plan.labels->hasTag(value.tag);
    } else if (value.type == READSTAT_TYPE_STRING) {
        hasLabel = plan.labels->find(textOf(value)) != nullptr;
    } else {
        hasLabel = plan.labels->find(numberOf(value)) != nullptr;
    }
    if (hasLabel) {
        m_findings.lostLabels.add([&] { return place(plan); });
    }
}

void RowMaker::countLoss(Decoded result, const ColumnPlan &plan)
{
    Occurrences &losses = result == Decoded::Cut ? m_findings.cutTexts : m_findings.replacedTexts;
    losses.add([&] { return place(plan); });
}

QString RowMaker::place(const ColumnPlan &plan) const
{
    return QStringLiteral("row %1 of the column '%2'").arg(QString::number(m_row + 1), plan.name);
}

} // namespace corvanta::stat
