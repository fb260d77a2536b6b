// One file of a series: its decoder, and the counts of what its rows have lost.
#include "actions/read_parquet/parquet_file.h"

#include "actions/shared/tables/reader_file.h"
#include "base/counted.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

ParquetFile::ParquetFile(ActionBase &action, const QString &name,
                         std::unique_ptr<ByteSource> source,
                         std::unique_ptr<parquet::TableReader> reader,
                         std::vector<LostColumn> &lost)
    : m_action(action)
    , m_name(name)
    , m_source(std::move(source))
    , m_reader(std::move(reader))
    , m_cells(m_reader->columns().size()) // one address per column, set by each next()
    , m_lost(lost)
{
}

/// Also called after a failure: what was lost until then is reported, too.
void ParquetFile::beforeClose()
{
    if (const Occurrences &chunks = m_reader->longChunks(); chunks.any()) {
        m_action.warn(
            u"Warning: The Parquet file '%1' has %2 with more values than rows; the first is that of %3. The other values are not read\n"_s
                .arg(m_name, counted(chunks.count(), u"column chunk"_s), chunks.first()));
    }
    addLost();
}

/// Add the values that the rows have lost to those of the run.
void ParquetFile::addLost()
{
    // A file with other columns than those of the run delivers no rows.
    const size_t columns = m_reader->rowsRead() > 0 ? m_reader->columns().size() : 0;
    m_lost.resize(std::max(m_lost.size(), columns));
    for (size_t i = 0; i < columns; ++i) {
        const parquet::LostValues &lost = m_reader->lostValues(i);
        if (lost.count > 0 && m_lost[i].count == 0) {
            const parquet::Column &column = m_reader->columns()[i];
            m_lost[i] = {
                0, column.name, column.loss,
                u"in row %1 of the file '%2'"_s.arg(QString::number(lost.firstRow), m_name)};
        }
        m_lost[i].count += lost.count;
    }
}

QString ParquetFile::describe(const Fault<parquet::Error> &fault)
{
    return fault.code == parquet::Error::NeedsExtended
               ? u"%1 is read only with extendedEncodings"_s.arg(fault.detail)
               : fault.detail;
}

/// The columns that are read, in the order of the file.
TableSchema ParquetFile::columns() const
{
    const auto typeOf = [](const parquet::Column &column) {
        return parquet::cellTypeOf(column.form);
    };
    return schemaOf(m_reader->columns(), typeOf);
}

/// One call of the decoder per row, one pointer per cell: the cells stay in the decoder's blocks
/// until the pin copies them.
bool ParquetFile::next(OneRow &row, Found *found)
{
    const auto more = m_reader->next(m_cells.data());
    if (!more) {
        return fail(more.fault());
    }
    if (!*more) {
        *found = Found::End;
        return true;
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
                                         m_name, describe(fault)),
                                     systemReason());
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
