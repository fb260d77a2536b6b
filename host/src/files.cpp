// Files on disk, on top of base/platform, which makes the system calls.
//
// Reads and writes are not buffered here: callers pass blocks. New files are registered with
// the run (UnsyncedNames) when they get their final name, so that it can flush them together.
#include "corvanta/files.h"

#include "base/platform/files.h"
#include "corvanta/main_ui.h"
#include "run_files.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <atomic>
#include <cstring>

using namespace Qt::StringLiterals;
using corvanta::Fault;
using corvanta::Result;
using corvanta::RunFiles;
using corvanta::SystemError;
using corvanta::platform::FileHandle;

namespace {

/// A plain file. The position is atomic because progress displays read it.
class DiskReadFile final : public MyReadFile
{
public:
    explicit DiskReadFile(FileHandle file)
        : m_file(std::move(file))
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        const qint64 got = m_file.read(buffer, n);
        if (got > 0) {
            m_position.fetch_add(got, std::memory_order_relaxed);
            m_sink->addBytesRead(got);
        } else if (got < 0) {
            m_error = SystemError::ofLastCall().number;
        }
        return got;
    }
    // Pipes and devices have no size; callers then read to the end.
    qint64 size() override { return m_file.isRegular() ? m_file.size() : -1; }
    bool seek(qint64 offset) override
    {
        const bool done = m_file.seek(offset);
        if (done) {
            m_position = offset;
        }
        return done;
    }
    qint64 position() const override { return m_position.load(std::memory_order_relaxed); }
    SystemError error() const override { return {m_error}; }

private:
    FileHandle m_file;
    std::atomic<qint64> m_position = 0;
    // Found now: a thread of a decoder that reads later may have no LogScope.
    LogSink *const m_sink = MainUI::logSink();
    std::atomic<int> m_error = 0;
};

/// A plain file. A failed write returns to the position before it, so that it can be repeated.
class DiskWriteFile final : public MyWriteFile
{
public:
    /// Call once, before anything else.
    void begin(FileHandle file, qint64 position)
    {
        m_file = std::move(file);
        m_position = m_startedAt = position;
    }
    bool write(const void *bytes, qint64 n) override
    {
        // The system may write a part only, for example the part that fits on the disk.
        const qint64 begin = m_position;
        qint64 done = 0;
        while (done < n) {
            const qint64 written = m_file.write(static_cast<const char *>(bytes) + done, n - done);
            if (written <= 0) {
                kept(false);
                m_file.seek(begin);
                return false;
            }
            done += written;
        }
        m_position += n;
        keepDeviceBusy();
        return true;
    }
    bool seek(qint64 offset) override
    {
        const bool done = kept(m_file.seek(offset));
        m_position = done ? offset : m_position;
        return done;
    }
    qint64 position() const override { return m_position; }
    // Nothing is buffered here.
    bool flush() override { return m_file.isOpen(); }
    bool sync() override { return kept(m_file.sync()); }
    bool close() override { return kept(m_file.close()); }
    bool truncate(qint64 size) override { return kept(m_file.truncate(size)) && seek(size); }
    SystemError error() const override { return m_error; }
    bool tryLock(const QString &name) override { return m_file.tryLock(name); }
    corvanta::platform::FileLock shareLock() const override { return m_file.shareLock(); }

private:
    /// Returns `done`, the result of the last call, and keeps the reason when it is false.
    bool kept(bool done)
    {
        m_error = done ? m_error : SystemError::ofLastCall();
        return done;
    }
    /// Starts the write-back early, so that little is left to wait for at the end.
    void keepDeviceBusy()
    {
        constexpr qint64 kPieceBytes = qint64(16) << 20;
        if (m_position - m_startedAt >= kPieceBytes) {
            m_file.startSync(m_startedAt, m_position - m_startedAt);
            m_startedAt = m_position;
        }
    }

    FileHandle m_file;
    qint64 m_position = 0;
    qint64 m_startedAt = 0; // write-back has started for the bytes before
    SystemError m_error;
};

} // namespace

MyReadFile *MyReadFile::newMyReadFile(GlobalParameters *, const QString &name, bool sequential,
                                      bool)
{
    FileHandle file = FileHandle::openForRead(name, sequential);
    return file.isOpen() ? new DiskReadFile(std::move(file)) : nullptr;
}

Result<std::unique_ptr<MyReadFile>, SystemError> MyReadFile::open(const QString &name)
{
    std::unique_ptr<MyReadFile> file(newMyReadFile(nullptr, name, true, true));
    if (!file) {
        return Fault{SystemError::ofLastCall()};
    }
    return file;
}

MyReadFileCached::MyReadFileCached(MyReadFile *file, int cacheBytes)
    : m_file(file)
    , m_cache(static_cast<size_t>(qMax(cacheBytes, 1)))
{
}

qint64 MyReadFileCached::size()
{
    return m_file->size();
}

/// Beyond the end is valid, as for files; the read then gives nothing.
bool MyReadFileCached::seek(qint64 offset)
{
    if (offset < 0) {
        return false;
    }
    m_position = offset; // the file itself seeks when the cache must be refilled
    return true;
}

qint64 MyReadFileCached::read(void *buffer, qint64 n)
{
    // Refill the cache with the block that begins at the requested position.
    const bool cached = m_position >= m_cacheStart && m_position < m_cacheStart + m_cacheFill;
    if (!cached) {
        if (!m_file->seek(m_position)) {
            return -1;
        }
        m_cacheStart = m_position;
        m_cacheFill =
            corvanta::readFully(*m_file, m_cache.data(), static_cast<qint64>(m_cache.size()));
        // The end of the file or a failure; neither may be mistaken for a block.
        if (m_cacheFill <= 0) {
            const qint64 result = m_cacheFill;
            m_cacheFill = 0;
            return result;
        }
    }
    const qint64 inCache = m_position - m_cacheStart;
    const qint64 take = std::min(n, m_cacheFill - inCache);
    std::memcpy(buffer, m_cache.data() + inCache, static_cast<size_t>(take));
    m_position += take;
    return take;
}

MyWriteFile *MyWriteFile::newMyWriteFile(GlobalParameters *, const QString &name, bool append)
{
    auto opened = open(name, append ? Existing::Append : Existing::Truncate);
    return opened ? opened->release() : nullptr;
}

Result<std::unique_ptr<MyWriteFile>, SystemError> MyWriteFile::open(const QString &name,
                                                                    Existing existing)
{
    using Create = FileHandle::Create;
    const Create create = existing == Existing::Truncate ? Create::Truncate
                          : existing == Existing::Append ? Create::Append
                                                         : Create::Exclusive;
    // Before the file is created: without memory it would stay, and no one would know its name.
    auto opened = std::make_unique<DiskWriteFile>();
    FileHandle file = FileHandle::openForWrite(name, create);
    if (!file.isOpen()) {
        return Fault{SystemError::ofLastCall()};
    }
    // A pipe has no position (-1); writing to it begins at 0.
    const qint64 position = qMax<qint64>(file.position(), 0);
    opened->begin(std::move(file), position);
    return std::unique_ptr<MyWriteFile>(std::move(opened));
}

KobiFileInfo::KobiFileInfo(GlobalParameters *, const QString &name)
    : m_name(name)
{
}

bool KobiFileInfo::exists() const
{
    return QFileInfo::exists(m_name);
}

qint64 KobiFileInfo::size() const
{
    const QFileInfo info(m_name);
    return info.isFile() ? info.size() : -1;
}

QString KobiFileInfo::getParentDir() const
{
    return QFileInfo(m_name).absolutePath();
}

bool KobiFileInfo::isNetDrive(const QString &name)
{
    // Tests need a network drive without having one.
    const QString pretended = qEnvironmentVariable("CORVANTA_NET_DRIVE");
    return (!pretended.isEmpty() && QFileInfo(name).absoluteFilePath().startsWith(pretended)) ||
           corvanta::platform::isOnNetworkDrive(name);
}

void listFiles(const QString &pattern, QStringList *names)
{
    // Only the last part may be a pattern: a folder's name is taken as it is.
    const QFileInfo info(pattern);
    const QString last = info.fileName();
    names->clear();
    // Brackets are literal: only "*" and "?" are special in patterns.
    if (last.contains(u'*') || last.contains(u'?')) {
        const QRegularExpression wanted(
            QRegularExpression::anchoredPattern(QRegularExpression::wildcardToRegularExpression(
                QString(last).replace(u'[', "[[]"_L1))),
            QRegularExpression::NoPatternOption);
        for (const QString &entry :
             QDir(info.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name)) {
            if (wanted.match(entry).hasMatch()) {
                *names << info.path() + u'/' + entry;
            }
        }
        std::sort(names->begin(), names->end());
    }
    // A pattern without a match is kept, so that the message about the missing file names it.
    if (names->isEmpty()) {
        *names << pattern;
    }
}

void addExtentionIfRequired(QString *name, const QString &extension)
{
    if (!name->isEmpty() && !QFileInfo(*name).fileName().contains(u'.')) {
        *name += u'.' + extension;
    }
}

QString withSuffix(const QString &name, const QString &suffix)
{
    constexpr qsizetype kMaxBytes = 255;
    const qsizetype start = name.lastIndexOf(u'/') + 1;
    QString stem = name.mid(start);
    while (!stem.isEmpty() && QFile::encodeName(stem + suffix).size() > kMaxBytes) {
        // Half a surrogate pair has no encoding.
        stem.chop(stem.back().isLowSurrogate() ? 2 : 1);
    }
    return name.left(start) + stem + suffix;
}

bool renameTMPFile(const QString &temporary, const QString &finalName)
{
    // The replacement keeps the permissions of the file that it replaces.
    const bool isNew = !QFileInfo::exists(finalName);
    if (!isNew) {
        corvanta::platform::copyPermissions(finalName, temporary);
    }
    if (!corvanta::platform::renameOver(temporary, finalName)) {
        return false;
    }
    // A replaced file was synced by the caller; only the rename itself must still reach the disk.
    if (RunFiles *const files = RunFiles::ofThread()) {
        isNew ? files->unsynced().addFile(finalName) : files->unsynced().addFolderOf(finalName);
    } else {
        corvanta::platform::syncFile(finalName);
        corvanta::platform::syncFolder(QFileInfo(finalName).absolutePath());
    }
    return true;
}

bool renameTMPFile(const QString &name, GlobalParameters *, int)
{
    return renameTMPFile(name + "_TMP"_L1, name);
}
