#include "io/input/kept_pipe.h"

#include <QFileInfo>

#include <map>
#include <mutex>

namespace corvanta::input {

namespace {

/// One per process, like the pipes: the reader that samples and the one that runs are not
/// connected.
struct KeptPipes
{
    std::mutex mutex; // guards the map
    std::map<QString, std::unique_ptr<ReplayedSource>> sources;
};

KeptPipes &keptPipes()
{
    static KeptPipes pipes;
    return pipes;
}

} // namespace

bool isPipe(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile() && !info.isDir();
}

qint64 ReplayedSource::read(void *buffer, qint64 n)
{
    // First the bytes that an earlier reader took from the pipe.
    const qint64 kept = std::min<qint64>(n, m_bytes.size() - m_at);
    if (kept > 0) {
        std::memcpy(buffer, m_bytes.constData() + m_at, static_cast<size_t>(kept));
        m_at += kept;
        return kept;
    }
    const qint64 got = m_source->read(buffer, n);
    if (got < 0) {
        return fail(m_source->failure());
    }
    if (m_records) {
        m_bytes.append(static_cast<const char *>(buffer), got);
        m_at = m_bytes.size();
    }
    return got;
}

bool ReplayedSource::seek(qint64 offset)
{
    // Bytes that were read and not kept are gone.
    const bool isKept = m_records && offset <= m_bytes.size();
    m_at = isKept ? static_cast<qsizetype>(offset) : m_at;
    return isKept;
}

void ReplayedSource::rewind(bool records)
{
    m_at = 0;
    m_records = records;
}

void keepPipe(const QString &path, std::unique_ptr<ReplayedSource> source)
{
    KeptPipes &pipes = keptPipes();
    const std::lock_guard lock(pipes.mutex);
    pipes.sources[path] = std::move(source);
}

std::unique_ptr<ReplayedSource> takePipe(const QString &path)
{
    KeptPipes &pipes = keptPipes();
    const std::lock_guard lock(pipes.mutex);
    // Two readers must not share a pipe: the second one opens it again.
    auto node = pipes.sources.extract(path);
    return node.empty() ? nullptr : std::move(node.mapped());
}

} // namespace corvanta::input
