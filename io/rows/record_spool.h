// Records (record_arena.h) in a temporary file, in the order in which they came.
#pragma once
#include "io/rows/record_arena.h"
#include "io/spool/block_spool.h"

#include <optional>
#include <vector>

namespace corvanta::rows {

/// Call put() for each record, then rewind(), then next() until there is no further record.
/// Threads: one at a time.
class RecordSpool
{
public:
    explicit RecordSpool(BlockSpool::Options options)
        : m_spool(std::move(options))
    {
    }
    /// Add a record: its bytes with the header. Errors: CannotWrite.
    Result<void, SpoolError> put(std::string_view record);
    /// Go to the first record; put() must not be called afterwards. Errors: CannotWrite,
    /// CannotRead.
    Result<void, SpoolError> rewind();
    /// The next record, valid until the next call; nothing at the end. Errors: CannotRead.
    Result<std::optional<Record>, SpoolError> next();
    /// Why the last call that failed did so.
    const SystemError &error() const { return m_spool.error(); }

private:
    Result<void, SpoolError> putBlock();

    BlockSpool m_spool;         // of blocks of whole records
    std::vector<char> m_block;  // that is filled
    std::string_view m_records; // of the block that is read, those that are left
};

} // namespace corvanta::rows
