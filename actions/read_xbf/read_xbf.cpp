#include "actions/read_xbf/read_xbf.h"

#include "actions/read_xbf/memo_name.h"
#include "base/checked.h"
#include "corvanta/files.h"
#include "corvanta/system_encoding.h"
#include "plugin/catalogue.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr int kRecordsPerProgress = 1000;
/// The most that is read at once, whatever the parameter says: a stopped run waits for it.
constexpr qint64 kLongestReadBytes = 64 * 1024 * 1024;

qint64 bufferBytes(const ReadXbfParams &params)
{
    return std::min(clampedMiBToBytes(params.bufferSize), kLongestReadBytes);
}

} // namespace

ActionReadXBF::ActionReadXBF(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(catalogueRow("ReadXBF"), saved, parameters)
{
}

dbf::TextDecoder ActionReadXBF::makeDecoder() const
{
    switch (m_params.encoding) {
    case 0:
        return dbf::TextDecoder::windows1252();
    case 1:
        return dbf::TextDecoder::named(currentACPName());
    case 2:
        return dbf::TextDecoder::utf8();
    default:
        return dbf::TextDecoder::unconverted();
    }
}

void ActionReadXBF::start()
{
    m_run = std::make_unique<RunState>(makeDecoder());
    m_completion = 0.0F;
    listFiles(expandFile(m_params.fileName), &m_run->files);
    const QString first = m_run->files[m_run->nextFile++];
    switch (openTable(first)) {
    case Opening::Missing:
        fail(u"ERROR: cannot open DBF file '%1'\n"_s.arg(first));
        return;
    case Opening::Failed:
        return;
    case Opening::Done:
        break;
    }
    const dbf::TableReader &reader = *m_run->table->reader;
    for (size_t i = 0; i < reader.columns().size(); ++i) {
        m_run->names << reader.columnName(i);
        m_run->types << MetaInfo(reader.columns()[i].cell);
    }
    OneRow *const row = getOutputRowForOutputPin(0);
    row->setColName(m_run->names);
    row->setMetaData(m_run->types);
}

ActionReadXBF::Opening ActionReadXBF::openTable(const QString &file)
{
    m_run->table.reset();
    auto table = std::make_unique<Table>();
    table->input = std::make_unique<Input>(*this, file);
    if (!table->input->file.isOpen()) {
        return Opening::Missing;
    }
    auto reader = dbf::TableReader::open(*table->input, m_run->decoder, m_params.level7,
                                         bufferBytes(m_params));
    if (!reader) {
        failOnTable(*table, reader.fault());
        return Opening::Failed;
    }
    table->reader = *std::move(reader);
    if (m_params.useDBT && table->reader->header().hasMemoFields()) {
        openMemo(table.get());
    }
    m_run->table = std::move(table);
    return Opening::Done;
}

/// Open the memo file that goes with the table, if there is one.
void ActionReadXBF::openMemo(Table *table)
{
    const dbf::TableHeader &header = table->reader->header();
    for (const QString &name : memoFileNames(table->input->name, table->input->file)) {
        auto input = std::make_unique<Input>(*this, name);
        if (!input->file.isOpen()) {
            continue;
        }
        const bool isFoxPro = name.section(u'/', -1).contains(u".fpt"_s, Qt::CaseInsensitive);
        const bool inMemory = m_params.dbtInRam || !input->file.isRandomAccess();
        table->memoInput = std::move(input);
        table->memo = std::make_unique<dbf::MemoFile>(
            *table->memoInput, isFoxPro ? dbf::MemoFormat::FoxPro : dbf::memoFormatOf(header),
            inMemory ? dbf::MemoFile::Access::InMemory : dbf::MemoFile::Access::Buffered,
            bufferBytes(m_params));
        table->reader->setMemoFile(table->memo.get());
        return;
    }
    if (header.announcesMemoFile()) {
        warn(u"Warning: cannot open memo file\n"_s);
    }
}

/// Log what the input has to say, or `otherwise` with its name; returns false.
bool ActionReadXBF::failOnInput(const Input &input, const QString &otherwise)
{
    const QString failure = input.file.failure();
    return fail(failure.isEmpty() ? otherwise.arg(input.name) : failure);
}

/// Log why a table cannot be read (on), unless that is because the run is over; returns false.
bool ActionReadXBF::failOnTable(const Table &table, const Fault<dbf::Error> &fault)
{
    if (!runIsGood()) {
        return false;
    }
    switch (fault.code) {
    case dbf::Error::UnsupportedField:
        return fail(
            u"ERROR: the column '%2' of the DBF file '%1' is of type '%3', which is not supported\n"_s
                .arg(table.input->name, fault.detail.mid(1), fault.detail.left(1)));
    case dbf::Error::Unreadable:
        return failOnInput(*table.input, u"ERROR: cannot read the DBF file '%1'\n"_s);
    case dbf::Error::MemoUnreadable:
        return failOnInput(*table.memoInput, u"ERROR: cannot read the memo file '%1'\n"_s);
    case dbf::Error::MemoTooLarge:
        return fail(u"ERROR: the memo file '%1' is too large to be kept in memory\n"_s.arg(
            table.memoInput->name));
    case dbf::Error::ShortHeader:
    case dbf::Error::BadHeader:
    case dbf::Error::ShortTable:
        break;
    }
    return fail(
        u"ERROR: the DBF file '%1' is damaged: %2\n"_s.arg(table.input->name, fault.detail));
}

/// Go to the next file that opens; false at the end or after a failure.
bool ActionReadXBF::openNextTable()
{
    while (m_run->nextFile < m_run->files.size()) {
        const QString file = m_run->files[m_run->nextFile++];
        switch (openTable(file)) {
        case Opening::Done:
            return checkColumns();
        case Opening::Failed:
            return false;
        case Opening::Missing:
            warn(u"Warning: cannot open DBF file '%1'\n"_s.arg(file));
        }
    }
    return false;
}

/// Compare the columns of a later table with those of the first one.
bool ActionReadXBF::checkColumns()
{
    const Table &table = *m_run->table;
    const auto &columns = table.reader->columns();
    const qsizetype expected = m_run->names.size();
    if (static_cast<qsizetype>(columns.size()) != expected) {
        return fail(
            u"Error: The DBF file '%3' does have the right number of columns (%1!=%2)"_s.arg(
                QString::number(columns.size()), QString::number(expected), table.input->name));
    }
    for (qsizetype i = 0; i < expected; ++i) {
        const QString name = table.reader->columnName(static_cast<size_t>(i));
        if (name != m_run->names[i]) {
            return fail(
                u"An error occurred while initializing the 'ReadXBF' Action \nThe name of the column %1 do not match in first file and file '%2' ('%3'!='%4'"_s
                    .arg(QString::number(i + 1), table.input->name, m_run->names[i], name));
        }
        const MetaInfo type = MetaInfo(columns[static_cast<size_t>(i)].cell);
        if (type != m_run->types[i]) {
            return fail(
                u"An error occurred while initializing the 'ReadXBF' Action \nThe Meta-type of the column '%3' do not match in first file and file '%4' (type: %1!=%2)"_s
                    .arg(m_run->types[i].letter(), type.letter(), name, table.input->name));
        }
    }
    return true;
}

bool ActionReadXBF::step()
{
    while (m_run->table && !yieldRequested()) {
        using Found = dbf::TableReader::Found;
        const auto found = m_run->table->reader->next();
        if (!found) {
            return failOnTable(*m_run->table, found.fault());
        }
        if ((*found == Found::Record && !putRow()) ||
            (*found == Found::End && (!finishTable() || !openNextTable()))) {
            return false;
        }
        updateCompletion();
    }
    return m_run->table != nullptr;
}

bool ActionReadXBF::putRow()
{
    dbf::TableReader &reader = *m_run->table->reader;
    RowBuffer *const buffer = bufferForOutputPin(0);
    OneRow *const row = getOutputRowForOutputPin(0);
    const auto columns = static_cast<int>(reader.columns().size());
    for (int i = 0; i < columns; ++i) {
        const uchar *const cell = reader.cell(static_cast<size_t>(i), *buffer);
        if (cell == nullptr) {
            return failOnTable(*m_run->table, reader.fault());
        }
        row->setCol(i, cell);
    }
    setRowReadyForOutput(0);
    return true;
}

void ActionReadXBF::updateCompletion()
{
    if (++m_run->recordsSinceProgress < kRecordsPerProgress) {
        return;
    }
    m_run->recordsSinceProgress = 0;
    const auto done =
        static_cast<float>(m_run->nextFile - 1) + m_run->table->input->file.getProgress();
    m_completion.store(done / static_cast<float>(m_run->files.size()), std::memory_order_relaxed);
}

/// What is left to do when all records of a table are read; false when the run has failed.
bool ActionReadXBF::finishTable()
{
    warnFindings();
    return drainInput();
}

/// Read a packed table to its end, where its checksum is looked at.
bool ActionReadXBF::drainInput()
{
    Input &input = *m_run->table->input;
    if (input.file.isRandomAccess()) {
        return true;
    }
    constexpr qint64 kScratchBytes = 64 * 1024;
    std::vector<char> scratch(kScratchBytes);
    qint64 got = 1;
    while (got > 0) {
        got = input.read(scratch.data(), kScratchBytes);
    }
    return got == 0 || failOnTable(*m_run->table, {dbf::Error::Unreadable});
}

void ActionReadXBF::warnFindings()
{
    const Table &table = *m_run->table;
    const dbf::Findings &findings = table.reader->findings();
    const quint32 count = table.reader->header().recordCount;
    if (findings.endsBeforeCount) {
        warn(u"Warning: the DBF file '%1' has %2 records, not %3 as its header says\n"_s.arg(
            table.input->name, QString::number(findings.records), QString::number(count)));
    }
    if (findings.goesOnBehindCount) {
        warn(
            u"Warning: the DBF file '%1' has more than the %2 records that its header says: they are not read\n"_s
                .arg(table.input->name, QString::number(count)));
    }
    if (findings.unreadableMemos > 0) {
        warn(
            u"Warning: %2 memo texts of the DBF file '%1' cannot be found in its memo file\n"_s.arg(
                table.input->name, QString::number(findings.unreadableMemos)));
    }
}

void ActionReadXBF::finish()
{
    m_run.reset();
}

} // namespace corvanta
