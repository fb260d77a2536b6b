// The records of a sheet that are read here (MS-XLS, 2.4; little-endian):
//
//   ROW          row 2, columns 2 2, height 2, 4 unused, flags 2: bit 5 hidden (not in BIFF 2)
//   COLINFO      first column 2, last column 2, width 2, XF 2, flags 2: bit 0 hidden
//   MERGEDCELLS  count 2, then first row 2, last row 2, first column 2, last column 2
//
// Charts inside a sheet have BOF and EOF records of their own.
#include "codecs/xls/sheet_scan.h"

#include "base/bytes.h"
#include "codecs/xls/cell_records.h"

#include <algorithm>
#include <limits>

namespace corvanta::xls {

using sheet::CellArea;
using sheet::WorkbookError;

namespace {

constexpr int kStopInterval = 1024; // records between two looks at the stop flag

/// A bit in the flags of a record, and where they are.
struct FlagPlace
{
    qint64 offset = 0;
    quint16 bit = 0;
};
constexpr FlagPlace kHiddenRow{12, 0x0020};
constexpr FlagPlace kHiddenColumns{8, 0x0001};

/// A record that ends before its flags has none set.
bool hasFlag(const Record &record, FlagPlace flag)
{
    return record.bytes >= flag.offset + 2 &&
           (loadLE<quint16>(record.data + flag.offset) & flag.bit) != 0;
}

/// Most sheets hide no rows: the list grows only to the last one that is hidden.
void mark(size_t row, std::vector<bool> *hidden)
{
    if (hidden->size() <= row) {
        hidden->resize(row + 1);
    }
    (*hidden)[row] = true;
}

void takeRow(const Record &record, std::vector<bool> *hidden)
{
    if (hasFlag(record, kHiddenRow)) {
        mark(loadLE<quint16>(record.data), hidden);
    }
}

/// The columns of a COLINFO record, in all rows.
CellArea columnsIn(const Record &record)
{
    CellArea area;
    area.firstColumn = loadLE<quint16>(record.data);
    area.lastColumn = loadLE<quint16>(record.data + 2);
    return area;
}

void takeColumns(const Record &record, std::vector<CellArea> *hidden)
{
    if (hasFlag(record, kHiddenColumns)) {
        hidden->push_back(columnsIn(record));
    }
}

/// Areas whose corners are exchanged are damaged and left out.
void takeMerged(const Record &record, std::vector<CellArea> *merged)
{
    constexpr qint64 kAreaBytes = 8;
    const auto at = [&](qint64 offset) { return loadLE<quint16>(record.data + offset); };
    for (qint64 offset = 2; offset + kAreaBytes <= record.bytes; offset += kAreaBytes) {
        const CellArea area{at(offset), at(offset + 2), at(offset + 4), at(offset + 6)};
        if (area.firstRow <= area.lastRow && area.firstColumn <= area.lastColumn) {
            merged->push_back(area);
        }
    }
}

/// Call `take` for each record between the BOF at `offset` and its EOF, those of inner streams
/// excepted. The result is whether there is an EOF. Errors: as scanSheet().
template <class Take>
sheet::WorkbookResult<bool> forEachRecord(RecordReader &reader, qint64 offset,
                                          const std::atomic<bool> &stop, const Take &take)
{
    Record record;
    int depth = 0;
    int untilLook = 0;
    for (reader.seek(offset); reader.next(&record);) {
        if (untilLook-- == 0) {
            untilLook = kStopInterval;
            if (stop.load(std::memory_order_relaxed)) {
                return Fault{WorkbookError::Stopped};
            }
        }
        depth += isBof(record.id) ? 1 : (record.id == kEof ? -1 : 0);
        if (depth == 0) {
            return true;
        }
        if (depth == 1) {
            take(record);
        }
    }
    if (reader.stop() == RecordReader::Stop::ReadFailed) {
        return readFailed(reader.position());
    }
    return false;
}

/// Take a record about rows, columns or merged cells; others change nothing.
void takeLayout(const Record &record, SheetScan *scan)
{
    switch (record.id) {
    case kRow:
        takeRow(record, &scan->hiddenRows);
        break;
    case kColInfo:
        takeColumns(record, &scan->layout.hiddenColumns);
        break;
    case kMergedCells:
        takeMerged(record, &scan->layout.merged);
        break;
    default:
        break;
    }
}

} // namespace

sheet::WorkbookResult<SheetScan> scanSheet(RecordReader &reader, qint64 offset,
                                           const std::atomic<bool> &stop)
{
    Record bof;
    reader.seek(offset);
    const bool isBegun = reader.next(&bof) && isBof(bof.id);
    if (reader.stop() == RecordReader::Stop::ReadFailed) {
        return readFailed(offset);
    }
    if (!isBegun) {
        return Fault{WorkbookError::Damaged,
                     QStringLiteral("it is damaged: the sheet has no beginning"), offset};
    }
    SheetScan scan;
    scan.begin = offset;
    const quint16 type = streamType(bof);
    const bool hasCells = type != kChartStream && type != kGlobals;
    int lastRow = -1;
    const auto hasEnd = forEachRecord(reader, offset, stop, [&](const Record &record) {
        takeLayout(record, &scan);
        if (const int row = rowOfCell(record); row >= 0 && hasCells) {
            scan.hasCells = true;
            scan.isOrdered = scan.isOrdered && row >= lastRow;
            lastRow = row;
        }
    });
    if (!hasEnd) {
        return hasEnd.fault();
    }
    scan.hasEnd = *hasEnd;
    scan.isTruncated = reader.stop() == RecordReader::Stop::Truncated;
    scan.end = reader.position();
    return scan;
}

sheet::WorkbookResult<std::vector<CellPlace>>
sortedCells(RecordReader &reader, const SheetScan &scan, const std::atomic<bool> &stop)
{
    std::vector<CellPlace> cells;
    qint64 ixfe = -1; // offset of the record before, if it belongs to the next cell
    const auto hasEnd = forEachRecord(reader, scan.begin, stop, [&](const Record &record) {
        if (const int row = rowOfCell(record); row >= 0) {
            cells.push_back({static_cast<quint16>(row), ixfe >= 0 ? ixfe : record.offset});
        }
        ixfe = record.id == kIxfe ? record.offset : -1;
    });
    if (!hasEnd) {
        return hasEnd.fault();
    }
    std::stable_sort(cells.begin(), cells.end(),
                     [](const CellPlace &a, const CellPlace &b) { return a.row < b.row; });
    return cells;
}

} // namespace corvanta::xls
