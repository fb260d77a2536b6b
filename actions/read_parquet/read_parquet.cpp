#include "actions/read_parquet/read_parquet.h"

#include "actions/read_parquet/parquet_file.h"
#include "io/input/whole_input.h"

#include <algorithm>
#include <thread>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Threads that decode pages of one file in parallel.
int workerCount()
{
    constexpr int kMaxWorkers = 8;
    return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, kMaxWorkers);
}

} // namespace

ActionReadParquet::ActionReadParquet(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadParquetEntry, saved, parameters)
{
    // Kept for saved graphs: a file name as the element's text, which wins over the attribute.
    if (const QString name = saved.text().trimmed(); !name.isEmpty()) {
        m_params.fileName = name;
    }
}

void ActionReadParquet::start()
{
    // The pins are read by the first step(): input rows do not exist before.
    m_series.reset();
    m_options = {};
    m_options.int64ToKey = m_params.int64ToKey;
    m_options.extendedEncodings = m_params.extendedEncodings;
    m_options.logicalTypes = m_params.logicalTypes;
    m_options.skipsUnreadable = m_params.skipUnreadable;
    m_options.pageChecksums = m_params.pageChecksums;
}

bool ActionReadParquet::step()
{
    return (m_series.hasBegun() || prepare()) && m_series.step();
}

/// Read the names that come from pins and open the first file. Returns false when the run has
/// ended.
bool ActionReadParquet::prepare()
{
    return readSelection() && startSeries() && m_series.openNext();
}

/// Set the columns to read. An empty selection fails the run: it would deliver rows without cells.
bool ActionReadParquet::readSelection()
{
    m_options.selectsColumns = m_params.columnSelection == ColumnSelection::Listed ||
                               m_params.columnSelection == ColumnSelection::FromPin;
    if (m_params.columnSelection == ColumnSelection::Listed) {
        m_options.selection = m_params.columnsToRead;
        if (m_options.selection.isEmpty()) {
            return fail(u"Error: readParquet: ColumnsToRead names no column\n"_s);
        }
    } else if (m_params.columnSelection == ColumnSelection::FromPin) {
        while (const OneRow *const row = getNextRowFromInPin(1)) {
            m_options.selection << row->text(0);
        }
        if (m_options.selection.isEmpty()) {
            return runIsGood() && fail(u"ERROR: No column to read on input pin 1??"_s);
        }
    }
    return true;
}

/// List the files. A pattern without a match is its own name, so only a pin can bring none.
bool ActionReadParquet::startSeries()
{
    const QStringList files = m_params.fileNameFromPin ? namesFromPin(*this, 0)
                                                       : namesOfPattern(*this, m_params.fileName);
    if (files.isEmpty()) {
        return runIsGood() &&
               fail(u"ERROR: Cannot read the name of the Parquet file on input pin??"_s);
    }
    FileSeries::Options options;
    options.order = FileSeries::Order::LastToFirst; // the column that messages name
    if (m_params.outputFilenames) {
        options.fileNameColumn = u"_FileNames"_s;
    }
    m_series.start(*this, files, options);
    return true;
}

// ---- Files.

FileSeries::Opened ActionReadParquet::openFile(const QString &name)
{
    using enum FileSeries::OpenError;
    // A file that has a size exists, but cannot be opened: retries would not help.
    auto input = std::make_unique<RunInput>(globalParameters(), control(), name, false);
    if (!input->file.isOpen()) {
        return Fault{input->file.getSize() < 0 ? Missing : Unreadable, input->file.reason()};
    }
    // The footer is at the end of the file, and columns are read in parallel.
    auto source = randomAccess(std::move(input));
    if (!source) {
        return Fault{Unreadable, source.fault().detail};
    }
    auto reader = parquet::TableReader::open(**source, m_options, workerCount());
    if (!reader) {
        return unreadable(name, reader.fault());
    }
    if (!checkContent(name, **reader)) {
        return Fault{Failed};
    }
    auto file = std::make_unique<ParquetFile>(*this, name, *std::move(source), *std::move(reader));
    if (const auto fetched = file->fetchFirst(); !fetched) {
        return unreadable(name, fetched.fault());
    }
    // Later files have the same columns, and leave out the same ones.
    if (!m_series.hasColumns()) {
        warnSkipped(name, file->skippedColumns());
    }
    return FileSeries::Opened(std::move(file));
}

/// Report why a file cannot be read, where reportUnreadable() does not say it.
FileSeries::Opened ActionReadParquet::unreadable(const QString &name,
                                                 const Fault<parquet::Error> &fault)
{
    Fault result{FileSeries::OpenError::Unreadable, fault.detail};
    // Reads also fail after the run has ended. The file is then not damaged.
    if (!runIsGood()) {
        return result;
    }
    switch (fault.code) {
    // Logged as an error without failing the run: reportUnreadable() decides about that.
    case parquet::Error::BadThrift:
        MainUI::addLog(MainUI::Error, u"Error (1) deserializing thrift meta-data"_s);
        break;
    case parquet::Error::BadData:
    case parquet::Error::NoMemory:
        warn(u"Warning: The Parquet file '%1' cannot be read: %2\n"_s.arg(name, fault.detail));
        break;
    case parquet::Error::BadFooter:
        result.detail = u"it is not a Parquet file, or it is truncated"_s;
        break;
    case parquet::Error::ShortRead:
    case parquet::Error::Unreadable:
    case parquet::Error::TextTooLong:
    case parquet::Error::WriteFailed:
        break;
    }
    return result;
}

/// Refuse a file without columns or rows, and a first file without a selected column.
bool ActionReadParquet::checkContent(const QString &name, const parquet::TableReader &table)
{
    const bool isEmpty = table.rowGroupCount() == 0 || table.declaredRows() == 0;
    if (table.schemaColumnCount() == 0 || (isEmpty && !m_params.allowEmpty)) {
        return fail(u"Error (2) deserializing thrift meta-data (%1,%2,%3)"_s.arg(
            QString::number(table.columns().size() + 1), QString::number(table.rowGroupCount()),
            QString::number(table.declaredRows())));
    }
    if (!table.missingColumns().isEmpty() && !m_series.hasColumns()) {
        return fail(u"Error: The Parquet file '%1' has no column '%2'\n"_s.arg(
            name, table.missingColumns().first()));
    }
    return true;
}

/// Report the columns that `skipUnreadable` leaves out. Wide files may have thousands.
void ActionReadParquet::warnSkipped(const QString &name, const QStringList &columns)
{
    constexpr int kMaxReportedColumns = 10;
    CappedLog log(MainUI::Warning, kMaxReportedColumns, u"Warning: more columns are left out\n"_s);
    for (const QString &column : columns) {
        log.add(u"Warning: The Parquet file '%1' is read without %2\n"_s.arg(name, column));
        m_warningFlag = 1;
    }
}

bool ActionReadParquet::reportMissing(const QString &name)
{
    if (m_params.abortIfMissing) {
        return fail(u"Error: The Parquet file '%1' does not exists"_s.arg(name));
    }
    warn(u"Warning: The Parquet file '%1' does not exists"_s.arg(name));
    return true;
}

/// An unreadable file is skipped, but the first one defines the columns.
bool ActionReadParquet::reportUnreadable(const QString &name)
{
    const QString text = u"Warning: cannot open Parquet file '%1' for read\n"_s.arg(name);
    if (!m_series.hasColumns()) {
        return fail(text);
    }
    warn(text);
    return true;
}

/// Column indexes in the message count from 0. The texts are fixed.
bool ActionReadParquet::reportMismatch(const ColumnMismatch &mismatch)
{
    switch (mismatch.kind) {
    case ColumnMismatch::Kind::Count:
        return fail(
            u"Error: The Parquet file '%3' does have the right number of columns (%1!=%2)"_s.arg(
                mismatch.found, mismatch.first, mismatch.file));
    case ColumnMismatch::Kind::Name:
        return fail(
            u"An error occurred while initializing the 'ReadParquet' Action \nThe name of the column %1 do not match in first file and file '%2' ('%3'!='%4'"_s
                .arg(QString::number(mismatch.column), mismatch.file, mismatch.first,
                     mismatch.found));
    case ColumnMismatch::Kind::Type:
        break;
    }
    return fail(
        u"An error occurred while initializing the 'ReadParquet' Action \nThe Meta-type of the column '%3' do not match in first file and file '%4' (type: %1!=%2)"_s
            .arg(mismatch.found, mismatch.first, mismatch.name, mismatch.file));
}

} // namespace corvanta
