// An input whose read fails, for tests of readers.
#pragma once
#include "base/byte_source.h"

namespace corvanta::test {

/// A source that fails after its last byte instead of reporting the end. Does not own the bytes.
class FailingSource final : public ByteSource
{
public:
    explicit FailingSource(QByteArrayView bytes)
        : m_memory(bytes)
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        const qint64 got = m_memory.read(buffer, n);
        return got > 0 ? got : -1;
    }
    qint64 size() override { return -1; }
    bool seek(qint64) override { return false; }

private:
    MemorySource m_memory;
};

} // namespace corvanta::test
