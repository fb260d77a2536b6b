// Reads texts in memory, and a source after them.
#pragma once
#include "base/byte_source.h"

#include <QByteArray>

#include <deque>
#include <utility>

namespace corvanta::values {

/// Read until `n` bytes have arrived, or the source ends or fails. Returns the number of bytes; a
/// failure does not discard those before it.
inline qint64 readUpTo(ByteSource &source, char *out, qint64 n, bool *hasFailed)
{
    qint64 done = 0;
    qint64 got = 1;
    while (done < n && got > 0) {
        got = source.read(out + done, n - done);
        done += std::max<qint64>(got, 0);
    }
    *hasFailed = got < 0;
    return done;
}

/// For bytes that were read before. Threads: see ByteSource.
class ChainedSource final : public ByteSource
{
public:
    /// `source` must outlive this object. `hasFailed`: reading it fails.
    ChainedSource(std::deque<QByteArray> texts, ByteSource &source, bool hasFailed = false)
        : m_texts(std::move(texts))
        , m_source(source)
        , m_hasFailed(hasFailed)
    {
    }

    qint64 read(void *buffer, qint64 n) override
    {
        while (!m_texts.empty() && m_at == m_texts.front().size()) {
            m_texts.pop_front();
            m_at = 0;
        }
        if (m_texts.empty()) {
            return m_hasFailed ? -1 : m_source.read(buffer, n);
        }
        const QByteArray &text = m_texts.front();
        const qint64 take = std::min<qint64>(n, text.size() - m_at);
        std::memcpy(buffer, text.constData() + m_at, static_cast<size_t>(take));
        m_at += take;
        return take;
    }
    qint64 size() override { return -1; }
    bool seek(qint64) override { return false; }

private:
    std::deque<QByteArray> m_texts;
    qsizetype m_at = 0; // in the first text
    ByteSource &m_source;
    bool m_hasFailed;
};

} // namespace corvanta::values
