// codecs/markup/text/line_counter.h
// Line and column of a place in a document, counted only where somebody asks or bytes are let go.
#pragma once
#include <QtGlobal>

namespace corvanta::markup {

/// LF, CR, CR LF and LF CR each end one line; the column is the number of UTF-16 units since then.
class LineCounter
{
public:
    /// Go over `n` more bytes of UTF-8.
    void advance(const char *bytes, qsizetype n);

    qint64 line() const { return m_line; }
    qint64 column() const { return m_column; }

private:
    void breakLine(char c);
    void countBreaks(const char *bytes, qsizetype n);

    qint64 m_line = 1;
    qint64 m_column = 0;
    char m_openBreak = 0; ///< a CR or LF at the very end that its counterpart may complete
};

} // namespace corvanta::markup
