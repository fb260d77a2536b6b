// Rows follow one another in pages; a row is never on two pages. Numbers are those of the
// machine and may be at any address, except units, which are at even ones:
//
//   row    number 4, with bit 31 for a hidden row; cells 2
//   skip   tag, column 2: the next cell is not in the column after the last one
//   cell   tag, with the form in its high bits, and by its kind: a number of 1, 2, 4 or 8 bytes;
//          the number of a shared string 4; the length of a text 4, a byte if it is needed, its
//          units
#include "codecs/xlsx/read/recorded_rows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <limits>
#include <system_error>

using namespace Qt::StringLiterals;

namespace corvanta::xlsx {

using sheet::CellKind;

namespace {

constexpr size_t kPageBytes = size_t(64) << 10;
constexpr quint32 kHiddenRow = 0x80000000;
constexpr int kFormShift = 4;
constexpr uchar kTagMask = 0x0F;

enum CellTag : uchar {
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

/// See RowRecording.
bool isShared(const sheet::SheetCell &cell)
{
    return cell.kind == CellKind::Text && cell.number > 0;
}

/// Bytes that the row takes at most.
size_t roomOf(const sheet::SheetRow &row)
{
    constexpr size_t kRowBytes = sizeof(quint32) + sizeof(quint16);
    constexpr size_t kCellBytes = 1 + sizeof(quint16) + 1 + sizeof(double);
    size_t bytes = kRowBytes + row.cells.size() * kCellBytes;
    for (const sheet::SheetCell &cell : row.cells) {
        bytes += isShared(cell) ? 0 : cell.text.size() * sizeof(char16_t);
    }
    return bytes;
}

/// In the folder for temporary files of the system; not open if there is none.
platform::FileHandle openPageFile()
{
    std::error_code error;
    const auto folder = std::filesystem::temp_directory_path(error);
    return error ? platform::FileHandle()
                 : platform::FileHandle::openTemporary(QString::fromStdString(folder.string()));
}

} // namespace

bool PageFile::append(const uchar *bytes, size_t n)
{
    if (!m_file.isOpen()) {
        m_file = openPageFile();
    }
    bool isGood = m_file.isOpen() && m_file.seek(m_size);
    for (const uchar *const end = bytes + n; isGood && bytes != end;) {
        const qint64 written = m_file.write(bytes, end - bytes);
        isGood = written > 0;
        bytes += isGood ? written : 0;
    }
    m_size += static_cast<qint64>(n);
    return isGood;
}

bool PageFile::read(qint64 offset, uchar *bytes, size_t n)
{
    bool isGood = m_file.seek(offset);
    for (const uchar *const end = bytes + n; isGood && bytes != end;) {
        const qint64 done = m_file.read(bytes, end - bytes);
        isGood = done > 0;
        bytes += isGood ? done : 0;
    }
    return isGood;
}

/// Begin a page that has room for a row of `bytes`.
void RowRecording::beginPage(size_t bytes)
{
    const size_t pageBytes = std::max(kPageBytes, bytes);
    m_pages.push_back({std::make_unique_for_overwrite<uchar[]>(pageBytes)});
    m_at = m_pages.back().memory.get();
    m_end = m_at + pageBytes;
    m_memoryBytes += static_cast<qint64>(pageBytes);
}

/// The last page is complete.
void RowRecording::endPage()
{
    if (!m_pages.empty()) {
        m_pages.back().size = static_cast<size_t>(m_at - m_pages.back().memory.get());
    }
}

/// Move the last page, which is complete, to the file.
void RowRecording::moveToFile(Page *page)
{
    page->offset = m_file.size();
    m_hasFailed = !m_file.append(page->memory.get(), page->size);
    m_fileBytes += static_cast<qint64>(page->size);
    m_memoryBytes -= m_end - page->memory.get();
    page->memory.reset();
}

void RowRecording::finish(const sheet::SheetProblems &problems)
{
    endPage();
    m_problems = problems;
}

void RowRecording::add(const sheet::SheetRow &row, qint64 memoryBytes)
{
    const size_t bytes = roomOf(row);
    if (static_cast<size_t>(m_end - m_at) < bytes) {
        endPage();
        if (m_memoryBytes > memoryBytes && !m_pages.empty()) {
            moveToFile(&m_pages.back());
        }
        beginPage(bytes);
    }
    m_at = store(m_at, static_cast<quint32>(row.number) | (row.isHidden ? kHiddenRow : 0));
    m_at = store(m_at, static_cast<quint16>(row.cells.size()));
    m_column = -1;
    for (const sheet::SheetCell &cell : row.cells) {
        put(cell);
    }
    ++m_rows;
}

void RowRecording::put(const sheet::SheetCell &cell)
{
    if (cell.column != m_column + 1) {
        m_at = store(store<uchar>(m_at, kSkip), static_cast<quint16>(cell.column));
    }
    m_column = cell.column;
    if (cell.kind == CellKind::Number) {
        putNumber(cell);
    } else if (cell.kind == CellKind::Boolean) {
        m_at = store<uchar>(store<uchar>(m_at, kBoolean), cell.number != 0 ? 1 : 0);
    } else if (isShared(cell)) {
        m_at = store(store<uchar>(m_at, kSharedText), static_cast<quint32>(cell.number - 1));
    } else {
        putText(cell);
    }
}

/// Most numbers are small and whole.
void RowRecording::putNumber(const sheet::SheetCell &cell)
{
    const auto tag = [&](CellTag kind) {
        return static_cast<uchar>(kind | static_cast<int>(cell.form) << kFormShift);
    };
    const double value = cell.number;
    const bool isInt = value >= 0 && value <= std::numeric_limits<qint32>::max() &&
                       !std::signbit(value) && value == static_cast<qint32>(value);
    const auto whole = isInt ? static_cast<qint32>(value) : -1;
    if (!isInt) {
        m_at = store(store(m_at, tag(kDoubleNumber)), value);
    } else if (whole <= std::numeric_limits<quint8>::max()) {
        m_at = store(store(m_at, tag(kByteNumber)), static_cast<quint8>(whole));
    } else if (whole <= std::numeric_limits<quint16>::max()) {
        m_at = store(store(m_at, tag(kShortNumber)), static_cast<quint16>(whole));
    } else {
        m_at = store(store(m_at, tag(kIntNumber)), whole);
    }
}

void RowRecording::putText(const sheet::SheetCell &cell)
{
    uchar *at = store<uchar>(m_at, cell.kind == CellKind::Text    ? kText
                                   : cell.kind == CellKind::Error ? kError
                                                                  : kIsoDate);
    at = store(at, static_cast<quint32>(cell.text.size()));
    at += isOdd(at) ? 1 : 0;
    cell.text.copy(reinterpret_cast<char16_t *>(at), cell.text.size());
    m_at = at + cell.text.size() * sizeof(char16_t);
}

double RecordedRows::fractionDone() const
{
    return static_cast<double>(m_rows.load(std::memory_order_relaxed)) /
           static_cast<double>(std::max<qint64>(1, m_recording->m_rows));
}

/// Go to the next page. Returns false if it cannot be read from the file.
bool RecordedRows::openPage()
{
    const RowRecording::Page &page = m_recording->m_pages[m_nextPage++];
    m_at = page.memory.get();
    if (m_at == nullptr) {
        m_read.resize(page.size);
        m_at = m_read.data();
        if (!m_recording->m_file.read(page.offset, m_read.data(), page.size)) {
            return false;
        }
    }
    m_end = m_at + page.size;
    return true;
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
    uchar tag = *m_at++;
    if (tag == kSkip) {
        cell->column = load<quint16>(&m_at);
        tag = *m_at++;
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
        // Its memory is read when the row is complete.
        __builtin_prefetch(cell->text.data());
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
    if (m_at == m_end && !openPage()) {
        return Fault{sheet::WorkbookError::ReadFailed,
                     u"the temporary file of its rows cannot be read"_s};
    }
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
