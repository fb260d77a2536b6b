// The loop over the rows of all writers. A row passes in this order: output pin, check, file.
#include "actions/shared/row_writer.h"

#include "base/counted.h"
#include "base/nearest_name.h"
#include "base/occurrences.h"
#include "corvanta/failure_reason.h"
#include "corvanta/name_collision.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

/// The name is expanded once, so that all messages of a run name the same file.
void RowWriter::start()
{
    m_fileName = expandOutputFile(fileParameter(), QString());
    m_testColumn = kNoColumn;
    m_rowNumber = 0;
    m_isBeforeFirstRow = true;
    m_folderRemedy.clear();
    m_isComplete = false;
}

/// Whether the parameters select the row. begin() has found the column.
inline bool RowWriter::isSelected(const OneRow &row) const
{
    return m_testColumn == kNoColumn || row.textView(m_testColumn) == rowParams().testValue;
}

/// Pass a row on and write it when it is selected.
inline bool RowWriter::takeRow(const OneRow &row)
{
    // Before it is selected or written: the output pin gets every row, also one that fails the run.
    if (pinOutCount() != 0) {
        getOutputRowForOutputPin(0)->copyFrom(&row);
        setRowReadyForOutput(0);
    }
    ++m_rowNumber;
    if (m_isBeforeFirstRow) {
        // Columns are found even if this row is not selected, so that mistakes are always reported.
        m_isBeforeFirstRow = false;
        if (!begin(row)) {
            return false;
        }
    }
    return !isSelected(row) || writeRow(row);
}

bool RowWriter::step()
{
    // Without a yield the loop runs to the end of the table.
    while (!yieldRequested()) {
        const OneRow *const row = getNextRowFromInPin(0);
        if (row == nullptr) {
            endRows();
            return false;
        }
        if (!takeRow(*row)) {
            return false;
        }
    }
    return true;
}

/// A table without rows still has columns, and is checked and begun like any other.
void RowWriter::endRows()
{
    if (m_isBeforeFirstRow) {
        const OneRow *const columns = getInputColumns(0);
        // The next action learns the columns although no row carried them.
        if (pinOutCount() != 0) {
            getOutputRowForOutputPin(0)->copySchemaFrom(columns);
        }
        if (!runIsGood() || !beginWithoutRows(*columns)) {
            return;
        }
    }
    // Another action may have failed since; the target must then not be replaced.
    m_isComplete = runIsGood();
}

void RowWriter::finish()
{
    // Cleared first: finish() may be called twice, and complete() may fail.
    const bool wasComplete = m_isComplete;
    m_isComplete = false;
    try {
        if (wasComplete && runIsGood()) {
            complete();
        }
    } catch (...) { // for example without memory: no temporary file may stay
        release(wasComplete);
        throw;
    }
    release(wasComplete);
}

bool RowWriter::findTestColumn(const OneRow &columns)
{
    const RowWriterParams &params = rowParams();
    if (params.writeAllRows) {
        return true;
    }
    m_testColumn = columns.getIndexOfColumn(params.testCol);
    return m_testColumn != kNoColumn ||
           failWith(WriteProblem::NoTestColumn, params.testCol,
                    missingColumnReason(params.testCol, columns.schema().names));
}

/// A column that is missing is an error: the file would lack it without a message.
bool RowWriter::findColumns(const OneRow &columns, QVector<int> *inputs)
{
    inputs->clear();
    if (rowParams().writeAllColumns) {
        for (int i = 0; i < columns.numberOfColumns(); ++i) {
            *inputs << i;
        }
        return true;
    }
    for (const QString &name : rowParams().toWrite) {
        // Every missing name is reported, not only the first one.
        *inputs << columns.getIndexOfColumn(name);
        if (inputs->back() < 0) {
            failWith(WriteProblem::NoColumn, name,
                     missingColumnReason(name, columns.schema().names));
        }
    }
    return inputs->isEmpty() ? failWith(WriteProblem::NoColumns) : !inputs->contains(-1);
}

bool RowWriter::checkNames(const OneRow &columns, const QVector<int> &inputs)
{
    return doCheckNameCollision(&columns, rowParams().checkNameCollision, this, inputs,
                                m_fileName) == 0;
}

QString RowWriter::textOf(const std::vector<ChangedName> &changed)
{
    // With thousands of columns, more would hide the other messages.
    constexpr size_t kMaxListed = 20;
    QStringList changes;
    for (size_t i = 0; i < std::min(changed.size(), kMaxListed); ++i) {
        changes << u"'%1' to '%2'"_s.arg(changed[i].column, changed[i].name);
    }
    return u"%1 %4 changed to fit the format: %2%3"_s.arg(
        counted(std::ssize(changed), u"column name"_s), changes.join(u", "_s),
        changed.size() > kMaxListed ? u" and others"_s : QString(), isOrAre(std::ssize(changed)));
}

void RowWriter::warnUnknown(const QString &target, const char *parameter, const QStringList &names,
                            const OneRow &columns)
{
    Occurrences unknown;
    for (const QString &name : names) {
        unknown.add(columns.getIndexOfColumn(name) < 0 ? 1 : 0, [&] { return name; });
    }
    if (unknown.any()) {
        warn(
            u"Warning: writing %1 '%2': %3 names %4 that the input does not have; the first is '%5'%6\n"_s
                .arg(target, fileName(), QString::fromLatin1(parameter),
                     counted(unknown.count(), u"column"_s), unknown.first(),
                     nearestNameHint(unknown.first(), columns.schema().names)));
    }
}

void RowWriter::createFolder(const QString &file)
{
    if (!rowParams().createDir) {
        m_folderRemedy = u"createDir='1' (convert: --writer createDir=1) creates it"_s;
        return;
    }
    // The result is not checked: the message is the one for a file that cannot be opened.
    QDir().mkpath(QFileInfo(file).absolutePath());
}

QString RowWriter::reasonOf(const TargetFile &target) const
{
    const QString reason = failureReason(target, m_folderRemedy);
    // The message names another file when the rows are split, or when links lead to the target.
    const bool isNamed = reason.isEmpty() || target.target() == fileName();
    return isNamed ? reason : u"file '%1': %2"_s.arg(target.target(), reason);
}

TargetFile::Options RowWriter::targetOptions(const QString &file, TargetMode mode) const
{
    return {getIdx(), mode, [this, file] { return askRetryWrite(file); }, lockOptions(file)};
}

/// The message comes once, when the wait begins.
LockOptions RowWriter::lockOptions(const QString &file) const
{
    return {rowParams().timeOut, [this] { return runIsGood(); },
            [file] {
                MainUI::addLog(
                    MainUI::Info,
                    u"Waiting: another program is writing to the file '%1'\n"_s.arg(file));
            }};
}

bool RowWriter::failLocked(const QString &file)
{
    return fail(
        u"ERROR: cannot write to the file '%1': another program has been writing to it for %2 (see timeOut)\n"_s
            .arg(file, counted(rowParams().timeOut, u"second"_s)));
}

} // namespace corvanta
