// Reads files in order as one table. They must have the columns of the first one, or those that the
// reader sets before.
#include "actions/shared/file_series.h"

#include "corvanta/failure_reason.h"
#include "corvanta/files.h"
#include "io/input/input_file.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta {

/// Names the first difference only: the others are mostly its consequences.
QString textOf(const ColumnMismatch &mismatch, const QString &format, const QString &action)
{
    switch (mismatch.kind) {
    case ColumnMismatch::Kind::Count:
        return u"Error: The %4 file '%3' does have the right number of columns (%1!=%2)"_s.arg(
            mismatch.found, mismatch.first, mismatch.file, format);
    case ColumnMismatch::Kind::Name:
        return u"An error occurred while initializing the '%5' Action \nThe name of the column %1 do not match in first file and file '%2' ('%3'!='%4'"_s
            .arg(QString::number(mismatch.column + 1), mismatch.file, mismatch.first,
                 mismatch.found, action);
    case ColumnMismatch::Kind::Type:
        break;
    }
    return u"An error occurred while initializing the '%5' Action \nThe Meta-type of the column '%3' do not match in first file and file '%4' (type: %1!=%2)"_s
        .arg(mismatch.found, mismatch.first, mismatch.name, mismatch.file, action);
}

/// The lock is for the numbers that fractionDone() reads in another thread.
void FileSeries::reset()
{
    m_nextFile = 0; // before finish(), which counts the files that are done
    finish();
    m_hasColumns = false;
    m_columnCount = 0;
    m_fileNameColumn = -1;
    const std::lock_guard lock(m_mutex);
    m_fileCount = 0;
}

void FileSeries::start(Format &format, const QStringList &files, Options options)
{
    reset();
    m_format = &format;
    m_options = std::move(options);
    m_files = files;
    // Even a series without a readable file then has its columns.
    if (m_options.columns) {
        describeColumns(*m_options.columns);
    }
    const std::lock_guard lock(m_mutex);
    m_fileCount = m_files.size();
}

/// The file is closed before the next action may replace it.
void FileSeries::finish()
{
    closeCurrent();
}

float FileSeries::fractionDone(std::optional<float> withoutFile)
{
    const std::lock_guard lock(m_mutex);
    // A reader chooses what it shows before the first file and after the last one.
    if (!m_current && withoutFile) {
        return *withoutFile;
    }
    const float current = m_current ? m_current->fractionDone() : 0.0F;
    return m_fileCount == 0
               ? 0.0F
               : (current + static_cast<float>(m_filesDone)) / static_cast<float>(m_fileCount);
}

/// Called on another thread, while this one may wait in a read.
void FileSeries::stop()
{
    const std::lock_guard lock(m_mutex);
    if (m_current) {
        m_current->stop();
    }
}

void FileSeries::setCurrent(std::unique_ptr<SeriesFile> file)
{
    // `file` receives the old file, which is destroyed after the lock is released.
    const std::lock_guard lock(m_mutex);
    m_current.swap(file);
    m_filesDone = m_nextFile - (m_current ? 1 : 0);
    // The run may have ended before stop() could see the file.
    if (m_current && !m_action.control().isRunning()) {
        m_current->stop();
    }
}

void FileSeries::closeCurrent()
{
    if (m_current) {
        m_current->beforeClose();
    }
    setCurrent(nullptr);
}

// ---- Opening.

/// The file before is closed first: two open files would need twice the memory.
bool FileSeries::openNext()
{
    closeCurrent();
    while (m_nextFile < m_files.size() && m_action.runIsGood()) {
        const QString name = m_files.at(m_nextFile++);
        auto opened = openWithRetries(name);
        if (opened) {
            // Published before the check, so that the file is closed with the series if that fails.
            use(*std::move(opened), name);
            return checkColumns(name);
        }
        if (!m_action.runIsGood() || !handle(opened.fault(), name)) {
            return false;
        }
    }
    return false;
}

/// Only a missing file is tried again: it appears once another program has written it.
FileSeries::Opened FileSeries::openWithRetries(const QString &name)
{
    Opened opened = m_format->openFile(name);
    const auto isMissing = [&] { return !opened && opened.fault().code == OpenError::Missing; };
    if (isMissing()) {
        m_isRetrying = true;
        retryOpening(name, opened.fault().detail, m_options.retries, m_action.control(), [&] {
            opened = m_format->openFile(name);
            return !isMissing();
        });
        m_isRetrying = false;
    }
    return opened;
}

/// Report a file that cannot be opened, and why. Returns true to continue with the next one.
bool FileSeries::handle(const Fault<OpenError> &fault, const QString &name)
{
    const bool continues = report(fault.code, name);
    logReason(fault.detail);
    return continues;
}

/// A failed file has had its message already.
bool FileSeries::report(OpenError error, const QString &name)
{
    switch (error) {
    case OpenError::Missing:
        return m_format->reportMissing(name);
    case OpenError::Unreadable:
        return m_format->reportUnreadable(name);
    case OpenError::Failed:
        break;
    }
    return false;
}

void FileSeries::use(std::unique_ptr<SeriesFile> file, const QString &name)
{
    setCurrent(std::move(file));
    // One cell for all rows of the file: setRowReadyForOutput() copies it with the row.
    m_fileNameBuffer.reset();
    m_fileNameCell = bytesFromQString(&m_fileNameBuffer, name);
}

// ---- Columns.

/// The pin has one schema for all files: the first file sets it.
void FileSeries::describeColumns(const TableSchema &columns)
{
    m_hasColumns = true;
    m_columns = columns;
    // The file's own columns are compared later, without the one that is added here.
    QVector<QString> names = columns.names;
    QVector<MetaInfo> types = columns.types;
    if (!m_options.fileNameColumn.isEmpty()) {
        m_fileNameColumn = static_cast<int>(names.size());
        names << m_options.fileNameColumn;
        types << MetaInfo(MetaInfo::Unknown, -1);
    }
    m_columnCount = static_cast<int>(names.size());
    OneRow *const row = m_action.getOutputRowForOutputPin(0);
    row->setColName(names);
    row->setMetaData(types);
}

/// Take the columns of the first file; compare those of a later one. Returns false on a mismatch,
/// after reporting it.
bool FileSeries::checkColumns(const QString &name)
{
    if (m_options.columns) {
        return true;
    }
    const TableSchema columns = m_current->columns();
    if (!m_hasColumns) {
        describeColumns(columns);
        return true;
    }
    auto mismatch = findMismatch(columns);
    if (!mismatch) {
        return true;
    }
    mismatch->file = name;
    return m_format->reportMismatch(*mismatch);
}

/// The first difference to the columns of the first file, in the order of Options::order.
std::optional<ColumnMismatch> FileSeries::findMismatch(const TableSchema &columns) const
{
    const qsizetype count = m_columns.names.size();
    if (columns.names.size() != count) {
        return ColumnMismatch{.kind = ColumnMismatch::Kind::Count,
                              .first = QString::number(count),
                              .found = QString::number(columns.names.size())};
    }
    const bool isForward = m_options.order == Order::FirstToLast;
    for (qsizetype i = 0; i < count; ++i) {
        if (auto mismatch = compareColumn(columns, isForward ? i : count - 1 - i)) {
            return mismatch;
        }
    }
    return std::nullopt;
}

/// A column with another name is not compared further: its type would say nothing.
std::optional<ColumnMismatch> FileSeries::compareColumn(const TableSchema &columns,
                                                        qsizetype column) const
{
    using Kind = ColumnMismatch::Kind;
    const QString &name = columns.names[column];
    const MetaInfo type = columns.types[column];
    if (name != m_columns.names[column]) {
        return ColumnMismatch{.kind = Kind::Name,
                              .column = column,
                              .name = name,
                              .first = m_columns.names[column],
                              .found = name};
    }
    if (type != m_columns.types[column]) {
        return ColumnMismatch{.kind = Kind::Type,
                              .column = column,
                              .name = name,
                              .first = m_columns.types[column].letter(),
                              .found = type.letter()};
    }
    return std::nullopt;
}

// ---- Rows.

inline void FileSeries::putRow(OneRow &row)
{
    if (m_fileNameColumn >= 0) {
        row.setCol(m_fileNameColumn, m_fileNameCell);
    }
    m_action.setRowReadyForOutput(0);
}

/// Rows until the host wants the thread back; a new file begins in the same call.
bool FileSeries::step()
{
    // The pin has one row object. Everything in this loop runs once per row.
    OneRow &row = *m_action.getOutputRowForOutputPin(0);
    // Also yields between deleted records, of which a file may have millions.
    SeriesFile::Found found = SeriesFile::Found::Nothing;
    while (m_current && !m_action.yieldRequested()) {
        if (!m_current->next(row, &found)) {
            return false;
        }
        if (found == SeriesFile::Found::Row) {
            putRow(row);
        } else if (found == SeriesFile::Found::End && !finishFile()) {
            return false;
        }
    }
    return m_current != nullptr;
}

/// All rows of the file are delivered: open the next one. Returns false at the end or after a
/// failure.
bool FileSeries::finishFile()
{
    return m_action.runIsGood() && m_current->finish() && openNext();
}

// ---- Names.

QStringList namesOfPattern(const ActionItem &action, const QString &pattern)
{
    QStringList names;
    listFiles(action.expandFile(pattern), &names);
    return names;
}

/// One name per row, in the first column.
/// All names are read before the first file, because the number of files is part of the progress.
QStringList namesFromPin(ActionItem &action, int pin)
{
    QStringList names;
    while (const OneRow *const row = action.getNextRowFromInPin(pin)) {
        names << action.expandFile(row->text(0));
    }
    return names;
}

} // namespace corvanta
