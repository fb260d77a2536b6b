// Files, as far as systems differ: opening, syncing, renaming, permissions.
//
// The only interface through which the code calls the system for files. Implemented in
// files_posix.cpp and, for the Windows build, files_win.cpp.
// Threads: one thread at a time per FileHandle; the functions may be called from any thread.
#pragma once
#include "base/platform/file_lock.h"

#include <QString>
#include <QtGlobal>

#include <cstddef>
#include <optional>
#include <utility>

namespace corvanta::platform {

/// The name of standard output, whatever that is: a terminal, a pipe or a file.
inline constexpr char kStandardOutput[] = "/dev/stdout";

/// Owns an open file. Pipes and terminals wait for data, or for the other end to take it, until the
/// StopScope of the thread is stopped; the wait then fails. Offsets and sizes are in bytes.
/// Failures are reported like those of the system calls, by false or -1, and
/// SystemError::ofLastCall() has the reason. The caller knows the
/// file's name and words the message.
class FileHandle
{
public:
    FileHandle() = default;
    FileHandle(FileHandle &&other) noexcept
        : m_handle(std::exchange(other.m_handle, -1))
        , m_waits(other.m_waits)
    {
    }
    FileHandle &operator=(FileHandle &&other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        std::swap(m_waits, other.m_waits);
        return *this;
    }
    ~FileHandle();

    /// How a file is opened for writing.
    enum class Create {
        Truncate,  ///< Create the file, or empty an existing one.
        Append,    ///< Create the file, or move to the end of an existing one.
        Exclusive, ///< Create the file, or fail if it exists.
    };
    /// Open a file. Check isOpen(). Folders do not open (EISDIR). `sequential` announces that the
    /// file is read from start to end.
    static FileHandle openForRead(const QString &name, bool sequential);
    /// The same for writing. For kStandardOutput, what the program was started with is written at
    /// its position; a file is not emptied.
    static FileHandle openForWrite(const QString &name, Create create);
    /// Open a new file for reading and writing. It has no name and is gone when it is closed, also
    /// when the program is killed.
    static FileHandle openTemporary(const QString &folder);

    bool isOpen() const { return m_handle >= 0; }
    /// Returns the number of bytes read, 0 at the end, and -1 after a failure.
    qint64 read(void *buffer, qint64 n);
    /// Returns the number of bytes written, which may be less than `n`, and -1 after a failure.
    qint64 write(const void *bytes, qint64 n);
    /// Move to an absolute offset, also after the end of the file.
    bool seek(qint64 offset);
    /// Offset of the next read or write; -1 for a pipe.
    qint64 position() const;
    /// Returns -1 after a failure.
    qint64 size() const;
    bool truncate(qint64 size);
    /// Start to write `n` bytes at `offset` to the device. Does not wait.
    void startSync(qint64 offset, qint64 n);
    /// Wait until all bytes are on the device. Returns true for pipes and devices, which cannot be
    /// synced.
    bool sync();
    /// Returns false if the system reports a late failure of a write.
    bool close();
    /// Lock the file as FileLock does, until it is closed. Returns false if another owner has
    /// locked it, or if `name` is no longer its name; true also where there are no locks.
    bool tryLock(const QString &name);
    /// A second owner of that lock, which keeps it beyond close().
    FileLock shareLock() const;
    /// Whether this is an ordinary file, not a pipe or a device.
    bool isRegular() const;

private:
    qintptr m_handle = -1;
    bool m_waits = false; // a pipe or a device, opened so that calls return at once
};

/// Rename `from` to `to`, replacing an existing file in one step. Both must be on one file system.
bool renameOver(const QString &from, const QString &to);
/// Add a second name for a file. Returns false if the file system does not support it.
bool hardLink(const QString &existing, const QString &added);
bool removeFile(const QString &name);
/// FileHandle::startSync() and sync() for a file that is not open. A file that no longer exists
/// counts as synced.
void startSync(const QString &name);
bool syncFile(const QString &name);
/// Wait until the names in a folder are on the device. Returns true if folders cannot be synced.
bool syncFolder(const QString &folder);
/// Copy owner, group and permissions of `from` to `to`, as far as the process is allowed to.
void copyPermissions(const QString &from, const QString &to);
/// The absolute name of the file that `name` leads to, without links, "." and "..". The file and
/// its last folders need not exist: a link without a file leads to the file that writing would
/// create. Returns nothing for links in a circle.
std::optional<QString> finalName(const QString &name);
/// A text that is the same for all names (hard links) of an existing file; empty for a file that
/// has one name.
QString identityOfLinkedFile(const QString &name);
/// Whether there is a file of this name that is neither an ordinary one nor a folder.
bool isPipeOrDevice(const QString &name);
/// Whether both names refer to the same existing file.
bool isSameFile(const QString &a, const QString &b);
/// Whether the file, or the folder of a file that does not exist yet, is on NFS or SMB.
bool isOnNetworkDrive(const QString &name);
/// Name of the 8-bit encoding in the system's settings. Empty if the setting is UTF-8 or unset.
QString localeEncoding();

} // namespace corvanta::platform
