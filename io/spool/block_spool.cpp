// The temporary file holds the blocks one after the other; their sizes are in memory.
#include "io/spool/block_spool.h"

#include <QDir>

namespace corvanta {

QString temporaryFolder()
{
    // Before QDir::tempPath(), which replaces a folder that does not exist by the current one.
    const QString folder = qEnvironmentVariable("TMPDIR");
    return folder.isEmpty() ? QDir::tempPath() : folder;
}

BlockSpool::BlockSpool(Options options)
    : m_options(std::move(options))
{
    if (m_options.folder.isEmpty()) {
        m_options.folder = temporaryFolder();
    }
}

/// Writes the block at the end of the file. After a failure the file ends where it did.
bool BlockSpool::write(std::string_view block)
{
    size_t done = 0;
    while (done < block.size()) {
        const qint64 n =
            m_file.write(block.data() + done, static_cast<qint64>(block.size() - done));
        if (n <= 0) {
            m_error = SystemError::ofLastCall();
            // A retry writes the whole block again.
            m_file.seek(m_fileEnd);
            return false;
        }
        done += static_cast<size_t>(n);
    }
    m_fileEnd += static_cast<qint64>(block.size());
    m_fileBlocks.push_back(static_cast<qint64>(block.size()));
    return true;
}

/// Few blocks stay in memory and never make a file. After a failed write the owner is asked again
/// and again, as long as it wants to retry.
Result<void, SpoolError> BlockSpool::put(std::string_view block)
{
    const auto bytes = static_cast<qint64>(block.size());
    if (!m_file.isOpen() && m_memoryUsed + bytes <= m_options.memoryBytes) {
        m_inMemory.emplace_back(block.begin(), block.end());
        m_memoryUsed += bytes;
        return {};
    }
    // Blocks keep their order: after the first one in the file none goes to memory.
    if (!m_file.isOpen()) {
        m_file = platform::FileHandle::openTemporary(m_options.folder);
        m_error = SystemError::ofLastCall();
    }
    bool isStored = m_file.isOpen() && write(block);
    while (m_file.isOpen() && !isStored && m_options.retryWrite && m_options.retryWrite()) {
        isStored = write(block);
    }
    return isStored ? Result<void, SpoolError>() : Fault{SpoolError::CannotWrite};
}

/// Blocks in memory need no position: next() takes them from the front.
Result<void, SpoolError> BlockSpool::rewind()
{
    if (m_file.isOpen() && !m_file.seek(0)) {
        m_error = SystemError::ofLastCall();
        return Fault{SpoolError::CannotRead};
    }
    return {};
}

/// A short read continues: the system may return less than is asked for. The end of the file before
/// the last byte is a failure, because the size of each block is known.
bool BlockSpool::read(qint64 bytes)
{
    m_block.resize(static_cast<size_t>(bytes));
    for (qint64 done = 0; done < bytes;) {
        const qint64 n = m_file.read(m_block.data() + done, bytes - done);
        if (n <= 0) {
            m_error = SystemError::ofLastCall();
            return false;
        }
        done += n;
    }
    return true;
}

bool BlockSpool::readNext()
{
    const qint64 bytes = m_fileBlocks.front();
    m_fileBlocks.pop_front();
    return read(bytes);
}

/// The blocks in memory are the earlier ones. Each one is given up when the next is asked for, so
/// that memory shrinks while the file is written.
Result<std::optional<std::string_view>, SpoolError> BlockSpool::next()
{
    if (!m_inMemory.empty()) {
        m_block = std::move(m_inMemory.front());
        m_inMemory.pop_front();
    } else if (!m_fileBlocks.empty()) {
        if (!readNext()) {
            return Fault{SpoolError::CannotRead};
        }
    } else {
        return std::optional<std::string_view>();
    }
    return std::optional(std::string_view(m_block.data(), m_block.size()));
}

} // namespace corvanta
