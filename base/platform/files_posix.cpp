// The POSIX implementation: thin wrappers of system calls. Those that a signal can interrupt are
// repeated after EINTR.
#include "base/platform/files.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <langinfo.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdio>

namespace corvanta::platform {

namespace {

/// The name in the encoding of the file system.
QByteArray native(const QString &name)
{
    return QFile::encodeName(name);
}

/// Calls `call` until a signal no longer interrupts it.
template <class F> auto repeated(F call)
{
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// The part of `n` bytes that one system call can transfer.
size_t oneCall(qint64 n)
{
    return static_cast<size_t>(qMin<qint64>(n, SSIZE_MAX));
}

} // namespace

FileHandle::~FileHandle()
{
    close();
}

FileHandle FileHandle::openForRead(const QString &name, bool sequential)
{
    FileHandle file;
    file.m_handle =
        repeated([&] { return ::open(native(name).constData(), O_RDONLY | O_CLOEXEC); });
    // open() accepts a folder, and only reading from it fails.
    struct stat facts = {};
    if (file.isOpen() && ::fstat(static_cast<int>(file.m_handle), &facts) == 0 &&
        S_ISDIR(facts.st_mode)) {
        file.close();
        errno = EISDIR;
    }
    if (file.isOpen() && sequential) {
        ::posix_fadvise(static_cast<int>(file.m_handle), 0, 0, POSIX_FADV_SEQUENTIAL);
    }
    return file;
}

FileHandle FileHandle::openForWrite(const QString &name, Create create)
{
    // O_CLOEXEC: a program that an action starts must not keep the file open.
    int flags = O_WRONLY | O_CREAT | O_CLOEXEC;
    flags |= create == Create::Truncate ? O_TRUNC : 0;
    flags |= create == Create::Exclusive ? O_EXCL : 0;
    FileHandle file;
    file.m_handle = repeated([&] { return ::open(native(name).constData(), flags, 0666); });
    // Not O_APPEND, which would ignore every later seek().
    if (file.isOpen() && create == Create::Append &&
        ::lseek(static_cast<int>(file.m_handle), 0, SEEK_END) < 0) {
        file.close();
    }
    return file;
}

qint64 FileHandle::read(void *buffer, qint64 n)
{
    return repeated([&] { return ::read(static_cast<int>(m_handle), buffer, oneCall(n)); });
}

qint64 FileHandle::write(const void *bytes, qint64 n)
{
    return repeated([&] { return ::write(static_cast<int>(m_handle), bytes, oneCall(n)); });
}

bool FileHandle::seek(qint64 offset)
{
    return offset >= 0 && ::lseek(static_cast<int>(m_handle), offset, SEEK_SET) == offset;
}

qint64 FileHandle::size() const
{
    struct stat facts = {};
    return ::fstat(static_cast<int>(m_handle), &facts) == 0 ? facts.st_size : -1;
}

bool FileHandle::truncate(qint64 size)
{
    return repeated([&] { return ::ftruncate(static_cast<int>(m_handle), size); }) == 0;
}

void FileHandle::startSync(qint64 offset, qint64 n)
{
    // Only a hint. sync() still has to wait for the bytes and report failures.
#ifdef __linux__
    ::sync_file_range(static_cast<int>(m_handle), offset, n, SYNC_FILE_RANGE_WRITE);
#endif
}

bool FileHandle::sync()
{
    // The system reports EINVAL or EROFS for pipes and devices.
    return repeated([&] { return ::fsync(static_cast<int>(m_handle)); }) == 0 || errno == EINVAL ||
           errno == EROFS;
}

bool FileHandle::close()
{
    // Not repeated after EINTR: on Linux the descriptor is free even then, and another thread may
    // already use its number.
    const qintptr handle = std::exchange(m_handle, -1);
    return handle < 0 || ::close(static_cast<int>(handle)) == 0;
}

bool FileHandle::isRegular() const
{
    struct stat facts = {};
    return ::fstat(static_cast<int>(m_handle), &facts) == 0 && S_ISREG(facts.st_mode);
}

bool renameOver(const QString &from, const QString &to)
{
    return std::rename(native(from).constData(), native(to).constData()) == 0;
}

bool hardLink(const QString &existing, const QString &added)
{
    return ::link(native(existing).constData(), native(added).constData()) == 0;
}

bool removeFile(const QString &name)
{
    return ::unlink(native(name).constData()) == 0;
}

void startSync(const QString &name)
{
    if (FileHandle file = FileHandle::openForRead(name, false); file.isOpen()) {
        file.startSync(0, file.size());
    }
}

bool syncFile(const QString &name)
{
    FileHandle file = FileHandle::openForRead(name, false);
    return !file.isOpen() || file.sync();
}

bool syncFolder(const QString &folder)
{
    // A rename is permanent only after the folder is synced, which needs a descriptor for reading.
    const int handle = repeated(
        [&] { return ::open(native(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
    if (handle < 0) {
        return false;
    }
    const bool synced = ::fsync(handle) == 0 || errno == EINVAL;
    ::close(handle);
    return synced;
}

void copyPermissions(const QString &from, const QString &to)
{
    struct stat facts = {};
    if (::stat(native(from).constData(), &facts) == 0) {
        // Only a privileged process may change the owner. Otherwise the copy keeps its own.
        [[maybe_unused]] const int owned =
            ::chown(native(to).constData(), facts.st_uid, facts.st_gid);
        // After chown(), which removes the set-user-ID and set-group-ID bits.
        ::chmod(native(to).constData(), facts.st_mode & 07777);
    }
}

bool isSameFile(const QString &a, const QString &b)
{
    struct stat first = {};
    struct stat second = {};
    return ::stat(native(a).constData(), &first) == 0 &&
           ::stat(native(b).constData(), &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

bool isOnNetworkDrive(const QString &name)
{
    // File system magic numbers, see statfs(2).
    constexpr long kNfs = 0x6969;
    constexpr long kSmb = 0x517B;
    constexpr long kCifs = 0xFF534D42;
    constexpr long kSmb2 = 0xFE534D42;
    QFileInfo info(name);
    // A file that does not exist yet is created on the drive of its folder.
    if (!info.exists()) {
        info.setFile(info.absolutePath());
    }
    struct statfs facts = {};
    if (::statfs(native(info.absoluteFilePath()).constData(), &facts) != 0) {
        return false;
    }
    const long type = facts.f_type;
    return type == kNfs || type == kSmb || type == kCifs || type == kSmb2;
}

QString localeEncoding()
{
    // nl_langinfo follows LC_CTYPE, which QCoreApplication sets from the environment.
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the locale after the start
    const QString name = QString::fromLatin1(::nl_langinfo(CODESET));
    const bool isDefault = name.compare(QLatin1String("UTF-8"), Qt::CaseInsensitive) == 0 ||
                           name == QLatin1String("ANSI_X3.4-1968");
    return isDefault ? QString() : name;
}

} // namespace corvanta::platform
