// A row consists of the next cell of each column. All columns have a block at hand; when the block
// of a column is used up, the next one is taken from the decoder. Blocks of different columns end
// at different rows, because pages do.
#include "codecs/parquet/read/table_reader.h"

#include <QLatin1StringView>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {

std::vector<std::unique_ptr<ColumnReader>> readersOf(SharedFile &file, const FileMetaData &metaData,
                                                     const Columns &columns,
                                                     const ReadOptions &options)
{
    std::vector<std::unique_ptr<ColumnReader>> readers;
    for (const Column &column : columns.columns) {
        readers.push_back(std::make_unique<ColumnReader>(file, metaData, column, options));
    }
    return readers;
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
    return std::unique_ptr<TableReader>(
        new TableReader(source, std::move(*metaData), std::move(*columns), options, workers));
}

TableReader::TableReader(ByteSource &source, FileMetaData metaData, Columns columns,
                         const ReadOptions &options, int workers)
    : m_file(source)
    , m_metaData(std::move(metaData))
    , m_columns(std::move(columns))
    , m_cursors(m_columns.columns.size())
    , m_decoder(readersOf(m_file, m_metaData, m_columns, options),
                m_columns.columns.empty() ? 0 : workers)
{
}

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

Result<bool, Error> TableReader::refill(size_t column)
{
    Cursor &cursor = m_cursors[column];
    auto answer = m_decoder.take(column, cursor.block);
    cursor.row = 0;
    cursor.rows = answer && *answer ? cursor.block->rows : 0;
    return answer;
}

Result<bool, Error> TableReader::next(const uchar **cells)
{
    // Without columns nothing limits the number of rows.
    if (m_cursors.empty()) {
        return false;
    }
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
    m_rowsRead.fetch_add(1, std::memory_order_relaxed);
    return true;
}

} // namespace corvanta::parquet
