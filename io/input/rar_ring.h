// The ring buffer between the thread that unpacks a RAR entry and the reader that consumes it.
//
// Starts no thread. The producer waits while more than highWater bytes are unread; the consumer
// waits while no byte is. abort() ends every wait.
// Threads: one producer (put, finish), one consumer (take, outcome); abort() from any.
#pragma once
#include "base/result.h"
#include "io/platform/rar_archive.h"

#include <QtGlobal>

#include <condition_variable>
#include <mutex>
#include <span>
#include <vector>

namespace corvanta::input {

/// For one entry of one archive: it cannot be restarted.
class RarRing
{
public:
    /// How the unpacking ended.
    using Outcome = Result<void, platform::RarError>;
    // 5 MiB and 1 MiB.
    static constexpr size_t kRingBytes = 0x500000;
    static constexpr size_t kHighWater = 0x100000;

    /// Sizes are in bytes; `highWater` must be smaller than `ringBytes`.
    explicit RarRing(size_t ringBytes = kRingBytes, size_t highWater = kHighWater);

    /// Copy `bytes` to the ring, in pieces if they do not fit. Returns false after abort().
    bool put(std::span<const char> bytes);

    /// No more bytes will come: the data has ended or, with a fault, failed.
    void finish(Outcome outcome);

    /// Copy `n` bytes from the ring, and wait until they have arrived. Returns fewer only at the
    /// end of the data and after abort().
    qint64 take(char *out, qint64 n);

    /// The argument of finish(); success before that.
    Outcome outcome();

    /// End all waits, now and later.
    void abort();

private:
    // One piece, as large as fits without a wrap; the mutex is held.
    size_t copyIn(std::span<const char> bytes);
    size_t copyOut(char *out, size_t n);

    std::mutex m_mutex; // guards the members below
    std::condition_variable m_dataAvailable;
    std::condition_variable m_roomAvailable;
    std::vector<char> m_ring;
    const size_t m_highWater;
    size_t m_count = 0; // unread bytes, starting at m_readAt
    size_t m_readAt = 0;
    size_t m_writeAt = 0;
    bool m_isFinished = false;
    bool m_isAborted = false;
    Outcome m_outcome;
};

} // namespace corvanta::input
