// The records of cells (MS-XLS, 2.4; little-endian). From BIFF 3 on each begins with row 2, column
// 2, XF 2; in BIFF 2 with row 2, column 2, and 3 bytes: number of the XF in 6 bits, of the format
// in 6 bits, alignment. After that:
//
//   INTEGER 2   value 2
//   NUMBER      double 8
//   RK          4: bit 0 hundredths, bit 1 an integer of 30 bits, else the upper bits of a double
//   MULRK       row 2, column 2, then XF 2 and RK 4 for each column, last column 2
//   LABEL       length (1 in BIFF 2, else 2), text
//   RSTRING     as LABEL, then formats
//   LABELSST    number of a shared text 4
//   BOOLERR     value 1, 1 for an error
//   FORMULA     result 8, more. The result is a double, or its last two bytes are FFFF and the
//               first is 0: a text, in the STRING record that follows; 1: a boolean, 2: an error,
//               both in the third byte; 3: an empty text
#include "codecs/xls/cell_records.h"

#include "base/bytes.h"
#include "codecs/sheet/cell_area.h"

#include <algorithm>
#include <bit>

namespace corvanta::xls {

using sheet::CellKind;
using sheet::NumberForm;
using sheet::SheetCell;
using sheet::SheetProblem;

namespace {

constexpr qint64 kCellHeader = 6;
constexpr qint64 kCellHeader2 = 7;
constexpr quint8 kXfBits = 0x3F;
constexpr qint64 kMulRkBytes = 6; // of each cell

// The format has 256 columns; this is what spreadsheet programs read at most.
constexpr int kMaxColumns = 16384;

/// For messages. Made only for the first cell of each problem.
QString placeOfCell(qint64 row, int column)
{
    return QStringLiteral("cell ") + sheet::cellName(column, row);
}

/// The 30 bits after the two flags: a signed integer, or the upper bits of a double.
double valueOfRk(quint32 rk)
{
    constexpr quint32 kInteger = 2;
    return (rk & kInteger) != 0 ? static_cast<double>(static_cast<qint32>(rk) >> 2)
                                : std::bit_cast<double>(static_cast<quint64>(rk & ~3U) << 32);
}

double numberOfRk(quint32 rk)
{
    constexpr quint32 kHundredths = 1;
    const double value = valueOfRk(rk);
    return (rk & kHundredths) != 0 ? value / 100 : value;
}

/// The text that spreadsheet programs show for an error code; empty for an unknown one.
std::u16string_view errorText(quint8 code)
{
    switch (code) {
    case 0x00:
        return u"#NULL!";
    case 0x07:
        return u"#DIV/0!";
    case 0x0F:
        return u"#VALUE!";
    case 0x17:
        return u"#REF!";
    case 0x1D:
        return u"#NAME?";
    case 0x24:
        return u"#NUM!";
    case 0x2A:
        return u"#N/A";
    case 0x2B:
        return u"#GETTING_DATA";
    default:
        return {};
    }
}

/// The fewest bytes of a cell record; 0 for other records.
qint64 leastBytes(quint16 id)
{
    switch (id) {
    case kInteger2:
        return kCellHeader2 + 2;
    case kNumber2:
        return kCellHeader2 + 8;
    case kLabel2:
        return kCellHeader2 + 1;
    case kBoolErr2:
        return kCellHeader2 + 2;
    case kFormula: // BIFF 2 has one byte more
    case kFormula3:
    case kFormula4:
    case kNumber:
        return kCellHeader + 8;
    case kLabel:
    case kRString:
    case kBoolErr:
        return kCellHeader + 2;
    case kRk:
    case kRkOld:
    case kLabelSst:
        return kCellHeader + 4;
    case kMulRk:
        return 4 + kMulRkBytes;
    default:
        return 0;
    }
}

/// All cell records have their first column here.
int columnOf(const Record &record)
{
    return loadLE<quint16>(record.data + 2);
}

} // namespace

int rowOfCell(const Record &record)
{
    const qint64 least = leastBytes(record.id);
    return least > 0 && record.bytes >= least ? loadLE<quint16>(record.data) : -1;
}

// ---- The cells of a row.

void RowCells::clear()
{
    m_cells.clear();
    m_ownText.clear();
    m_ownTexts.clear();
}

void RowCells::addOwnText(int column, size_t begin)
{
    m_ownTexts.push_back({m_cells.size(), begin, m_ownText.size() - begin});
    m_cells.push_back({column, CellKind::Text, NumberForm::General, 0, {}});
}

void RowCells::setOwnTexts()
{
    for (const OwnText &text : m_ownTexts) {
        m_cells[text.cell].text = std::u16string_view(m_ownText).substr(text.begin, text.units);
    }
}

void RowCells::complete(Occurrences *repeated, qint64 row)
{
    setOwnTexts();
    const auto isNotBefore = [](const SheetCell &a, const SheetCell &b) {
        return a.column >= b.column;
    };
    if (std::adjacent_find(m_cells.begin(), m_cells.end(), isNotBefore) != m_cells.end()) {
        std::stable_sort(
            m_cells.begin(), m_cells.end(),
            [](const SheetCell &a, const SheetCell &b) { return a.column < b.column; });
        removeRepeated(repeated, row);
    }
}

void RowCells::removeRepeated(Occurrences *repeated, qint64 row)
{
    size_t kept = 0;
    for (size_t i = 0; i < m_cells.size(); ++i) {
        if (i + 1 < m_cells.size() && m_cells[i].column == m_cells[i + 1].column) {
            repeated->add([&] { return placeOfCell(row, m_cells[i].column); });
            continue;
        }
        m_cells[kept++] = m_cells[i];
    }
    m_cells.resize(kept);
}

// ---- Decoding.

void CellDecoder::takeIxfe(const Record &record)
{
    m_ixfe = record.bytes >= 2 ? loadLE<quint16>(record.data) : 0;
}

NumberForm CellDecoder::formOfXf(size_t xf) const
{
    return xf < m_forms.ofXf.size() ? m_forms.ofXf[xf] : NumberForm::General;
}

NumberForm CellDecoder::formOfOld(const Record &record)
{
    if (m_forms.ofXf.empty()) {
        return m_forms.ofFormat[record.data[5] & kXfBits];
    }
    const int xf = record.data[4] & kXfBits;
    return formOfXf(static_cast<size_t>(xf == kXfBits ? m_ixfe : xf));
}

void CellDecoder::count(SheetProblem problem, int row, int column)
{
    m_problems[static_cast<size_t>(problem)].add([=] { return placeOfCell(row, column); });
}

void CellDecoder::decode(const Record &record, RowCells *row)
{
    if (columnOf(record) >= kMaxColumns) {
        count(SheetProblem::OutOfSheet, rowOfCell(record), columnOf(record));
        return;
    }
    const NumberForm form = formOfXf(loadLE<quint16>(record.data + 4));
    switch (record.id) {
    case kNumber:
        return addNumber(columnOf(record), loadLE<double>(record.data + kCellHeader), form, row);
    case kRk:
    case kRkOld:
        return addNumber(columnOf(record), numberOfRk(loadLE<quint32>(record.data + kCellHeader)),
                         form, row);
    case kMulRk:
        return decodeMulRk(record, row);
    case kLabelSst:
        return decodeShared(record, row);
    case kLabel:
    case kRString:
        return decodeText(record, kCellHeader, 2, row);
    case kBoolErr:
        return decodeBoolErr(record, kCellHeader, row);
    case kFormula3:
    case kFormula4:
        return decodeFormula(record, kCellHeader, form, row);
    case kFormula:
        if (m_rules.biff() != Biff::V2) {
            return decodeFormula(record, kCellHeader, form, row);
        }
        break;
    default:
        break;
    }
    decodeOld(record, row);
}

/// The records that only BIFF 2 has.
void CellDecoder::decodeOld(const Record &record, RowCells *row)
{
    const NumberForm form = formOfOld(record);
    switch (record.id) {
    case kInteger2:
        return addNumber(columnOf(record), loadLE<quint16>(record.data + kCellHeader2), form, row);
    case kNumber2:
        return addNumber(columnOf(record), loadLE<double>(record.data + kCellHeader2), form, row);
    case kLabel2:
        return decodeText(record, kCellHeader2, 1, row);
    case kBoolErr2:
        return decodeBoolErr(record, kCellHeader2, row);
    default:
        if (record.bytes >= kCellHeader2 + 8) {
            decodeFormula(record, kCellHeader2, form, row);
        }
    }
}

void CellDecoder::addNumber(int column, double value, NumberForm form, RowCells *row)
{
    row->add({column, CellKind::Number, form, value, {}});
}

void CellDecoder::addBoolean(int column, bool value, RowCells *row)
{
    row->add({column, CellKind::Boolean, NumberForm::General, value ? 1.0 : 0.0, {}});
}

void CellDecoder::decodeMulRk(const Record &record, RowCells *row)
{
    int column = columnOf(record);
    for (qint64 at = 4; at + kMulRkBytes <= record.bytes; at += kMulRkBytes, ++column) {
        if (column >= kMaxColumns) {
            count(SheetProblem::OutOfSheet, rowOfCell(record), column);
            return;
        }
        const NumberForm form = formOfXf(loadLE<quint16>(record.data + at));
        addNumber(column, numberOfRk(loadLE<quint32>(record.data + at + 2)), form, row);
    }
}

void CellDecoder::decodeShared(const Record &record, RowCells *row)
{
    const std::u16string_view text = m_shared.at(loadLE<quint32>(record.data + kCellHeader));
    if (text.data() == nullptr) {
        count(SheetProblem::NoSuchText, rowOfCell(record), columnOf(record));
        return;
    }
    row->add({columnOf(record), CellKind::Text, NumberForm::General, 0, text});
}

void CellDecoder::decodeText(const Record &record, qint64 header, qint64 lengthBytes, RowCells *row)
{
    const int row0 = rowOfCell(record);
    const int column = columnOf(record);
    const size_t begin = row->ownText().size();
    ContinuedBytes in(m_reader, record, header);
    const qint64 length = lengthBytes == 1 ? in.u8() : in.u16();
    if (!m_rules.append(in, length, &row->ownText())) {
        count(SheetProblem::BadText, row0, column);
    }
    row->addOwnText(column, begin);
}

void CellDecoder::decodeBoolErr(const Record &record, qint64 header, RowCells *row)
{
    if (record.data[header + 1] == 0) {
        return addBoolean(columnOf(record), record.data[header] != 0, row);
    }
    addError(rowOfCell(record), columnOf(record), record.data[header], row);
}

/// An unknown code is kept as a cell, so that the row keeps its form.
void CellDecoder::addError(int row0, int column, quint8 code, RowCells *row)
{
    const std::u16string_view text = errorText(code);
    if (text.empty()) {
        count(SheetProblem::BadValue, row0, column);
    }
    row->add({column, CellKind::Error, NumberForm::General, 0, text.empty() ? u"#ERROR!" : text});
}

void CellDecoder::decodeFormula(const Record &record, qint64 header, NumberForm form, RowCells *row)
{
    constexpr quint16 kNotANumber = 0xFFFF;
    const uchar *const result = record.data + header;
    const int column = columnOf(record);
    if (loadLE<quint16>(result + 6) != kNotANumber) {
        return addNumber(column, loadLE<double>(result), form, row);
    }
    switch (result[0]) {
    case 0:
        return addResultText(rowOfCell(record), column, row);
    case 1:
        return addBoolean(column, result[2] != 0, row);
    case 2:
        return addError(rowOfCell(record), column, result[2], row);
    default:
        row->add({column, CellKind::Text, NumberForm::General, 0, u""});
    }
}

/// Go to the STRING record of a formula: the records of shared formulas and arrays may precede it.
bool CellDecoder::seekResultText(Record *record)
{
    constexpr int kMaxBetween = 16;
    for (int i = 0; i < kMaxBetween; ++i) {
        const qint64 before = m_reader.position();
        if (!m_reader.next(record)) {
            return false;
        }
        if (record->id == kString || record->id == kString2) {
            return true;
        }
        if (rowOfCell(*record) >= 0 || record->id == kRow || record->id == kEof ||
            isBof(record->id)) {
            m_reader.seek(before);
            return false;
        }
    }
    return false;
}

void CellDecoder::addResultText(int row0, int column, RowCells *row)
{
    Record record;
    if (!seekResultText(&record)) {
        count(SheetProblem::NoResult, row0, column);
        return;
    }
    const size_t begin = row->ownText().size();
    ContinuedBytes in(m_reader, record);
    const qint64 length = record.id == kString2 ? in.u8() : in.u16();
    if (!m_rules.append(in, length, &row->ownText())) {
        count(SheetProblem::BadText, row0, column);
    }
    row->addOwnText(column, begin);
}

} // namespace corvanta::xls
