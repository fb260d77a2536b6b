// The beginning of a text in UTF-8. Its first 64 KiB, the sample, show separator and line end:
//
//   EF BB BF           mark; optional
//   line end           empty lines; skipped only where the separator is searched
//   sep=; line end     the separator, as spreadsheet programs write it; then not searched
//   records            see record_reader.cpp
//
// The sample is read first and kept, because a source may be a pipe: Replay gives its bytes again
// and continues with the source.
#include "codecs/csv/text_reader.h"

#include "codecs/csv/find_separator.h"

namespace corvanta::csv {

namespace {

/// Whether CR alone ends the lines. A CR at the end of a part may be the first half of CR LF.
bool hasOnlyCr(std::string_view sample, bool isWhole)
{
    const size_t cr = sample.find('\r');
    return cr != std::string_view::npos && (isWhole || cr + 1 < sample.size()) &&
           sample.find('\n') == std::string_view::npos;
}

/// The lines before the first record that are not records.
struct Preamble
{
    long long lines = 0;
    char separator = '\0'; // of a line such as "sep=;", which spreadsheet programs write
};

Preamble preambleOf(std::string_view text, const Dialect &dialect)
{
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    constexpr std::string_view kSeparator = "sep=";
    const char lineEnd = dialect.endsLinesWithCr ? '\r' : '\n';
    Preamble preamble;
    text.remove_prefix(text.starts_with(kMark) ? kMark.size() : 0);
    while (preamble.separator == '\0') {
        const size_t end = text.find(lineEnd);
        std::string_view line = text.substr(0, end);
        line.remove_suffix(line.ends_with('\r') ? 1 : 0);
        const bool isSeparator = line.size() == kSeparator.size() + 1 &&
                                 line.starts_with(kSeparator) && line.back() > 0 &&
                                 line.back() != dialect.quote;
        if (end == std::string_view::npos || (!line.empty() && !isSeparator)) {
            break;
        }
        preamble.separator = isSeparator ? line.back() : '\0';
        ++preamble.lines;
        text.remove_prefix(end + 1);
    }
    return preamble;
}

} // namespace

/// A pipe may give its bytes in small pieces; a sample of one piece would be too short.
void TextReader::Replay::fill()
{
    m_bytes.resize(kSampleBytes);
    qsizetype size = 0;
    for (qint64 got = 1; got > 0 && size < m_bytes.size(); size += got) {
        got = std::max<qint64>(m_source.read(m_bytes.data() + size, m_bytes.size() - size), 0);
    }
    m_bytes.resize(size);
}

/// First the sample again, then the rest of the source.
qint64 TextReader::Replay::read(void *buffer, qint64 n)
{
    if (m_at == m_bytes.size()) {
        return m_source.read(buffer, n);
    }
    const qint64 take = std::min<qint64>(n, m_bytes.size() - m_at);
    std::memcpy(buffer, m_bytes.data() + m_at, static_cast<size_t>(take));
    m_at += take;
    return take;
}

TextReader::TextReader(ByteSource &source, const TextForm &form, RecordReader::Limits limits)
    : m_text(source, form.encoding, form.fallback)
    , m_dialect(form.dialect)
{
    if (form.findsSeparator || form.findsLineEnd) {
        m_replay.fill();
    }
    const QByteArrayView bytes = m_replay.bytes();
    const std::string_view sample(bytes.data(), static_cast<size_t>(bytes.size()));
    const bool isWhole = bytes.size() < kSampleBytes;
    if (form.findsLineEnd) {
        m_dialect.endsLinesWithCr = hasOnlyCr(sample, isWhole);
    }
    if (form.findsSeparator) {
        const Preamble preamble =
            form.dialect.skippedLines == 0 ? preambleOf(sample, m_dialect) : Preamble();
        m_dialect.skippedLines += preamble.lines;
        m_dialect.separator = preamble.separator != '\0'
                                  ? preamble.separator
                                  : findSeparator(sample, isWhole, m_dialect);
    }
    m_records = std::make_unique<RecordReader>(m_replay, m_dialect, limits);
}

} // namespace corvanta::csv
