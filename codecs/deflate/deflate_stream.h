// codecs/deflate/deflate_stream.h
// Write raw deflate streams whose blocks are compressed beside the caller, on threads of their own.
//
// The caller fills a block's buffer (room, commit), or copies into it (write). A full block goes to
// the workers; whoever finishes the next block in order writes it to the sink. What is written
// depends on the bytes and the level alone: never on the number of workers, nor on how the bytes
// were handed over. Memory: (2 x workers + 2) blocks, used again and again.
//
// Threads: all calls from one thread, but stop() from any. The sink is used by the caller and the
// workers in turn, never by two at once, and by nobody but the caller between finish() and begin().
#pragma once
#include "base/byte_sink.h"
#include "base/result.h"
#include "codecs/deflate/deflater.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace corvanta::deflate {

enum class Error : quint8 {
    WriteFailed, ///< the sink refused (a full disk): nothing is lost, repeat the call
    Stopped,     ///< stop() was called
    NoMemory,
};

/// Bytes that are compressed as one.
inline constexpr size_t kBlockBytes = 1024 * 1024;
/// The most that room() can be asked for.
inline constexpr size_t kMaxRoomBytes = 256 * 1024;

struct StreamOptions
{
    Level level = {};
    int workers = -1; ///< threads for compressing; 0: the caller alone; -1: one for each core
};

struct Totals
{
    quint32 crc = 0;
    qint64 size = 0;           ///< bytes handed over
    qint64 compressedSize = 0; ///< bytes written to the sink
};

class DeflateStream
{
public:
    /// `sink` must outlive the stream. Threads start with the first full block.
    explicit DeflateStream(ByteSink &sink, const StreamOptions &options = {});
    DeflateStream(const DeflateStream &) = delete;
    DeflateStream &operator=(const DeflateStream &) = delete;
    /// Ends the threads; what finish() has not written is dropped.
    ~DeflateStream();

    /// Start a stream at the sink's position; call before anything else and after finish().
    void begin();

    /// Room for at least `n` (<= kMaxRoomBytes) bytes, valid until the next call of any kind.
    /// Errors: WriteFailed, Stopped, NoMemory; then the same call may be made again.
    Result<std::span<char>, Error> room(size_t n);
    /// Take the first `n` bytes of the room as written.
    void commit(size_t n);

    /// Copy `bytes` in. After a fault repeat the call with the same bytes: it goes on where it
    /// stopped.
    Result<void, Error> write(std::span<const char> bytes);

    /// End the stream and wait until all of it is written. May be repeated after a fault.
    Result<Totals, Error> finish();

    /// End every wait, from any thread: calls that wait, and all later ones, answer Stopped.
    void stop();
    bool isStopped() const;

private:
    struct Block;
    using Lock = std::unique_lock<std::mutex>;

    Result<void, Error> cut();
    Result<Block *, Error> acquire(Lock &lock);
    Result<void, Error> checkFailure(Lock &lock);
    void submit(Block *block, Lock &lock);
    void startWorker();
    void work();
    void helpOrWait(Lock &lock);
    void compress(Block *block, std::unique_ptr<Deflater> &deflater, Lock &lock);
    static bool write(ByteSink &sink, const Block &block);
    void drain(Lock &lock);

    ByteSink &m_sink;
    const Level m_level;
    const size_t m_workerLimit;
    std::unique_ptr<Deflater> m_deflater; // the caller's own
    Block *m_current = nullptr;           // what the caller fills
    size_t m_writeDone = 0;               // of a write() that ended with a fault

    mutable std::mutex m_mutex;
    std::condition_variable m_workAvailable;      // for the workers
    std::condition_variable m_progress;           // for the caller
    std::vector<std::unique_ptr<Block>> m_blocks; // guarded by m_mutex, as all that follows
    std::vector<Block *> m_free;
    std::deque<Block *> m_pending; // to be compressed
    std::deque<Block *> m_order;   // to be written
    Totals m_totals;
    bool m_isWriting = false;
    bool m_hasWriteFailed = false; // nothing is written until the caller comes again
    bool m_failureReported = false;
    bool m_isOutOfMemory = false;
    bool m_isStopped = false;
    std::vector<std::thread> m_workers; // the caller's; last, so that the rest outlives them
};

} // namespace corvanta::deflate
