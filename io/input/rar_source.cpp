// Reads a RAR entry as a stream. The unpackers push their output, but a source is read: a thread
// unpacks the entry into a ring, and read() takes the bytes from it.
#include "io/input/archive_sources.h"
#include "io/input/rar_ring.h"
#include "io/platform/rar_archive.h"

#include <new>
#include <thread>

namespace corvanta::input {

namespace {

using platform::RarArchive;
using platform::RarError;

/// Unpacks an archive once: the ring and the thread that fills it. The destructor joins the thread.
class Unpacking
{
public:
    explicit Unpacking(std::unique_ptr<RarArchive> archive)
        : m_archive(std::move(archive))
        , m_producer([this] { produce(); })
    {
    }
    ~Unpacking()
    {
        // The unpacker stops at its next put().
        m_ring.abort();
        m_producer.join();
    }
    Unpacking(const Unpacking &) = delete;
    Unpacking &operator=(const Unpacking &) = delete;
    RarRing &ring() { return m_ring; }

private:
    /// The thread. Every outcome reaches the reader through finish(), or it would wait forever.
    void produce() noexcept
    {
        try {
            m_ring.finish(m_archive->unpack(
                [this](std::span<const char> bytes) { return m_ring.put(bytes); }));
        } catch (const std::bad_alloc &) {
            m_ring.finish(Fault{RarError::Damaged,
                                QStringLiteral("there is not enough memory to unpack it")});
        }
    }

    RarRing m_ring;
    std::unique_ptr<RarArchive> m_archive;
    std::thread m_producer; // last: uses the members above
};

/// Starts to unpack when it is opened, so that the first read finds bytes.
class RarSource final : public InputSource
{
public:
    RarSource(QString path, std::unique_ptr<RarArchive> archive)
        : m_path(std::move(path))
        , m_size(archive->size())
        , m_unpacking(std::make_unique<Unpacking>(std::move(archive)))
    {
    }

    qint64 read(void *buffer, qint64 n) override
    {
        const qint64 got =
            m_unpacking ? m_unpacking->ring().take(static_cast<char *>(buffer), n) : 0;
        m_position += got;
        if (got > 0 || n <= 0) {
            return got;
        }
        // The entry has ended. Its checksum is known only now.
        if (m_unpacking && failure().isEmpty()) {
            const auto outcome = m_unpacking->ring().outcome();
            if (!outcome) {
                fail(outcome.fault().detail);
            }
        }
        return failure().isEmpty() ? 0 : -1;
    }
    qint64 size() override { return m_size; }
    bool seek(qint64 offset) override
    {
        // Unpacking cannot go back: start again, and read up to the offset.
        m_unpacking.reset();
        auto archive = platform::openRarArchive(m_path);
        if (!archive) {
            fail(QStringLiteral("the archive cannot be opened again"));
            return false;
        }
        m_unpacking = std::make_unique<Unpacking>(*std::move(archive));
        m_position = 0;
        clearFailure();
        return skipBytes(*this, offset);
    }
    qint64 progressPosition() const override { return m_position; }

private:
    const QString m_path;
    const qint64 m_size;
    qint64 m_position = 0;
    std::unique_ptr<Unpacking> m_unpacking; // null if it could not be started again
};

/// Opening reports only the first three errors; the others come from unpacking.
OpenError openErrorOf(RarError error)
{
    if (error == RarError::CannotOpen) {
        return OpenError::CannotOpen;
    }
    return error == RarError::NoUnpacker ? OpenError::NoUnpacker : OpenError::Refused;
}

} // namespace

Opened openRar(const QString &path)
{
    auto archive = platform::openRarArchive(path);
    if (!archive) {
        return Fault<OpenError>{openErrorOf(archive.fault().code), archive.fault().detail};
    }
    return std::unique_ptr<InputSource>(std::make_unique<RarSource>(path, *std::move(archive)));
}

} // namespace corvanta::input
