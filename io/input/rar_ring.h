// io/input/rar_ring.h
// The ring between the thread that unpacks a RAR entry and the reader that consumes it.
//
// A class without a thread. The producer waits while more than highWater bytes are unread; the
// consumer waits while nothing is. abort() opens every wait for good.
// Threads: one producer (put, finish), one consumer (take); abort() from any.
#pragma once
#include <QString>
#include <QtGlobal>

#include <condition_variable>
#include <mutex>
#include <span>
#include <vector>

namespace corvanta::input {

class RarRing
{
public:
    static constexpr size_t kRingBytes = 0x500000;
    static constexpr size_t kHighWater = 0x100000;

    explicit RarRing(size_t ringBytes = kRingBytes, size_t highWater = kHighWater);

    /// Copy `bytes` in, in pieces when there is not room for all at once; false after abort().
    bool put(std::span<const char> bytes);

    /// No more will come. `failure` says why when that is not the end of the data.
    void finish(const QString &failure);

    /// Deliver up to `n` bytes, waiting for all of them: fewer only at the end, 0 then and after
    /// abort().
    qint64 take(char *out, qint64 n);

    /// What finish() was given; empty before it.
    QString failure();

    void abort();

private:
    size_t copyIn(std::span<const char> bytes);
    size_t copyOut(char *out, size_t n);

    std::mutex m_mutex; // guards all that follows
    std::condition_variable m_dataAvailable;
    std::condition_variable m_roomAvailable;
    std::vector<char> m_ring;
    const size_t m_highWater;
    size_t m_count = 0;
    size_t m_readAt = 0;
    size_t m_writeAt = 0;
    bool m_isFinished = false;
    bool m_isAborted = false;
    QString m_failure;
};

} // namespace corvanta::input
