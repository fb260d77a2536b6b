// Reads a source on a thread of its own, some pieces ahead of its user, so that unpacking a member
// and scanning its text take place at the same time.
#pragma once
#include "base/byte_source.h"

#include <QByteArrayView>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace corvanta::xlsx {

/// One piece of the bytes of a source.
struct Piece
{
    /// Room before the bytes, in which the user puts what is left of the piece before.
    static constexpr size_t kHeadroom = size_t(64) << 10;
    /// The bytes of a full piece.
    static constexpr size_t kBytes = size_t(256) << 10;
    /// NULs after the bytes, so that blocks may be loaded at every byte.
    static constexpr size_t kPadding = 64;

    std::unique_ptr<char[]> memory;
    size_t size = 0;

    char *begin() const { return memory.get() + kHeadroom; }
    char *end() const { return begin() + size; }
};

/// Threads: next() and the destructor one at a time; stop() any.
class AheadSource
{
public:
    /// Start to read `source`, which only this object uses from now on. A source of at most one
    /// piece (`size` bytes) is read without a thread.
    AheadSource(std::unique_ptr<ByteSource> source, qint64 size);
    AheadSource(const AheadSource &) = delete;
    AheadSource &operator=(const AheadSource &) = delete;
    /// Ends the thread, after the read that it is in.
    ~AheadSource();

    /// The next piece, valid until the call after it; null at the end, after a failure and when
    /// stopped.
    const Piece *next();
    /// After next() returned null: whether a read failed. Then source() knows why.
    bool hasFailed() const { return m_hasFailed.load(); }
    /// Only after next() returned null.
    const ByteSource &source() const { return *m_source; }

    /// End the waits of next().
    void stop();
    bool isStopped() const { return m_isStopped.load(); }

private:
    /// A piece with its memory; pieces are reused.
    static Piece makePiece();
    /// Read until the piece is full or the source ends. Returns false if it is empty then.
    bool fill(Piece *piece);
    /// The thread: fills pieces while there is room for more.
    void work();
    /// next() without a thread.
    const Piece *nextHere();

    std::unique_ptr<ByteSource> m_source; // used by m_thread, if it runs
    Piece m_current;                      // with the user
    std::atomic<bool> m_hasFailed = false;
    std::atomic<bool> m_isStopped = false;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Piece> m_full;  // guarded by m_mutex
    std::vector<Piece> m_free; // guarded by m_mutex
    bool m_isEnd = false;      // guarded by m_mutex; used without a thread too
    std::thread m_thread;      // last: the other members outlive it
};

} // namespace corvanta::xlsx
