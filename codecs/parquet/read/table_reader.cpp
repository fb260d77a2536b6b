// A row consists of the next cell of each column. All columns have a block at hand; when the block
// of a column is used up, the next one is taken from the decoder. Blocks of different columns end
// at different rows, because pages do.
#include "codecs/parquet/read/table_reader.h"

#include "base/mapped.h"

#include <QLatin1StringView>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {

/// A limit for sums of claimed rows.
constexpr qint64 kMaxRows = std::numeric_limits<qint64>::max();

/// One reader per column. They share the file, and each keeps its own place in it.
std::vector<std::unique_ptr<ColumnReader>> readersOf(SharedFile &file, const FileMetaData &metaData,
                                                     const Columns &columns,
                                                     const ReadOptions &options)
{
    return mapped<std::vector<std::unique_ptr<ColumnReader>>>(
        columns.columns, [&](const Column &column) {
            return std::make_unique<ColumnReader>(file, metaData, column, options);
        });
}

} // namespace

Result<std::unique_ptr<TableReader>, Error>
TableReader::open(ByteSource &source, const ReadOptions &options, int workers)
{
    auto metaData = readFooter(source);
    if (!metaData) {
        return metaData.fault();
    }
    auto columns = selectColumns(*metaData, options);
    if (!columns) {
        return columns.fault();
    }
    // The columns depend on the statistics of all row groups, so that every range has the same.
    const Range range = cutToRange(options, &*metaData);
    return std::unique_ptr<TableReader>(new TableReader(
        source, std::move(*metaData), std::move(*columns), range, options, workers));
}

/// Removes the row groups outside of the range.
TableReader::Range TableReader::cutToRange(const ReadOptions &options, FileMetaData *metaData)
{
    Range range{metaData->numRows, std::ssize(metaData->rowGroups)};
    if (options.skippedRows == 0 && options.rowCount == 0) {
        return range;
    }
    std::vector<RowGroup> groups;
    qint64 begin = 0;
    for (RowGroup &group : metaData->rowGroups) {
        // A damaged number must not overflow the sum.
        const qint64 rows = std::clamp(group.numRows, qint64(0), kMaxRows - begin);
        const bool isBefore = begin + rows <= options.skippedRows;
        const bool isAfter = options.rowCount > 0 && begin >= options.skippedRows &&
                             begin - options.skippedRows >= options.rowCount;
        if (!isBefore && !isAfter) {
            range.rowsBefore = groups.empty() ? begin : range.rowsBefore;
            groups.push_back(std::move(group));
        }
        begin += rows;
    }
    metaData->rowGroups = std::move(groups);
    const qint64 rest = std::max(begin - options.skippedRows, qint64(0));
    range.left = options.rowCount > 0 ? std::min(options.rowCount, rest) : rest;
    range.skipped = range.left > 0 ? options.skippedRows - range.rowsBefore : 0;
    metaData->numRows = range.left;
    return range;
}

TableReader::TableReader(ByteSource &source, FileMetaData metaData, Columns columns,
                         const Range &range, const ReadOptions &options, int workers)
    : m_file(source)
    , m_metaData(std::move(metaData))
    , m_skipsUnreadable(options.skipsUnreadable)
    , m_columns(std::move(columns))
    , m_range(range)
    , m_cursors(m_columns.columns.size())
    , m_decoder(readersOf(m_file, m_metaData, m_columns, options),
                m_columns.columns.empty() ? 0 : workers)
{
    for (size_t i = 0; i < m_cursors.size(); ++i) {
        m_cursors[i].lane = i;
        m_cursors[i].rowsBefore = m_range.rowsBefore;
    }
}

// Rows are enough for a progress bar: the columns of a group advance together.
float TableReader::fractionDone() const
{
    const qint64 rows = m_metaData.numRows;
    return rows > 0 ? std::min(1.0F, static_cast<float>(rowsRead()) / static_cast<float>(rows))
                    : 1.0F;
}

void TableReader::stop()
{
    m_decoder.stop();
}

/// Skip a column whose first block cannot be decoded. Returns false if the fault is not the
/// column's own, or no other column is left.
bool TableReader::skip(size_t column, const Fault<Error> &fault)
{
    // Neither of the two codes means that the column is damaged.
    if (!m_skipsUnreadable || fault.code == Error::NoMemory || fault.code == Error::ShortRead ||
        m_cursors.size() == 1) {
        return false;
    }
    const auto at = static_cast<std::ptrdiff_t>(column);
    m_columns.skipped.push_back({m_columns.columns[column].name, fault});
    m_columns.columns.erase(m_columns.columns.begin() + at);
    m_cursors.erase(m_cursors.begin() + at);
    return true;
}

// The first block of each column is decoded before the first row, so that a column that cannot be
// read is known while the columns of the output can still change.
Result<void, Error> TableReader::prepare()
{
    for (size_t i = 0; i < m_cursors.size();) {
        const auto answer = refill(i);
        if (answer) {
            ++i;
        } else if (!skip(i, answer.fault())) {
            return answer.fault();
        }
    }
    return {};
}

/// Count what is lost with the values of the cursor's block.
void TableReader::inspect(Cursor &cursor, const QString &column)
{
    if (cursor.block->hasSurplus) {
        m_longChunks.add([&] {
            return u"column '%1' after row %2"_s.arg(
                column, QString::number(cursor.rowsBefore + cursor.rows));
        });
    }
    const std::vector<uchar> &changed = cursor.block->changed;
    const auto first = std::find(changed.begin(), changed.end(), uchar(1));
    if (first != changed.end() && cursor.lost.count == 0) {
        cursor.lost.firstRow = cursor.rowsBefore + (first - changed.begin()) + 1;
    }
    cursor.lost.count += std::count(first, changed.end(), uchar(1));
}

Result<bool, Error> TableReader::refill(size_t column)
{
    Cursor &cursor = m_cursors[column];
    cursor.rowsBefore += cursor.rows;
    auto answer = m_decoder.take(cursor.lane, cursor.block);
    cursor.row = 0;
    cursor.rows = 0;
    if (answer && *answer) {
        cursor.rows = cursor.block->rows;
        inspect(cursor, m_columns.columns[column].name);
    }
    return answer;
}

/// Takes the next cell of each column.
Result<bool, Error> TableReader::advance(const uchar **cells)
{
    for (size_t i = 0; i < m_cursors.size(); ++i) {
        Cursor &cursor = m_cursors[i];
        if (cursor.row == cursor.rows) {
            auto answer = refill(i);
            // The shortest column ends the table, so that all rows are complete.
            if (!answer || !*answer) {
                return answer;
            }
        }
        cells[i] = cursor.block->cell(cursor.row++);
    }
    return true;
}

Result<bool, Error> TableReader::next(const uchar **cells)
{
    // Without columns nothing limits the number of rows.
    if (m_cursors.empty() || m_range.left == 0) {
        return false;
    }
    auto more = advance(cells);
    while (m_range.skipped > 0 && more && *more) {
        --m_range.skipped;
        more = advance(cells);
    }
    if (more && *more) {
        --m_range.left;
        m_rowsRead.fetch_add(1, std::memory_order_relaxed);
    }
    return more;
}

} // namespace corvanta::parquet
