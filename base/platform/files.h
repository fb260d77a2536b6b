// base/platform/files.h
// What differs between systems about files, behind one small interface. The only place, with its
// sides files_posix.cpp and (for the Windows build) files_win.cpp, that calls the system.
#pragma once
#include <QString>
#include <QtGlobal>

#include <cstddef>
#include <utility>

namespace corvanta::platform {

/// Owner of an open file. Offsets and sizes in bytes.
class FileHandle
{
public:
    FileHandle() = default;
    FileHandle(FileHandle &&other) noexcept
        : m_handle(std::exchange(other.m_handle, -1))
    {
    }
    FileHandle &operator=(FileHandle &&other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~FileHandle();

    /// How a file is opened for writing.
    enum class Create {
        Truncate,  ///< make it or empty it
        Append,    ///< make it or go to its end
        Exclusive, ///< fail when it is there
    };
    static FileHandle openForRead(const QString &name, bool sequential);
    static FileHandle openForWrite(const QString &name, Create create);

    bool isOpen() const { return m_handle >= 0; }
    /// Bytes read, 0 at the end, -1 on failure.
    qint64 read(void *buffer, qint64 n);
    /// Bytes written, which may be fewer than `n`; -1 on failure.
    qint64 write(const void *bytes, qint64 n);
    bool seek(qint64 offset);
    qint64 size() const;
    bool truncate(qint64 size);
    /// Have the device begin to take `n` bytes from `offset`, without waiting for it.
    void startSync(qint64 offset, qint64 n);
    /// Wait until the device has the bytes.
    bool sync();
    /// False when the system reports a late failure of a write.
    bool close();
    bool isRegular() const;

private:
    qintptr m_handle = -1;
};

/// Replace `to` by `from` in one step; both on one file system.
bool renameOver(const QString &from, const QString &to);
/// A second name for a file; false where the file system has none.
bool hardLink(const QString &existing, const QString &added);
bool removeFile(const QString &name);
/// FileHandle::startSync() and sync() of a file that is not open. One that is gone needs neither.
void startSync(const QString &name);
bool syncFile(const QString &name);
/// Wait until the device has the folder's names. True also where a folder cannot be synced.
bool syncFolder(const QString &folder);
/// Give `to` the permissions of `from`, as far as the process may.
void copyPermissions(const QString &from, const QString &to);
/// Whether both names lead to the same file.
bool isSameFile(const QString &a, const QString &b);
bool isOnNetworkDrive(const QString &name);
/// Name of the 8-bit encoding that the system's settings ask for; empty when they ask for UTF-8.
QString localeEncoding();

} // namespace corvanta::platform
