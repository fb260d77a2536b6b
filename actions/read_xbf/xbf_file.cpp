#include "actions/read_xbf/xbf_file.h"

#include "actions/shared/params/type_letters.h"
#include "base/checked.h"
#include "base/counted.h"
#include "base/text/number_value.h"
#include "io/input/whole_input.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Upper limit of one read, whatever the parameter says: a stopped run waits for it to end.
constexpr qint64 kMaxReadBytes = qint64(64) * 1024 * 1024;

qint64 bufferBytes(const ReadXbfParams &params)
{
    return std::min(clampedMiBToBytes(params.bufferSize), kMaxReadBytes);
}

} // namespace

XbfFile::XbfFile(ActionBase &action, const QString &name)
    : m_action(action)
    , m_name(name)
    , m_input(openInput(name))
{
}

std::unique_ptr<RunInput> XbfFile::openInput(const QString &name) const
{
    return std::make_unique<RunInput>(m_action.globalParameters(), m_action.control(), name, false);
}

Result<std::unique_ptr<dbf::TableReader>, dbf::Error>
XbfFile::openTable(ByteSource &source, const encoding::TextDecoder &decoder,
                   const ReadXbfParams &params)
{
    return dbf::TableReader::open(source, decoder,
                                  {params.level7, params.readAllTypes, params.isoValues},
                                  bufferBytes(params));
}

FileSeries::Opened XbfFile::open(ActionBase &action, const QString &name,
                                 const encoding::TextDecoder &decoder, const ReadXbfParams &params)
{
    std::unique_ptr<XbfFile> file(new XbfFile(action, name)); // the constructor is private
    if (!file->m_input->file.isOpen()) {
        return Fault{FileSeries::OpenError::Missing, file->m_input->file.reason()};
    }
    auto reader = openTable(*file->m_input, decoder, params);
    if (!reader) {
        file->fail(reader.fault());
        return Fault{FileSeries::OpenError::Failed};
    }
    file->m_reader = *std::move(reader);
    file->useDeclaredEncoding(params);
    const auto columns = static_cast<qsizetype>(file->m_reader->columns().size());
    if (!takeTypeLetters(action, params.types, columns, &file->m_letters)) {
        return Fault{FileSeries::OpenError::Failed};
    }
    file->warnColumns();
    // Without its memo file a table is read all the same.
    if (params.useDBT && file->m_reader->header().hasMemoFields()) {
        file->openMemo(params);
    }
    return FileSeries::Opened(std::move(file));
}

/// Texts in another encoding would be wrong: what is not used is reported.
void XbfFile::useDeclaredEncoding(const ReadXbfParams &params)
{
    if (params.encoding != XbfEncoding::Windows1252) {
        return;
    }
    DeclaredEncoding declared =
        declaredEncodingOf(m_action.globalParameters(), m_name, m_input->file, m_reader->header());
    const bool isKnown = declared.decoder.has_value();
    if (isKnown && params.declaredEncoding) {
        m_decoder = std::move(declared.decoder);
        m_reader->setDecoder(*m_decoder);
    } else if (isKnown && declared.name != "CP1252"_L1) {
        MainUI::addLog(
            MainUI::Info,
            u"The DBF file '%1' names the encoding %2, but its texts are read as windows-1252. declaredEncoding='1' reads them as %2."_s
                .arg(m_name, declared.name));
    } else if (!isKnown && !declared.name.isEmpty()) {
        m_action.warn(
            u"Warning: the DBF file '%1' names the encoding %2, which is not known: its texts are read as windows-1252\n"_s
                .arg(m_name, declared.name));
    }
}

/// Why there is no name to open a memo file by.
static QString reasonWithoutName(const InputFile &table)
{
    return table.kind() == input::Kind::Rar
               ? u"only the first entry of a RAR archive can be read"_s
               : u"the folder of the table has no .dbt or .fpt file of the same name"_s;
}

/// Open the table's memo file, if there is one.
void XbfFile::openMemo(const ReadXbfParams &params)
{
    QString reason;
    // The first name that opens: a table has one memo file.
    const dbf::TableHeader &header = m_reader->header();
    for (const MemoName &name : memoFileNames(m_name, m_input->file, header.isFoxPro)) {
        auto input = openInput(name.name);
        if (!input->file.isOpen()) {
            reason += u"%1'%2': %3"_s.arg(reason.isEmpty() ? u""_s : u"; "_s, name.name,
                                          input->file.reason());
            continue;
        }
        useMemo(name, std::move(input), params);
        return;
    }
    // A table may have memo fields that were never filled, and then no memo file.
    m_reportsMissingMemos = !header.announcesMemoFile();
    if (header.announcesMemoFile()) {
        m_action.warn(u"Warning: cannot open memo file\n"_s,
                      reason.isEmpty() ? reasonWithoutName(m_input->file) : reason);
    }
}

void XbfFile::useMemo(const MemoName &name, std::unique_ptr<RunInput> input,
                      const ReadXbfParams &params)
{
    // Memo texts are read in any order: a compressed file would start again for each.
    const bool inMemory = params.dbtInRam || !input->file.isRandomAccess();
    m_memoName = name.name;
    m_memoInput = std::move(input);
    // A .fpt file has the FoxPro layout, whatever the version of the table.
    m_memo = std::make_unique<dbf::MemoFile>(
        *m_memoInput, name.isFpt ? dbf::MemoFormat::FoxPro : dbf::memoFormatOf(m_reader->header()),
        inMemory ? dbf::MemoFile::Access::InMemory : dbf::MemoFile::Access::Buffered,
        bufferBytes(params));
    m_reader->setMemoFile(m_memo.get());
}

TableSchema XbfFile::columns() const
{
    TableSchema columns;
    for (size_t i = 0; i < m_reader->columns().size(); ++i) {
        columns.names << m_reader->columnName(i);
        columns.types << (isNumberOfText(i)
                              ? MetaInfo(static_cast<MetaInfo::MetaTypeColumn>(m_letters[i]), -1)
                              : MetaInfo(m_reader->columns()[i].cell));
    }
    return columns;
}

/// Called by other threads while a read is in progress.
float XbfFile::fractionDone() const
{
    return std::max(m_input->file.getProgress(), 0.0F);
}

// ---- Rows.

bool XbfFile::next(OneRow &row, Found *found)
{
    const auto record = m_reader->next();
    if (!record) {
        return fail(record.fault());
    }
    switch (*record) {
    case dbf::TableReader::Item::Record:
        *found = Found::Row;
        return putCells(row);
    case dbf::TableReader::Item::DeletedRecord:
        *found = Found::Nothing;
        break;
    case dbf::TableReader::Item::End:
        *found = Found::End;
        break;
    }
    return true;
}

/// Decode the record's cells in the output pin's buffer, so that they are not copied again.
bool XbfFile::putCells(OneRow &row)
{
    RowBuffer *const buffer = m_action.bufferForOutputPin(0);
    const auto columns = static_cast<int>(m_reader->columns().size());
    for (int i = 0; i < columns; ++i) {
        const auto column = static_cast<size_t>(i);
        if (isNumberOfText(column)) {
            if (!putNumber(column, *buffer, row)) {
                return false;
            }
            continue;
        }
        const uchar *const cell = m_reader->cell(column, *buffer);
        if (cell == nullptr) {
            return fail(m_reader->fault());
        }
        row.setCol(i, cell);
    }
    return true;
}

/// Whether a column whose texts are numbers is read as such.
inline bool XbfFile::isNumberOfText(size_t column) const
{
    const dbf::Conversion conversion = m_reader->columns()[column].conversion;
    return !m_letters.empty() && m_letters[column] != 'U' &&
           (conversion == dbf::Conversion::Text || conversion == dbf::Conversion::Varying ||
            conversion == dbf::Conversion::Digits || conversion == dbf::Conversion::Number ||
            conversion == dbf::Conversion::Truth || conversion == dbf::Conversion::IsoDate);
}

bool XbfFile::putNumber(size_t column, RowBuffer &buffer, OneRow &row)
{
    const bool isKey = m_letters[column] == 'K';
    const QByteArrayView bytes = *m_reader->text(column);
    const std::string_view text(bytes.data(), static_cast<size_t>(bytes.size()));
    quint32 key = cell::kMissingKey;
    double value = cell::missingDouble();
    const bool isNumber = isKey ? parseKey(text, &key) : parseFinite(text, &value);
    if (!isNumber && !text.empty()) {
        return failOnNumber(column, bytes);
    }
    row.setCol(static_cast<int>(column),
               isKey ? keyCell(&buffer, key) : doubleCell(&buffer, value));
    return true;
}

bool XbfFile::failOnNumber(size_t column, QByteArrayView text)
{
    return failOnValue(m_action, m_name, u"record %1"_s.arg(m_reader->findings().records),
                       m_reader->columnName(column), QString::fromLatin1(text), m_letters[column]);
}

/// The checksum of a compressed file is at its end, after bytes that no record needs.
bool XbfFile::finish()
{
    warnCounts();
    return m_input->file.isRandomAccess() || readToEnd(*m_input) || fail({dbf::Error::Unreadable});
}

/// The parts of records that no column has.
void XbfFile::warnColumns()
{
    const dbf::TableHeader &header = m_reader->header();
    if (const Occurrences &fields = header.skippedFields; fields.any()) {
        m_action.warn(
            u"Warning: the DBF file '%1' is read without %2 of unsupported type; the first is %3\n"_s
                .arg(m_name, counted(fields.count(), u"column"_s), fields.first()));
    }
    if (header.fieldBytes < header.recordBytes) {
        m_action.warn(
            u"Warning: the columns that the header of the DBF file '%1' describes take %2 of the %3 bytes of a record: the others are not read\n"_s
                .arg(m_name, QString::number(header.fieldBytes),
                     QString::number(header.recordBytes)));
    }
}

/// The header's count is an upper limit: a table may end before it, and later records are not read.
void XbfFile::warnCounts()
{
    const dbf::Findings &findings = m_reader->findings();
    const quint32 count = m_reader->header().recordCount;
    if (findings.endsBeforeCount) {
        m_action.warn(u"Warning: the DBF file '%1' has %2, not %3 as its header says\n"_s.arg(
            m_name, counted(static_cast<qint64>(findings.records), u"record"_s),
            QString::number(count)));
    }
    if (findings.hasRecordsAfterCount) {
        m_action.warn(
            u"Warning: the DBF file '%1' has more than the %2 that its header counts: the others are not read\n"_s
                .arg(m_name, counted(count, u"record"_s)));
    }
}

void XbfFile::warnValues()
{
    const dbf::Findings &findings = m_reader->findings();
    m_action.warnOf(
        findings.unreadableMemos, m_name, u"memo text"_s,
        u"Warning: %2 of the DBF file '%1' cannot be found in its memo file; the first is in %3\n"_s);
    if (m_reportsMissingMemos) {
        m_action.warnOf(
            findings.memosWithoutFile, m_name, u"memo text"_s,
            u"Warning: the DBF file '%1' has no memo file with its %2, read as missing; the first is in %3\n"_s);
    }
    m_action.warnOf(
        findings.badValues, m_name, u"value"_s,
        u"Warning: the DBF file '%1' has %2 not valid for the type of the column, read as missing; the first is in %3\n"_s);
    m_action.warnOf(
        findings.badTexts, m_name, u"text"_s,
        u"Warning: the DBF file '%1' has %2 not valid in the encoding, and the bytes concerned are replaced; the first is in %3\n"_s);
}

// ---- Failures.

/// Fail with the input's own message or, if it has none, with `otherwise` and the file's name.
bool XbfFile::failOnInput(const RunInput &input, const QString &name, const QString &otherwise)
{
    const QString failure = input.file.failure();
    return m_action.fail(failure.isEmpty() ? otherwise.arg(name) : failure, input.file.reason());
}

/// Report why the table cannot be read, unless the reason is that the run has ended. Returns false.
bool XbfFile::fail(const Fault<dbf::Error> &fault)
{
    if (!m_action.runIsGood()) {
        return false;
    }
    // The last group of codes is damage; its detail is the whole explanation.
    switch (fault.code) {
    case dbf::Error::UnsupportedField:
        // The detail is the type letter, then the name.
        return m_action.fail(
            u"ERROR: the column '%2' of the DBF file '%1' is of type '%3', which is not supported; readAllTypes='1' reads amounts of currency (Y) as numbers and leaves out objects and pictures (B, G, P)\n"_s
                .arg(m_name, fault.detail.mid(1), fault.detail.left(1)));
    case dbf::Error::Unreadable:
        return failOnInput(*m_input, m_name, u"ERROR: cannot read the DBF file '%1'\n"_s);
    case dbf::Error::MemoUnreadable:
        return failOnInput(*m_memoInput, m_memoName, u"ERROR: cannot read the memo file '%1'\n"_s);
    case dbf::Error::MemoTooLarge:
        return m_action.fail(
            u"ERROR: the memo file '%1' is too large to be kept in memory\n"_s.arg(m_memoName));
    case dbf::Error::ShortHeader:
    case dbf::Error::BadHeader:
    case dbf::Error::ShortTable:
        break;
    }
    return m_action.fail(u"ERROR: the DBF file '%1' is damaged: %2\n"_s.arg(m_name, fault.detail));
}

} // namespace corvanta
