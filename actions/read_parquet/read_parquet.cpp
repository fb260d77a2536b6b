#include "actions/read_parquet/read_parquet.h"

#include "base/limits.h"
#include "corvanta/files.h"
#include "plugin/catalogue.h"

#include <algorithm>
#include <thread>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr int kMostWorkers = 8;

int workerCount()
{
    return std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, kMostWorkers);
}

MetaInfo metaTypeOf(const parquet::Column &column)
{
    return MetaInfo(parquet::cellTypeOf(column.form));
}

/// All bytes of an input, unpacked; false when there are too many, or reading fails.
bool readWhole(InputFile &input, QByteArray *bytes)
{
    constexpr qsizetype kPieceBytes = 1 << 20;
    for (;;) {
        const qsizetype before = bytes->size();
        if (before > limits::kMemberBytes) {
            return false;
        }
        bytes->resize(before + kPieceBytes);
        const qint64 got = input.read(bytes->data() + before, kPieceBytes);
        bytes->resize(before + std::max<qint64>(got, 0));
        if (got <= 0) {
            return got == 0;
        }
    }
}

} // namespace

ActionReadParquet::ActionReadParquet(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(catalogueRow("readParquet"), saved, parameters)
{
    if (const QString name = saved.text().trimmed(); !name.isEmpty()) {
        m_params.fileName = name;
    }
}

float ActionReadParquet::computeCompletion()
{
    const std::lock_guard lock(m_mutex);
    if (!m_current || m_files.isEmpty()) {
        return 1.0F;
    }
    return (m_current->reader->fractionDone() + m_filesDone) / static_cast<float>(m_files.size());
}

void ActionReadParquet::wakeAll()
{
    const std::lock_guard lock(m_mutex);
    if (m_current) {
        m_current->reader->stop();
    }
}

void ActionReadParquet::setCurrent(std::unique_ptr<OpenFile> file)
{
    const std::lock_guard lock(m_mutex);
    m_current.swap(file);
    m_filesDone = static_cast<float>(m_nextFile - 1);
}

void ActionReadParquet::start()
{
    finish();
    m_nextFile = 0;
    m_isPrepared = m_hasColumns = false;
    m_names.clear();
    m_types.clear();
    m_options = {};
    m_options.int64ToKey = m_params.int64ToKey;
    m_options.extendedEncodings = m_params.extendedEncodings;
    m_options.logicalTypes = m_params.logicalTypes;
    m_options.skipsUnreadable = m_params.skipUnreadable;
    m_options.pageChecksums = m_params.pageChecksums;
}

void ActionReadParquet::finish()
{
    setCurrent(nullptr);
}

bool ActionReadParquet::prepare()
{
    m_isPrepared = true;
    return readSelection() && listInputs() && openNextFile();
}

bool ActionReadParquet::readSelection()
{
    m_options.selectsColumns = m_params.columnSelection == 1 || m_params.columnSelection == 2;
    if (m_params.columnSelection == 1) {
        m_options.selection = m_params.columnsToRead;
        if (m_options.selection.isEmpty()) {
            return fail(u"Error: readParquet: ColumnsToRead names no column\n"_s);
        }
    } else if (m_params.columnSelection == 2) {
        while (const OneRow *const row = getNextRowFromInPin(1)) {
            m_options.selection << row->text(0);
        }
        if (m_options.selection.isEmpty()) {
            return runIsGood() && fail(u"ERROR: No column to read on input pin 1??"_s);
        }
    }
    return true;
}

bool ActionReadParquet::listInputs()
{
    QStringList files;
    if (m_params.fileNameFromPin) {
        while (const OneRow *const row = getNextRowFromInPin(0)) {
            files << expandFile(row->text(0));
        }
        if (files.isEmpty()) {
            return runIsGood() &&
                   fail(u"ERROR: Cannot read the name of the Parquet file on input pin??"_s);
        }
    } else {
        listFiles(expandFile(m_params.fileName), &files);
    }
    const std::lock_guard lock(m_mutex);
    m_files = files;
    return true;
}

/// Go to the next file that can be read; false at the end or after a failure.
bool ActionReadParquet::openNextFile()
{
    setCurrent(nullptr);
    while (m_nextFile < m_files.size() && runIsGood()) {
        const QString name = m_files[m_nextFile++];
        switch (openFile(name)) {
        case Opening::Done:
            return m_hasColumns ? checkColumns() : describeColumns();
        case Opening::Missing:
            if (!handleMissing(name)) {
                return false;
            }
            break;
        case Opening::Unreadable: {
            const QString text = u"Warning: cannot open Parquet file '%1' for read\n"_s.arg(name);
            if (!m_hasColumns) {
                return fail(text); // without a first file there is no table
            }
            warn(text);
            break;
        }
        case Opening::Failed:
            return false;
        }
    }
    return false;
}

/// The bytes of a file, with jumps; null when they cannot be had.
ByteSource *ActionReadParquet::sourceOf(OpenFile &file)
{
    if (file.input->isRandomAccess()) {
        return file.input.get();
    }
    if (!readWhole(*file.input, &file.unpacked)) {
        return nullptr;
    }
    file.memory = std::make_unique<MemorySource>(file.unpacked);
    return file.memory.get();
}

ActionReadParquet::Opening ActionReadParquet::openFile(const QString &name)
{
    auto file = std::make_unique<OpenFile>();
    file->name = name;
    file->input = std::make_unique<InputFile>(globalParameters(), name, false);
    if (!file->input->isOpen()) {
        return file->input->getSize() < 0 ? Opening::Missing : Opening::Unreadable;
    }
    ByteSource *const source = sourceOf(*file);
    if (source == nullptr) {
        return Opening::Unreadable;
    }
    auto reader = parquet::TableReader::open(*source, m_options, workerCount());
    if (!reader) {
        return unreadable(name, reader.fault());
    }
    file->reader = *std::move(reader);
    const parquet::TableReader &table = *file->reader;
    const bool isEmpty = table.rowGroupCount() == 0 || table.declaredRows() == 0;
    if (table.schemaColumnCount() == 0 || (isEmpty && !m_params.allowEmpty)) {
        fail(u"Error (2) deserializing thrift meta-data (%1,%2,%3)"_s.arg(
            QString::number(table.columns().size() + 1), QString::number(table.rowGroupCount()),
            QString::number(table.declaredRows())));
        return Opening::Failed;
    }
    if (!table.missingColumns().isEmpty() && !m_hasColumns) {
        fail(u"Error: The Parquet file '%1' has no column '%2'\n"_s.arg(
            name, table.missingColumns().first()));
        return Opening::Failed;
    }
    // Much of what makes a file unreadable shows in its pages only.
    file->cells.resize(table.columns().size());
    const auto more = file->reader->next(file->cells.data());
    if (!more) {
        return unreadable(name, more.fault());
    }
    file->hasRow = *more;
    setCurrent(std::move(file));
    return Opening::Done;
}

/// Log why a file cannot be read, where its own message does not say it.
ActionReadParquet::Opening ActionReadParquet::unreadable(const QString &name,
                                                         const Fault<parquet::Error> &fault)
{
    switch (fault.code) {
    case parquet::Error::BadThrift:
        MainUI::addLog(MainUI::Error, u"Error (1) deserializing thrift meta-data"_s);
        break;
    case parquet::Error::BadData:
    case parquet::Error::NoMemory:
        warn(u"Warning: The Parquet file '%1' cannot be read: %2\n"_s.arg(name, fault.detail));
        break;
    case parquet::Error::BadFooter:
    case parquet::Error::ShortRead:
    case parquet::Error::Unreadable:
    case parquet::Error::TextTooLong:
    case parquet::Error::WriteFailed:
        break;
    }
    return Opening::Unreadable;
}

/// False when a missing file ends the run.
bool ActionReadParquet::handleMissing(const QString &name)
{
    if (m_params.abortIfMissing) {
        return fail(u"Error: The Parquet file '%1' does not exists"_s.arg(name));
    }
    warn(u"Warning: The Parquet file '%1' does not exists"_s.arg(name));
    return true;
}

/// Take the columns of the first file.
bool ActionReadParquet::describeColumns()
{
    m_hasColumns = true;
    warnSkipped();
    for (const parquet::Column &column : m_current->reader->columns()) {
        m_names << column.name;
        m_types << metaTypeOf(column);
    }
    QVector<QString> names = m_names;
    QVector<MetaInfo> types = m_types;
    if (m_params.outputFilenames) {
        names << u"_FileNames"_s;
        types << MetaInfo(MetaInfo::Unknown, -1);
    }
    OneRow *const row = getOutputRowForOutputPin(0);
    row->setColName(names);
    row->setMetaData(types);
    return true;
}

void ActionReadParquet::warnSkipped()
{
    constexpr int kToldColumns = 10;
    CappedLog log(MainUI::Warning, kToldColumns, u"Warning: more columns are left out\n"_s);
    for (const QString &column : m_current->reader->skippedColumns()) {
        log.add(
            u"Warning: The Parquet file '%1' is read without %2\n"_s.arg(m_current->name, column));
        m_warningFlag = 1;
    }
}

/// Compare the columns of a later file with those of the first one.
bool ActionReadParquet::checkColumns()
{
    const QString &name = m_current->name;
    const std::vector<parquet::Column> &columns = m_current->reader->columns();
    const qsizetype expected = m_names.size();
    if (static_cast<qsizetype>(columns.size()) != expected) {
        return fail(
            u"Error: The Parquet file '%3' does have the right number of columns (%1!=%2)"_s.arg(
                QString::number(columns.size()), QString::number(expected), name));
    }
    for (qsizetype i = expected; i-- > 0;) {
        const parquet::Column &column = columns[static_cast<size_t>(i)];
        if (column.name != m_names[i]) {
            return fail(
                u"An error occurred while initializing the 'ReadParquet' Action \nThe name of the column %1 do not match in first file and file '%2' ('%3'!='%4'"_s
                    .arg(QString::number(i), name, m_names[i], column.name));
        }
        if (metaTypeOf(column) != m_types[i]) {
            return fail(
                u"An error occurred while initializing the 'ReadParquet' Action \nThe Meta-type of the column '%3' do not match in first file and file '%4' (type: %1!=%2)"_s
                    .arg(metaTypeOf(column).letter(), m_types[i].letter(), column.name, name));
        }
    }
    return true;
}

/// Hand on the row at hand and take the next one; false when the run has failed.
bool ActionReadParquet::putRow()
{
    OneRow *const row = getOutputRowForOutputPin(0);
    const std::vector<const uchar *> &cells = m_current->cells;
    for (size_t i = 0; i < cells.size(); ++i) {
        row->setCol(static_cast<int>(i), cells[i]);
    }
    if (m_params.outputFilenames) {
        row->setCol(static_cast<int>(cells.size()),
                    bytesFromQString(bufferForOutputPin(0), m_current->name));
    }
    setRowReadyForOutput(0);
    const auto more = m_current->reader->next(m_current->cells.data());
    if (!more) {
        return failInside(more.fault());
    }
    m_current->hasRow = *more;
    return true;
}

/// A page in the middle cannot be read: the rows before it were right. Returns false.
bool ActionReadParquet::failInside(const Fault<parquet::Error> &fault)
{
    finishFile();
    return fail(
        u"Error: The Parquet file '%1' cannot be read: %2\n"_s.arg(m_current->name, fault.detail));
}

/// Compare what was read with what the file declares; false when the run has ended.
bool ActionReadParquet::finishFile()
{
    const parquet::TableReader &reader = *m_current->reader;
    if (runIsGood() && reader.rowsRead() != reader.declaredRows()) {
        warn(
            u"Warning in ReadParquet: We read %1 rows instead of %2 rows from the file '%3'."_s.arg(
                QString::number(reader.rowsRead()), QString::number(reader.declaredRows()),
                m_current->name));
    }
    return runIsGood();
}

bool ActionReadParquet::step()
{
    if (!m_isPrepared && !prepare()) {
        return false;
    }
    while (!yieldRequested()) {
        if (m_current->hasRow ? !putRow() : !finishFile() || !openNextFile()) {
            return false;
        }
    }
    return true;
}

} // namespace corvanta
