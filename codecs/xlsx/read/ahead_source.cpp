// The way of a piece, and its memory:
//
//   m_free -> fill(), on the thread -> m_full -> m_current, with the user -> m_free
//
//   64 KiB    headroom, for the user
//   256 KiB   bytes of the source; the last piece has fewer
//   64        NULs
#include "codecs/xlsx/read/ahead_source.h"

#include <cstring>
#include <exception>
#include <system_error>

namespace corvanta::xlsx {

namespace {
/// Pieces in memory: one with the user, one that is filled, and those between.
constexpr size_t kPieces = 5;
} // namespace

AheadSource::AheadSource(std::unique_ptr<ByteSource> source, qint64 size)
    : m_source(std::move(source))
{
    if (size <= static_cast<qint64>(Piece::kBytes)) {
        return;
    }
    for (size_t i = 0; i + 1 < kPieces; ++i) {
        m_free.push_back(makePiece());
    }
    try {
        m_thread = std::thread([this] { work(); });
    } catch (const std::system_error &) {
        // Without a thread the pieces are read when they are needed.
    }
}

AheadSource::~AheadSource()
{
    stop();
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

void AheadSource::stop()
{
    m_isStopped.store(true);
    // The lock orders the flag with the test of a thread that is about to wait.
    const std::lock_guard lock(m_mutex);
    m_changed.notify_all();
}

Piece AheadSource::makePiece()
{
    return {std::make_unique<char[]>(Piece::kHeadroom + Piece::kBytes + Piece::kPadding), 0};
}

/// Returns false at the end of the source and after a failure.
bool AheadSource::fill(Piece *piece)
{
    const qint64 n = readFully(*m_source, piece->begin(), Piece::kBytes);
    m_hasFailed.store(n < 0);
    piece->size = n > 0 ? static_cast<size_t>(n) : 0;
    std::memset(piece->end(), 0, Piece::kPadding);
    return n > 0;
}

void AheadSource::work()
{
    std::unique_lock lock(m_mutex);
    while (!m_isEnd) {
        m_changed.wait(lock, [this] { return m_isStopped.load() || !m_free.empty(); });
        if (m_isStopped.load()) {
            return;
        }
        Piece piece = std::move(m_free.back());
        m_free.pop_back();
        lock.unlock();
        const bool isFilled = fill(&piece);
        lock.lock();
        if (isFilled) {
            m_full.push_back(std::move(piece));
        }
        m_isEnd = !isFilled;
        m_changed.notify_all();
    }
}

const Piece *AheadSource::nextHere()
{
    if (m_current.memory == nullptr) {
        m_current = makePiece();
    }
    m_isEnd = m_isEnd || m_isStopped.load() || !fill(&m_current);
    return m_isEnd ? nullptr : &m_current;
}

const Piece *AheadSource::next()
{
    if (!m_thread.joinable()) {
        return nextHere();
    }
    std::unique_lock lock(m_mutex);
    if (m_current.memory != nullptr) {
        m_free.push_back(std::move(m_current));
        m_current = {};
        m_changed.notify_all();
    }
    m_changed.wait(lock, [this] { return m_isStopped.load() || m_isEnd || !m_full.empty(); });
    if (m_full.empty() || m_isStopped.load()) {
        return nullptr;
    }
    m_current = std::move(m_full.front());
    m_full.pop_front();
    return &m_current;
}

} // namespace corvanta::xlsx
