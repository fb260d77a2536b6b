// Advisory locks on files, by which programs that write one file take turns.
//
// Implemented in file_lock_posix.cpp. Threads: one at a time per object. Locks of two objects
// exclude each other also within a process.
#pragma once
#include <QString>
#include <QtGlobal>

#include <utility>

namespace corvanta::platform {

/// Owns a lock. The destructor releases it, and so does the system when the process ends: no lock
/// remains, and no file is needed for it.
class FileLock
{
public:
    enum class Outcome {
        Locked,
        Held,        ///< by another owner
        Missing,     ///< there is no such file
        Unavailable, ///< not an ordinary file, not accessible, or a file system without locks
    };
    enum class IfMissing { Report, Create };

    FileLock() = default;
    FileLock(FileLock &&other) noexcept
        : m_handle(std::exchange(other.m_handle, -1))
        , m_hasCreated(other.m_hasCreated)
    {
    }
    FileLock &operator=(FileLock &&other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        std::swap(m_hasCreated, other.m_hasCreated);
        return *this;
    }
    ~FileLock() { release(); }

    /// Lock the file that now has this name; does not wait. The lock belongs to the file: after it
    /// was replaced, the new file of that name is not locked.
    Outcome tryFile(const QString &name, IfMissing ifMissing = IfMissing::Report);
    /// Lock the name itself, for a file that does not exist yet. Excludes only other locks of the
    /// name, not those of the file.
    Outcome tryName(const QString &name);
    void release();
    bool isHeld() const { return m_handle >= 0; }
    /// Whether the last tryFile() created the file.
    bool hasCreated() const { return m_hasCreated; }

private:
    friend class FileHandle;
    Outcome keep(int handle);

    qintptr m_handle = -1;
    bool m_hasCreated = false;
};

} // namespace corvanta::platform
