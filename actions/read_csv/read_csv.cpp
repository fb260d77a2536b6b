// readCSV: opens the file, declares the columns from its first record, and converts fields to
// cells. The records come from codecs/csv.
#include "actions/read_csv/read_csv.h"

#include "actions/shared/params/csv_separator.h"
#include "base/counted.h"
#include "base/number.h"
#include "corvanta/failure_reason.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Separators that files often have instead of a comma.
constexpr char16_t kOtherSeparators[] = {u';', u'\t', u'|'};

/// Passes the bytes of a file on and publishes how far it has been read.
class ProgressSource final : public ByteSource
{
public:
    /// `compressed` is `file` if that is a compressed file, else null.
    ProgressSource(std::unique_ptr<ByteSource> file, const input::InputSource *compressed,
                   std::atomic<qint64> *done)
        : m_file(std::move(file))
        , m_compressed(compressed)
        , m_done(done)
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        const qint64 got = m_file->read(buffer, n);
        // The size of the content of a compressed file is not known, so its position in the
        // compressed bytes is published. A failed read (-1) adds nothing.
        *m_done = m_compressed != nullptr ? m_compressed->progressPosition()
                                          : *m_done + qMax<qint64>(got, 0);
        return got;
    }
    qint64 size() override { return m_file->size(); }
    bool seek(qint64 offset) override { return m_file->seek(offset); }

private:
    std::unique_ptr<ByteSource> m_file;
    const input::InputSource *m_compressed;
    std::atomic<qint64> *m_done;
};

/// The letters of the parameter `types`, in the order of the columns.
QStringList typeLetters(const QString &types)
{
    QStringList letters = types.isEmpty() ? QStringList() : types.split(u',');
    for (QString &letter : letters) {
        letter = letter.trimmed();
    }
    return letters;
}

bool isUtf8(std::string_view bytes)
{
    return QUtf8StringView(bytes.data(), static_cast<qsizetype>(bytes.size())).isValidUtf8();
}

bool isTypeLetter(const QString &letter)
{
    return letter == "K"_L1 || letter == "F"_L1 || letter == "U"_L1;
}

} // namespace

ActionReadCsv::ActionReadCsv(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadCsvEntry, saved, parameters)
{
}

QVector<ParameterProblem> ActionReadCsv::problems() const
{
    QVector<ParameterProblem> problems = separatorProblems(m_params.separator);
    for (const QString &letter : typeLetters(m_params.types)) {
        if (!isTypeLetter(letter)) {
            problems.append({u"types"_s, u"'%1' is not a column type (K, F, U)"_s.arg(letter)});
        }
    }
    return problems;
}

float ActionReadCsv::computeCompletion()
{
    const qint64 size = m_size; // read once: the action's thread may change it
    return size > 0 ? static_cast<float>(m_done) / static_cast<float>(size) : -1;
}

void ActionReadCsv::start()
{
    finish();
    // An action object may run several times; nothing of an earlier run may remain.
    m_described = m_firstIsData = false;
    m_types.clear();
    m_size = -1;
    m_done = 0;
}

void ActionReadCsv::finish()
{
    reportIllFormed();
    reportTooLarge();
    // The reader first, because it refers to the file.
    m_reader.reset();
    m_file.reset();
    m_compressed = nullptr;
    m_plain = nullptr;
}

bool ActionReadCsv::open()
{
    m_name = expandFile(m_params.fileName);
    const auto separator = csvSeparator(m_params.separator);
    if (!separator) {
        return fail(u"Error: readCSV: the separator '%1' is not one ASCII character\n"_s.arg(
            m_params.separator));
    }
    auto file = openFile();
    if (!file) {
        return fail(u"Error: readCSV: cannot open file '%1' for read\n"_s.arg(m_name),
                    file.fault().detail);
    }
    m_file = std::make_unique<ProgressSource>(*std::move(file), m_compressed, &m_done);
    m_reader = std::make_unique<csv::RecordReader>(*m_file, *separator);
    return true;
}

/// The opened input; sets m_size and, by its kind, m_compressed or m_plain.
Result<std::unique_ptr<ByteSource>, input::OpenError> ActionReadCsv::openFile()
{
    const bool isGzip = m_name.endsWith(".gz"_L1);
    if (!isGzip && !m_name.endsWith(".Z"_L1)) {
        auto file = MyReadFile::open(m_name);
        if (!file) {
            return Fault{input::OpenError::CannotOpen,
                         failureReason(m_name, FileUse::Read, file.fault().code)};
        }
        m_plain = file->get(); // owned by the returned source
        m_size = (*file)->size();
        return std::unique_ptr<ByteSource>(*std::move(file));
    }
    input::Opened opened = isGzip ? input::openGzipFile(globalParameters(), m_name)
                                  : input::openCompressFile(globalParameters(), m_name);
    if (!opened) {
        return opened.fault();
    }
    m_compressed = opened->get(); // owned by the returned source
    m_size = KobiFileInfo(globalParameters(), m_name).size();
    return std::unique_ptr<ByteSource>(*std::move(opened));
}

/// Reads the next record. Returns false at the end of the file and after a failure.
bool ActionReadCsv::nextRecord()
{
    const auto found = m_reader->next();
    if (!found) {
        return failRecord(found.fault().code);
    }
    // One check of the whole record costs less than one of each field.
    if (*found && !isUtf8(m_reader->record())) {
        countIllFormed();
    }
    return *found;
}

bool ActionReadCsv::failRecord(csv::Error code)
{
    const QString line = QString::number(m_reader->line());
    switch (code) {
    case csv::Error::Unreadable:
        // Only a compressed file can say more than the system: it may be damaged or truncated.
        return fail(u"Error: readCSV: cannot read file '%1'\n"_s.arg(m_name),
                    m_compressed != nullptr
                        ? m_compressed->failure()
                        : failureReason(m_name, FileUse::Read, m_plain->error()));
    case csv::Error::RecordTooLong:
        return fail(u"Error: readCSV: file '%1', line %2: the record is longer than 1 GiB\n"_s.arg(
            m_name, line));
    case csv::Error::Utf16:
        return fail(u"Error: readCSV: file '%1' is UTF-16 text, and only UTF-8 is read; save it as "
                    "UTF-8\n"_s.arg(m_name));
    case csv::Error::NotText:
        return fail(
            u"Error: readCSV: file '%1' is not a text file, whatever its name says; give it "
            "the right extension\n"_s.arg(m_name));
    case csv::Error::BadQuotes:
        break;
    }
    return fail(
        u"Error: readCSV: file '%1', line %2: a quoted field does not end at a separator or line end\n"_s
            .arg(m_name, line));
}

/// Counts the fields of the current record that are not UTF-8; their texts have U+FFFD.
void ActionReadCsv::countIllFormed()
{
    int column = 0;
    for (const csv::Field &field : m_reader->fields()) {
        ++column;
        if (!isUtf8(field.view())) {
            m_illFormed.add([&] {
                return u"line %1, column %2"_s.arg(QString::number(m_reader->line()),
                                                   QString::number(column));
            });
        }
    }
}

/// Counts a number that became an infinity; "inf" and "infinity" do not end with a digit.
void ActionReadCsv::countTooLarge(int column, const csv::Field &field)
{
    const char last = field.view().back();
    if ((last >= '0' && last <= '9') || last == '.') {
        m_tooLarge.add([&] {
            return u"line %1, column %2"_s.arg(QString::number(m_reader->line()),
                                               QString::number(column + 1));
        });
    }
}

void ActionReadCsv::reportTooLarge()
{
    if (m_tooLarge.any()) {
        warn(u"Warning: readCSV: file '%1' has %2 beyond 1.8e308, and the cells are infinite; the "
             "first is in %3\n"_s.arg(m_name, counted(m_tooLarge.count(), u"number"_s),
                                      m_tooLarge.first()));
    }
    m_tooLarge.reset(); // finish() may be called twice
}

void ActionReadCsv::reportIllFormed()
{
    if (m_illFormed.any()) {
        warn(
            u"Warning: readCSV: file '%1' has invalid UTF-8 in %2, and U+FFFD replaces the invalid "
            "bytes; the first is in %3. Save the file as UTF-8\n"_s.arg(
                m_name, counted(m_illFormed.count(), u"text"_s), m_illFormed.first()));
    }
    m_illFormed.reset(); // finish() may be called twice
}

QVector<QString> ActionReadCsv::columnNames() const
{
    QVector<QString> names;
    for (const csv::Field &field : m_reader->fields()) {
        names << (m_params.header ? QString::fromUtf8(field.text, field.size)
                                  : u'C' + QString::number(names.size() + 1));
    }
    return names;
}

/// Warns if the only column has a name with another usual separator: its cells are whole lines.
void ActionReadCsv::warnSeparator(const QString &name)
{
    const auto *const other = std::find_if(std::begin(kOtherSeparators), std::end(kOtherSeparators),
                                           [&](char16_t one) { return name.contains(one); });
    if (other != std::end(kOtherSeparators)) {
        const QString parameter = *other == u'\t' ? u"\\t"_s : QString(*other);
        warn(u"Warning: readCSV: file '%1' has one column, and its name contains '%2'; "
             "separator='%2' splits the lines there\n"_s.arg(m_name, parameter));
    }
}

/// Warns if a carriage return without a line feed is in the first record: many lines are one there.
void ActionReadCsv::warnLineEnds()
{
    for (const csv::Field &field : m_reader->fields()) {
        if (!field.isQuoted && field.view().find('\r') != std::string_view::npos) {
            warn(u"Warning: readCSV: file '%1' has carriage returns alone in its first line, and "
                 "only line feeds end lines; save it with line feeds\n"_s.arg(m_name));
            return;
        }
    }
}

/// Sets m_types for `columns` columns.
bool ActionReadCsv::chooseTypes(qsizetype columns)
{
    const QStringList letters = typeLetters(m_params.types);
    for (qsizetype i = 0; i < columns; ++i) {
        // Columns without a letter are texts, so a short list of types is accepted.
        const QString letter = letters.value(i, u"U"_s);
        if (!isTypeLetter(letter)) {
            return fail(u"Error: readCSV: '%1' is not a column type (K, F, U)\n"_s.arg(letter));
        }
        m_types << static_cast<MetaInfo::MetaTypeColumn>(letter[0].toLatin1());
    }
    // A longer list is an error: the file is not the one that the types were written for.
    if (letters.size() > columns) {
        return fail(u"Error: readCSV: %1 column types for the %2 columns of file '%3'\n"_s.arg(
            QString::number(letters.size()), QString::number(columns), m_name));
    }
    return true;
}

bool ActionReadCsv::declareSortOrder(OneRow *row)
{
    QVector<SortInfos> sortedOn;
    for (const QString &name : m_params.sortedOn.split(u',', Qt::SkipEmptyParts)) {
        if (row->getIndexOfColumn(name) < 0) {
            return fail(u"Error: readCSV: file '%1' has no column '%2' to be sorted on\n"_s.arg(
                m_name, name));
        }
        sortedOn << SortInfos{name, true};
    }
    row->setSortInfos(sortedOn);
    return true;
}

/// Reads the first record and declares the columns. Returns false also for an empty file, which is
/// a table without columns.
bool ActionReadCsv::describeColumns()
{
    m_described = true;
    if (!nextRecord()) {
        return false;
    }
    const QVector<QString> names = columnNames();
    if (!chooseTypes(names.size())) {
        return false;
    }
    if (m_params.header && names.size() == 1 && !m_reader->fields()[0].isQuoted) {
        warnSeparator(names[0]);
    }
    warnLineEnds();
    QVector<MetaInfo> types;
    for (const MetaInfo::MetaTypeColumn type : std::as_const(m_types)) {
        types << MetaInfo(type, -1);
    }
    OneRow *const row = getOutputRowForOutputPin(0);
    row->setColName(names);
    row->setMetaData(types);
    m_firstIsData = !m_params.header;
    return declareSortOrder(row);
}

bool ActionReadCsv::putCell(int column, const csv::Field &field, OneRow *row, RowBuffer *buffer)
{
    if (field.size == 0 && !field.isQuoted) {
        return true; // cells are missing until they are set
    }
    bool ok = true;
    switch (m_types[column]) {
    case MetaInfo::Unknown:
        // No text has more UTF-16 units than bytes in UTF-8, so the bytes are a safe limit.
        ok = field.size <= limits::kTextCellUnits;
        if (ok) {
            row->setCol(column, textCellFromUtf8(buffer, field.text, field.size));
        }
        break;
    case MetaInfo::Key: {
        quint64 value = 0;
        ok = parseUInt(field.view(), 0xFFFFFFFFU, &value);
        row->setCol(column, keyCell(buffer, static_cast<quint32>(value)));
        break;
    }
    case MetaInfo::Float: {
        double value = 0;
        ok = parseDouble(field.view(), &value);
        if (ok && std::isinf(value)) {
            countTooLarge(column, field);
        }
        row->setCol(column, doubleCell(buffer, value));
        break;
    }
    }
    return ok || failCell(field, row->colName(column), m_types[column]);
}

bool ActionReadCsv::failCell(const csv::Field &field, const QString &column,
                             MetaInfo::MetaTypeColumn type)
{
    constexpr qsizetype kShownBytes = 200; // a field may be as long as the file
    return fail(u"Error: readCSV: file '%1', line %2, column '%3': '%4' is not of type %5\n"_s.arg(
        m_name, QString::number(m_reader->line()), column,
        QString::fromUtf8(field.text, qMin(field.size, kShownBytes)),
        QString(QLatin1Char(static_cast<char>(type)))));
}

/// Sends the current record as a row; empty lines are skipped.
bool ActionReadCsv::emitRow()
{
    const auto fields = m_reader->fields();
    const auto columns = static_cast<size_t>(m_types.size());
    if (fields.size() != columns) {
        // In a table with one column an empty line is a row with a missing cell.
        const bool isEmptyLine = fields.size() == 1 && fields[0].size == 0 && !fields[0].isQuoted;
        return isEmptyLine || fail(u"Error: readCSV: file '%1', line %2: %3 instead of %4\n"_s.arg(
                                  m_name, QString::number(m_reader->line()),
                                  counted(fields.size(), u"field"_s), QString::number(columns)));
    }
    OneRow *const row = getOutputRowForOutputPin(0);
    RowBuffer *const buffer = bufferForOutputPin(0); // not for each cell: this is a hot loop
    for (size_t i = 0; i < columns; ++i) {
        if (!putCell(static_cast<int>(i), fields[i], row, buffer)) {
            return false;
        }
    }
    setRowReadyForOutput(0);
    return true;
}

bool ActionReadCsv::step()
{
    // Each call continues where the last one yielded: m_reader and m_described say how far it got.
    if (!m_reader && !open()) {
        return false;
    }
    if (!m_described && !describeColumns()) {
        return false;
    }
    while (!yieldRequested()) {
        if (!m_firstIsData && !nextRecord()) {
            return false;
        }
        m_firstIsData = false;
        if (!emitRow()) {
            return false;
        }
    }
    return true;
}

} // namespace corvanta
