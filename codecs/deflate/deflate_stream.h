// Writes raw deflate streams, and compresses their blocks on worker threads.
//
// The caller fills the buffer of a block (room, commit) or copies bytes to it (write). Workers
// compress full blocks. The thread that completes the next block in order writes it to the sink.
// The bytes written depend only on the content and the level: not on the number of workers, and not
// on how the bytes were passed. Memory: 2 x workers + 2 blocks, which are reused.
//
// Threads: all calls from one thread, except stop(), which may be called from any. The caller and
// the workers use the sink, one at a time. Between finish() and begin() only the caller uses it.
#pragma once
#include "base/byte_sink.h"
#include "base/result.h"
#include "codecs/deflate/deflater.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace corvanta::deflate {

/// Why a call of DeflateStream failed. A fault has neither a detail nor an offset.
enum class Error : quint8 {
    /// The sink failed, for example on a full disk. All later calls fail, too: a sink that can
    /// retry
    /// does so itself.
    WriteFailed,
    /// stop() was called.
    Stopped,
    NoMemory,
};

/// Size of a block in bytes of content. The output depends on it, so a change of the number changes
/// all written files.
inline constexpr size_t kBlockBytes = size_t(1024) * 1024;
/// Maximum size of a room() request in bytes.
inline constexpr size_t kMaxRoomBytes = size_t(256) * 1024;

struct StreamOptions
{
    Level level = {};
    /// Number of threads; 0: only the caller; -1: one per core.
    int workers = -1;
};

/// Facts about a finished stream.
struct Totals
{
    /// CRC-32 of the content.
    quint32 crc = 0;
    /// Bytes of content.
    qint64 size = 0;
    /// Bytes written to the sink.
    qint64 compressedSize = 0;
};

class DeflateStream
{
public:
    /// `sink` must outlive the stream. Threads start with the first full block.
    explicit DeflateStream(ByteSink &sink, const StreamOptions &options = {});
    DeflateStream(const DeflateStream &) = delete;
    DeflateStream &operator=(const DeflateStream &) = delete;
    /// Joins the threads. Discards content that finish() has not written.
    ~DeflateStream();

    /// Start a stream at the sink's position. Call it first, and again after finish().
    void begin();

    /// A buffer for at least `n` bytes (at most kMaxRoomBytes) of content, valid until the next
    /// call. Errors: WriteFailed, Stopped, NoMemory.
    Result<std::span<char>, Error> room(size_t n);
    /// Add the first `n` bytes of the buffer from room() to the stream.
    void commit(size_t n);

    /// Add a copy of `bytes` to the stream. Errors: WriteFailed, Stopped, NoMemory.
    Result<void, Error> write(std::span<const char> bytes);

    /// End the stream and wait until all of it is written. Errors: WriteFailed, Stopped, NoMemory.
    Result<Totals, Error> finish();

    /// Make calls that wait, and all later ones, return Stopped. May be called from any thread.
    void stop();
    bool isStopped() const;

private:
    struct Block;
    using Lock = std::unique_lock<std::mutex>;

    Result<void, Error> cut();
    Result<Block *, Error> acquire(Lock &lock);
    /// The mutex is held.
    Result<void, Error> checkFailure() const;
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
    std::unique_ptr<Deflater> m_deflater; // used by the caller
    Block *m_current = nullptr;           // the block that the caller fills

    mutable std::mutex m_mutex;
    std::condition_variable m_workAvailable;      // for the workers
    std::condition_variable m_progress;           // for the caller
    std::vector<std::unique_ptr<Block>> m_blocks; // guarded by m_mutex, like all below
    std::vector<Block *> m_free;
    std::deque<Block *> m_pending; // blocks to compress
    std::deque<Block *> m_order;   // blocks to write, in order
    Totals m_totals;
    bool m_isWriting = false;
    bool m_hasWriteFailed = false; // nothing is written any more
    bool m_isOutOfMemory = false;
    bool m_isStopped = false;
    std::vector<std::thread>
        m_workers; // last, so that the other members outlive them; used by the caller
};

} // namespace corvanta::deflate
