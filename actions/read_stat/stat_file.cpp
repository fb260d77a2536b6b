#include "actions/read_stat/stat_file.h"

#include "actions/read_stat/stat_options.h"
#include "actions/shared/tables/reader_file.h"
#include "base/counted.h"
#include "base/nearest_name.h"
#include "codecs/stat/check/header_check.h"
#include "codecs/stat/label_reader.h"
#include "io/input/whole_input.h"

#include <cstring>
#include <unordered_set>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using OpenError = FileSeries::OpenError;

std::unique_ptr<RunInput> openInput(const ActionBase &action, const QString &name)
{
    return std::make_unique<RunInput>(action.globalParameters(), action.control(), name, false);
}

/// Why the file or the catalogue `name` cannot be read.
QString describe(const Fault<stat::Error> &fault, const ByteSource &source)
{
    switch (fault.code) {
    case stat::Error::Unreadable: {
        const QString reason = readFailure(source);
        return reason.isEmpty() ? u"a read failed"_s : reason;
    }
    case stat::Error::NoMemory:
        return u"there is not enough memory"_s;
    case stat::Error::RowTooLarge:
    case stat::Error::CannotOpen:
    case stat::Error::Damaged:
    case stat::Error::Library:
    case stat::Error::UnknownEncoding:
    case stat::Error::Stopped:
        break;
    }
    return fault.detail;
}

} // namespace

StatFile::StatFile(ActionBase &action, const QString &name, std::unique_ptr<ByteSource> source,
                   stat::ReadOptions options, int bufferMiB)
    : m_action(action)
    , m_name(name)
    , m_options(std::move(options))
    , m_bufferMiB(bufferMiB)
    , m_source(std::move(source))
    , m_ring(bufferMiB * 1024LL * 1024)
{
}

/// The parser's thread uses the members, so it ends first.
StatFile::~StatFile()
{
    endParser();
}

// ---- Opening.

FileSeries::Opened StatFile::open(ActionBase &action, const QString &name,
                                  const ReadStatParams &params, const shared::RowRange &range)
{
    auto input = openInput(action, name);
    if (!input->file.isOpen()) {
        return Fault{OpenError::Missing, input->file.reason()};
    }
    const stat::Format named = statFormatOf(params, input->file);
    // The library moves back and forth in the file.
    auto source = randomAccess(std::move(input));
    if (!source) {
        return Fault{OpenError::Unreadable, source.fault().detail};
    }
    const stat::Format format = statFormatOf(params, **source, named);
    std::unique_ptr<StatFile> file(new StatFile(
        action, name, *std::move(source), statOptionsOf(params, format, range), params.bufferSize));
    if (!file->checkContent(named) || !file->checkHeader()) {
        return Fault{OpenError::Failed};
    }
    const QString catalogue =
        params.catalogFile.isEmpty() ? QString() : action.expandFile(params.catalogFile);
    if (!file->readLabels(catalogue) || !file->startParser()) {
        return Fault{OpenError::Failed};
    }
    return FileSeries::Opened(std::move(file));
}

/// A wrong name is not the user's fault in most cases, a wrong parameter is.
bool StatFile::checkContent(stat::Format named)
{
    if (m_options.format != named) {
        m_action.warn(
            u"Warning: the content of the statistical file '%1' is that of %2, not of %3: it is read as such\n"_s
                .arg(m_name, stat::nameOf(m_options.format), stat::nameOf(named)));
    }
    if (const auto content = stat::formatOfContent(*m_source);
        content && *content != m_options.format) {
        return m_action.fail(
            u"ERROR: cannot read the statistical file '%1': its content is that of %2, but the parameter 'fileFormat' says %3\n"_s
                .arg(m_name, stat::nameOf(*content), stat::nameOf(m_options.format)));
    }
    return !stat::isCatalogue(*m_source) ||
           m_action.fail(
               u"ERROR: cannot read the statistical file '%1': it is a SAS catalogue (.sas7bcat), which has value labels but no rows. The parameter 'catalogFile' can name it\n"_s
                   .arg(m_name));
}

bool StatFile::checkHeader()
{
    if (const auto checked = stat::checkHeader(*m_source, m_options.format); !checked) {
        return fail(checked.fault());
    }
    if (m_options.format == stat::Format::Sas) {
        warnDeletedRows();
    }
    if (m_options.format == stat::Format::Stata && stat::lacksStataEnd(*m_source)) {
        m_action.warn(
            u"Warning: the statistical file '%1' is truncated: it has no end tag, and value labels may be missing\n"_s
                .arg(m_name));
    }
    if (m_options.format == stat::Format::Stata && stat::endsInLabels(*m_source)) {
        m_action.warn(
            u"Warning: the statistical file '%1' is truncated inside its value labels, and some are missing\n"_s
                .arg(m_name));
    }
    if (m_options.format == stat::Format::SasTransport) {
        const auto layout = stat::readTransportLayout(*m_source);
        if (!layout) {
            return fail(layout.fault());
        }
        m_transport = *layout;
        m_member = std::make_unique<stat::TransportMember>(*m_source, m_transport.rowsAt);
    }
    return true;
}

/// Read the value labels if they are wanted. Those of SAS are in a file of their own.
bool StatFile::readLabels(const QString &catalogue)
{
    if (!catalogue.isEmpty() && !(m_options.extractLabels && stat::isOfSas(m_options.format))) {
        m_action.warn(
            u"Warning: the catalogue '%1' is not used: it needs extractLabels='1' and a SAS file\n"_s
                .arg(catalogue));
    }
    if (!m_options.extractLabels) {
        return true;
    }
    if (!stat::isOfSas(m_options.format)) {
        return readOwnLabels();
    }
    if (catalogue.isEmpty()) {
        m_action.warn(
            u"Warning: the statistical file '%1' has no value labels, because those of SAS are in a catalogue: the values are read. The parameter 'catalogFile' names the catalogue\n"_s
                .arg(m_name));
        return true;
    }
    return readCatalogue(catalogue);
}

bool StatFile::readOwnLabels()
{
    auto labels = stat::readLabelSets(*m_source, m_options.format, m_options.encoding);
    if (!labels) {
        return fail(labels.fault());
    }
    m_labels = *std::move(labels);
    return true;
}

/// The user has named the catalogue, so a missing one is an error.
bool StatFile::readCatalogue(const QString &name)
{
    auto input = openInput(m_action, name);
    if (!input->file.isOpen()) {
        return m_action.fail(u"ERROR: cannot open the catalogue '%1'\n"_s.arg(name),
                             input->file.reason());
    }
    const auto source = randomAccess(std::move(input));
    if (!source) {
        return m_action.fail(u"ERROR: cannot open the catalogue '%1'\n"_s.arg(name),
                             source.fault().detail);
    }
    if (const auto content = stat::formatOfContent(**source)) {
        return m_action.fail(
            u"ERROR: cannot read the catalogue '%1': it is %2, not a SAS catalogue (.sas7bcat)\n"_s
                .arg(name, stat::nameOf(*content)));
    }
    const auto checked = stat::checkCatalogue(**source);
    auto labels = checked ? stat::readCatalogue(**source, m_options.encoding)
                          : Result<stat::LabelSets, stat::Error>(checked.fault());
    if (!labels) {
        return m_action.fail(u"ERROR: cannot read the catalogue '%1': %2\n"_s.arg(
            name, describe(labels.fault(), **source)));
    }
    if (labels->empty()) {
        m_action.warn(u"Warning: the catalogue '%1' has no value labels\n"_s.arg(name));
    }
    m_labels = *std::move(labels);
    return true;
}

/// Start the thread and wait for its first signal.
bool StatFile::startParser()
{
    ByteSource &source = m_member ? static_cast<ByteSource &>(*m_member) : *m_source;
    m_reader = std::make_unique<stat::DataSetReader>(source, m_options, std::move(m_labels));
    const auto columnsKnown = m_columnsPromise.get_future();
    m_thread = std::thread([this] { parse(); });
    columnsKnown.wait();
    if (!m_areColumnsKnown) {
        m_thread.join();
        return fail(m_outcome.fault());
    }
    for (const QString &missing : m_reader->missingColumns()) {
        m_action.fail(u"ERROR: the statistical file '%1' has no column '%2'%3\n"_s.arg(
            m_name, missing, nearestNameHint(missing, m_reader->skippedColumns())));
    }
    if (!m_action.runIsGood()) {
        return false;
    }
    if (const qint64 rows = m_reader->dictionary().rows; rows >= 0) {
        logRowCount(rows);
    }
    warnSameNames();
    return true;
}

/// The thread.
void StatFile::parse() noexcept
{
    m_outcome = m_reader->read(m_ring, [this](const stat::Dictionary &) {
        m_areColumnsKnown = true;
        m_columnsPromise.set_value();
    });
    if (!m_areColumnsKnown) {
        m_columnsPromise.set_value();
    }
    m_ring.finish();
}

/// Stop the thread if it still parses.
void StatFile::endParser()
{
    m_ring.stop();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

TableSchema StatFile::columns() const
{
    return schemaOf(m_reader->columns(),
                    [](const stat::ColumnPlan &column) { return column.type; });
}

void StatFile::logRowCount(qint64 rows) const
{
    MainUI::addLog(MainUI::Info,
                   u"Number of Rows in file '%2' is %1."_s.arg(QString::number(rows), m_name));
}

/// The library delivers them like the others.
void StatFile::warnDeletedRows() const
{
    if (const qint64 rows = stat::deletedSasRows(*m_source); rows > 0) {
        m_action.warn(
            u"Warning: reading the statistical file '%1' includes %2 marked as deleted\n"_s.arg(
                m_name, counted(rows, u"row"_s)));
    }
}

/// The other data sets have columns of their own. The library would read their headers as rows.
bool StatFile::checkEndOfTransport()
{
    const qint64 rows = m_reader->rowsRead();
    const bool isAtLimit = m_options.maxRows > 0 && rows >= m_options.maxRows;
    if (!isAtLimit && m_member && m_member->hasMore()) {
        return m_action.fail(
            u"ERROR: the statistical file '%1' has further data sets after %2, which cannot be read; maxRows='%3' reads the first one\n"_s
                .arg(m_name, counted(rows, u"row"_s), QString::number(rows)));
    }
    // The library treats rows of blanks at the end as padding.
    const qint64 missing = m_transport.rows - m_options.skippedRows - rows;
    if (!isAtLimit && missing > 0) {
        m_action.warn(
            u"Warning: the statistical file '%1' is read without its last %2, because only missing texts are there\n"_s
                .arg(m_name, counted(missing, u"row"_s)));
    }
    return true;
}

/// Two variables may have the same label.
void StatFile::warnSameNames() const
{
    std::unordered_set<QString> names;
    Occurrences same;
    for (const stat::ColumnPlan &column : m_reader->columns()) {
        if (!names.insert(column.name).second) {
            same.add([&] { return column.name; });
        }
    }
    if (same.any()) {
        m_action.warn(
            u"Warning: the statistical file '%1' has %2 with the name of an earlier column; the first is '%3'\n"_s
                .arg(m_name, counted(same.count(), u"column"_s), same.first()));
    }
}

// ---- Rows.

float StatFile::fractionDone() const
{
    return m_reader->fractionDone();
}

bool StatFile::next(OneRow &row, Found *found)
{
    const uchar *const *const cells = m_ring.next();
    if (cells == nullptr) {
        return finishRows(found);
    }
    copyRow(cells, row);
    *found = Found::Row;
    return true;
}

/// The cells in the ring are copied in one piece, which keeps their alignment. The others, missing
/// cells and labels, outlive the row.
void StatFile::copyRow(const uchar *const *cells, OneRow &row)
{
    const size_t columns = m_reader->columns().size();
    const auto *const begin = reinterpret_cast<const uchar *>(cells + columns);
    const uchar *const end = m_ring.rowEnd();
    const auto bytes = static_cast<size_t>(end - begin);
    uchar *const copy = m_action.bufferForOutputPin(0)->alloc(static_cast<int>(bytes));
    std::memcpy(copy, begin, bytes);
    for (size_t i = 0; i < columns; ++i) {
        const bool isInRing = cells[i] >= begin && cells[i] < end;
        row.setCol(static_cast<int>(i), isInRing ? copy + (cells[i] - begin) : cells[i]);
    }
}

/// The ring is at its end: the rows are complete, the parser has failed, or the run has ended.
bool StatFile::finishRows(Found *found)
{
    if (!m_action.runIsGood()) {
        return false;
    }
    m_thread.join();
    if (!m_outcome) {
        return fail(m_outcome.fault());
    }
    if (m_reader->dictionary().rows < 0) {
        logRowCount(m_reader->rowsRead());
    }
    if (!checkEndOfTransport()) {
        return false;
    }
    *found = Found::End;
    return true;
}

// ---- Messages.

void StatFile::beforeClose()
{
    endParser();
    logLibraryMessages();
    const stat::Findings &findings = m_reader->findings();
    if (const Occurrences &texts = findings.replacedTexts; texts.any()) {
        m_action.warn(
            u"ReadStat Warning: Invalid character found in file '%1'"_s.arg(m_name),
            m_options.format == stat::Format::SpssPor
                ? u"U+FFFD replaces the bytes that the file's table of characters does not have, in %1; the first is in %2"_s
                      .arg(counted(texts.count(), u"text"_s), texts.first())
                : u"U+FFFD replaces the bytes that are not valid in the encoding %2, in %1; the first is in %3. The parameter 'encoding' can name another encoding"_s
                      .arg(counted(texts.count(), u"text"_s), m_reader->dictionary().encoding,
                           texts.first()));
    }
    m_action.warnOf(
        findings.cutTexts, m_name, u"text"_s,
        u"Warning: the statistical file '%1' has %2 with an incomplete character at the end, which is left out; the first is in %3\n"_s);
    m_action.warnOf(
        findings.lostTexts, m_name, u"long text"_s,
        u"Warning: the statistical file '%1' refers to %2 (strL) that it does not have, and that become missing; the first is in %3\n"_s);
    m_action.warnOf(
        findings.badDates, m_name, u"date"_s,
        u"Warning: the statistical file '%1' has %2 outside the years 1 to 9999, read as numbers; the first is in %3\n"_s);
    m_action.warnOf(
        findings.lostLabels, m_name, u"missing value"_s,
        u"Warning: the statistical file '%1' has %2 with a label, which is not read because the cells are missing; the first is in %3. Without extractLabels, schema shows these labels\n"_s);
    if (findings.userMissing.any()) {
        MainUI::addLog(MainUI::Info,
                       u"The file '%1' declares %2 to be missing; the first is in %3."_s.arg(
                           m_name, counted(findings.userMissing.count(), u"value"_s),
                           findings.userMissing.first()));
    }
}

/// Once per file.
void StatFile::logLibraryMessages()
{
    if (!m_reader || std::exchange(m_isReported, true)) {
        return;
    }
    for (const QString &message : m_reader->messages()) {
        MainUI::addLog(MainUI::Diagnostic, u"ReadStat ERROR: %1"_s.arg(message));
    }
}

/// Report why the file cannot be read, unless the reason is that the run has ended. Returns false.
bool StatFile::fail(const Fault<stat::Error> &fault)
{
    if (!m_action.runIsGood()) {
        return false;
    }
    logLibraryMessages();
    switch (fault.code) {
    case stat::Error::UnknownEncoding:
        return m_action.fail(u"Invalid character encoding (%1)."_s.arg(fault.detail));
    case stat::Error::RowTooLarge:
        return m_action.fail(
            u"ERROR: a row of the statistical file '%1' needs more than %2 bytes, and the buffer has %3 MB; use a larger bufferSize\n"_s
                .arg(m_name, fault.detail, QString::number(m_bufferMiB)));
    case stat::Error::Library:
        MainUI::addLog(MainUI::Diagnostic, u"ReadStat ERROR: %1"_s.arg(fault.detail));
        if (!stat::formatOfContent(*m_source)) {
            return m_action.fail(
                u"ERROR: cannot read the statistical file '%1': %2; it does not begin like %3\n"_s
                    .arg(m_name, fault.detail, stat::nameOf(m_options.format)));
        }
        break;
    case stat::Error::CannotOpen:
        return m_action.fail(u"ERROR: cannot open statistical file '%1'\n"_s.arg(m_name),
                             fault.detail);
    case stat::Error::Unreadable:
        return m_action.fail(u"ERROR: cannot read the statistical file '%1'\n"_s.arg(m_name),
                             readFailure(*m_source));
    case stat::Error::Damaged:
    case stat::Error::NoMemory:
    case stat::Error::Stopped:
        break;
    }
    return m_action.fail(u"ERROR: cannot read the statistical file '%1': %2\n"_s.arg(
        m_name, describe(fault, *m_source)));
}

} // namespace corvanta
