// A lock on a file is a flock() on a descriptor of its own: a file that is closed elsewhere in the
// process stays locked. A lock on a name is a socket address in Linux's abstract name space, which
// exists as long as the process and has no file.
#include "base/platform/file_lock.h"
#include "base/platform/files.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QFile>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

namespace corvanta::platform {

namespace {

/// Whether `handle` is the ordinary file that has the name now.
bool isFileOf(int handle, const QByteArray &name)
{
    struct stat open = {};
    struct stat named = {};
    return ::fstat(handle, &open) == 0 && ::stat(name.constData(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

bool isRegular(int handle)
{
    struct stat facts = {};
    return ::fstat(handle, &facts) == 0 && S_ISREG(facts.st_mode);
}

/// A descriptor of an existing file. For writing if possible, because network file systems need
/// that for the lock.
int openExisting(const QByteArray &name)
{
    struct stat facts = {};
    if (::stat(name.constData(), &facts) == 0 && !S_ISREG(facts.st_mode)) {
        // Opening a pipe would release the program that waits at its other end.
        errno = EINVAL;
        return -1;
    }
    constexpr int kFlags = O_CLOEXEC | O_NONBLOCK; // what has replaced the file must not block
    const int handle = ::open(name.constData(), O_RDWR | kFlags);
    return handle >= 0 || errno == ENOENT ? handle : ::open(name.constData(), O_RDONLY | kFlags);
}

} // namespace

void FileLock::release()
{
    const qintptr handle = std::exchange(m_handle, -1);
    if (handle >= 0) {
        ::close(static_cast<int>(handle));
    }
}

FileLock::Outcome FileLock::tryFile(const QString &name, IfMissing ifMissing)
{
    constexpr int kMaxTries = 100; // each but the last found another file of that name
    const QByteArray path = QFile::encodeName(name);
    for (int i = 0; i < kMaxTries; ++i) {
        release();
        m_hasCreated = false;
        int handle = openExisting(path);
        if (handle < 0 && errno == ENOENT) {
            if (ifMissing == IfMissing::Report) {
                return Outcome::Missing;
            }
            handle = ::open(path.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            m_hasCreated = handle >= 0;
            // Another program has created it since.
            if (handle < 0 && errno == EEXIST) {
                continue;
            }
        }
        const Outcome outcome = keep(handle);
        // The file was replaced before it was locked: the lock of the old one means nothing.
        if (outcome != Outcome::Locked || isFileOf(static_cast<int>(m_handle), path)) {
            return outcome;
        }
    }
    return Outcome::Unavailable;
}

/// Lock an open file, which this object then owns.
FileLock::Outcome FileLock::keep(int handle)
{
    if (handle < 0) {
        return Outcome::Unavailable;
    }
    m_handle = handle;
    if (isRegular(handle) && ::flock(handle, LOCK_EX | LOCK_NB) == 0) {
        return Outcome::Locked;
    }
    const bool isHeld = isRegular(handle) && errno == EWOULDBLOCK;
    release();
    return isHeld ? Outcome::Held : Outcome::Unavailable;
}

bool FileHandle::tryLock(const QString &name)
{
    const int handle = static_cast<int>(m_handle);
    const bool isLocked = ::flock(handle, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    return !isLocked && isFileOf(handle, QFile::encodeName(name));
}

FileLock FileHandle::shareLock() const
{
    FileLock lock;
    lock.m_handle = ::fcntl(static_cast<int>(m_handle), F_DUPFD_CLOEXEC, 0);
    return lock;
}

FileLock::Outcome FileLock::tryName(const QString &name)
{
    release();
#ifdef __linux__
    // A digest, because the address is shorter than a name may be.
    const QByteArray address =
        "corvanta-target-" +
        QCryptographicHash::hash(QFile::encodeName(name), QCryptographicHash::Sha256).toHex();
    sockaddr_un where = {};
    where.sun_family = AF_UNIX;
    // From the second byte on: the first one, zero, selects the abstract name space.
    std::memcpy(where.sun_path + 1, address.constData(), static_cast<size_t>(address.size()));
    const auto bytes = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 +
                                              static_cast<size_t>(address.size()));
    const int handle = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (handle < 0) {
        return Outcome::Unavailable;
    }
    m_handle = handle;
    if (::bind(handle, reinterpret_cast<const sockaddr *>(&where), bytes) == 0) {
        return Outcome::Locked;
    }
    const bool isHeld = errno == EADDRINUSE;
    release();
    return isHeld ? Outcome::Held : Outcome::Unavailable;
#else
    return Outcome::Unavailable;
#endif
}

} // namespace corvanta::platform
