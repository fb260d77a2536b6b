// A block of the spool is a number of whole records, so that one is never split between two reads.
#include "io/rows/record_spool.h"

namespace corvanta::rows {

namespace {

// One block per spool is in memory, and there may be a few hundred spools.
constexpr size_t kBlockBytes = size_t(128) << 10;

} // namespace

Result<void, SpoolError> RecordSpool::put(std::string_view record)
{
    m_block.insert(m_block.end(), record.begin(), record.end());
    return m_block.size() < kBlockBytes ? Result<void, SpoolError>() : putBlock();
}

Result<void, SpoolError> RecordSpool::putBlock()
{
    auto put = m_spool.put({m_block.data(), m_block.size()});
    m_block.clear();
    return put;
}

Result<void, SpoolError> RecordSpool::rewind()
{
    if (!m_block.empty()) {
        if (auto put = putBlock(); !put) {
            return put;
        }
    }
    m_block = {}; // also its memory
    return m_spool.rewind();
}

Result<std::optional<Record>, SpoolError> RecordSpool::next()
{
    if (m_records.empty()) {
        const auto block = m_spool.next();
        if (!block) {
            return block.fault();
        }
        if (!*block) {
            return std::optional<Record>();
        }
        m_records = **block;
    }
    const Record record = recordAt(m_records.data());
    m_records.remove_prefix(record.bytes().size());
    return std::optional(record);
}

} // namespace corvanta::rows
