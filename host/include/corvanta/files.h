// Files on disk: reading, cached reading, writing, renaming, and facts about names.
//
// All names are expanded already (GlobalParameters::expandFile). The GlobalParameters arguments are
// part of the contract and not used by this host; they may be null. Writers use TargetFile, which
// replaces a file in one step; MyWriteFile writes in place.
#pragma once
#include "base/byte_sink.h"
#include "base/byte_source.h"
#include "base/platform/file_lock.h"
#include "base/result.h"
#include "base/system_error.h"
#include "corvanta/export.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class GlobalParameters;

/// A file opened for buffered reading. Threads: one at a time, except that position() may be called
/// from any thread.
class CORVANTA_EXPORT MyReadFile : public corvanta::ByteSource
{
public:
    /// Open `name` (already expanded). Returns null on failure; the caller owns the object.
    /// `sequential` announces that the file is read from beginning to end. `shared` allows other
    /// programs to continue writing to it (always so on POSIX).
    static MyReadFile *newMyReadFile(GlobalParameters *parameters, const QString &name,
                                     bool sequential, bool shared);
    /// The same for a file that is read from beginning to end, with the reason of a failure.
    static corvanta::Result<std::unique_ptr<MyReadFile>, corvanta::SystemError>
    open(const QString &name);
    /// Offset of the next byte that read() returns.
    virtual qint64 position() const = 0;
    /// Why the last read that failed did so. Threads: any.
    virtual corvanta::SystemError error() const { return {}; }
};

/// Adds a cache to a reader, for drives where each read is slow: one block, refilled from the
/// position of the first read outside it. Threads: one at a time.
class CORVANTA_EXPORT MyReadFileCached final : public MyReadFile
{
public:
    /// Takes ownership of `file`. `cacheBytes` is the size of the block, at least 1.
    MyReadFileCached(MyReadFile *file, int cacheBytes);
    qint64 read(void *buffer, qint64 n) override;
    qint64 size() override;
    bool seek(qint64 offset) override;
    qint64 position() const override { return m_position; }
    corvanta::SystemError error() const override { return m_file->error(); }

private:
    std::unique_ptr<MyReadFile> m_file;
    std::vector<char> m_cache;
    qint64 m_cacheStart = 0; // offset of the block in the file
    qint64 m_cacheFill = 0;  // bytes in the block; 0: nothing is cached
    qint64 m_position = 0;   // of the next read; m_file is elsewhere
};

/// A file opened for writing, created or emptied. Threads: one at a time.
class CORVANTA_EXPORT MyWriteFile : public corvanta::ByteSink
{
public:
    /// What happens to an existing file. Refuse makes open() fail, also for a dangling link; it
    /// protects files that another program created under a temporary name.
    enum class Existing { Truncate, Append, Refuse };

    /// Open `name` (already expanded). Returns null on failure; the caller owns the object.
    /// `append` keeps the content of an existing file.
    static MyWriteFile *newMyWriteFile(GlobalParameters *parameters, const QString &name,
                                       bool append);
    /// The same with all choices, and with the reason of a failure.
    static corvanta::Result<std::unique_ptr<MyWriteFile>, corvanta::SystemError>
    open(const QString &name, Existing existing);

    /// Flush to disk, so that the file is complete if it is renamed afterwards. Returns false on
    /// failure.
    virtual bool sync() = 0;
    /// Flush and close. Returns false if either failed. The destructor closes and ignores failures.
    virtual bool close() = 0;
    /// Cut the file at `size` bytes and continue there. Returns false on failure.
    virtual bool truncate(qint64 size) = 0;
    /// Why the last of these calls that failed did so.
    virtual corvanta::SystemError error() const = 0;
    // The lock of a temporary file, see platform::FileHandle.
    virtual bool tryLock(const QString &name) = 0;
    virtual corvanta::platform::FileLock shareLock() const = 0;
};

/// Facts about a file or folder.
class CORVANTA_EXPORT KobiFileInfo
{
public:
    KobiFileInfo(GlobalParameters *parameters, const QString &name);
    bool exists() const;
    /// Size in bytes; -1 if there is no such file.
    qint64 size() const;
    /// Absolute path of the folder that contains the file.
    QString getParentDir() const;
    /// Whether the file is on a network drive. For tests, all files below the folder named by the
    /// environment variable CORVANTA_NET_DRIVE are.
    static bool isNetDrive(const QString &name);

private:
    QString m_name;
};

/// Expand a pattern ("*" and "?" in its last part) into the names that it matches, sorted by name.
/// A name without these characters or without a match is returned unchanged.
CORVANTA_EXPORT void listFiles(const QString &pattern, QStringList *names);
/// Append ".extension" if the last part of the name has no extension.
CORVANTA_EXPORT void addExtentionIfRequired(QString *name, const QString &extension);

/// `name` + `suffix`, for temporary files in the folder of a file. The last part of `name` is cut
/// where the result would be longer than file systems allow, so the suffix must make it unique.
CORVANTA_EXPORT QString withSuffix(const QString &name, const QString &suffix);

/// Rename a complete, closed temporary file to its final name in one step. The caller has synced it
/// if it replaces a file; otherwise the host syncs it before the run ends, or now when no run is on
/// this thread. Returns false on failure (see SystemError::ofLastCall()); both files are then
/// unchanged.
CORVANTA_EXPORT bool renameTMPFile(const QString &temporary, const QString &finalName);
/// The same for the temporary name `name` + "_TMP". The other arguments are not used.
CORVANTA_EXPORT bool renameTMPFile(const QString &name, GlobalParameters *parameters, int action);
