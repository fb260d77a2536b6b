// One raw deflate stream (RFC 1951) consists of blocks of 1 MiB of content:
//
//   block 1 | sync flush | block 2 | sync flush | ... | last block, marked as final
//
// A sync flush is an empty stored block, which ends at a byte boundary. Each block is compressed
// with the 32 KiB of content before it as dictionary.
#include "codecs/deflate/deflate_stream.h"

#include "codecs/deflate/crc32.h"

#include <algorithm>
#include <cstring>
#include <system_error>

namespace corvanta::deflate {

namespace {

/// Limits the memory: each worker needs two more blocks.
constexpr size_t kMaxWorkers = 16;

size_t workerLimit(int wanted)
{
    // Asked once: the system reads a file for it, and there is a stream per package.
    static const size_t cores = std::max(1U, std::thread::hardware_concurrency());
    return std::min(wanted < 0 ? cores : static_cast<size_t>(wanted), kMaxWorkers);
}

} // namespace

// A part of the stream, from the caller's first byte until it is written, and then reused.
//
// The memory holds the dictionary, the content of the block, and the room after it. Content in that
// room is moved to the next block, so that a request for room never has to split.
struct DeflateStream::Block
{
    char *data() { return memory.get() + kWindowBytes; }
    std::span<const char> dictionary() const
    {
        return {memory.get() + kWindowBytes - dictionaryBytes, dictionaryBytes};
    }

    std::unique_ptr<char[]> memory =
        std::make_unique_for_overwrite<char[]>(kWindowBytes + kBlockBytes + kMaxRoomBytes);
    size_t dictionaryBytes = 0;
    size_t used = 0;
    Ending ending = Ending::Continued;
    std::vector<char> output = {};
    size_t outputBytes = 0;
    quint32 crc = 0;
    bool isDone = false;
};

DeflateStream::DeflateStream(ByteSink &sink, const StreamOptions &options)
    : m_sink(sink)
    , m_level(options.level)
    , m_workerLimit(workerLimit(options.workers))
{
}

DeflateStream::~DeflateStream()
{
    stop();
    for (std::thread &worker : m_workers) {
        worker.join();
    }
}

void DeflateStream::stop()
{
    const std::scoped_lock lock(m_mutex);
    m_isStopped = true;
    m_workAvailable.notify_all();
    m_progress.notify_all();
}

bool DeflateStream::isStopped() const
{
    const std::scoped_lock lock(m_mutex);
    return m_isStopped;
}

void DeflateStream::begin()
{
    const std::scoped_lock lock(m_mutex);
    assert(m_order.empty());
    if (m_free.empty()) {
        m_free.push_back(m_blocks.emplace_back(std::make_unique<Block>()).get());
    }
    m_current = m_free.back();
    m_free.pop_back();
    m_current->dictionaryBytes = 0;
    m_current->used = 0;
    m_totals = {};
}

Result<std::span<char>, Error> DeflateStream::room([[maybe_unused]] size_t n)
{
    assert(m_current && n <= kMaxRoomBytes);
    // Keep a block that is exactly full: it may be the last one.
    if (m_current->used > kBlockBytes) {
        if (auto done = cut(); !done) {
            return done.fault();
        }
    }
    return std::span<char>(m_current->data() + m_current->used,
                           kBlockBytes + kMaxRoomBytes - m_current->used);
}

void DeflateStream::commit(size_t n)
{
    m_current->used += n;
    assert(m_current->used <= kBlockBytes + kMaxRoomBytes);
}

Result<void, Error> DeflateStream::write(std::span<const char> bytes)
{
    assert(m_current);
    while (!bytes.empty()) {
        if (m_current->used >= kBlockBytes) { // more bytes follow, so this is not the last block
            if (auto done = cut(); !done) {
                return done.fault();
            }
        }
        const size_t piece = std::min(bytes.size(), kBlockBytes - m_current->used);
        std::memcpy(m_current->data() + m_current->used, bytes.data(), piece);
        m_current->used += piece;
        bytes = bytes.subspan(piece);
    }
    return {};
}

// Submit the first kBlockBytes bytes of the current block. The rest starts the next block.
Result<void, Error> DeflateStream::cut()
{
    Lock lock(m_mutex);
    auto next = acquire(lock);
    if (!next) {
        return next.fault();
    }
    Block *full = m_current;
    m_current = *next;
    m_current->dictionaryBytes = kWindowBytes; // a full block is larger than the window
    m_current->used = full->used - kBlockBytes;
    // The end of the full block is the dictionary of the next one. Copied, because the full block
    // is reused as soon as it is written.
    std::memcpy(m_current->data() - kWindowBytes, full->data() + kBlockBytes - kWindowBytes,
                kWindowBytes);
    std::memcpy(m_current->data(), full->data() + kBlockBytes, m_current->used);
    full->used = kBlockBytes;
    full->ending = Ending::Continued;
    submit(full, lock);
    return {};
}

// A free block. Compresses, or waits for the workers, until there is one.
Result<DeflateStream::Block *, Error> DeflateStream::acquire(Lock &lock)
{
    // For each worker a block in progress and a waiting one; one that the caller fills, and one
    // that is being written.
    const size_t maxBlocks = 2 * m_workerLimit + 2;
    for (;;) {
        if (auto good = checkFailure(); !good) {
            return good.fault();
        }
        if (m_free.empty() && m_blocks.size() < maxBlocks) {
            m_free.push_back(m_blocks.emplace_back(std::make_unique<Block>()).get());
        }
        if (!m_free.empty()) {
            Block *block = m_free.back();
            m_free.pop_back();
            return block;
        }
        helpOrWait(lock);
    }
}

Result<void, Error> DeflateStream::checkFailure() const
{
    if (m_isStopped) {
        return Fault{Error::Stopped};
    }
    if (m_isOutOfMemory) {
        return Fault{Error::NoMemory};
    }
    if (m_hasWriteFailed) {
        return Fault{Error::WriteFailed};
    }
    return {};
}

void DeflateStream::submit(Block *block, Lock &lock)
{
    block->isDone = false;
    m_pending.push_back(block);
    m_order.push_back(block);
    // Without the lock: starting a thread takes long, and the new thread needs the lock.
    lock.unlock();
    startWorker();
    m_workAvailable.notify_one();
    lock.lock();
}

// Fewer threads than planned are enough, because the caller compresses too.
void DeflateStream::startWorker()
{
    if (m_workers.size() >= m_workerLimit) {
        return;
    }
    try {
        m_workers.emplace_back([this] { work(); });
    } catch (const std::system_error &) {
        return;
    }
}

void DeflateStream::work()
{
    std::unique_ptr<Deflater> deflater;
    Lock lock(m_mutex);
    for (;;) {
        m_workAvailable.wait(lock, [this] { return m_isStopped || !m_pending.empty(); });
        if (m_isStopped) {
            return;
        }
        Block *block = m_pending.front();
        m_pending.pop_front();
        compress(block, deflater, lock);
    }
}

// One step of a wait: compress a block that no worker has taken, or sleep until something changes.
void DeflateStream::helpOrWait(Lock &lock)
{
    if (m_pending.empty()) {
        m_progress.wait(lock);
        return;
    }
    Block *block = m_pending.front();
    m_pending.pop_front();
    compress(block, m_deflater, lock);
}

// The lock is held on entry and on return, and released while the block is compressed.
void DeflateStream::compress(Block *block, std::unique_ptr<Deflater> &deflater, Lock &lock)
{
    lock.unlock();
    bool isDone = false;
    try {
        if (!deflater) {
            deflater = makeDeflater(m_level);
        }
        const std::span<const char> bytes(block->data(), block->used);
        block->crc = crc32(0, bytes);
        block->outputBytes =
            deflater->compress(block->dictionary(), bytes, block->ending, block->output);
        isDone = true;
    } catch (const std::bad_alloc &) {
        isDone = false; // the next call of the caller reports it
    }
    lock.lock();
    block->isDone = isDone;
    m_isOutOfMemory = m_isOutOfMemory || !isDone;
    drain(lock);
}

// A sink that runs out of memory has not written. A worker must not let the exception escape.
bool DeflateStream::write(ByteSink &sink, const Block &block)
{
    try {
        return sink.write(block.output.data(), static_cast<qint64>(block.outputBytes));
    } catch (const std::bad_alloc &) {
        return false;
    }
}

// Write the finished blocks in order. Only one thread writes at a time; the others return.
void DeflateStream::drain(Lock &lock)
{
    // The writing thread checks for finished blocks under the lock before it returns, so that no
    // block waits without a thread that writes it.
    if (m_isWriting || m_hasWriteFailed) {
        return;
    }
    m_isWriting = true;
    while (!m_order.empty() && m_order.front()->isDone && !m_isStopped) {
        // Without the lock, so that workers can take blocks during a slow write. m_isWriting keeps
        // other threads away from the sink, and the block stays first in m_order until it is
        // written.
        Block *block = m_order.front();
        lock.unlock();
        const bool isWritten = write(m_sink, *block);
        lock.lock();
        if (!isWritten) {
            m_hasWriteFailed = true;
            break;
        }
        m_totals.crc = crc32Join(m_totals.crc, block->crc, static_cast<qint64>(block->used));
        m_totals.size += static_cast<qint64>(block->used);
        m_totals.compressedSize += static_cast<qint64>(block->outputBytes);
        m_order.pop_front();
        m_free.push_back(block);
        m_progress.notify_one();
    }
    m_isWriting = false;
    m_progress.notify_one();
}

Result<Totals, Error> DeflateStream::finish()
{
    if (m_current && m_current->used > kBlockBytes) {
        if (auto done = cut(); !done) {
            return done.fault();
        }
    }
    Lock lock(m_mutex);
    if (m_current) { // a short stream ends here before any thread has started
        Block *last = std::exchange(m_current, nullptr);
        last->ending = Ending::Last;
        last->isDone = false;
        m_order.push_back(last);
        compress(last, m_deflater, lock);
    }
    for (;;) {
        if (auto good = checkFailure(); !good) {
            return good.fault();
        }
        if (m_order.empty()) {
            return m_totals;
        }
        helpOrWait(lock);
    }
}

} // namespace corvanta::deflate
