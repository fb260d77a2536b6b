#include "base/cached_source.h"

namespace corvanta {

// The piece begins at a multiple of its size: steps backwards, as at the end of a zip file, stay in
// it.
bool CachedSource::fill()
{
    m_cachedBytes = 0;
    m_cacheOffset = m_position - m_position % kCacheBytes;
    if (!m_source->seek(m_cacheOffset)) {
        return false;
    }
    const qint64 got = readFully(*m_source, m_cache.get(), kCacheBytes);
    m_cachedBytes = std::max<qint64>(got, 0);
    return got >= 0;
}

qint64 CachedSource::read(void *buffer, qint64 n)
{
    const bool isCached = m_position >= m_cacheOffset && m_position < m_cacheOffset + m_cachedBytes;
    if (n > 0 && !isCached && !fill()) {
        return -1;
    }
    const qint64 there = m_cacheOffset + m_cachedBytes - m_position;
    const qint64 take = std::clamp<qint64>(there, 0, n);
    if (take > 0) {
        std::memcpy(buffer, m_cache.get() + (m_position - m_cacheOffset),
                    static_cast<size_t>(take));
        m_position += take;
    }
    return take;
}

bool CachedSource::seek(qint64 offset)
{
    if (offset < 0 || offset > size()) {
        return false;
    }
    m_position = offset;
    return true;
}

} // namespace corvanta
