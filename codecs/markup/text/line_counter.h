// Counts lines and columns of a document, in large blocks: when a position is needed, or when the
// tokenizer discards bytes.
#pragma once
#include <QtGlobal>

namespace corvanta::markup {

/// LF, CR, CR LF and LF CR each end one line, also across two calls of advance(). The column is the
/// number of UTF-16 units since then. Threads: one at a time.
class LineCounter
{
public:
    /// Count `n` more bytes of UTF-8.
    void advance(const char *bytes, qsizetype n);

    /// Line of the next byte, from 1.
    qint64 line() const { return m_line; }
    /// UTF-16 units before the next byte in its line.
    qint64 column() const { return m_column; }

private:
    void breakLine(char c);
    void countBreaks(const char *bytes, qsizetype n);

    qint64 m_line = 1;
    qint64 m_column = 0;
    char m_openBreak =
        /// The last byte, if it is a CR or LF that the other one may complete; else 0.
        0;
};

} // namespace corvanta::markup
