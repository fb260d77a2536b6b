// The POSIX implementation: thin wrappers of system calls. Those that a signal can interrupt are
// repeated after EINTR.
//
// Files are opened with O_NONBLOCK, which has an effect on pipes and devices only. Their calls
// return at once, and poll(2) waits in slices between which a stop is noticed.
#include "base/platform/files.h"
#include "base/platform/stop_scope.h"
#include "base/utf.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <langinfo.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace corvanta::platform {

namespace {

/// A name in the encoding of the file system, UTF-8. It takes no memory from the heap, so that
/// files can be renamed and removed when there is none.
class NativeName
{
public:
    explicit NativeName(const QString &name)
    {
        // The system refuses the beginning of a longer name, which has PATH_MAX bytes at least.
        const qsizetype units = qMin<qsizetype>(name.size(), PATH_MAX);
        m_bytes[static_cast<size_t>(utf16ToUtf8(reinterpret_cast<const char16_t *>(name.utf16()),
                                                units, m_bytes.data()))] = '\0';
    }
    const char *constData() const { return m_bytes.data(); }

private:
    std::array<char, static_cast<size_t>(kUtf8BytesPerUnit *PATH_MAX + 1)> m_bytes;
};

NativeName native(const QString &name)
{
    return NativeName(name);
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

/// The text of a link; nothing if the name is not a link.
std::optional<QString> linkText(const QString &name)
{
    QByteArray text(PATH_MAX, Qt::Uninitialized);
    const ssize_t n = ::readlink(native(name).constData(), text.data(), PATH_MAX);
    return n < 0 ? std::nullopt : std::optional(QFile::decodeName(text.first(n)));
}

/// finalName(), for an absolute name. Recursive: each call removes a part of the name or a link.
std::optional<QString> followed(const QString &name, int linksLeft)
{
    const std::unique_ptr<char, decltype(&std::free)> real(
        ::realpath(native(name).constData(), nullptr), &std::free);
    if (real) {
        return QFile::decodeName(real.get());
    }
    const QString parent = QFileInfo(name).path();
    if (errno == ELOOP || linksLeft == 0 || parent == name) {
        return std::nullopt;
    }
    // Something is missing: the folder is followed alone, then the last part.
    const std::optional<QString> folder = followed(parent, linksLeft);
    if (!folder) {
        return std::nullopt;
    }
    const QString file = *folder + u'/' + QFileInfo(name).fileName();
    const std::optional<QString> target = linkText(file);
    return target ? followed(QDir(*folder).absoluteFilePath(*target), linksLeft - 1)
                  : std::optional(QDir::cleanPath(file));
}

/// The part of `n` bytes that one system call can transfer.
size_t oneCall(qint64 n)
{
    return static_cast<size_t>(qMin<qint64>(n, SSIZE_MAX));
}

/// Whether calls for a file of this kind may wait without limit: pipes, sockets, terminals.
bool mayWait(const struct stat &facts)
{
    return !S_ISREG(facts.st_mode) && !S_ISBLK(facts.st_mode);
}

constexpr int kSliceMs = 50; // how long a wait does not look for a stop

/// Waits until the pipe or device is ready for `events`. Returns false after a stop (EINTR).
bool waitFor(qintptr handle, short events)
{
    pollfd file = {static_cast<int>(handle), events, 0};
    // A failed poll() counts as ready: the call that follows reports the reason.
    while (!StopScope::isStopped()) {
        if (::poll(&file, 1, kSliceMs) != 0 && errno != EINTR) {
            return true;
        }
    }
    errno = EINTR;
    return false;
}

/// Calls `call`, which reads or writes a pipe or device, when that is ready.
template <class F> ssize_t whenReady(qintptr handle, short events, F call)
{
    ssize_t result = -1;
    do {
        // Always waited for first: without a writer, a read would report the end of the data.
        if (!waitFor(handle, events)) {
            return -1;
        }
        result = call();
        // Another process may have been faster.
    } while (result < 0 && (errno == EAGAIN || errno == EINTR));
    return result;
}

/// Opens a file for writing. A pipe is opened when it has a reader.
qintptr openWhenRead(const NativeName &name, int flags)
{
    const auto open = [&] {
        return repeated([&] { return ::open(name.constData(), flags, 0666); });
    };
    int handle = open();
    struct stat facts = {};
    // Devices without a driver report ENXIO too.
    while (handle < 0 && errno == ENXIO && ::stat(name.constData(), &facts) == 0 &&
           S_ISFIFO(facts.st_mode) && !StopScope::isStopped()) {
        ::poll(nullptr, 0, kSliceMs);
        handle = open();
    }
    return handle;
}

/// Another descriptor of standard output, if that is a file or a socket; else -1. Opened by name, a
/// file would be written from its start, and a socket does not open. A pipe does: with O_NONBLOCK,
/// which must not be set for the programs that share the descriptor.
qintptr duplicateOfOutput(const QString &name)
{
    struct stat facts = {};
    const bool isWanted = name == QLatin1StringView(kStandardOutput) &&
                          ::fstat(STDOUT_FILENO, &facts) == 0 &&
                          (S_ISREG(facts.st_mode) || S_ISSOCK(facts.st_mode));
    return isWanted ? ::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0) : -1;
}

} // namespace

FileHandle::~FileHandle()
{
    close();
}

FileHandle FileHandle::openForRead(const QString &name, bool sequential)
{
    FileHandle file;
    file.m_handle = repeated(
        [&] { return ::open(native(name).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK); });
    // A socket does not open by name.
    if (!file.isOpen() && errno == ENXIO && name == QLatin1StringView("/dev/stdin")) {
        file.m_handle = ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
    }
    // open() accepts a folder, and only reading from it fails.
    struct stat facts = {};
    if (file.isOpen() && ::fstat(static_cast<int>(file.m_handle), &facts) == 0 &&
        S_ISDIR(facts.st_mode)) {
        file.close();
        errno = EISDIR;
    }
    file.m_waits = file.isOpen() && mayWait(facts);
    if (file.isOpen() && sequential) {
        ::posix_fadvise(static_cast<int>(file.m_handle), 0, 0, POSIX_FADV_SEQUENTIAL);
    }
    return file;
}

FileHandle FileHandle::openForWrite(const QString &name, Create create)
{
    // O_CLOEXEC: a program that an action starts must not keep the file open.
    int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK;
    flags |= create == Create::Truncate ? O_TRUNC : 0;
    flags |= create == Create::Exclusive ? O_EXCL : 0;
    FileHandle file;
    file.m_handle = duplicateOfOutput(name);
    if (!file.isOpen()) {
        file.m_handle = openWhenRead(native(name), flags);
    }
    struct stat facts = {};
    file.m_waits =
        file.isOpen() && ::fstat(static_cast<int>(file.m_handle), &facts) == 0 && mayWait(facts);
    // Not O_APPEND, which would ignore every later seek().
    if (file.isOpen() && create == Create::Append &&
        ::lseek(static_cast<int>(file.m_handle), 0, SEEK_END) < 0) {
        file.close();
    }
    return file;
}

FileHandle FileHandle::openTemporary(const QString &folder)
{
    FileHandle file;
#ifdef O_TMPFILE
    constexpr int kFlags = O_TMPFILE | O_RDWR | O_CLOEXEC;
    file.m_handle = repeated([&] { return ::open(native(folder).constData(), kFlags, 0600); });
#endif
    // Not all file systems can create a file without a name.
    if (!file.isOpen()) {
        QByteArray name = QFile::encodeName(folder + QStringLiteral("/corvanta_XXXXXX"));
        file.m_handle = ::mkostemp(name.data(), O_CLOEXEC);
        if (file.isOpen()) {
            ::unlink(name.constData());
        }
    }
    return file;
}

qint64 FileHandle::read(void *buffer, qint64 n)
{
    const auto call = [&] { return ::read(static_cast<int>(m_handle), buffer, oneCall(n)); };
    return m_waits ? whenReady(m_handle, POLLIN, call) : repeated(call);
}

qint64 FileHandle::write(const void *bytes, qint64 n)
{
    const auto call = [&] { return ::write(static_cast<int>(m_handle), bytes, oneCall(n)); };
    return m_waits ? whenReady(m_handle, POLLOUT, call) : repeated(call);
}

bool FileHandle::seek(qint64 offset)
{
    return offset >= 0 && ::lseek(static_cast<int>(m_handle), offset, SEEK_SET) == offset;
}

qint64 FileHandle::position() const
{
    return ::lseek(static_cast<int>(m_handle), 0, SEEK_CUR);
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

std::optional<QString> finalName(const QString &name)
{
    constexpr int kMaxLinks = 40; // as the system's own limit
    return followed(QDir::current().absoluteFilePath(name), kMaxLinks);
}

QString identityOfLinkedFile(const QString &name)
{
    struct stat facts = {};
    const bool isLinked = ::stat(native(name).constData(), &facts) == 0 && S_ISREG(facts.st_mode) &&
                          facts.st_nlink > 1;
    return isLinked ? QStringLiteral("%1:%2").arg(QString::number(facts.st_dev),
                                                  QString::number(facts.st_ino))
                    : QString();
}

bool isPipeOrDevice(const QString &name)
{
    struct stat facts = {};
    return ::stat(native(name).constData(), &facts) == 0 && !S_ISREG(facts.st_mode) &&
           !S_ISDIR(facts.st_mode);
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
