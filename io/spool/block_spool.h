// Keeps blocks of bytes until they are needed in the order in which they came.
//
// A writer whose format states facts about all rows before the first one spools the rows. Blocks
// are kept in memory up to a limit, and after it in a temporary file without a name, which is gone
// when the spool is destroyed, also after a kill.
#pragma once
#include "base/platform/files.h"
#include "base/result.h"
#include "base/system_error.h"

#include <deque>
#include <functional>
#include <optional>
#include <string_view>
#include <vector>

namespace corvanta {

/// What went wrong; BlockSpool::error() has the reason.
enum class SpoolError : quint8 {
    CannotWrite = 1, ///< also: the temporary file cannot be created
    CannotRead = 2,
};

/// The folder for temporary files: $TMPDIR, or that of the system.
QString temporaryFolder();

/// Call put() for each block, then rewind(), then next() until there is no further block.
/// Threads: one at a time per object.
class BlockSpool
{
public:
    struct Options
    {
        /// Of the temporary file; empty: the folder for temporary files of the system.
        QString folder = {};
        /// Blocks beyond it are written to the file.
        qint64 memoryBytes = qint64(16) << 20;
        /// Called after a failed write, for example when the disk is full; true to retry.
        std::function<bool()> retryWrite = {};
    };

    explicit BlockSpool(Options options);

    /// Keep a copy of a block, which is not empty. Errors: CannotWrite.
    Result<void, SpoolError> put(std::string_view block);
    /// Go to the first block; put() must not be called afterwards. Errors: CannotRead.
    Result<void, SpoolError> rewind();
    /// The next block, valid until the next call; nothing at the end. Errors: CannotRead.
    Result<std::optional<std::string_view>, SpoolError> next();

    /// Why the last call that failed did so.
    const SystemError &error() const { return m_error; }
    /// The folder of the temporary file.
    const QString &folder() const { return m_options.folder; }

private:
    // After a failure of these, m_error has the reason.
    bool write(std::string_view block);
    /// Fill m_block with the next bytes of the file.
    bool read(qint64 bytes);
    /// Fill m_block with the next block of the file and forget its size.
    bool readNext();

    Options m_options;
    std::deque<std::vector<char>> m_inMemory; // the first blocks
    qint64 m_memoryUsed = 0;
    platform::FileHandle m_file;     // the further blocks
    std::deque<qint64> m_fileBlocks; // their sizes
    qint64 m_fileEnd = 0;
    std::vector<char> m_block; // the one that next() returned
    SystemError m_error;
};

} // namespace corvanta
