#include "builtin/read_csv.h"

#include "base/number.h"

#include <QLatin1StringView>

#include <emmintrin.h>

#include <cstring>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr size_t kBlockBytes = size_t(1) << 20;
/// A record must fit the block, which grows up to this.
constexpr size_t kLargestRecordBytes = size_t(1) << 30;

ActionDescription describe()
{
    ActionDescription d;
    d.typeName = "readCSV";
    d.description = "Read a text file with separators";
    d.icon = ":/CorvantaCore/readCSV.svg";
    d.fileTypes = QStringList{u"csv"_s, u"tsv"_s, u"txt"_s};
    d.tags = QStringList{u"Common"_s};
    d.keywords = QStringList{u"file"_s, u"import"_s, u"input"_s, u"load"_s,
                             u"csv"_s,  u"text"_s,   u"read"_s,  u"in"_s};
    d.pinsIn = 0;
    return d;
}

/// The first of separator, line feed, carriage return and quote from `at` on; `end` when there is
/// none.
const char *findSpecial(const char *at, const char *end, char separator)
{
    const __m128i separators = _mm_set1_epi8(separator);
    const __m128i feeds = _mm_set1_epi8('\n');
    const __m128i returns = _mm_set1_epi8('\r');
    for (; at + 16 <= end; at += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
        const __m128i hit = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(bytes, separators), _mm_cmpeq_epi8(bytes, feeds)),
            _mm_cmpeq_epi8(bytes, returns));
        const int mask = _mm_movemask_epi8(hit);
        if (mask != 0) {
            return at + __builtin_ctz(static_cast<unsigned>(mask));
        }
    }
    while (at < end && *at != separator && *at != '\n' && *at != '\r') {
        ++at;
    }
    return at;
}

} // namespace

ActionReadCsv::ActionReadCsv(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(describe(), saved, parameters)
{
}

const ParamTable<ReadCsvParams> &ActionReadCsv::paramTable()
{
    static const ParamTable<ReadCsvParams> table{
        text("fileName", &ReadCsvParams::fileName)
            .inputFile()
            .always()
            .label("File")
            .meaning("Text file to read, UTF-8; also packed as .gz or .Z."),
        text("separator", &ReadCsvParams::separator)
            .label("Separator")
            .meaning("One ASCII character between two fields."),
        text("types", &ReadCsvParams::types)
            .label("Column types")
            .meaning("One letter per column, separated by commas: K (whole number), F (decimal "
                     "number), U (text). "
                     "Columns without a letter are texts."),
        flag("header", &ReadCsvParams::header)
            .label("First line holds the column names")
            .meaning("Without it the columns are named C1, C2, ..."),
        text("sortedOn", &ReadCsvParams::sortedOn)
            .label("Sorted on")
            .meaning(
                "Names of the columns that the table is declared sorted on, separated by commas."),
    };
    return table;
}

float ActionReadCsv::computeCompletion()
{
    const qint64 size = m_size;
    return size > 0 ? static_cast<float>(m_done) / static_cast<float>(size) : -1;
}

void ActionReadCsv::start()
{
    finish();
    m_at = m_fill = 0;
    m_fileEnded = m_described = m_firstIsData = false;
    m_isAtStart = true;
    m_types.clear();
    m_line = m_nextLine = 1;
    m_size = -1;
    m_done = 0;
}

void ActionReadCsv::finish()
{
    m_file.reset();
    m_block = {};
    m_scratch = {};
    m_fields = {};
}

bool ActionReadCsv::open()
{
    m_name = expandFile(m_params.fileName);
    QString separator = m_params.separator;
    if (separator == "\\t"_L1) {
        separator = u"\t"_s;
    }
    const bool isUsable = separator.size() == 1 && separator[0].unicode() < 0x80 &&
                          separator != "\""_L1 && separator != "\n"_L1 && separator != "\r"_L1;
    if (!isUsable) {
        fail(u"Error: readCSV: the separator '%1' is not one ASCII character\n"_s.arg(
            m_params.separator));
        return false;
    }
    m_separator = separator[0].toLatin1();
    if (!openFile()) {
        return fail(u"Error: readCSV: cannot open file '%1' for read\n"_s.arg(m_name));
    }
    m_block.resize(kBlockBytes);
    return true;
}

bool ActionReadCsv::openFile()
{
    const bool isGzip = m_name.endsWith(".gz"_L1);
    if (!isGzip && !m_name.endsWith(".Z"_L1)) {
        m_packed = nullptr;
        m_file.reset(MyReadFile::newMyReadFile(globalParameters(), m_name, true, true));
        m_size = m_file ? m_file->size() : -1;
        return m_file != nullptr;
    }
    input::Opened opened = isGzip ? input::openGzip(m_name) : input::openCompress(m_name);
    if (!opened) {
        return false;
    }
    m_packed = opened->get();
    m_file = *std::move(opened);
    m_size = KobiFileInfo(globalParameters(), m_name).size();
    return true;
}

bool ActionReadCsv::refill()
{
    if (m_at > 0) {
        std::memmove(m_block.data(), m_block.data() + m_at, m_fill - m_at);
        m_fill -= m_at;
        m_at = 0;
    }
    if (m_fill == m_block.size()) {
        if (m_block.size() >= kLargestRecordBytes) {
            fail(u"Error: readCSV: file '%1', line %2: the record is longer than 1 GiB\n"_s.arg(
                m_name, QString::number(m_nextLine)));
            return false;
        }
        m_block.resize(m_block.size() * 2);
    }
    const qint64 got =
        m_file->read(m_block.data() + m_fill, static_cast<qint64>(m_block.size() - m_fill));
    if (got < 0) {
        const QString why = m_packed != nullptr ? u": "_s + m_packed->failure() : QString();
        return fail(u"Error: readCSV: cannot read file '%1'%2\n"_s.arg(m_name, why));
    }
    m_fileEnded = got == 0;
    if (m_isAtStart && got >= 3 && std::memcmp(m_block.data(), "\xEF\xBB\xBF", 3) == 0) {
        m_at = 3; // a byte-order mark
    }
    m_isAtStart = false;
    m_fill += static_cast<size_t>(got);
    m_done = m_packed != nullptr ? m_packed->progressPosition() : m_done + got;
    return true;
}

/// Scan from behind the opening quote to behind the closing one; null when the text ends before.
const char *ActionReadCsv::scanQuoted(const char *at, const char *end)
{
    const char *const begin = at;
    const size_t scratchBegin = m_scratch.size();
    for (;;) {
        const auto *const quote =
            static_cast<const char *>(std::memchr(at, '"', static_cast<size_t>(end - at)));
        if (quote == nullptr || (quote + 1 == end && !m_fileEnded)) {
            return nullptr;
        }
        const bool isDoubled = quote + 1 < end && quote[1] == '"';
        m_scratch.insert(m_scratch.end(), at, quote + (isDoubled ? 1 : 0));
        if (!isDoubled) {
            m_nextLine += std::count(begin, quote, '\n');
            m_fields.push_back(
                {nullptr, static_cast<qsizetype>(m_scratch.size() - scratchBegin), true});
            return quote + 1;
        }
        at = quote + 2;
    }
}

ActionReadCsv::Scan ActionReadCsv::scanRecord()
{
    const char *at = m_block.data() + m_at;
    const char *const end = m_block.data() + m_fill;
    m_fields.clear();
    m_scratch.clear();
    m_line = m_nextLine;
    if (at == end) {
        return m_fileEnded ? Scan::End : Scan::NeedMore;
    }
    for (;;) {
        const char *const begin = at;
        if (at < end && *at == '"') {
            at = scanQuoted(at + 1, end);
            if (at == nullptr) {
                m_nextLine = m_line;
                return m_fileEnded ? Scan::Bad : Scan::NeedMore;
            }
            if (at < end && *at != m_separator && *at != '\n' && *at != '\r') {
                return Scan::Bad;
            }
        } else {
            at = findSpecial(at, end, m_separator);
            // A lone carriage return belongs to the field.
            while (at < end && *at == '\r' && at + 1 < end && at[1] != '\n') {
                at = findSpecial(at + 1, end, m_separator);
            }
            m_fields.push_back({begin, at - begin, false});
        }
        const bool isCutReturn = at < end && *at == '\r' && at + 1 == end;
        if ((at == end || isCutReturn) && !m_fileEnded) {
            m_nextLine = m_line;
            return Scan::NeedMore;
        }
        if (at < end && *at == m_separator) {
            ++at;
            continue;
        }
        if (isCutReturn && !m_fields.back().quoted) {
            ++m_fields.back().size; // the file ends with a lone carriage return
        }
        at += at < end && *at == '\r' ? 1 : 0;
        at += at < end && *at == '\n' ? 1 : 0;
        m_at = static_cast<size_t>(at - m_block.data());
        ++m_nextLine;
        return Scan::Record;
    }
}

bool ActionReadCsv::nextRecord()
{
    for (;;) {
        switch (scanRecord()) {
        case Scan::Record: {
            const char *scratch = m_scratch.data();
            for (Field &field : m_fields) {
                if (field.quoted) {
                    field.text = scratch;
                    scratch += field.size;
                }
            }
            return true;
        }
        case Scan::End:
            return false;
        case Scan::Bad:
            fail(
                u"Error: readCSV: file '%1', line %2: a quoted field does not end at a separator or line end\n"_s
                    .arg(m_name, QString::number(m_line)));
            return false;
        case Scan::NeedMore:
            if (!refill()) {
                return false;
            }
            break;
        }
    }
}

bool ActionReadCsv::describeColumns()
{
    m_described = true;
    OneRow *const row = getOutputRowForOutputPin(0);
    if (!nextRecord()) {
        return false; // an empty file is a table without columns
    }
    QVector<QString> names;
    QVector<MetaInfo> types;
    const QStringList letters =
        m_params.types.isEmpty() ? QStringList() : m_params.types.split(u',');
    for (size_t i = 0; i < m_fields.size(); ++i) {
        const QString letter = letters.value(static_cast<qsizetype>(i), u"U"_s).trimmed();
        if (letter != "K"_L1 && letter != "F"_L1 && letter != "U"_L1) {
            return fail(u"Error: readCSV: '%1' is not a column type (K, F, U)\n"_s.arg(letter));
        }
        names << (m_params.header ? QString::fromUtf8(m_fields[i].text, m_fields[i].size)
                                  : u'C' + QString::number(i + 1));
        m_types << static_cast<MetaInfo::MetaTypeColumn>(letter[0].toLatin1());
        types << MetaInfo(m_types.back(), -1);
    }
    if (letters.size() > names.size()) {
        return fail(u"Error: readCSV: %1 column types for the %2 columns of file '%3'\n"_s.arg(
            QString::number(letters.size()), QString::number(names.size()), m_name));
    }
    row->setColName(names);
    row->setMetaData(types);
    QVector<SortInfos> sortedOn;
    for (const QString &name : m_params.sortedOn.split(u',', Qt::SkipEmptyParts)) {
        if (!names.contains(name)) {
            return fail(u"Error: readCSV: file '%1' has no column '%2' to be sorted on\n"_s.arg(
                m_name, name));
        }
        sortedOn << SortInfos{name, true};
    }
    row->setSortInfos(sortedOn);
    m_firstIsData = !m_params.header;
    return true;
}

bool ActionReadCsv::putCell(int column, const Field &field, OneRow *row)
{
    if (field.size == 0 && !field.quoted) {
        return true; // missing, as all cells are until they are set
    }
    RowBuffer *const buffer = bufferForOutputPin(0);
    const std::string_view text(field.text, static_cast<size_t>(field.size));
    bool ok = true;
    switch (m_types[column]) {
    case MetaInfo::Unknown:
        ok = field.size <= limits::kTextCellUnits;
        if (ok) {
            row->setCol(column, textCellFromUtf8(buffer, field.text, field.size));
        }
        break;
    case MetaInfo::Key: {
        quint64 value = 0;
        ok = parseUInt(text, 0xFFFFFFFFU, &value);
        row->setCol(column, keyCell(buffer, static_cast<quint32>(value)));
        break;
    }
    case MetaInfo::Float: {
        double value = 0;
        ok = parseDouble(text, &value);
        row->setCol(column, doubleCell(buffer, value));
        break;
    }
    }
    if (!ok) {
        fail(u"Error: readCSV: file '%1', line %2, column '%3': '%4' is not of type %5\n"_s.arg(
            m_name, QString::number(m_line), row->colName(column),
            QString::fromUtf8(text.data(), qMin<qsizetype>(field.size, 200)),
            QString(QLatin1Char(static_cast<char>(m_types[column])))));
    }
    return ok;
}

bool ActionReadCsv::emitRow()
{
    OneRow *const row = getOutputRowForOutputPin(0);
    const qsizetype columns = m_types.size();
    if (static_cast<qsizetype>(m_fields.size()) != columns) {
        const bool isEmptyLine =
            m_fields.size() == 1 && m_fields[0].size == 0 && !m_fields[0].quoted;
        if (isEmptyLine) {
            return true;
        }
        return fail(u"Error: readCSV: file '%1', line %2: %3 fields instead of %4\n"_s.arg(
            m_name, QString::number(m_line), QString::number(m_fields.size()),
            QString::number(columns)));
    }
    for (int i = 0; i < columns; ++i) {
        if (!putCell(i, m_fields[static_cast<size_t>(i)], row)) {
            return false;
        }
    }
    setRowReadyForOutput(0);
    return true;
}

bool ActionReadCsv::step()
{
    if (!m_file && !open()) {
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
