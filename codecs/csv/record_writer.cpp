// Layout: see record_reader.cpp. A field is quoted only if it must be.
#include "codecs/csv/record_writer.h"

#include "base/number.h"
#include "base/utf.h"
#include "codecs/csv/find_first_of.h"

#include <algorithm>
#include <cstring>

namespace corvanta::csv {

namespace {

/// Most fields have none, so that the search for the first one is what counts.
size_t countQuotes(const char *text, size_t n)
{
    size_t count = 0;
    const char *const end = text + n;
    for (text = findFirstOf(text, end, '"'); text != end; text = findFirstOf(text + 1, end, '"')) {
        ++count;
    }
    return count;
}

} // namespace

RecordWriter::RecordWriter(char separator, LineEnd lineEnd)
    : m_separator(separator)
    , m_lineEnd(lineEnd)
    , m_size(kBlockBytes + kBlockBytes / 16) // so that ordinary rows never make it grow
    , m_buffer(new char[m_size])
{
}

/// Makes room for `bytes` more bytes. Each cell reserves one byte more than it needs, for the
/// separator.
inline void RecordWriter::reserve(size_t bytes)
{
    if (m_size - m_used < bytes) [[unlikely]] {
        grow(bytes);
    }
}

/// Doubling keeps the number of copies small for rows of any length.
void RecordWriter::grow(size_t bytes)
{
    const size_t size = std::max(m_size * 2, m_used + bytes);
    std::unique_ptr<char[]> larger(new char[size]);
    std::memcpy(larger.get(), m_buffer.get(), m_used);
    m_buffer = std::move(larger);
    m_size = size;
}

/// Appends a text that is not missing, with quotes if it needs them.
void RecordWriter::addText(const char16_t *units, qsizetype n, int column)
{
    reserve(static_cast<size_t>(n) * kUtf8BytesPerUnit + kReadAhead);
    char *const out = m_buffer.get() + m_used;
    qsizetype replaced = 0;
    const qsizetype size = utf16ToUtf8(units, n, out, &replaced);
    if (replaced != 0) [[unlikely]] {
        countReplaced(replaced, column);
    }
    const size_t begin = m_used;
    m_used += static_cast<size_t>(size);
    if (n == 0 || hasOneOf(out, size, m_separator, '"', '\n', '\r')) {
        addQuoted(begin);
    }
}

/// The first place is kept for the warning of the action.
void RecordWriter::countReplaced(qsizetype n, int column)
{
    if (m_replaced.count == 0) {
        m_replaced.firstRow = m_row;
        m_replacedColumn = column;
    }
    m_replaced.count += n;
}

/// Puts the text from `begin` to the end of the buffer in quotes and doubles its quotes.
void RecordWriter::addQuoted(size_t begin)
{
    const size_t n = m_used - begin;
    const size_t quotes = countQuotes(m_buffer.get() + begin, n);
    // Two quotes around the text, and the separator.
    reserve(quotes + 3);
    char *at = m_buffer.get() + begin;
    const char *from = at + 1 + quotes;
    std::memmove(at + 1 + quotes, at, n);
    *at++ = '"';
    // The text is ahead by the number of quotes that are not doubled yet.
    while (at < from) {
        *at++ = *from;
        if (*from++ == '"') {
            *at++ = '"';
        }
    }
    m_used += quotes + 2;
    m_buffer[m_used - 1] = '"';
}

/// Completes a line, whose last byte is LF.
inline void RecordWriter::endLine(const RowView &row)
{
    if (m_lineEnd == LineEnd::CrLf && row.columns > 0) {
        reserve(1);
        m_buffer[m_used - 1] = '\r';
        m_buffer[m_used++] = '\n';
    }
}

/// Names are texts like those of cells, and may need quotes.
void RecordWriter::addNames(const RowView &row)
{
    for (int i = 0; i < row.columns; ++i) {
        const QString &name = row.names[i];
        addText(reinterpret_cast<const char16_t *>(name.utf16()), name.size(), i);
        m_buffer[m_used++] = i + 1 < row.columns ? m_separator : '\n';
    }
    endLine(row);
}

/// Appends a cell, and reserves the byte for its separator.
inline void RecordWriter::addCell(cell::Type type, const uchar *bytes, int column)
{
    reserve(kNumberChars + 1);
    char *const out = m_buffer.get() + m_used;
    switch (type) {
    case cell::Type::Key: {
        const auto key = loadNative<quint32>(bytes);
        m_used += cell::isMissingKey(key) ? 0 : static_cast<size_t>(putUInt(key, out));
        break;
    }
    case cell::Type::Double: {
        const auto value = loadNative<double>(bytes);
        m_used += cell::isMissingDouble(value) ? 0 : static_cast<size_t>(putShortest(value, out));
        break;
    }
    case cell::Type::Text: {
        const cell::Text text = cell::readText(bytes);
        if (!text.isMissing()) {
            addText(text.data(), text.size(), column);
        }
        break;
    }
    }
}

/// The separator after the last cell is the end of the line.
void RecordWriter::addRow(const RowView &row)
{
    ++m_row;
    for (int i = 0; i < row.columns; ++i) {
        addCell(row.type(i), row.cells[i], i);
        m_buffer[m_used++] = i + 1 < row.columns ? m_separator : '\n';
    }
    endLine(row);
}

} // namespace corvanta::csv
