// Collects new files and changed folders that are not yet flushed to disk.
//
// Flushing one file takes some milliseconds, most of them waiting; flushing hundreds together takes
// little longer. They are therefore collected until there are many or an action ends.
#pragma once
#include "base/system_error.h"

#include <QString>
#include <QStringList>

#include <mutex>
#include <unordered_set>

namespace corvanta {

/// Threads: any. All actions of a run share one object.
class UnsyncedNames
{
public:
    /// A file that could not be flushed.
    struct Failed
    {
        QString name;
        SystemError error;
    };

    /// Add a new file, complete and closed. Flushes all if there are 256 files.
    void addFile(const QString &name);
    /// Add the folder of `name`, in which that file has replaced another one. The rename may
    /// otherwise be lost in a power cut, although the content of the file is on the disk.
    void addFolderOf(const QString &name);
    /// Flush everything that was added; blocks until it is on the disk. Returns the files that
    /// could not be flushed.
    QVector<Failed> sync();

private:
    struct Names
    {
        QStringList files;                   // in the order in which they were added
        std::unordered_set<QString> folders; // absolute; each is flushed once
    };
    /// Without the mutex: flushing takes long.
    static QVector<Failed> sync(const Names &names);

    std::mutex m_mutex; // guards everything below
    Names m_names;
    QVector<Failed> m_failed; // could not be flushed by addFile()
};

} // namespace corvanta
