// Formats rows as text with separators (CSV, RFC 4180).
//
// UTF-8. A missing cell is an empty field, an empty text is "". Keys are unsigned
// decimals; doubles have the fewest digits that read back to the same value. A text is quoted only
// if it contains the separator, a quote, CR or LF.
// Threads: one at a time per object.
#pragma once
#include "base/replaced_characters.h"
#include "base/row_view.h"

#include <QByteArrayView>

#include <memory>

namespace corvanta::csv {

enum class LineEnd : quint8 { Lf, CrLf };

/// Collects formatted rows until the caller has written them.
class RecordWriter
{
public:
    /// `separator` is an ASCII character other than a quote, CR and LF.
    explicit RecordWriter(char separator, LineEnd lineEnd = LineEnd::Lf);

    /// Append a line with the column names.
    void addNames(const RowView &row);
    /// Append a line with the cells.
    void addRow(const RowView &row);

    /// What has been appended since clear(); valid until the next call of a function that is not
    /// const.
    QByteArrayView bytes() const { return {m_buffer.get(), static_cast<qsizetype>(m_used)}; }
    /// True when bytes() is so long (1 MiB) that it should be written now.
    bool isFull() const { return m_used >= kBlockBytes; }
    void clear() { m_used = 0; }

    /// The lone surrogates of all names and texts so far.
    const ReplacedCharacters &replaced() const { return m_replaced; }
    /// Index of the column with the first one.
    int firstReplacedColumn() const { return m_replacedColumn; }

private:
    static constexpr size_t kBlockBytes = size_t(1) << 20;

    void reserve(size_t bytes);
    void grow(size_t bytes);
    void addCell(cell::Type type, const uchar *bytes, int column);
    void addText(const char16_t *units, qsizetype n, int column);
    void countReplaced(qsizetype n, int column);
    void addQuoted(size_t begin);
    void endLine(const RowView &row);

    char m_separator;
    LineEnd m_lineEnd;
    size_t m_size; // of the buffer
    // Not initialised: a small file uses few of its pages.
    std::unique_ptr<char[]> m_buffer;
    size_t m_used = 0;
    qint64 m_row = 0; // from 1; 0: the names
    ReplacedCharacters m_replaced;
    int m_replacedColumn = 0;
};

} // namespace corvanta::csv
