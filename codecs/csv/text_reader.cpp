#include "codecs/csv/text_reader.h"

#include "codecs/csv/find_separator.h"

namespace corvanta::csv {

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
    , m_separator(form.dialect.separator)
{
    if (form.findsSeparator) {
        m_replay.fill();
        const QByteArrayView sample = m_replay.bytes();
        m_separator = findSeparator({sample.data(), static_cast<size_t>(sample.size())},
                                    sample.size() < kSampleBytes, form.dialect);
    }
    Dialect dialect = form.dialect;
    dialect.separator = m_separator;
    m_records = std::make_unique<RecordReader>(m_replay, std::move(dialect), limits);
}

} // namespace corvanta::csv
