// io/package/cached_source.h
// Read a file on a network drive in pieces of 64 KiB.
#pragma once
#include "base/byte_source.h"

#include <memory>

namespace corvanta {

/// Small reads come from a copy of the piece of the source they lie in, so that the steps of a zip
/// reader do not reach the network one by one. Threads: one at a time.
class CachedSource final : public ByteSource
{
public:
    static constexpr qint64 kCacheBytes = 65536;

    /// `source` must be able to seek.
    explicit CachedSource(std::unique_ptr<ByteSource> source)
        : m_source(std::move(source))
    {
    }

    qint64 read(void *buffer, qint64 n) override;
    qint64 size() override { return m_source->size(); }
    bool seek(qint64 offset) override;

private:
    bool fill();

    std::unique_ptr<ByteSource> m_source;
    std::unique_ptr<char[]> m_cache = std::make_unique_for_overwrite<char[]>(kCacheBytes);
    qint64 m_cacheOffset = 0;
    qint64 m_cachedBytes = 0;
    qint64 m_position = 0;
};

} // namespace corvanta
