// A sheet stores its cells in blocks of 32 rows, row by row, but some writers store them column by
// column. The scan determines which it is.
#include "codecs/xls/sheet_rows.h"

#include "base/limits.h"

#include <algorithm>

namespace corvanta::xls {

using sheet::SheetProblem;
using sheet::WorkbookError;

namespace {

/// `all` may be 0, for a sheet without records.
double shareOf(qint64 done, qint64 all)
{
    return static_cast<double>(done) / static_cast<double>(std::max<qint64>(1, all));
}

} // namespace

BiffRows::BiffRows(const SheetSource &source, CellForms forms, SheetScan scan)
    : m_source(source)
    , m_forms(std::move(forms))
    , m_scan(std::move(scan))
    , m_decoder(source.reader, source.rules, m_forms, source.shared, m_problems)
{
}

sheet::WorkbookResult<void> BiffRows::open()
{
    if (m_scan.hasCells && !m_scan.isOrdered) {
        if (m_scan.end - m_scan.begin > limits::kMemberBytes) {
            return Fault{WorkbookError::TooLarge,
                         QStringLiteral("the cells are not stored row by row"), m_scan.begin};
        }
        if (!m_source.reader.load(m_scan.begin, m_scan.end)) {
            return readFailed(m_scan.begin);
        }
        auto sorted = sortedCells(m_source.reader, m_scan, m_source.stop);
        if (!sorted) {
            return sorted.fault();
        }
        m_sorted = *std::move(sorted);
    }
    m_source.reader.seek(m_scan.begin);
    return {};
}

/// Go to the next cell record of the sheet; false at its end.
bool BiffRows::nextCell(Record *record)
{
    RecordReader &reader = m_source.reader;
    // A call ends between two records of the sheet itself, never inside an embedded chart.
    int depth = reader.position() > m_scan.begin ? 1 : 0;
    while (reader.position() < m_scan.end && reader.next(record)) {
        depth += isBof(record->id) ? 1 : (record->id == kEof ? -1 : 0);
        if (depth == 0) {
            return false;
        }
        if (record->id == kIxfe) {
            m_decoder.takeIxfe(*record);
        } else if (depth == 1 && rowOfCell(*record) >= 0) {
            return true;
        }
    }
    return false;
}

/// Decode all cells up to the first one of another row, which is read again for the next row.
void BiffRows::readOrdered()
{
    Record record;
    m_row = -1;
    while (nextCell(&record)) {
        const int row = rowOfCell(record);
        if (m_row >= 0 && row != m_row) {
            m_source.reader.seek(record.offset);
            return;
        }
        m_row = row;
        m_decoder.decode(record, &m_cells);
    }
}

void BiffRows::readSorted()
{
    m_row = m_nextSorted < m_sorted.size() ? m_sorted[m_nextSorted].row : -1;
    Record record;
    while (m_nextSorted < m_sorted.size() && m_sorted[m_nextSorted].row == m_row) {
        m_source.reader.seek(m_sorted[m_nextSorted++].offset);
        bool isRead = m_source.reader.next(&record);
        if (isRead && record.id == kIxfe) {
            m_decoder.takeIxfe(record);
            isRead = m_source.reader.next(&record);
        }
        if (isRead) {
            m_decoder.decode(record, &m_cells);
        }
    }
}

sheet::WorkbookResult<bool> BiffRows::next(sheet::SheetRow *row)
{
    if (m_source.stop.load(std::memory_order_relaxed)) {
        return Fault{WorkbookError::Stopped};
    }
    m_cells.clear();
    if (!m_scan.hasCells) {
        m_row = -1;
    } else if (m_sorted.empty()) {
        readOrdered();
    } else {
        readSorted();
    }
    if (m_row < 0) {
        return finish();
    }
    // Most rows are in order: this then costs one comparison per cell.
    m_cells.complete(&m_problems[static_cast<size_t>(SheetProblem::RepeatedCell)], m_row);
    updateFraction();
    const auto at = static_cast<size_t>(m_row);
    *row = {m_row, at < m_scan.hiddenRows.size() && m_scan.hiddenRows[at], m_cells.cells()};
    return true;
}

sheet::WorkbookResult<bool> BiffRows::finish() const
{
    if (m_source.reader.stop() == RecordReader::Stop::ReadFailed) {
        return readFailed(m_source.reader.position());
    }
    if (m_scan.isTruncated) {
        return Fault{WorkbookError::Damaged, QStringLiteral("it ends inside the sheet"),
                     m_scan.end};
    }
    return false;
}

/// By bytes for cells in order, otherwise by cells: the bytes are then read back and forth.
void BiffRows::updateFraction()
{
    const qint64 bytes = m_source.reader.position() - m_scan.begin;
    const double done = m_sorted.empty()
                            ? shareOf(bytes, m_scan.end - m_scan.begin)
                            : shareOf(static_cast<qint64>(m_nextSorted), std::ssize(m_sorted));
    m_fraction.store(done, std::memory_order_relaxed);
}

} // namespace corvanta::xls
