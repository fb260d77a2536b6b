#include "builtin/write_csv.h"

#include "base/number.h"
#include "base/utf.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr size_t kBufferBytes = size_t(1) << 20;

ActionDescription describe()
{
    ActionDescription d;
    d.typeName = "writeCSV";
    d.description = "Write a text file with separators";
    d.icon = ":/CorvantaCore/writeCSV.svg";
    d.tags = QStringList{u"Common"_s};
    d.keywords = QStringList{u"file"_s, u"export"_s, u"output"_s, u"save"_s,
                             u"csv"_s,  u"text"_s,   u"write"_s,  u"out"_s};
    return d;
}

/// Whether a field must be quoted: it holds the separator, a quote or a line end.
bool needsQuotes(const char *text, size_t n, char separator)
{
    const __m128i separators = _mm_set1_epi8(separator);
    const __m128i quotes = _mm_set1_epi8('"');
    const __m128i feeds = _mm_set1_epi8('\n');
    const __m128i returns = _mm_set1_epi8('\r');
    size_t i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(text + i));
        const __m128i hit = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(bytes, separators), _mm_cmpeq_epi8(bytes, quotes)),
            _mm_or_si128(_mm_cmpeq_epi8(bytes, feeds), _mm_cmpeq_epi8(bytes, returns)));
        if (_mm_movemask_epi8(hit) != 0) {
            return true;
        }
    }
    return std::any_of(text + i, text + n, [separator](char c) {
        return c == separator || c == '"' || c == '\n' || c == '\r';
    });
}

} // namespace

ActionWriteCsv::ActionWriteCsv(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(describe(), saved, parameters)
{
}

const ParamTable<WriteCsvParams> &ActionWriteCsv::paramTable()
{
    static const ParamTable<WriteCsvParams> table{
        text("fileName", &WriteCsvParams::fileName)
            .outputFile()
            .always()
            .label("File")
            .meaning("Text file to write, UTF-8 with LF line ends."),
        text("separator", &WriteCsvParams::separator)
            .label("Separator")
            .meaning("One ASCII character between two fields."),
        flag("header", &WriteCsvParams::header)
            .label("Write the column names in the first line")
            .meaning("Header line."),
    };
    return table;
}

void ActionWriteCsv::start()
{
    finish();
    m_used = 0;
    m_headerDone = m_complete = false;
}

void ActionWriteCsv::finish()
{
    if (m_complete && runIsGood() && !(flush() && m_target.commit())) {
        fail(u"Error: writeCSV: cannot write file '%1'\n"_s.arg(m_name));
    }
    m_complete = false;
    m_target.discard();
    m_buffer = {};
}

bool ActionWriteCsv::open()
{
    m_name = expandOutputFile(m_params.fileName, QString());
    const QString separator = m_params.separator == "\\t"_L1 ? u"\t"_s : m_params.separator;
    if (separator.size() != 1 || separator[0].unicode() >= 0x80 || separator == "\""_L1) {
        return fail(u"Error: writeCSV: the separator '%1' is not one ASCII character\n"_s.arg(
            m_params.separator));
    }
    m_separator = separator[0].toLatin1();
    if (!m_target.open(m_name, getIdx())) {
        return fail(u"Error: writeCSV: cannot create file '%1'\n"_s.arg(m_name));
    }
    m_buffer.resize(kBufferBytes);
    return true;
}

bool ActionWriteCsv::flush()
{
    while (!m_target.file().write(m_buffer.data(), static_cast<qint64>(m_used))) {
        if (!runIsGood() || !MainUI::displayOutOfDiskSpace(m_name, getIdx(), true)) {
            return false;
        }
    }
    m_used = 0;
    return true;
}

bool ActionWriteCsv::needRoom(size_t bytes)
{
    if (m_buffer.size() - m_used >= bytes) {
        return true;
    }
    if (!flush()) {
        return fail(u"Error: writeCSV: cannot write file '%1'\n"_s.arg(m_name));
    }
    if (m_buffer.size() < bytes) {
        m_buffer.resize(bytes);
    }
    return true;
}

/// A field with its quotes where it needs them, and the room for a separator behind it.
bool ActionWriteCsv::putText(const char16_t *units, qsizetype n)
{
    // Every unit at most three bytes, or two quotes.
    if (!needRoom(static_cast<size_t>(n) * 3 + 3)) {
        return false;
    }
    char *const begin = m_buffer.data() + m_used;
    const auto size = static_cast<size_t>(utf16ToUtf8(units, n, begin));
    if (n != 0 && !needsQuotes(begin, size, m_separator)) {
        m_used += size;
        return true;
    }
    const QByteArray plain(begin, static_cast<qsizetype>(size));
    if (!needRoom(size * 2 + 3)) {
        return false;
    }
    char *out = m_buffer.data() + m_used;
    *out++ = '"';
    for (const char c : plain) {
        *out++ = c;
        if (c == '"') {
            *out++ = '"';
        }
    }
    *out++ = '"';
    m_used = static_cast<size_t>(out - m_buffer.data());
    return true;
}

bool ActionWriteCsv::writeHeader(const OneRow *columns)
{
    m_headerDone = true;
    if (!open()) {
        return false;
    }
    getOutputRowForOutputPin(0)->copySchemaFrom(columns);
    const int n = columns->numberOfColumns();
    for (int i = 0; m_params.header && i < n; ++i) {
        const QString name = columns->colName(i);
        if (!putText(reinterpret_cast<const char16_t *>(name.utf16()), name.size())) {
            return false;
        }
        m_buffer[m_used++] = i + 1 < n ? m_separator : '\n';
    }
    return true;
}

bool ActionWriteCsv::writeRow(const OneRow *row)
{
    const unsigned char *const *const cells = row->getAllColForWrite();
    const QVector<MetaInfo> &types = row->schema().types;
    const qsizetype n = types.size();
    for (qsizetype i = 0; i < n; ++i) {
        if (!needRoom(kNumberChars + 1)) {
            return false;
        }
        char *const out = m_buffer.data() + m_used;
        switch (types[i].type()) {
        case MetaInfo::Key: {
            const auto key = loadNative<quint32>(cells[i]);
            m_used += cell::isMissingKey(key) ? 0 : static_cast<size_t>(putUInt(key, out));
            break;
        }
        case MetaInfo::Float: {
            const auto value = loadNative<double>(cells[i]);
            m_used +=
                cell::isMissingDouble(value) ? 0 : static_cast<size_t>(putShortest(value, out));
            break;
        }
        case MetaInfo::Unknown: {
            const cell::Text text = cell::readText(cells[i]);
            if (!text.isMissing() && !putText(text.data(), text.size())) {
                return false;
            }
            break;
        }
        }
        m_buffer[m_used++] = i + 1 < n ? m_separator : '\n';
    }
    return true;
}

bool ActionWriteCsv::step()
{
    while (!yieldRequested()) {
        const OneRow *const row = getNextRowFromInPin(0);
        if (row == nullptr && !runIsGood()) {
            return false;
        }
        if (!m_headerDone && !writeHeader(row != nullptr ? row : getInputColumns(0))) {
            return false;
        }
        if (row == nullptr) {
            m_complete = true;
            return false;
        }
        getOutputRowForOutputPin(0)->copyFrom(row);
        setRowReadyForOutput(0);
        if (!writeRow(row)) {
            return false;
        }
    }
    return true;
}

} // namespace corvanta
