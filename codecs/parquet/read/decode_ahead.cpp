// Decodes the columns of a file on worker threads.
//
// Each column has a lane: the decoded blocks that wait to be taken, and spare blocks for reuse. A
// lane is decoded by one thread at a time, so that its blocks stay in order.
#include "codecs/parquet/read/decode_ahead.h"

#include <QLatin1StringView>

#include <exception>
#include <new>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {
/// Limits of the decoded blocks: blocks per column, and bytes over all columns.
constexpr size_t kBlocksAhead = 3;
constexpr size_t kBytesAhead = size_t(64) << 20;
} // namespace

DecodeAhead::DecodeAhead(std::vector<std::unique_ptr<ColumnReader>> columns, int workers)
    : m_lanes(columns.size())
{
    for (size_t i = 0; i < columns.size(); ++i) {
        m_lanes[i].reader = std::move(columns[i]);
    }
    try {
        for (int i = 0; i < workers; ++i) {
            m_workers.emplace_back([this] { work(); });
        }
    } catch (const std::exception &) {
        // Fewer threads give the same result, and those that have started must be joined.
    }
}

DecodeAhead::~DecodeAhead()
{
    stop();
    for (std::thread &worker : m_workers) {
        worker.join();
    }
}

void DecodeAhead::stop()
{
    const std::lock_guard lock(m_mutex);
    m_isStopped = true;
    m_changed.notify_all();
}

bool DecodeAhead::canDecode(const Lane &lane) const
{
    return !lane.isBusy && !lane.end && lane.ready.size() < kBlocksAhead;
}

/// The lane with the fewest decoded blocks, so that all columns advance together. Null if there is
/// nothing to do.
DecodeAhead::Lane *DecodeAhead::chooseLane()
{
    if (m_readyBytes > kBytesAhead) {
        return nullptr;
    }
    Lane *best = nullptr;
    for (size_t i = 0; i < m_lanes.size(); ++i) {
        Lane &lane = m_lanes[(m_next + i) % m_lanes.size()];
        if (canDecode(lane) && (best == nullptr || lane.ready.size() < best->ready.size())) {
            best = &lane;
            // No lane can have fewer. Start the next search after it, so that all get their turn.
            if (lane.ready.empty()) {
                m_next = (m_next + i + 1) % m_lanes.size();
                break;
            }
        }
    }
    return best;
}

namespace {

/// Decode the next block of a column. Creates `block` if it is null.
Result<bool, Error> decodeNext(ColumnReader &reader, std::unique_ptr<CellBlock> &block)
{
    try {
        if (!block) {
            block = std::make_unique<CellBlock>();
        }
        return reader.next(*block);
    } catch (const std::bad_alloc &) { // on a worker thread nothing else would catch it
        return Fault{Error::NoMemory, columnDetail(reader.column().name, u"not enough memory"_s)};
    }
}

} // namespace

/// Decode one block of a lane. Releases the lock while it decodes.
void DecodeAhead::decode(Lane &lane, std::unique_lock<std::mutex> &lock)
{
    std::unique_ptr<CellBlock> block;
    if (!lane.spare.empty()) {
        block = std::move(lane.spare.back());
        lane.spare.pop_back();
    }
    lane.isBusy = true; // no other thread uses the reader until it is false again
    lock.unlock();
    Answer answer = decodeNext(*lane.reader, block);
    lock.lock();
    lane.isBusy = false;
    if (answer && *answer) {
        // The memory and not the content: a reused block keeps the size of its largest page.
        m_readyBytes += block->capacity();
        lane.ready.push_back(std::move(block));
    } else {
        lane.end = std::move(answer);
    }
    m_changed.notify_all();
}

void DecodeAhead::work()
{
    std::unique_lock lock(m_mutex);
    while (!m_isStopped) {
        if (Lane *const lane = chooseLane()) {
            decode(*lane, lock);
        } else {
            m_changed.wait(lock);
        }
    }
}

Result<bool, Error> DecodeAhead::take(size_t column, std::unique_ptr<CellBlock> &block)
{
    std::unique_lock lock(m_mutex);
    Lane &lane = m_lanes[column];
    // The caller gives the old block back, because it does not need the cells any more.
    if (block) {
        lane.spare.push_back(std::move(block));
    }
    // The limits do not apply here: the caller cannot continue without this block.
    while (lane.ready.empty() && !m_isStopped) {
        if (lane.isBusy) {
            m_changed.wait(lock);
        } else if (lane.end) {
            return *lane.end;
        } else {
            decode(lane, lock);
        }
    }
    if (m_isStopped) {
        return false;
    }
    block = std::move(lane.ready.front());
    lane.ready.pop_front();
    m_readyBytes -= block->capacity(); // unchanged since decode() added it
    m_changed.notify_all();
    return true;
}

} // namespace corvanta::parquet
