// corvanta/files.h
// The host's file classes: reading, cached reading, writing, facts about files.
#pragma once
#include "base/byte_sink.h"
#include "base/byte_source.h"
#include "corvanta/export.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class GlobalParameters;

/// A file opened for buffered reading. Threads: one at a time, but position() from any.
class CORVANTA_EXPORT MyReadFile : public corvanta::ByteSource
{
public:
    /// Open `name` (already expanded). Null on failure. `sequential` announces that the file is
    /// read from front to back; `shared` lets other programs go on writing it (nothing to do on
    /// POSIX).
    static MyReadFile *newMyReadFile(GlobalParameters *parameters, const QString &name,
                                     bool sequential, bool shared);
    /// Offset of the next byte that read() delivers.
    virtual qint64 position() const = 0;
};

/// Adds a cache of `cacheBytes` to a reader, for drives where each read has its price. Owns the
/// reader.
class CORVANTA_EXPORT MyReadFileCached final : public MyReadFile
{
public:
    MyReadFileCached(MyReadFile *file, int cacheBytes);
    qint64 read(void *buffer, qint64 n) override;
    qint64 size() override;
    bool seek(qint64 offset) override;
    qint64 position() const override { return m_position; }

private:
    std::unique_ptr<MyReadFile> m_file;
    std::vector<char> m_cache;
    qint64 m_cacheStart = 0;
    qint64 m_cacheFill = 0;
    qint64 m_position = 0;
};

/// A file opened for writing, created or emptied. Threads: one at a time.
class CORVANTA_EXPORT MyWriteFile : public corvanta::ByteSink
{
public:
    /// What happens to a file that is there already.
    enum class Existing { Truncate, Append, Refuse };

    /// Open `name` (already expanded). Null on failure. `append` keeps what is there.
    static MyWriteFile *newMyWriteFile(GlobalParameters *parameters, const QString &name,
                                       bool append);
    static std::unique_ptr<MyWriteFile> open(const QString &name, Existing existing);

    /// Flush to the device, so that a rename afterwards never shows an empty file.
    virtual bool sync() = 0;
    /// Flush and close; false when either failed. The destructor closes without a word.
    virtual bool close() = 0;
    /// Cut the file at `size` bytes; the position moves there.
    virtual bool truncate(qint64 size) = 0;
};

/// Facts about a file or folder.
class CORVANTA_EXPORT KobiFileInfo
{
public:
    KobiFileInfo(GlobalParameters *parameters, const QString &name);
    bool exists() const;
    /// Bytes; -1 when there is no such file.
    qint64 size() const;
    QString getParentDir() const;
    /// Whether the file lies on a network drive. Tests say so for all files below the folder named
    /// by the environment variable CORVANTA_NET_DRIVE.
    static bool isNetDrive(const QString &name);

private:
    QString m_name;
};

/// Expand a pattern ("*" and "?" in its last part) into the names it matches, sorted by name. A
/// name without those characters, or without a match, gives itself.
CORVANTA_EXPORT void listFiles(const QString &pattern, QStringList *names);
/// Append ".extension" when the name's last part has no extension.
CORVANTA_EXPORT void addExtentionIfRequired(QString *name, const QString &extension);

/// Move a finished, closed temporary file onto its final name in one step. It was synced before
/// where it replaces a file; else it is before the run ends. False when the move failed; then both
/// files are as they were.
CORVANTA_EXPORT bool renameTMPFile(const QString &temporary, const QString &finalName);
/// The form that takes the final name: moves `name` + "_TMP" onto `name`.
CORVANTA_EXPORT bool renameTMPFile(const QString &name, GlobalParameters *parameters, int action);
