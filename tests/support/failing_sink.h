// A sink in memory that fails on request.
#pragma once
#include "base/byte_sink.h"

#include <functional>

namespace corvanta::test {

/// Refuses the calls (writes and flushes, counted from 0) of which the answer says so.
class FailingSink final : public ByteSink
{
public:
    explicit FailingSink(std::function<bool(int)> refuses)
        : m_refuses(std::move(refuses))
    {
    }
    bool write(const void *bytes, qint64 n) override
    {
        return !m_refuses(m_calls++) && m_sink.write(bytes, n);
    }
    bool seek(qint64 offset) override { return m_sink.seek(offset); }
    qint64 position() const override { return m_sink.position(); }
    bool flush() override { return !m_refuses(m_calls++); }
    const QByteArray &bytes() const { return m_sink.bytes(); }
    int calls() const { return m_calls; }

private:
    std::function<bool(int)> m_refuses;
    int m_calls = 0;
    MemorySink m_sink;
};

} // namespace corvanta::test
