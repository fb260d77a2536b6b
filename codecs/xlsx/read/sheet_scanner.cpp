// The parts of a sheet that are read; all others are skipped:
//
//   <worksheet>
//     <sheetData>
//       <row r="1" hidden="1"> cells </row>      both r attributes are optional
//     </sheetData>
//   </worksheet>
#include "codecs/xlsx/read/sheet_scanner.h"

#include "base/number.h"
#include "codecs/sheet/cell_text.h"
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/read/string_text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::xlsx {

using sheet::CellKind;
using sheet::SheetProblem;
using sheet::WorkbookError;
using Kind = opc::Tag::Kind;

namespace {

/// Units of all texts of one row. A row of a real sheet is far below it.
constexpr size_t kMaxRowUnits = size_t(32) << 20;
/// Cells of one row, and rows of one sheet, also those beyond the limits of sheets.
constexpr size_t kMaxRowCells = 4 * sheet::kMaxColumns;
constexpr qint64 kMaxRowNumber = 4 * sheet::kMaxRows;

QByteArrayView trimmed(QByteArrayView text)
{
    return text.trimmed();
}

/// Read the raw text of the element whose opening tag was the last item.
sheet::WorkbookResult<void> readRawText(PartText &part, const opc::Tag &opening, QByteArray *value)
{
    value->clear();
    for (int depth = opening.kind == Kind::Open ? 1 : 0; depth > 0;) {
        const auto item = part.nextItem();
        if (!item) {
            return item.fault();
        }
        switch (item->kind) {
        case MarkupItem::Kind::End:
            return part.truncated();
        case MarkupItem::Kind::Text:
            *value += item->text;
            break;
        case MarkupItem::Kind::CData:
            *value += item->text.toByteArray().replace('&', "&amp;");
            break;
        case MarkupItem::Kind::Tag:
            depth += item->tag.kind == Kind::Open ? 1 : item->tag.kind == Kind::Close ? -1 : 0;
            break;
        }
        if (static_cast<size_t>(value->size()) > kMaxTextUnits) {
            return longText(part);
        }
    }
    // appendText() loads blocks beyond the end.
    value->reserve(value->size() + static_cast<qsizetype>(Piece::kPadding));
    return {};
}

} // namespace

SheetScanner::SheetScanner(std::unique_ptr<PartText> part, SharedStrings &strings,
                           const std::vector<sheet::NumberForm> &forms)
    : m_part(std::move(part))
    , m_strings(strings)
    , m_forms(forms)
{
}

// ---- Problems.

QString SheetScanner::placeOf(int column) const
{
    return u"cell %1%2"_s.arg(QString::fromLatin1(sheet::columnLetters(std::max(column, 0))),
                              QString::number(m_row + 1));
}

void SheetScanner::count(SheetProblem problem, int column)
{
    m_problems[static_cast<size_t>(problem)].add([&] { return placeOf(column); });
}

// ---- Rows.

/// Read up to the first row.
SheetScanner::Done SheetScanner::enterRows()
{
    while (m_place == Place::Front) {
        const auto item = m_part->nextItem();
        if (!item) {
            return item.fault();
        }
        if (item->kind == MarkupItem::Kind::End) {
            return m_part->truncated();
        }
        if (item->isOpening("sheetData")) {
            m_place = item->tag.kind == Kind::Open ? Place::Rows : Place::Tail;
        } else if (item->isClosing("worksheet") || item->isClosing("dialogsheet") ||
                   item->isClosing("macrosheet") || item->isClosing("chartsheet")) {
            m_place = Place::Tail;
        }
    }
    return {};
}

/// Take a row tag of the usual form: <row r="7" spans="1:3">. The views of other tags are general,
/// and slower.
bool SheetScanner::takeUsualRow()
{
    constexpr QByteArrayView kBeginning("<row r=\"");
    const QByteArrayView text(m_part->begin(), m_part->end() - m_part->begin());
    if (!text.startsWith(kBeginning)) {
        return false;
    }
    const qsizetype end = text.indexOf('>');
    const QByteArrayView tag = text.first(std::max<qsizetype>(end, 0));
    const qsizetype quote = tag.indexOf('"', kBeginning.size());
    if (quote < 0 || tag.endsWith('/') || tag.indexOf("hidden", quote) >= 0) {
        return false;
    }
    m_part->consumeTo(text.data() + end + 1);
    startRow(tag.sliced(kBeginning.size(), quote - kBeginning.size()));
    return true;
}

/// Read up to the next row, and its tag. Returns false after the last row.
sheet::WorkbookResult<bool> SheetScanner::findRow()
{
    while (m_place == Place::Rows) {
        if (takeUsualRow()) {
            return true;
        }
        const auto item = m_part->nextItem();
        if (!item) {
            return item.fault();
        }
        if (item->kind == MarkupItem::Kind::End) {
            return m_part->truncated();
        }
        if (item->isOpening("row")) {
            startRow(item->tag.attribute("r"));
            m_isRowEmpty = item->tag.kind == Kind::Empty;
            m_isRowHidden = isTrue(item->tag.attribute("hidden"));
            return true;
        }
        if (item->isClosing("sheetData")) {
            m_place = Place::Tail;
        }
    }
    return false;
}

void SheetScanner::setRowNumber(QByteArrayView text)
{
    quint64 number = 0;
    const QByteArrayView digits = trimmed(text);
    if (parseUInt({digits.data(), static_cast<size_t>(digits.size())},
                  std::numeric_limits<qint32>::max(), &number) &&
        number > 0) {
        m_row = static_cast<qint64>(number) - 1;
    } else {
        ++m_row;
        count(SheetProblem::BadReference, 0);
    }
}

/// `number`: the r attribute.
void SheetScanner::startRow(std::optional<QByteArrayView> number)
{
    m_cells.clear();
    m_texts.clear();
    m_pending.clear();
    m_column = -1;
    m_rowCells = 0;
    m_isInOrder = true;
    m_isRowEmpty = false;
    m_isRowHidden = false;
    if (number) {
        setRowNumber(*number);
    } else {
        ++m_row;
    }
    if (m_row <= m_highestRow) {
        m_problems[static_cast<size_t>(SheetProblem::RowOrder)].add(
            [&] { return u"row %1"_s.arg(m_row + 1); });
    }
    m_highestRow = std::max(m_highestRow, m_row);
}

sheet::WorkbookResult<bool> SheetScanner::next(sheet::SheetRow *row)
{
    if (const auto entered = enterRows(); !entered) {
        return entered.fault();
    }
    for (;;) {
        auto found = findRow();
        if (!found || !*found) {
            return found;
        }
        if (m_isRowEmpty && !m_isRowHidden) {
            continue;
        }
        if (const auto read = m_isRowEmpty ? Done() : readCells(); !read) {
            return read.fault();
        }
        if (m_row >= kMaxRowNumber) {
            return m_part->fault(WorkbookError::TooLarge, u"the sheet has too many rows"_s);
        }
        if (m_row >= sheet::kMaxRows) {
            if (!m_cells.empty()) {
                count(SheetProblem::OutOfSheet, m_cells.front().column);
            }
            continue;
        }
        finishCells();
        *row = {m_row, m_isRowHidden, m_cells};
        return true;
    }
}

// ---- Cells of a row.

SheetScanner::Done SheetScanner::readCells()
{
    constexpr QByteArrayView kClosing("</row>");
    for (;;) {
        if (auto done = readUsualCells(); !done) {
            return done;
        }
        if (QByteArrayView(m_part->begin(), m_part->end()).startsWith(kClosing)) {
            m_part->consumeTo(m_part->begin() + kClosing.size());
            return {};
        }
        const auto more = readItem();
        if (!more) {
            return more.fault();
        }
        if (!*more) {
            return {};
        }
    }
}

SheetScanner::Done SheetScanner::readUsualCells()
{
    for (;;) {
        RawCell cell;
        const char *after = nullptr;
        if (m_part->begin() == m_part->end() || *m_part->begin() != '<') {
            return {};
        }
        const CellScan found = scanCell(m_part->begin(), m_part->end(), &cell, &after);
        if (found == CellScan::Unusual) {
            return {};
        }
        if (found == CellScan::Incomplete) {
            const auto more = m_part->extend();
            if (!more || !*more) {
                return more ? Done() : more.fault();
            }
            continue;
        }
        if (auto added = addCell(cell); !added) {
            return added;
        }
        m_part->consumeTo(after);
    }
}

/// Read an item of the row other than a usual cell. Returns false at the end of the row.
sheet::WorkbookResult<bool> SheetScanner::readItem()
{
    const auto item = m_part->nextItem();
    if (!item) {
        return item.fault();
    }
    if (item->kind == MarkupItem::Kind::End) {
        return m_part->truncated();
    }
    if (item->isClosing("row")) {
        return false;
    }
    if (item->isOpening("c")) {
        if (const auto read = readUnusualCell(item->tag); !read) {
            return read.fault();
        }
    } else if (item->kind == MarkupItem::Kind::Tag && item->tag.kind == Kind::Open) {
        if (const auto skipped = m_part->skipElement(item->tag); !skipped) {
            return skipped.fault();
        }
    }
    return true;
}

SheetScanner::Done SheetScanner::readUnusualCell(const opc::Tag &tag)
{
    RawCell cell;
    if (const auto reference = tag.attribute("r")) {
        cell.hasReference = true;
        cell.column = columnOfReference(*reference);
    }
    quint64 style = 0;
    const QByteArrayView digits = tag.attribute("s").value_or(QByteArrayView());
    parseUInt({digits.data(), static_cast<size_t>(digits.size())}, 0xFFFFFFFF, &style);
    cell.style = static_cast<quint32>(style);
    // The tag leaves the window while the cell is read.
    const QByteArray type = tag.attribute("t").value_or(QByteArrayView()).toByteArray();
    cell.type = type;
    if (tag.kind == Kind::Open) {
        if (auto read = readInside(&cell); !read) {
            return read;
        }
    }
    return addCell(cell);
}

/// Read the content of a cell. The text of an inline string is appended to m_texts.
SheetScanner::Done SheetScanner::readInside(RawCell *cell)
{
    const size_t textBegin = m_texts.size();
    m_isBadInline = false;
    bool isInline = false;
    for (;;) {
        const auto item = m_part->nextItem();
        if (!item) {
            return item.fault();
        }
        if (item->kind == MarkupItem::Kind::End) {
            return m_part->truncated();
        }
        if (item->isClosing("c")) {
            break;
        }
        Done done;
        if (item->isOpening("is")) {
            isInline = true;
            done = appendStringItem(*m_part, item->tag, &m_texts, &m_isBadInline);
        } else if (item->isOpening("v")) {
            done = readRawText(*m_part, item->tag, &m_value);
            cell->hasValue = true;
        } else if (item->kind == MarkupItem::Kind::Tag && item->tag.kind != Kind::Close) {
            cell->hasFormula = cell->hasFormula || item->isOpening("f");
            done = m_part->skipElement(item->tag);
        }
        if (!done) {
            return done;
        }
    }
    if (isInline && !cell->hasValue) {
        // addCell() takes the text that is there.
        cell->type = "inlineStr";
        m_pending.push_back({m_cells.size(), textBegin, m_texts.size() - textBegin});
        return {};
    }
    cell->value = m_value;
    return {};
}

/// Set the column of the cell. Returns false for one that no sheet has.
bool SheetScanner::placeCell(const RawCell &cell, sheet::SheetCell *placed)
{
    if (cell.hasReference && cell.column < 0) {
        count(SheetProblem::BadReference, m_column + 1);
    }
    placed->column = cell.column >= 0 ? cell.column : m_column + 1;
    if (placed->column >= static_cast<int>(sheet::kMaxColumns)) {
        count(SheetProblem::OutOfSheet, placed->column);
        return false;
    }
    m_isInOrder = m_isInOrder && placed->column > m_column;
    m_column = placed->column;
    return true;
}

SheetScanner::Done SheetScanner::addCell(const RawCell &cell)
{
    // Also cells without a value: their number alone can cost hours.
    if (m_texts.size() > kMaxRowUnits || ++m_rowCells > kMaxRowCells) {
        return m_part->fault(WorkbookError::TooLarge,
                             u"row %1 has too much content"_s.arg(m_row + 1));
    }
    const bool isInline = !m_pending.empty() && m_pending.back().cell == m_cells.size();
    sheet::SheetCell placed;
    if (!placeCell(cell, &placed)) {
        m_pending.resize(m_pending.size() - (isInline ? 1 : 0));
        return {};
    }
    if (isInline) {
        if (m_isBadInline) {
            count(SheetProblem::BadText, placed.column);
        }
        placed.kind = CellKind::Text;
        m_cells.push_back(placed);
        return {};
    }
    if (!cell.hasValue) {
        if (cell.hasFormula) {
            count(SheetProblem::NoResult, placed.column);
        }
        return {};
    }
    return setValue(cell, &placed);
}

/// Set what the cell holds, and add it to the row.
SheetScanner::Done SheetScanner::setValue(const RawCell &cell, sheet::SheetCell *placed)
{
    // Types of one letter are by far the most frequent; all others are texts.
    const char type = cell.type.isEmpty() ? 'n' : cell.type.size() == 1 ? cell.type.front() : ' ';
    switch (type) {
    case 'n':
        setNumber(cell, placed);
        break;
    case 's':
        return setShared(cell, placed);
    case 'b':
        placed->kind = CellKind::Boolean;
        placed->number = isTrue(trimmed(cell.value)) ? 1 : 0;
        m_cells.push_back(*placed);
        break;
    default:
        placed->kind = type == 'e'   ? CellKind::Error
                       : type == 'd' ? CellKind::IsoDate
                                     : CellKind::Text;
        setText(cell.value, placed);
    }
    return {};
}

void SheetScanner::setNumber(const RawCell &cell, sheet::SheetCell *placed)
{
    placed->kind = CellKind::Number;
    placed->form = cell.style < m_forms.size() ? m_forms[cell.style] : sheet::NumberForm::General;
    if (parseValue(cell.value, &placed->number)) {
        m_cells.push_back(*placed);
        return;
    }
    setOddNumber(cell, placed);
}

/// The value is not a plain number: it may have spaces around it, or be something else.
void SheetScanner::setOddNumber(const RawCell &cell, sheet::SheetCell *placed)
{
    const QByteArrayView text = trimmed(cell.value);
    if (text.isEmpty()) {
        if (cell.hasFormula) {
            count(SheetProblem::NoResult, placed->column);
        }
        return;
    }
    if (parseValue(text, &placed->number)) {
        m_cells.push_back(*placed);
        return;
    }
    count(SheetProblem::BadValue, placed->column);
    placed->kind = CellKind::Text;
    placed->number = 0; // it may have the digits at the beginning; see RowRecording
    setText(cell.value, placed);
}

SheetScanner::Done SheetScanner::setShared(const RawCell &cell, sheet::SheetCell *placed)
{
    quint64 index = 0;
    const QByteArrayView digits = trimmed(cell.value);
    placed->kind = CellKind::Text;
    if (!parseUInt({digits.data(), static_cast<size_t>(digits.size())}, ~quint32(0), &index)) {
        count(SheetProblem::NoSuchText, placed->column);
        return {};
    }
    placed->number = static_cast<double>(index) + 1; // see RowRecording
    if (const std::u16string_view *const text = m_strings.loaded(index)) {
        placed->text = *text;
    } else {
        const auto found = m_strings.at(index);
        if (!found) {
            return found.fault();
        }
        if (!*found) {
            count(SheetProblem::NoSuchText, placed->column);
            return {};
        }
        placed->text = **found;
    }
    if (m_strings.isReplaced(index)) {
        count(SheetProblem::BadText, placed->column);
    }
    m_cells.push_back(*placed);
    return {};
}

void SheetScanner::setText(QByteArrayView raw, sheet::SheetCell *placed)
{
    const size_t begin = m_texts.size();
    // The references of an unusual cell are still in its value.
    if (!appendText(raw, false, &m_texts)) {
        count(SheetProblem::BadText, placed->column);
    }
    m_pending.push_back({m_cells.size(), begin, m_texts.size() - begin});
    m_cells.push_back(*placed);
}

/// The texts of the row no longer move: point the cells to them.
void SheetScanner::finishCells()
{
    for (const PendingText &text : m_pending) {
        m_cells[text.cell].text = {m_texts.data() + text.begin, text.size};
    }
    if (!m_isInOrder) {
        orderCells();
    }
}

/// Sort the cells; of several at one place the last one counts.
void SheetScanner::orderCells()
{
    const auto column = [](const sheet::SheetCell &cell) { return cell.column; };
    std::ranges::stable_sort(m_cells, {}, column);
    size_t kept = 0;
    for (size_t i = 0; i < m_cells.size(); ++i) {
        if (kept > 0 && m_cells[kept - 1].column == m_cells[i].column) {
            count(SheetProblem::RepeatedCell, m_cells[i].column);
            m_cells[kept - 1] = m_cells[i];
        } else {
            m_cells[kept++] = m_cells[i];
        }
    }
    m_cells.resize(kept);
}

} // namespace corvanta::xlsx
