#include "actions/read_parquet/parquet_file.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

ParquetFile::ParquetFile(ActionBase &action, const QString &name,
                         std::unique_ptr<ByteSource> source,
                         std::unique_ptr<parquet::TableReader> reader)
    : m_action(action)
    , m_name(name)
    , m_source(std::move(source))
    , m_reader(std::move(reader))
    , m_cells(m_reader->columns().size()) // one address per column, set by each next()
{
}

TableSchema ParquetFile::columns() const
{
    TableSchema columns;
    for (const parquet::Column &column : m_reader->columns()) {
        columns.names << column.name;
        columns.types << MetaInfo(parquet::cellTypeOf(column.form));
    }
    return columns;
}

Result<void, parquet::Error> ParquetFile::fetchFirst()
{
    const auto more = m_reader->next(m_cells.data());
    if (!more) {
        return more.fault();
    }
    m_hasFirst = *more;
    return {};
}

/// One call of the decoder per row, one pointer per cell: the cells stay in the decoder's blocks
/// until the pin copies them.
bool ParquetFile::next(OneRow &row, Found *found)
{
    // fetchFirst() has already decoded the first row.
    if (!std::exchange(m_hasFirst, false)) {
        const auto more = m_reader->next(m_cells.data());
        if (!more) {
            return fail(more.fault());
        }
        if (!*more) {
            *found = Found::End;
            return true;
        }
    }
    // Cells of skipped columns do not exist: columns() leaves them out too.
    for (size_t i = 0; i < m_cells.size(); ++i) {
        row.setCol(static_cast<int>(i), m_cells[i]);
    }
    *found = Found::Row;
    return true;
}

/// Report a damaged page. The rows before it were right, and are counted. Returns false.
bool ParquetFile::fail(const Fault<parquet::Error> &fault)
{
    return finish() && m_action.fail(u"Error: The Parquet file '%1' cannot be read: %2\n"_s.arg(
                           m_name, fault.detail));
}

/// Compare the number of rows with what the file declares. Returns false when the run has ended.
bool ParquetFile::finish()
{
    if (!m_action.runIsGood()) {
        return false;
    }
    // The declared number is only compared: a wrong one does not lose rows.
    if (m_reader->rowsRead() != m_reader->declaredRows()) {
        m_action.warn(
            u"Warning in ReadParquet: We read %1 rows instead of %2 rows from the file '%3'."_s.arg(
                QString::number(m_reader->rowsRead()), QString::number(m_reader->declaredRows()),
                m_name));
    }
    return true;
}

} // namespace corvanta
