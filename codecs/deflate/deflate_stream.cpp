#include "codecs/deflate/deflate_stream.h"

#include "codecs/deflate/crc32.h"

#include <algorithm>
#include <cstring>
#include <system_error>

namespace corvanta::deflate {

namespace {

constexpr size_t kMaxWorkers = 16;

size_t workerLimit(int wanted)
{
    const size_t cores = std::max(1U, std::thread::hardware_concurrency());
    return std::min(wanted < 0 ? cores : static_cast<size_t>(wanted), kMaxWorkers);
}

} // namespace

// Memory: the dictionary, the block's bytes, and room beyond them, so that what the caller was
// given room for need not fit the block: the excess moves on into the next one.
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
    m_writeDone = 0;
    m_totals = {};
}

Result<std::span<char>, Error> DeflateStream::room([[maybe_unused]] size_t n)
{
    assert(m_current && n <= kMaxRoomBytes);
    // A block that is just full stays: whether it is the last one is not known yet.
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
    while (m_writeDone < bytes.size()) {
        if (m_current->used >= kBlockBytes) { // more bytes are there, so this is not the last block
            if (auto done = cut(); !done) {
                return done.fault();
            }
        }
        const size_t piece = std::min(bytes.size() - m_writeDone, kBlockBytes - m_current->used);
        std::memcpy(m_current->data() + m_current->used, bytes.data() + m_writeDone, piece);
        m_current->used += piece;
        m_writeDone += piece;
    }
    m_writeDone = 0;
    return {};
}

// The current block's first kBlockBytes go to the workers, the rest starts the next block.
Result<void, Error> DeflateStream::cut()
{
    Lock lock(m_mutex);
    auto next = acquire(lock);
    if (!next) {
        return next.fault();
    }
    Block *full = m_current;
    m_current = *next;
    m_current->dictionaryBytes = kWindowBytes;
    m_current->used = full->used - kBlockBytes;
    std::memcpy(m_current->data() - kWindowBytes, full->data() + kBlockBytes - kWindowBytes,
                kWindowBytes);
    std::memcpy(m_current->data(), full->data() + kBlockBytes, m_current->used);
    full->used = kBlockBytes;
    full->ending = Ending::Continued;
    submit(full, lock);
    return {};
}

Result<DeflateStream::Block *, Error> DeflateStream::acquire(Lock &lock)
{
    const size_t maxBlocks = 2 * m_workerLimit + 2;
    for (;;) {
        if (auto good = checkFailure(lock); !good) {
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

// A failed write is told once; the next call of the caller means "try again".
Result<void, Error> DeflateStream::checkFailure(Lock &lock)
{
    if (m_hasWriteFailed && m_failureReported) {
        m_hasWriteFailed = false;
        m_failureReported = false;
        drain(lock);
    }
    if (m_isStopped) {
        return Fault{Error::Stopped};
    }
    if (m_isOutOfMemory) {
        return Fault{Error::NoMemory};
    }
    if (m_hasWriteFailed) {
        m_failureReported = true;
        return Fault{Error::WriteFailed};
    }
    return {};
}

void DeflateStream::submit(Block *block, Lock &lock)
{
    block->isDone = false;
    m_pending.push_back(block);
    m_order.push_back(block);
    lock.unlock();
    startWorker();
    m_workAvailable.notify_one();
    lock.lock();
}

// Where the system has no more threads, fewer do: the caller helps.
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

// One step of the caller's wait: compress what no worker has taken, or sleep until something
// changes.
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

// Locked on entry and on return, unlocked while it compresses.
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
        isDone = false; // told to the caller by its next call
    }
    lock.lock();
    block->isDone = isDone;
    m_isOutOfMemory = m_isOutOfMemory || !isDone;
    drain(lock);
}

// A sink without memory has not written; on a worker's thread there is nobody to catch it.
bool DeflateStream::write(ByteSink &sink, const Block &block)
{
    try {
        return sink.write(block.output.data(), static_cast<qint64>(block.outputBytes));
    } catch (const std::bad_alloc &) {
        return false;
    }
}

// Write what is ready, in order; one thread at a time, the others leave it to that one.
void DeflateStream::drain(Lock &lock)
{
    if (m_isWriting || m_hasWriteFailed) {
        return;
    }
    m_isWriting = true;
    while (!m_order.empty() && m_order.front()->isDone && !m_isStopped) {
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
    if (m_current) { // short streams end here without a thread having been started
        Block *last = std::exchange(m_current, nullptr);
        last->ending = Ending::Last;
        last->isDone = false;
        m_order.push_back(last);
        compress(last, m_deflater, lock);
    }
    for (;;) {
        if (auto good = checkFailure(lock); !good) {
            return good.fault();
        }
        if (m_order.empty()) {
            return m_totals;
        }
        helpOrWait(lock);
    }
}

} // namespace corvanta::deflate
