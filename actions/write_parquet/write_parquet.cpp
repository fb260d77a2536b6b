// Names of files: the parameter `file` with "__VALUE" of a split value before its extension, then
// "__2", "__3", ... for further files of the same name.
#include "actions/write_parquet/write_parquet.h"

#include "actions/shared/params/writer_params.h"
#include "actions/shared/split_name.h"
#include "base/counted.h"
#include "base/nearest_name.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <thread>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr double kBytesPerMiB = 1048576;

/// Threads that compress pages, in addition to the action's own.
int compressingThreads()
{
    // The action's thread cannot keep more of them busy.
    constexpr int kMaxWorkers = 8;
    return std::clamp(static_cast<int>(std::thread::hardware_concurrency()) - 1, 1, kMaxWorkers);
}

/// The number of the codec in the metadata of a column chunk. An unknown choice is the default.
qint32 codecOf(PageCodec codec)
{
    switch (codec) {
    case PageCodec::None:
        return parquet::kUncompressed;
    case PageCodec::Gzip:
        return parquet::kGzip;
    case PageCodec::Zstandard:
        return parquet::kZstd;
    case PageCodec::Lz4:
        return parquet::kLz4Raw;
    case PageCodec::Brotli:
        return parquet::kBrotli;
    case PageCodec::Snappy:
        break;
    }
    return parquet::kSnappy;
}

/// How keys, which have 32 bits without a sign, are stored. An unknown choice is the default.
parquet::Storage storageOf(KeyStorage storage)
{
    switch (storage) {
    case KeyStorage::Unsigned32:
        return parquet::Storage::KeyAsUint32;
    case KeyStorage::Signed32:
        return parquet::Storage::KeyAsInt32;
    case KeyStorage::Signed64:
        break;
    }
    return parquet::Storage::KeyAsInt64;
}

/// A list of columns and the type that it stands for, with an example.
struct TypedList
{
    const char *name;
    QStringList WriteParquetParams::*columns;
    parquet::Storage storage;
    const char *values;
};
constexpr TypedList kTypedLists[] = {
    {shared::kToBoolean, &WriteParquetParams::toBoolean, parquet::Storage::Boolean,
     "true or false"},
    {kToInteger, &WriteParquetParams::toInteger, parquet::Storage::Integer,
     "a whole number of 64 bits"},
    {shared::kToDate, &WriteParquetParams::toDate, parquet::Storage::Date,
     "a date such as 2026-01-31"},
    {shared::kToDateTime, &WriteParquetParams::toTimestamp, parquet::Storage::Timestamp,
     "a date with a time such as 2026-01-31T04:30:05.25, in microseconds, all with a final Z or "
     "none"},
    {shared::kToTime, &WriteParquetParams::toTime, parquet::Storage::Time,
     "a time such as 04:30:05.25, in microseconds"},
};

const TypedList &typedListOf(parquet::Storage storage)
{
    return *std::find_if(std::begin(kTypedLists), std::end(kTypedLists),
                         [storage](const TypedList &list) { return list.storage == storage; });
}

QString shown(const QString &text)
{
    constexpr qsizetype kMaxShownUnits = 60;
    return text.size() > kMaxShownUnits ? text.left(kMaxShownUnits) + u"..."_s : text;
}

} // namespace

ActionWriteParquet::ActionWriteParquet(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kWriteParquetEntry, saved, parameters)
{
}

QString ActionWriteParquet::message(WriteProblem problem, const QString &name) const
{
    // The texts are fixed. Those of the table name the parameter's file, those of a file its own
    // name.
    switch (problem) {
    case WriteProblem::NoTestColumn:
        return missingColumn(name, "to test");
    case WriteProblem::NoColumn:
        return missingColumn(name, "to write");
    case WriteProblem::NoColumns:
        return u"\nERROR writing to Parquet File '%1': no column to write?\n"_s.arg(fileName());
    case WriteProblem::CannotOpen:
        return u"Cannot open file '%1' for write."_s.arg(name);
    case WriteProblem::CannotWrite:
    case WriteProblem::BadFloatFormat: // these two do not occur
    case WriteProblem::TooLarge:
        break;
    }
    return u"Cannot write to file '%1'."_s.arg(name);
}

QString ActionWriteParquet::missingColumn(const QString &name, const char *purpose) const
{
    return u"\nERROR writing to Parquet File '%1': cannot find column '%2' %3\n"_s.arg(
        fileName(), name, QString::fromLatin1(purpose));
}

/// A fault of the file system: its message names the file, its reason is that of the system.
bool ActionWriteParquet::failTarget(const Output &output, const Fault<TargetError> &fault)
{
    const QString reason = reasonOf(output.target);
    // The texts are fixed; they name the file that is in the way, which may be the "_TMP" file.
    switch (fault.code) {
    case TargetError::CannotReplace:
        return fail(u"Cannot delete previous file '%1'."_s.arg(fault.detail), reason);
    case TargetError::Locked:
        return failLocked(fault.detail);
    case TargetError::CannotOpen:
    case TargetError::Stopped: // logs nothing
        return failWith(WriteProblem::CannotOpen, fault.detail, reason);
    case TargetError::CannotWrite:
        return failWith(WriteProblem::CannotWrite, fault.detail, reason);
    case TargetError::CannotRename:
        break;
    }
    return fail(u"\nERROR cannot rename Parquet file '%1_TMP' to '%1'"_s.arg(fault.detail), reason);
}

/// A fault of the format or of memory; the others are failed writes of the target.
bool ActionWriteParquet::failWriter(const Output &output, const Fault<parquet::Error> &fault)
{
    // The file where links lead to, without "_TMP".
    const QString &target = output.target.target();
    switch (fault.code) {
    case parquet::Error::TextTooLong:
        return fail(
            u"\nERROR writing to Parquet File '%1': a text of column '%2' does not fit a page of %3 KiB\n"_s
                .arg(target, fault.detail, QString::number(m_params.pageSize)));
    case parquet::Error::NoMemory:
        return fail(u"\nERROR writing to Parquet File '%1': %2\n"_s.arg(target, fault.detail));
    case parquet::Error::WriteFailed:
    case parquet::Error::WrongValue: // see failValue()
    case parquet::Error::BadData:
    case parquet::Error::BadFooter:
    case parquet::Error::ShortRead:
    case parquet::Error::BadThrift:
    case parquet::Error::Unreadable:
    case parquet::Error::NeedsExtended:
        break;
    }
    return failWith(WriteProblem::CannotWrite, target, reasonOf(output.target));
}

/// The file would lose the value: no other type of the column is left once rows are written.
bool ActionWriteParquet::failValue(const OneRow &row, size_t column)
{
    const parquet::WriterColumn &wrong = m_run->columns[column];
    const TypedList &list = typedListOf(wrong.storage);
    return fail(
        u"\nERROR writing to Parquet File '%1': the value '%2' of the column '%3' in row %4 is not %5; write the column as text, without it in %6 or with logicalTypes='0' (convert: --types text)\n"_s
            .arg(m_run->output->target.target(), shown(row.text(wrong.cell)),
                 QString::fromUtf8(wrong.name), QString::number(rowNumber()),
                 QString::fromLatin1(list.values), QString::fromLatin1(list.name)));
}

void ActionWriteParquet::setOptions()
{
    m_run->options.pageSizeKiB = m_params.pageSize;
    m_run->options.rowGroupMiB = m_params.rowGroupSize;
    m_run->options.dictionaryPages = m_params.dictionaryPages;
    m_run->options.statistics = m_params.statistics;
}

void ActionWriteParquet::start()
{
    RowWriter::start();
    m_run = std::make_unique<RunState>();
    setOptions();
    // Checked before any row is read, unlike a name that cannot be opened.
    if (m_params.file.isEmpty()) {
        fail(u"No filename?"_s);
        return;
    }
    m_run->compressor =
        std::make_unique<parquet::PageCompressor>(codecOf(m_params.codec), compressingThreads());
}

bool ActionWriteParquet::needsColumnKinds() const
{
    return m_params.logicalTypes && std::ranges::all_of(kTypedLists, [this](const TypedList &list) {
               return (m_params.*list.columns).isEmpty();
           });
}

void ActionWriteParquet::setColumnKinds(const QVector<ColumnKind> &columns)
{
    m_params.toBoolean = columnsOfKind(columns, ValueKind::Boolean);
    m_params.toDate = columnsOfKind(columns, ValueKind::Date);
    m_params.toTimestamp = columnsOfKind(columns, ValueKind::DateTime);
    m_params.toTime = columnsOfKind(columns, ValueKind::Time);
    for (const ColumnKind &column : columns) {
        // keyStorage says how keys are stored, and no key is lost by that.
        if (column.kind == ValueKind::Integer && column.letter != 'K') {
            m_params.toInteger << column.column;
        }
    }
}

parquet::Storage ActionWriteParquet::storageOf(const OneRow &columns, int column) const
{
    // Keys are the only cells with a choice.
    switch (columns.getMetaType(column).type()) {
    case MetaInfo::Float:
        return parquet::Storage::Double;
    case MetaInfo::Unknown:
        return parquet::Storage::Text;
    case MetaInfo::Key:
        break;
    }
    return corvanta::storageOf(m_params.keyStorage);
}

std::optional<parquet::Storage> ActionWriteParquet::listedStorage(const QString &column) const
{
    const auto *const found = std::ranges::find_if(kTypedLists, [&](const TypedList &list) {
        return m_params.logicalTypes && (m_params.*list.columns).contains(column);
    });
    return found == std::end(kTypedLists) ? std::nullopt : std::optional(found->storage);
}

bool ActionWriteParquet::checkTyped(const parquet::WriterColumn &column)
{
    const bool isNumber = column.cellType != cell::Type::Text;
    const bool needsText = column.storage == parquet::Storage::Date ||
                           column.storage == parquet::Storage::Timestamp ||
                           column.storage == parquet::Storage::Time;
    return !isNumber || !needsText ||
           fail(
               u"\nERROR writing to Parquet File '%1': the column '%2' of %3 has numbers, not texts\n"_s
                   .arg(fileName(), QString::fromUtf8(column.name),
                        QString::fromLatin1(typedListOf(column.storage).name)));
}

/// A misspelled name would leave its column without a type silently.
void ActionWriteParquet::warnUnknown(const OneRow &columns)
{
    for (const TypedList &list : kTypedLists) {
        QStringList unknown;
        for (const QString &name : m_params.*list.columns) {
            if (columns.getIndexOfColumn(name) < 0) {
                unknown << name;
            }
        }
        if (!unknown.isEmpty()) {
            warn(
                u"Warning: writing to Parquet File '%1': cannot find %2 of %3; the first is '%4'\n"_s
                    .arg(fileName(), counted(unknown.size(), u"column"_s),
                         QString::fromLatin1(list.name), unknown.first()));
        }
    }
}

bool ActionWriteParquet::findInputs(const OneRow &columns)
{
    // The order of the checks decides which of several mistakes is reported.
    QVector<int> inputs;
    if (!findColumns(columns, &inputs) || !findTestColumn(columns) ||
        !checkNames(columns, inputs)) {
        return false;
    }
    for (const int column : inputs) {
        const QString name = columns.colName(column);
        m_run->columns.push_back({name.toUtf8(),
                                  listedStorage(name).value_or(storageOf(columns, column)), column,
                                  columns.getMetaType(column).cellType()});
        if (!checkTyped(m_run->columns.back())) {
            return false;
        }
    }
    warnUnknown(columns);
    return true;
}

bool ActionWriteParquet::findSplitColumn(const OneRow &columns)
{
    m_run->splitColumn = columns.getIndexOfColumn(m_params.splitVar);
    const QVector<SortInfos> &order = columns.sortInfos();
    // Only the first column of the sort order groups the rows by value.
    m_run->isSorted = !order.isEmpty() && order.first().column == m_params.splitVar;
    // Kept for saved graphs: the other texts of a missing column have "File".
    return m_run->splitColumn >= 0 ||
           fail(u"\nERROR writing to Parquet file '%1': cannot find column '%2' for split\n"_s.arg(
                    fileName(), m_params.splitVar),
                missingColumnReason(m_params.splitVar, columns.schema().names));
}

/// A table that is split by value opens its files with the rows that need them.
bool ActionWriteParquet::open(const OneRow &columns)
{
    const bool splitsByValue = m_params.split == SplitMode::ByValue;
    if (!findInputs(columns) || (splitsByValue && !findSplitColumn(columns))) {
        return false;
    }
    createFolder(fileName()); // files of split values are in the same folder
    // Opened before the first row, so that a table without rows is a file, too.
    return splitsByValue || openOutput(QString());
}

bool ActionWriteParquet::begin(const OneRow &columns)
{
    if (!open(columns)) {
        return false;
    }
    if (m_run->splitColumn >= 0 && !m_run->isSorted) {
        warnUnsorted();
    }
    return true;
}

void ActionWriteParquet::warnUnsorted()
{
    // Every value then has an open file with a row group in memory.
    warn(
        u"\nWARNING writing to Parquet file: The table to split is not sorted on the split variable: The number of splits (i.e. the number of files) is limited to the maximum number of simultaneous opened file allowed by the OS and by the available RAM memory.\n"_s);
}

QVector<TargetUse> ActionWriteParquet::targets() const
{
    QVector<TargetUse> uses = RowWriter::targets();
    if (uses.isEmpty() || m_params.split == SplitMode::None) {
        return uses;
    }
    // As nextTarget() names them: a table without a split column begins with the file itself.
    const QString parts = withPartBeforeExtension(uses.front().name, u"__*"_s);
    if (m_params.split == SplitMode::ByValue) {
        uses.clear();
    }
    uses.append({parts, TargetUse::Access::Create, true});
    return uses;
}

QString ActionWriteParquet::nextTarget(const QString &value)
{
    // NAME__VALUE.parquet; further files of the same name get a number: NAME__VALUE__2.parquet.
    const QString part = m_run->splitColumn < 0 ? QString() : "__"_L1 + fileNamePart(value);
    QString target = withPartBeforeExtension(fileName(), part);
    for (int i = 2; m_run->targets.contains(target); ++i) {
        target = withPartBeforeExtension(fileName(), part + "__"_L1 + QString::number(i));
    }
    m_run->targets.insert(target);
    return target;
}

QStringList ActionWriteParquet::oldSegments() const
{
    std::unordered_set<QString> written;
    for (const QString &target : m_run->targets) {
        written.insert(QFileInfo(target).fileName());
    }
    static const QRegularExpression numbered(u"^(.*)__(?:[2-9]|[1-9][0-9]+)(\\.[^.]*)?$"_s,
                                             QRegularExpression::DotMatchesEverythingOption);
    QStringList old;
    const QDir folder = QFileInfo(fileName()).dir();
    for (const QString &name : folder.entryList(QDir::Files | QDir::Hidden, QDir::Name)) {
        const auto match = numbered.match(name);
        if (match.hasMatch() && !written.contains(name) &&
            written.contains(match.captured(1) + match.captured(2))) {
            old << folder.filePath(name);
        }
    }
    return old;
}

/// An earlier run may have written more segments. A pattern of file names would read them, too.
void ActionWriteParquet::warnOldSegments()
{
    constexpr qsizetype kMaxNames = 10;
    const QStringList old = m_params.split == SplitMode::None ? QStringList() : oldSegments();
    if (old.isEmpty()) {
        return;
    }
    const QString names = old.first(std::min(old.size(), kMaxNames)).join("', '"_L1);
    const QString others = old.size() > kMaxNames ? u" and others"_s : QString();
    warn(
        u"Warning: %1 of an earlier run %4 left next to the new ones: '%2'%3. Delete what is not needed\n"_s
            .arg(counted(old.size(), u"Parquet file"_s), names, others, isOrAre(old.size())));
}

bool ActionWriteParquet::openOutput(const QString &value)
{
    const QString name = nextTarget(value);
    const auto output = std::make_shared<Output>();
    // Entered before it is opened, so that release() finds what a failure leaves.
    m_run->outputs[value] = output;
    m_run->output = output;
    m_run->value = value;
    // Questions about a full disk name this file, not the parameter's.
    const auto opened = output->target.open(name, targetOptions(name, TargetMode::ReplaceByTmp));
    if (!opened) {
        return failTarget(*output, opened.fault());
    }
    output->writer = std::make_unique<parquet::FileWriter>(output->target, m_run->columns,
                                                           m_run->options, *m_run->compressor);
    const auto begun = output->writer->begin();
    return begun || failWriter(*output, begun.fault());
}

bool ActionWriteParquet::closeOutput(const QString &value)
{
    const std::shared_ptr<Output> output = m_run->outputs.extract(value).mapped();
    m_run->output.reset();
    const auto finished = output->writer->finish();
    addChanged(*output);
    output->writer.reset(); // before its target is closed
    if (!finished) {
        // No longer in `outputs`, so release() would not keep it.
        output->target.keepTemporary();
        return failWriter(*output, finished.fault());
    }
    const auto committed = output->target.commit();
    return committed || failTarget(*output, committed.fault());
}

bool ActionWriteParquet::chooseOutput(const OneRow &row)
{
    if (m_run->splitColumn < 0) {
        // The file that begin() opened, or the next segment.
        return m_run->output || openOutput(QString());
    }
    const QStringView text = row.textView(m_run->splitColumn);
    if (m_run->output && text == m_run->value) {
        return true;
    }
    const QString value = text.toString();
    // In a table declared as sorted the rows of a value are next to each other: its file is
    // complete.
    if (m_run->isSorted && m_run->output && !closeOutput(m_run->value)) {
        return false;
    }
    // An unsorted table returns to the file of an earlier value.
    const auto open = m_run->outputs.find(value);
    if (open == m_run->outputs.end()) {
        return openOutput(value);
    }
    m_run->output = open->second;
    m_run->value = value;
    return true;
}

bool ActionWriteParquet::isSegmentFull() const
{
    // Checked after each row, so a segment exceeds its size by up to a row group.
    // Without a positive size there is one segment.
    return m_params.split != SplitMode::None && m_params.segmentSize > 0 &&
           static_cast<double>(m_run->output->writer->bytesWritten()) >
               m_params.segmentSize * kBytesPerMiB;
}

/// A row group is kept in memory by columns, so that each column is one piece of the file.
bool ActionWriteParquet::writeRow(const OneRow &row)
{
    if (!chooseOutput(row)) {
        return false;
    }
    // The writer buffers the row; pages are written when a row group is full.
    const auto added = m_run->output->writer->addRow(row.getAllColForWrite());
    if (!added) {
        return added.fault().code == parquet::Error::WrongValue
                   ? failValue(row, static_cast<size_t>(added.fault().offset))
                   : failWriter(*m_run->output, added.fault());
    }
    // The next row of the value opens the next segment.
    return !isSegmentFull() || closeOutput(m_run->value);
}

void ActionWriteParquet::complete()
{
    if (m_run->targets.empty()) {
        // Only a table that is split by value: the names of its files come from rows.
        warn(u"Warning: the Parquet file '%1' is not written: no row is selected.\n"_s.arg(
            fileName()));
    }
    std::vector<QString> values;
    for (const auto &[value, output] : m_run->outputs) {
        values.push_back(value);
    }
    // The first failure does not depend on the order of a hash table.
    std::sort(values.begin(), values.end());
    for (const QString &value : values) {
        if (!closeOutput(value)) {
            m_run->outputs.clear(); // discards the others
            return;
        }
    }
    warnOldSegments();
    warnChanged();
}

void ActionWriteParquet::ChangedColumn::add(const parquet::ChangedValues &found,
                                            const QString &file)
{
    if (found.count > 0 && count == 0) {
        first = u"in row %1 of the file '%2'"_s.arg(QString::number(found.firstRow), file);
    }
    count += found.count;
}

/// Called for each file before its writer is gone. Files of a split table add up.
void ActionWriteParquet::addChanged(const Output &output)
{
    m_run->negativeKeys.resize(m_run->columns.size());
    m_run->replacedTexts.resize(m_run->columns.size());
    for (size_t i = 0; i < m_run->columns.size(); ++i) {
        const parquet::ColumnWriter &column = output.writer->column(i);
        m_run->negativeKeys[i].add(column.negativeKeys(), output.target.target());
        m_run->replacedTexts[i].add(column.replacedTexts(), output.target.target());
    }
}

/// Negative keys are kept for saved graphs: our reader returns them as they were, but other
/// programs do not.
void ActionWriteParquet::warnNegativeKeys(const QString &name, const ChangedColumn &keys)
{
    warn(
        u"Warning: %1 of the column '%2' %4 above 2147483647 and stored as a negative number; the first is %3. Use keyStorage='2' to store keys as they are\n"_s
            .arg(counted(keys.count, u"key"_s), name, keys.first, isOrAre(keys.count)));
}

void ActionWriteParquet::warnReplacedTexts(const QString &name, const ChangedColumn &texts)
{
    warn(
        u"Warning: %1 of the column '%2' %4 characters that a Parquet file cannot hold, which are replaced by U+FFFD; the first is %3\n"_s
            .arg(counted(texts.count, u"text"_s), name, texts.first, hasOrHave(texts.count)));
}

void ActionWriteParquet::warnChanged()
{
    for (size_t i = 0; i < m_run->negativeKeys.size(); ++i) {
        const QString name = QString::fromUtf8(m_run->columns[i].name);
        const ChangedColumn &keys = m_run->negativeKeys[i];
        if (keys.count > 0) {
            warnNegativeKeys(name, keys);
        }
        const ChangedColumn &texts = m_run->replacedTexts[i];
        if (texts.count > 0) {
            warnReplacedTexts(name, texts);
        }
    }
}

void ActionWriteParquet::keepUnfinished()
{
    for (const auto &[value, output] : m_run->outputs) {
        output->writer.reset(); // before its target is closed
        output->target.keepTemporary();
    }
}

void ActionWriteParquet::release(bool)
{
    if (m_run && m_errorFlag != 0) {
        // An error of this action leaves its unfinished files for inspection.
        keepUnfinished();
    }
    m_run.reset();
}

} // namespace corvanta
