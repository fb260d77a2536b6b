// The library allocates from the declared widths and writes page by page:
//
//   header  8 KiB: names, dates, the size and number of pages
//   pages   sizes and numbers of rows and columns, then texts (names, labels, formats), then widths
//   pages   rows of fixed width, as many as fit a page
//
// The layout of these parts is not public. Layout of packed rows: table_writer.h.
#include "codecs/sas/data_set_writer.h"

#include "base/bytes.h"
#include "base/cell.h"

#include <readstat.h>

#include <algorithm>
#include <bit>
#include <limits>

namespace corvanta::sas {

namespace {

/// Readers that trust the stated size of a block of texts lose its last 12 bytes, because the
/// library states it 12 bytes too small. Blanks at the end of the last label, which no reader
/// shows, take their place.
constexpr int kLostBytes = 12;

/// The library states the sizes of texts in 16 bits, and makes larger blocks of them only when its
/// pages are above 64 KiB: for long rows and many columns.
constexpr qsizetype kMaxTexts = 65'000;
constexpr qint64 kLongRow = 65'000;
constexpr size_t kManyVariables = 4'090;

constexpr size_t kBufferBytes = size_t(256) << 10;

/// 1 January 1960, from which SAS counts its days, in seconds of the system's time.
constexpr time_t kFixedDate = -315'619'200;

} // namespace

void DataSetWriter::Free::operator()(readstat_writer_s *writer) const noexcept
{
    readstat_writer_free(writer);
}

DataSetWriter::DataSetWriter(ByteSink &sink, std::vector<Variable> variables)
    : m_sink(sink)
    , m_variables(std::move(variables))
    , m_buffer(kBufferBytes)
{
}

DataSetWriter::~DataSetWriter() = default;

long long DataSetWriter::write(const void *bytes, size_t n, void *self) noexcept
{
    auto *const writer = static_cast<DataSetWriter *>(self);
    return writer->collect(static_cast<const char *>(bytes), n) ? static_cast<long long>(n) : -1;
}

/// The library writes row by row, and page ends in small pieces.
bool DataSetWriter::collect(const char *bytes, size_t n)
{
    if (m_used + n > m_buffer.size() && !flush()) {
        return false;
    }
    if (n > m_buffer.size()) {
        m_sinkFailed = !m_sink.write(bytes, static_cast<qint64>(n));
        return !m_sinkFailed;
    }
    std::copy_n(bytes, n, m_buffer.data() + m_used);
    m_used += n;
    return true;
}

bool DataSetWriter::flush()
{
    m_sinkFailed = m_sinkFailed || !m_sink.write(m_buffer.data(), static_cast<qint64>(m_used));
    m_used = 0;
    return !m_sinkFailed;
}

Result<void, Error> DataSetWriter::resultOf(int code) const
{
    // The library ignores some failed writes, such as those of the end.
    const int shown = m_sinkFailed ? READSTAT_ERROR_WRITE : code;
    if (shown == READSTAT_OK) {
        return {};
    }
    return Fault{m_sinkFailed ? Error::CannotWrite : Error::Library,
                 QString::fromUtf8(readstat_error_message(static_cast<readstat_error_t>(shown)))};
}

/// What the library would write without an error, and no reader could read.
Result<void, Error> DataSetWriter::check(qint64 rows) const
{
    qint64 rowBytes = 0;
    qsizetype textBytes = 0;
    for (const Variable &variable : m_variables) {
        constexpr qsizetype kPadding = 9; // each of the three texts is padded to 4 bytes
        rowBytes += variable.width;
        textBytes += variable.name.size() + variable.label.size() + variable.format.size();
        textBytes += kPadding;
    }
    if (m_variables.size() > kMaxDataSetVariables) {
        return Fault{Error::TooManyVariables, QString::number(m_variables.size())};
    }
    if (rows > std::numeric_limits<int>::max()) {
        return Fault{Error::TooManyRows, QString::number(rows)};
    }
    const bool hasLargePages = rowBytes > kLongRow || m_variables.size() > kManyVariables;
    return hasLargePages && textBytes > kMaxTexts
               ? Fault{Error::NamesTooLong, QString::number(textBytes)}
               : Result<void, Error>();
}

/// The library does not check its allocations: a failed one ends the process. Those that can be
/// large are tried here, together, which throws std::bad_alloc if they would fail.
void DataSetWriter::tryMemory() const
{
    qint64 rowBytes = 0;
    for (const Variable &variable : m_variables) {
        rowBytes += variable.width;
    }
    // A row, two pages that hold at least one row, and the zeros that fill the last page.
    constexpr quint64 kSmallestPage = 65'536;
    const auto page = std::bit_ceil(static_cast<quint64>(rowBytes) + kSmallestPage);
    const size_t variables = m_variables.size() * sizeof(readstat_variable_t);
    const QByteArray memory(static_cast<qsizetype>(3 * page + variables), Qt::Uninitialized);
}

void DataSetWriter::addVariables()
{
    for (size_t i = 0; i < m_variables.size(); ++i) {
        const Variable &from = m_variables[i];
        readstat_variable_t *const variable =
            readstat_add_variable(m_writer.get(), from.name.constData(),
                                  from.isText ? READSTAT_TYPE_STRING : READSTAT_TYPE_DOUBLE,
                                  from.isText ? static_cast<size_t>(from.width) : 0);
        QByteArray label = from.label;
        if (i + 1 == m_variables.size()) {
            label.append(kLostBytes, ' ');
        }
        if (!label.isEmpty()) {
            readstat_variable_set_label(variable, label.constData());
        }
        if (!from.format.isEmpty()) {
            readstat_variable_set_format(variable, from.format.constData());
        }
    }
}

Result<void, Error> DataSetWriter::begin(qint64 rows)
{
    if (auto checked = check(rows); !checked) {
        return checked;
    }
    tryMemory();
    m_writer.reset(readstat_writer_init());
    readstat_set_data_writer(m_writer.get(), [](const void *bytes, size_t n, void *self) {
        return static_cast<ssize_t>(write(bytes, n, self));
    });
    readstat_writer_set_file_timestamp(m_writer.get(), kFixedDate);
    addVariables();
    const int code = readstat_begin_writing_sas7bdat(m_writer.get(), this, static_cast<long>(rows));
    // The library refuses names with blanks or letters outside ASCII, which the format can hold.
    m_writer->callbacks.variable_ok = nullptr;
    return resultOf(code);
}

/// Write the packed row at `*at` and move to its end; returns a code of the library.
inline int DataSetWriter::addRow(const char **at)
{
    readstat_writer_t *const writer = m_writer.get();
    int code = readstat_begin_row(writer);
    readstat_variable_t **const variables = writer->variables;
    for (size_t i = 0; i < m_variables.size() && code == READSTAT_OK; ++i) {
        if (m_variables[i].isText) {
            const auto size = loadNative<quint32>(*at);
            *at += sizeof size;
            code = readstat_insert_string_value(writer, variables[i], *at);
            *at += size + 1;
            continue;
        }
        const auto value = loadNative<double>(*at);
        *at += sizeof value;
        code = cell::isMissingDouble(value)
                   ? readstat_insert_missing_value(writer, variables[i])
                   : readstat_insert_double_value(writer, variables[i], value);
    }
    return code == READSTAT_OK ? readstat_end_row(writer) : code;
}

Result<void, Error> DataSetWriter::addRows(std::string_view block)
{
    const char *at = block.data();
    const char *const end = at + block.size();
    int code = READSTAT_OK;
    while (at < end && code == READSTAT_OK) {
        code = addRow(&at);
    }
    return resultOf(code);
}

Result<void, Error> DataSetWriter::finish()
{
    const int code = readstat_end_writing(m_writer.get());
    flush();
    return resultOf(code);
}

} // namespace corvanta::sas
