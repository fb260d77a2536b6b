#include "actions/read_csv/csv_file.h"

#include "actions/shared/tables/unique_names.h"
#include "base/counted.h"
#include "base/number.h"
#include "base/text/number_value.h"
#include "base/utf.h"

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Separators that files often have instead of a comma.
constexpr char16_t kOtherSeparators[] = {u';', u'\t', u'|'};

/// Also true for ASCII.
bool isUtf8(std::string_view bytes)
{
    return QUtf8StringView(bytes.data(), static_cast<qsizetype>(bytes.size())).isValidUtf8();
}

/// Bytes of `field` that are not UTF-8.
qsizetype illFormedBytes(const csv::Field &field)
{
    std::vector<char16_t> units(static_cast<size_t>(field.size));
    qsizetype count = 0;
    utf8ToUtf16(field.text, field.size, units.data(), &count);
    return count;
}

/// An empty line is one empty field; in quotes it is a value.
bool isEmptyLine(std::span<const csv::Field> fields)
{
    return fields.size() == 1 && fields[0].size == 0 && !fields[0].isQuoted;
}

} // namespace

// ---- Opening.

CsvFile::CsvFile(ActionBase &action, const QString &name, const CsvForm &form)
    : m_action(action)
    , m_name(name)
    , m_form(form)
    , m_input(action.globalParameters(), action.control(), name, false, InputFile::Report::Nothing)
{
}

/// A file that cannot be opened is for the series to report; one with bad content fails the run.
FileSeries::Opened CsvFile::open(ActionBase &action, const QString &name, const CsvForm &form)
{
    std::unique_ptr<CsvFile> file(new CsvFile(action, name, form)); // the constructor is private
    if (!file->m_input.file.isOpen()) {
        return Fault{FileSeries::OpenError::Missing, file->m_input.file.reason()};
    }
    file->m_input.file.getSize(); // for fractionDone()
    if (!file->begin()) {
        file->beforeClose();
        return Fault{FileSeries::OpenError::Failed};
    }
    return FileSeries::Opened(std::move(file));
}

/// Reads the first record and chooses the columns.
bool CsvFile::begin()
{
    m_text = std::make_unique<csv::TextReader>(m_input, m_form.text);
    m_records = &m_text->records();
    const auto found = m_records->next();
    if (!found) {
        return failRecord(found.fault());
    }
    if (!*found) {
        return true; // an empty file is a table without columns
    }
    if (m_text->text().hasInvalidUtf8()) {
        countIllFormed();
    }
    m_schema.names = columnNames(*m_records, m_form);
    m_isFirstData = !m_form.hasHeader;
    warnForm();
    return chooseForms() && chooseDates();
}

/// Without a header the columns are C1, C2 and so on.
QVector<QString> CsvFile::columnNames(const csv::RecordReader &records, const CsvForm &form)
{
    QVector<QString> names;
    shared::UniqueNames unique;
    for (const csv::Field &field : records.fields()) {
        const QString name = form.hasHeader ? QString::fromUtf8(field.text, field.size)
                                            : u'C' + QString::number(names.size() + 1);
        names << (form.uniqueNames ? unique.add(name) : name);
    }
    return names;
}

/// Sets the types of all columns. Columns without a letter are texts, so that a short list is
/// accepted.
bool CsvFile::chooseForms()
{
    const qsizetype columns = m_schema.names.size();
    for (qsizetype i = 0; i < columns; ++i) {
        const char letter = m_form.types.value(i, u"U"_s)[0].toLatin1();
        m_schema.types << MetaInfo(static_cast<MetaInfo::MetaTypeColumn>(letter), -1);
        const CellForm numbers = m_form.decimal == '.' ? CellForm::Double : CellForm::LocalDouble;
        m_forms.push_back(letter == 'K' ? CellForm::Key : letter == 'F' ? numbers : CellForm::Text);
    }
    // A longer list is an error: the file is not the one that the types were written for.
    return m_form.types.size() <= columns ||
           m_action.fail(u"Error: readCSV: %1 column types for the %2 columns of file '%3'\n"_s.arg(
               QString::number(m_form.types.size()), QString::number(columns), m_name));
}

/// A format for an unknown column would be ignored without a message, so it is an error.
bool CsvFile::chooseDates()
{
    m_datesOf.resize(m_forms.size());
    for (const CsvDateFormat &entry : m_form.dateFormats) {
        m_dates.push_back(std::make_unique<CsvDates>(entry.format));
        for (const QString &name : entry.columns) {
            const qsizetype column = m_schema.names.indexOf(name);
            if (column < 0 || m_schema.types.at(column).letter() != u"U"_s) {
                return m_action.fail(
                    u"Error: readCSV: file '%1' has no text column '%2' for the date format '%3'\n"_s
                        .arg(m_name, name, entry.format));
            }
            m_forms[static_cast<size_t>(column)] = CellForm::Date;
            m_datesOf[static_cast<size_t>(column)] = m_dates.back().get();
        }
    }
    return true;
}

/// Warns about a first record that the separator or the line ends have not split.
void CsvFile::warnForm()
{
    const auto fields = m_records->fields();
    const QString &name = m_schema.names.first();
    const auto *const other = std::find_if(std::begin(kOtherSeparators), std::end(kOtherSeparators),
                                           [&](char16_t one) { return name.contains(one); });
    if (m_form.hasHeader && fields.size() == 1 && !fields[0].isQuoted &&
        other != std::end(kOtherSeparators)) {
        const QString parameter = *other == u'\t' ? u"\\t"_s : QString(*other);
        m_action.warn(u"Warning: readCSV: file '%1' has one column, and its name contains '%2'; "
                      "separator='%2' splits the lines there\n"_s.arg(m_name, parameter));
    }
    const bool hasReturn = std::any_of(fields.begin(), fields.end(), [](const csv::Field &field) {
        return !field.isQuoted && field.view().find('\r') != std::string_view::npos;
    });
    if (hasReturn) {
        m_action.warn(
            u"Warning: readCSV: file '%1' has carriage returns alone in its first line, and "
            "only line feeds end lines; lineEnd='auto' reads a file without line feeds\n"_s.arg(
                m_name));
    }
}

// ---- Rows.

bool CsvFile::next(OneRow &row, Found *found)
{
    if (m_forms.empty()) {
        *found = Found::End;
        return true;
    }
    if (!m_isFirstData) {
        const auto record = m_records->next();
        if (!record) {
            return failRecord(record.fault());
        }
        if (!*record) {
            *found = Found::End;
            return true;
        }
        if (m_text->text().hasInvalidUtf8()) [[unlikely]] {
            countIllFormed();
        }
    }
    m_isFirstData = false;
    return putRow(row, found);
}

bool CsvFile::putRow(OneRow &row, Found *found)
{
    *found = Found::Row;
    const auto fields = m_records->fields();
    if (fields.size() != m_forms.size() && !acceptRagged(fields, found)) [[unlikely]] {
        return false;
    }
    if (*found == Found::Nothing) {
        return true;
    }
    RowBuffer *const buffer = m_action.bufferForOutputPin(0); // not for each cell: a hot loop
    const size_t columns = std::min(fields.size(), m_forms.size());
    for (size_t i = 0; i < columns; ++i) {
        if (!putCell(static_cast<int>(i), fields[i], row, buffer)) {
            return false;
        }
    }
    return true;
}

/// A record with another number of fields: an empty line, a row to fill or to cut, or a failure.
bool CsvFile::acceptRagged(std::span<const csv::Field> fields, Found *found)
{
    if (isEmptyLine(fields)) {
        *found = Found::Nothing;
        return true;
    }
    if (!m_form.fillsRagged) {
        return m_action.fail(
            u"Error: readCSV: file '%1', line %2: %3 instead of %4; ragged='fill' (convert: --reader ragged=fill) reads such lines\n"_s
                .arg(m_name, QString::number(m_records->line()),
                     counted(std::ssize(fields), u"field"_s), QString::number(m_forms.size())));
    }
    Occurrences &rows = fields.size() < m_forms.size() ? m_shortRows : m_longRows;
    rows.add([&] { return u"line %1"_s.arg(m_records->line()); });
    return true;
}

/// A field in quotes is a value, whatever its text is.
bool CsvFile::isNull(const csv::Field &field) const
{
    const QByteArrayView text(field.text, field.size);
    return !field.isQuoted && std::any_of(m_form.nullValues.begin(), m_form.nullValues.end(),
                                          [&](const QByteArray &value) { return value == text; });
}

/// Cells are missing until they are set.
inline bool CsvFile::putCell(int column, const csv::Field &field, OneRow &row, RowBuffer *buffer)
{
    if (field.size == 0 && !field.isQuoted) {
        return true;
    }
    if (!m_form.nullValues.empty() && isNull(field)) {
        return true;
    }
    switch (m_forms[static_cast<size_t>(column)]) {
    case CellForm::Text:
        // No text has more UTF-16 units than bytes in UTF-8, so the bytes are a safe limit.
        if (field.size > limits::kTextCellUnits) {
            return failCell(column, field);
        }
        row.setCol(column, textCellFromUtf8(buffer, field.text, field.size));
        return true;
    case CellForm::Date:
        if (field.size > limits::kTextCellUnits) {
            return failCell(column, field);
        }
        putDate(column, field, row, buffer);
        return true;
    default:
        return putNumber(column, field, row, buffer) || failCell(column, field);
    }
}

/// Returns false for a field that is not a number of the type.
bool CsvFile::putNumber(int column, const csv::Field &field, OneRow &row, RowBuffer *buffer)
{
    const CellForm form = m_forms[static_cast<size_t>(column)];
    if (form == CellForm::Key) {
        quint64 key = 0;
        const bool isKey = parseUInt(field.view(), 0xFFFFFFFFU, &key);
        row.setCol(column, keyCell(buffer, static_cast<quint32>(key)));
        return isKey;
    }
    double value = 0;
    const bool isNumber = form == CellForm::Double
                              ? parseDouble(field.view(), &value)
                              : parseLocalDouble(field.view(), m_form.decimal, &value);
    if (isNumber && std::isinf(value)) {
        countTooLarge(column, field);
    }
    row.setCol(column, doubleCell(buffer, value));
    return isNumber;
}

/// A text that does not have the format stays as it is.
void CsvFile::putDate(int column, const csv::Field &field, OneRow &row, RowBuffer *buffer)
{
    std::array<char16_t, CsvDates::kUnits> date{};
    const int n = m_datesOf[static_cast<size_t>(column)]->toIso(field.view(), date.data());
    if (n > 0) {
        row.setCol(column, textCell(buffer, date.data(), n));
        return;
    }
    m_notDates.add([&] { return place(column); });
    row.setCol(column, textCellFromUtf8(buffer, field.text, field.size));
}

// ---- Messages.

/// Lines count from 1 and include the header and the lines that are skipped.
QString CsvFile::place(int column) const
{
    return u"line %1, column %2"_s.arg(QString::number(m_records->line()),
                                       QString::number(column + 1));
}

/// Counts the fields of the current record that are not UTF-8; their texts have U+FFFD.
void CsvFile::countIllFormed()
{
    if (isUtf8(m_records->record())) {
        return;
    }
    int column = 0;
    for (const csv::Field &field : m_records->fields()) {
        if (!isUtf8(field.view())) {
            m_illFormed.add([&] { return place(column); });
            m_illFormedBytes += illFormedBytes(field);
        }
        ++column;
    }
}

/// Counts a number that became an infinity; "inf" and "infinity" do not end with a digit.
void CsvFile::countTooLarge(int column, const csv::Field &field)
{
    const char last = field.view().back();
    if ((last >= '0' && last <= '9') || last == m_form.decimal) {
        m_tooLarge.add([&] { return place(column); });
    }
}

/// Called once per file.
void CsvFile::beforeClose()
{
    if (!m_text) {
        return;
    }
    reportEncoding();
    m_action.warnOf(
        m_tooLarge, m_name, u"number"_s,
        u"Warning: readCSV: file '%1' has %2 beyond 1.8e308, and the cells are infinite; the "
        "first is in %3\n"_s);
    m_action.warnOf(
        m_notDates, m_name, u"text"_s,
        u"Warning: readCSV: file '%1' has %2 without the date format of the column, which stay as "
        "they are; the first is in %3\n"_s);
    m_action.warnOf(
        m_longRows, m_name, u"line"_s,
        u"Warning: readCSV: file '%1' has %2 with more fields than columns, and the others are "
        "dropped; the first is %3\n"_s);
    if (m_shortRows.any()) {
        MainUI::addLog(MainUI::Info,
                       u"readCSV: file '%1' has %2 with fewer fields than columns, filled with "
                       "missing values; the first is %3\n"_s.arg(
                           m_name, counted(m_shortRows.count(), u"line"_s), m_shortRows.first()));
    }
}

/// What was assumed about the encoding, and the bytes that it does not have.
void CsvFile::reportEncoding()
{
    const encoding::Utf8Source &text = m_text->text();
    const QString name = QString::fromLatin1(text.encoding());
    if (text.isAssumed()) {
        MainUI::addLog(
            MainUI::Info,
            u"readCSV: the encoding of the file '%1' is assumed to be %2; the parameter 'encoding' (convert: --encoding) can name another one\n"_s
                .arg(m_name, name));
    }
    if (text.replaced().any()) {
        m_action.warn(u"Warning: readCSV: file '%1' has %2 that are not characters of %3, and "
                      "U+FFFD replaces them; the first is in %4\n"_s.arg(
                          m_name, counted(text.replaced().count(), u"byte"_s), name,
                          text.replaced().first()));
    }
    if (m_illFormed.any()) {
        m_action.warn(
            u"Warning: readCSV: file '%1' has invalid UTF-8 in %2 (%3), and U+FFFD replaces the "
            u"invalid "
            "bytes; the first is in %4. Save the file as UTF-8, or name its encoding (encoding='auto'; convert: --encoding)\n"_s
                .arg(m_name, counted(m_illFormed.count(), u"text"_s),
                     counted(m_illFormedBytes, u"byte"_s), m_illFormed.first()));
    }
}

bool CsvFile::failRecord(const Fault<csv::Error> &fault)
{
    if (!m_action.runIsGood()) {
        return false; // a read fails once the run has ended
    }
    const QString line = QString::number(m_records->line());
    switch (fault.code) {
    case csv::Error::Unreadable:
        return m_action.fail(u"Error: readCSV: cannot read file '%1'\n"_s.arg(m_name),
                             m_input.file.reason());
    case csv::Error::RecordTooLong:
        return m_action.fail(
            u"Error: readCSV: file '%1', line %2: the record is longer than 1 GiB\n"_s.arg(m_name,
                                                                                           line));
    case csv::Error::Utf16:
        return m_action.fail(
            u"Error: readCSV: file '%1' is UTF-16 text, and not UTF-8; encoding='auto' reads it\n"_s
                .arg(m_name));
    case csv::Error::NotText:
        return m_action.fail(
            u"Error: readCSV: file '%1' is not a text file: it begins like %2; give it the right "
            "extension\n"_s.arg(m_name, fault.detail));
    case csv::Error::BadQuotes:
        break;
    }
    return m_action.fail(
        u"Error: readCSV: file '%1', line %2: a quoted field does not end at a separator or line end\n"_s
            .arg(m_name, line));
}

/// Ends the run: a number that is dropped would be a wrong sum later.
bool CsvFile::failCell(int column, const csv::Field &field)
{
    constexpr qsizetype kShownBytes = 200; // a field may be as long as the file
    return m_action.fail(
        u"Error: readCSV: file '%1', line %2, column '%3': '%4' is not of type %5\n"_s.arg(
            m_name, QString::number(m_records->line()), m_schema.names.at(column),
            QString::fromUtf8(field.text, qMin(field.size, kShownBytes)),
            m_schema.types.at(column).letter()));
}

} // namespace corvanta
