// How the records of a text with separators are written.
#pragma once
#include <string>

namespace corvanta::csv {

/// The default is RFC 4180.
struct Dialect
{
    static constexpr int kNoQuote = -1;

    /// An ASCII character other than the quote, CR and LF.
    char separator = ',';
    /// An ASCII character other than CR and LF; kNoQuote: every byte of a field is literal.
    int quote = '"';
    /// A CR alone ends a line too, outside quotes: texts of old systems have no LF.
    bool endsLinesWithCr = false;
    /// Lines that begin with this text are skipped; empty: none.
    std::string comment = {};
    /// Number of lines before the first record, whatever they hold.
    long long skippedLines = 0;
};

} // namespace corvanta::csv
