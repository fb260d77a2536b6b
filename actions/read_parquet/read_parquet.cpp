#include "actions/read_parquet/read_parquet.h"

#include "actions/read_parquet/column_scan.h"
#include "actions/shared/tables/reader_file.h"
#include "base/counted.h"
#include "io/input/whole_input.h"

#include <algorithm>
#include <thread>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Threads that decode pages of one file in parallel.
int decodingThreads()
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
    m_columnNames.clear();
    m_lost.clear();
    m_options = readOptions();
}

/// All but the selection and the range of rows.
parquet::ReadOptions ActionReadParquet::readOptions() const
{
    parquet::ReadOptions options;
    options.int64ToKey = m_params.int64ToKey;
    options.extendedEncodings = m_params.extendedEncodings;
    options.logicalTypes = m_params.logicalTypes;
    options.booleanTexts = m_params.booleanTexts;
    options.skipsUnreadable = m_params.skipUnreadable;
    options.pageChecksums = m_params.pageChecksums;
    return options;
}

/// Columns from a pin, and files from one, are known only in a run.
std::optional<QVector<ColumnKind>> ActionReadParquet::columnKinds(KindExtent extent)
{
    if (m_params.fileNameFromPin || m_params.columnSelection == ColumnSelection::FromPin) {
        return QVector<ColumnKind>();
    }
    RunControl control;
    control.runStatus = RunControl::Running;
    parquet::ReadOptions options = readOptions();
    options.selectsColumns = m_params.columnSelection == ColumnSelection::Listed;
    options.selection = m_params.columnsToRead;
    const QStringList files = namesOfPattern(*this, m_params.fileName);
    chooseTypes(files, control, &options);
    return ColumnScan(*this, control).kindsOf(files, options, extent);
}

void ActionReadParquet::finish()
{
    m_series.finish();
    warnLost();
}

bool ActionReadParquet::step()
{
    return (m_series.hasBegun() || prepare()) && m_series.step();
}

/// Read the names that come from pins and open the first file. Returns false when the run has
/// ended.
bool ActionReadParquet::prepare()
{
    const auto range = shared::rowRangeOf(*this, m_params);
    if (!range) {
        return false;
    }
    m_options.skippedRows = range->skipped;
    m_options.rowCount = range->count;
    return readSelection() && startSeries() && m_series.openNext();
}

/// Only of one file: the blocks of several are not numbered.
Result<RowBlocks, QString> ActionReadParquet::rowBlocks()
{
    const QStringList files = namesOfPattern(*this, m_params.fileName);
    RunControl control;
    control.runStatus = RunControl::Running;
    auto input = std::make_unique<RunInput>(globalParameters(), control, files.value(0), false,
                                            InputFile::Report::Nothing);
    if (!input->file.isOpen()) {
        return Fault{u"it cannot be opened: "_s + input->file.reason()};
    }
    const auto source = randomAccess(std::move(input));
    if (!source) {
        return Fault{source.fault().detail};
    }
    const auto metaData = parquet::readFooter(**source);
    if (!metaData) {
        return Fault{metaData.fault().detail};
    }
    RowBlocks blocks;
    for (const parquet::RowGroup &group : metaData->rowGroups) {
        blocks.rows << std::max(group.numRows, qint64(0));
    }
    return blocks;
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
    chooseTypes(files, control(), &m_options);
    m_series.start(*this, files, options);
    return true;
}

/// With logicalTypes, 64-bit integers are numbers in one file and texts in another, depending on
/// their values. One file with texts makes them texts in all.
void ActionReadParquet::chooseTypes(const QStringList &files, const RunControl &control,
                                    parquet::ReadOptions *options) const
{
    if (!m_params.logicalTypes) {
        return;
    }
    const ColumnScan scan(*this, control);
    for (const QString &name : files) {
        if (control.isRunning()) {
            scan.addIntegers(name, options);
        }
    }
}

// ---- Files.

std::unique_ptr<RunInput> ActionReadParquet::openInput(const QString &name,
                                                       InputFile::Report report)
{
    return std::make_unique<RunInput>(globalParameters(), control(), name, false, report);
}

/// The footer decides which columns exist, so that it is checked before any page is decoded.
FileSeries::Opened ActionReadParquet::openFile(const QString &name)
{
    using enum FileSeries::OpenError;
    // A file that has a size exists, but cannot be opened: retries would not help.
    auto input = openInput(name, InputFile::Report::Failure);
    if (!input->file.isOpen()) {
        return Fault{input->file.getSize() < 0 ? Missing : Unreadable, input->file.reason()};
    }
    // The footer is at the end of the file, and columns are read in parallel.
    auto source = randomAccess(std::move(input));
    if (!source) {
        return Fault{Unreadable, source.fault().detail};
    }
    auto reader = parquet::TableReader::open(**source, m_options, decodingThreads());
    if (!reader) {
        return unreadable(name, reader.fault(), readFailure(**source));
    }
    if (!checkContent(name, **reader)) {
        return Fault{Failed};
    }
    auto prepared = (*reader)->prepare();
    if (prepared) {
        prepared = useSkipped(name, **reader);
    }
    if (!prepared) {
        return unreadable(name, prepared.fault(), readFailure(**source));
    }
    return FileSeries::Opened(
        std::make_unique<ParquetFile>(*this, name, *std::move(source), *std::move(reader), m_lost));
}

/// Report the columns that `skipUnreadable` leaves out. Those of the first file are left out of
/// all. Errors: that of a column of a later file that the first one has.
Result<void, parquet::Error> ActionReadParquet::useSkipped(const QString &name,
                                                           const parquet::TableReader &table)
{
    const bool isFirst = !m_series.hasColumns();
    QStringList texts;
    for (const parquet::SkippedColumn &column : table.skippedColumns()) {
        if (!isFirst && m_columnNames.contains(column.name)) {
            return column.fault;
        }
        texts << ParquetFile::describe(column.fault);
        if (isFirst) {
            m_options.excluded.insert(column.name);
        }
    }
    if (isFirst) {
        for (const parquet::Column &column : table.columns()) {
            m_columnNames << column.name;
        }
    }
    warnSkipped(name, texts);
    return {};
}

/// Report why a file cannot be read, where reportUnreadable() does not say it.
FileSeries::Opened ActionReadParquet::unreadable(const QString &name,
                                                 const Fault<parquet::Error> &fault,
                                                 const QString &systemReason)
{
    Fault result{FileSeries::OpenError::Unreadable,
                 systemReason.isEmpty() ? ParquetFile::describe(fault) : systemReason};
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
    case parquet::Error::NeedsExtended:
    case parquet::Error::NoMemory:
        warn(u"Warning: The Parquet file '%1' cannot be read: %2\n"_s.arg(
            name, ParquetFile::describe(fault)));
        break;
    case parquet::Error::BadFooter:
    case parquet::Error::ShortRead:
    case parquet::Error::Unreadable:
    case parquet::Error::TextTooLong:
    case parquet::Error::WrongValue:
    case parquet::Error::WriteFailed:
        break;
    }
    return result;
}

/// Refuse a file without columns or rows, and a first file without a selected column.
bool ActionReadParquet::checkContent(const QString &name, const parquet::TableReader &table)
{
    // A range beyond the last row is empty, the file is not.
    const bool isEmpty = table.rowGroupCount() == 0 || table.fileRows() == 0;
    if (table.schemaColumnCount() == 0 || (isEmpty && !m_params.allowEmpty)) {
        const QString reason =
            table.schemaColumnCount() == 0
                ? u"the file '%1' has no columns"_s
                : u"the file '%1' has no rows; allowEmpty='1' reads it as an empty table"_s;
        return fail(u"Error (2) deserializing thrift meta-data (%1,%2,%3)"_s.arg(
                        QString::number(table.columns().size() + 1),
                        QString::number(table.rowGroupCount()),
                        QString::number(table.declaredRows())),
                    reason.arg(name));
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
    constexpr qsizetype kMaxReportedColumns = 10;
    for (const QString &column : columns.first(std::min(columns.size(), kMaxReportedColumns))) {
        warn(u"Warning: The Parquet file '%1' is read without %2\n"_s.arg(name, column));
    }
    if (columns.size() > kMaxReportedColumns) {
        warn(u"Warning: more columns are left out (%1 of the Parquet file '%2')\n"_s.arg(
            counted(columns.size() - kMaxReportedColumns, u"column"_s), name));
    }
}

/// The texts have the count, the column, the first place and the verb "is" or "are" as %1 to %4.
QString ActionReadParquet::lossText(parquet::Loss loss)
{
    switch (loss) {
    case parquet::Loss::Rounded:
    case parquet::Loss::RoundedUnsigned:
        return u"Warning: %1 of the column '%2' of Parquet files %4 rounded to 53 bits; the first is %3. Use logicalTypes='1' to read the column exactly\n"_s;
    case parquet::Loss::OtherNumber:
        return u"Warning: %1 of the INT96 column '%2' of Parquet files %4 read as another number; the first is %3. Use logicalTypes='1' to read timestamps\n"_s;
    case parquet::Loss::ChangedText:
        return u"Warning: %1 of the column '%2' of Parquet files %4 not UTF-8 and read as Latin-1, or cut before zero bytes at the end; the first is %3\n"_s;
    case parquet::Loss::None:
    case parquet::Loss::NegativeKey:
    case parquet::Loss::MissingKey:
    case parquet::Loss::WideKey:
        break;
    }
    return u"Warning: %1 of the column '%2' of Parquet files %4 negative or too large for a key, and read as another key or as missing; the first is %3. Use logicalTypes='1' to read the column exactly\n"_s;
}

/// Report the values that were read as others. Called when no file is open.
void ActionReadParquet::warnLost()
{
    for (const LostColumn &lost : m_lost) {
        if (lost.count == 0) {
            continue;
        }
        const QString text = lossText(lost.loss);
        const QString noun = lost.loss == parquet::Loss::ChangedText ? u"text"_s : u"value"_s;
        warn(text.arg(counted(lost.count, noun), lost.column, lost.first, isOrAre(lost.count)));
    }
}

/// Both texts are those that saved graphs know, with their spelling.
bool ActionReadParquet::reportMissing(const QString &name)
{
    const bool fails = m_params.abortIfMissing;
    const QString text = fails ? u"Error: The Parquet file '%1' does not exists"_s
                               : u"Warning: The Parquet file '%1' does not exists"_s;
    return failOrWarn(*this, fails, text.arg(name));
}

/// An unreadable file is skipped, but the first one defines the columns.
bool ActionReadParquet::reportUnreadable(const QString &name)
{
    return failOrWarn(*this, !m_series.hasColumns(),
                      u"Warning: cannot open Parquet file '%1' for read\n"_s.arg(name));
}

bool ActionReadParquet::reportMismatch(const ColumnMismatch &mismatch)
{
    return fail(textOf(mismatch, u"Parquet"_s, u"ReadParquet"_s));
}

} // namespace corvanta
