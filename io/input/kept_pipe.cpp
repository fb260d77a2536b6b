#include "io/input/kept_pipe.h"

#include "base/system_error.h"
#include "io/spool/block_spool.h"

#include <algorithm>
#include <cstring>
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
    return platform::isPipeOrDevice(path);
}

qint64 ReplayedSource::read(void *buffer, qint64 n)
{
    // First the bytes that an earlier reader took from the pipe.
    if (m_at < keptBytes()) {
        const qint64 kept = readKept(static_cast<char *>(buffer), n);
        m_at += std::max<qint64>(kept, 0);
        return kept;
    }
    const qint64 got = m_lost.isEmpty() ? m_source->read(buffer, n) : -1;
    if (got < 0) {
        return fail(m_lost.isEmpty() ? m_source->failure() : m_lost);
    }
    if (m_records && got > 0) {
        if (!keep(static_cast<const char *>(buffer), got)) {
            return fail(m_lost);
        }
        m_at = keptBytes();
    }
    return got;
}

/// Read some of the kept bytes, of which at least one follows m_at.
qint64 ReplayedSource::readKept(char *buffer, qint64 n)
{
    const qint64 inMemory = std::min(n, m_bytes.size() - m_at);
    if (inMemory <= 0) {
        return readFile(buffer, std::min(n, keptBytes() - m_at));
    }
    std::memcpy(buffer, m_bytes.constData() + m_at, static_cast<size_t>(inMemory));
    return inMemory;
}

qint64 ReplayedSource::readFile(char *buffer, qint64 n)
{
    const qint64 got = seekFile(m_at - m_bytes.size()) ? m_file.read(buffer, n) : -1;
    if (got <= 0) {
        setLost();
        return fail(m_lost);
    }
    m_fileAt += got;
    return got;
}

/// Keep bytes after the others. Returns false, and sets m_lost, when they are lost.
bool ReplayedSource::keep(const char *bytes, qint64 n)
{
    // The order stays: after the first bytes in the file none go to memory.
    if (!m_file.isOpen() && m_bytes.size() + n <= m_memoryBytes) {
        m_bytes.append(bytes, n);
        return true;
    }
    if (!m_file.isOpen()) {
        m_file = platform::FileHandle::openTemporary(temporaryFolder());
    }
    if (!m_file.isOpen() || !seekFile(m_fileBytes) || !keepInFile(bytes, n)) {
        setLost();
        return false;
    }
    return true;
}

bool ReplayedSource::keepInFile(const char *bytes, qint64 n)
{
    for (qint64 done = 0; done < n;) {
        const qint64 written = m_file.write(bytes + done, n - done);
        if (written <= 0) {
            return false;
        }
        done += written;
        m_fileAt += written;
    }
    m_fileBytes += n;
    return true;
}

bool ReplayedSource::seekFile(qint64 offset)
{
    const bool isThere = m_fileAt == offset || m_file.seek(offset);
    m_fileAt = isThere ? offset : m_fileAt;
    return isThere;
}

/// Directly after the call that failed.
void ReplayedSource::setLost()
{
    const QString reason = SystemError::ofLastCall().text();
    m_lost = QStringLiteral("the data of the pipe cannot be kept in a temporary file in the folder "
                            "'%1': %2")
                 .arg(temporaryFolder(), reason);
}

bool ReplayedSource::seek(qint64 offset)
{
    // Bytes that were read and not kept are gone.
    const bool isKept = m_records && offset >= 0 && offset <= keptBytes();
    m_at = isKept ? offset : m_at;
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
