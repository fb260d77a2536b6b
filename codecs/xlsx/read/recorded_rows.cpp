// Rows are in pages, one after the other. Each item begins with a tag; numbers are those of the
// machine and may be at any address, except units, which are at even ones:
//
//   row    tag, number 4, with bit 31 for a hidden row, cells 2
//   skip   tag, column 2: the next cell is not in the column after the last one
//   cell   tag, with the form in its high bits, and by its kind: a number of 1, 2, 4 or 8 bytes;
//   the
//          number of a shared string 4; the length of a text 4, a byte if it is needed, its units
//   next   tag: the items continue on the next page
#include "codecs/xlsx/read/recorded_rows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace corvanta::xlsx {

using sheet::CellKind;

namespace {

constexpr size_t kPageBytes = size_t(64) << 10;
constexpr quint32 kHiddenRow = 0x80000000;
constexpr int kFormShift = 4;
constexpr uchar kTagMask = 0x0F;

enum Tag : uchar {
    kNextPage,
    kRow,
    kSkip,
    kByteNumber,
    kShortNumber,
    kIntNumber,
    kDoubleNumber,
    kBoolean,
    kSharedText,
    kText,
    kError,
    kIsoDate,
};

/// Of the tags from kText.
constexpr std::array kTextKinds = {CellKind::Text, CellKind::Error, CellKind::IsoDate};

template <class T> uchar *store(uchar *at, T value)
{
    std::memcpy(at, &value, sizeof value);
    return at + sizeof value;
}

template <class T> T load(const uchar **at)
{
    T value;
    std::memcpy(&value, *at, sizeof value);
    *at += sizeof value;
    return value;
}

bool isOdd(const uchar *at)
{
    return (reinterpret_cast<quintptr>(at) & 1) != 0;
}

} // namespace

/// Memory for an item, which leaves room for the tag of the next page.
uchar *RowRecording::room(size_t bytes)
{
    if (static_cast<size_t>(m_end - m_at) <= bytes) {
        if (m_at != nullptr) {
            *m_at = kNextPage;
        }
        const size_t pageBytes = std::max(kPageBytes, bytes + 1);
        m_pages.push_back(std::make_unique_for_overwrite<uchar[]>(pageBytes));
        m_at = m_pages.back().get();
        m_end = m_at + pageBytes;
        m_bytes += static_cast<qint64>(pageBytes);
    }
    return m_at;
}

void RowRecording::add(const sheet::SheetRow &row)
{
    uchar *at = store<uchar>(room(1 + sizeof(quint32) + sizeof(quint16)), kRow);
    at = store(at, static_cast<quint32>(row.number) | (row.isHidden ? kHiddenRow : 0));
    m_at = store(at, static_cast<quint16>(row.cells.size()));
    m_column = -1;
    for (const sheet::SheetCell &cell : row.cells) {
        put(cell);
    }
    ++m_rows;
}

void RowRecording::put(const sheet::SheetCell &cell)
{
    if (cell.column != m_column + 1) {
        uchar *const at = store<uchar>(room(1 + sizeof(quint16)), kSkip);
        m_at = store(at, static_cast<quint16>(cell.column));
    }
    m_column = cell.column;
    if (cell.kind == CellKind::Number) {
        putNumber(cell);
    } else if (cell.kind == CellKind::Boolean) {
        m_at = store<uchar>(room(2), kBoolean);
        m_at = store<uchar>(m_at, cell.number != 0 ? 1 : 0);
    } else if (cell.kind == CellKind::Text && cell.number > 0) {
        uchar *const at = store<uchar>(room(1 + sizeof(quint32)), kSharedText);
        m_at = store(at, static_cast<quint32>(cell.number - 1));
    } else {
        putText(cell);
    }
}

/// Most numbers are small and whole.
void RowRecording::putNumber(const sheet::SheetCell &cell)
{
    uchar *const at = room(1 + sizeof(double));
    const auto tag = [&](Tag kind) {
        return static_cast<uchar>(kind | static_cast<int>(cell.form) << kFormShift);
    };
    const double value = cell.number;
    const bool isInt = value >= 0 && value <= std::numeric_limits<qint32>::max() &&
                       !std::signbit(value) && value == static_cast<qint32>(value);
    const auto whole = isInt ? static_cast<qint32>(value) : -1;
    if (!isInt) {
        m_at = store(store(at, tag(kDoubleNumber)), value);
    } else if (whole <= std::numeric_limits<quint8>::max()) {
        m_at = store(store(at, tag(kByteNumber)), static_cast<quint8>(whole));
    } else if (whole <= std::numeric_limits<quint16>::max()) {
        m_at = store(store(at, tag(kShortNumber)), static_cast<quint16>(whole));
    } else {
        m_at = store(store(at, tag(kIntNumber)), whole);
    }
}

void RowRecording::putText(const sheet::SheetCell &cell)
{
    const size_t bytes = cell.text.size() * sizeof(char16_t);
    uchar *at = room(2 + sizeof(quint32) + bytes);
    at = store<uchar>(at, cell.kind == CellKind::Text    ? kText
                          : cell.kind == CellKind::Error ? kError
                                                         : kIsoDate);
    at = store(at, static_cast<quint32>(cell.text.size()));
    at += isOdd(at) ? 1 : 0;
    cell.text.copy(reinterpret_cast<char16_t *>(at), cell.text.size());
    m_at = at + bytes;
}

RecordedRows::RecordedRows(std::unique_ptr<RowRecording> recording, SharedStrings &strings)
    : m_recording(std::move(recording))
    , m_strings(strings)
{
    if (!m_recording->m_pages.empty()) {
        m_at = m_recording->m_pages.front().get();
    }
}

double RecordedRows::fractionDone() const
{
    return static_cast<double>(m_rows.load(std::memory_order_relaxed)) /
           static_cast<double>(std::max<qint64>(1, m_recording->m_rows));
}

/// The tag of the next item, on whatever page it is.
uchar RecordedRows::takeTag()
{
    uchar tag = *m_at++;
    if (tag == kNextPage) {
        m_at = m_recording->m_pages[++m_page].get();
        tag = *m_at++;
    }
    return tag;
}

void RecordedRows::takeText(sheet::SheetCell *cell)
{
    const auto units = load<quint32>(&m_at);
    m_at += isOdd(m_at) ? 1 : 0;
    cell->text = {reinterpret_cast<const char16_t *>(m_at), units};
    m_at += units * sizeof(char16_t);
}

/// Take a cell, whose column is set to the one after the last cell.
void RecordedRows::takeCell(sheet::SheetCell *cell)
{
    uchar tag = takeTag();
    if (tag == kSkip) {
        cell->column = load<quint16>(&m_at);
        tag = takeTag();
    }
    cell->form = static_cast<sheet::NumberForm>(tag >> kFormShift);
    switch (tag & kTagMask) {
    case kByteNumber:
        cell->number = load<quint8>(&m_at);
        break;
    case kShortNumber:
        cell->number = load<quint16>(&m_at);
        break;
    case kIntNumber:
        cell->number = load<qint32>(&m_at);
        break;
    case kDoubleNumber:
        cell->number = load<double>(&m_at);
        break;
    case kBoolean:
        cell->kind = CellKind::Boolean;
        cell->number = load<quint8>(&m_at);
        break;
    case kSharedText:
        cell->kind = CellKind::Text;
        cell->text = *m_strings.loaded(load<quint32>(&m_at));
        break;
    default:
        cell->kind = kTextKinds[(tag & kTagMask) - kText];
        takeText(cell);
        break;
    }
}

sheet::WorkbookResult<bool> RecordedRows::next(sheet::SheetRow *row)
{
    const qint64 done = m_rows.load(std::memory_order_relaxed);
    if (done == m_recording->m_rows) {
        return false;
    }
    takeTag();
    const auto number = load<quint32>(&m_at);
    m_cells.assign(load<quint16>(&m_at), {});
    int column = -1;
    for (sheet::SheetCell &cell : m_cells) {
        cell.column = column + 1;
        takeCell(&cell);
        column = cell.column;
    }
    *row = {number & ~kHiddenRow, (number & kHiddenRow) != 0, m_cells};
    m_rows.store(done + 1, std::memory_order_relaxed);
    return true;
}

} // namespace corvanta::xlsx
