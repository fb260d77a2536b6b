// host/src/unsynced_names.h
// New files and changed folders that the device may not have yet.
//
// The device takes one of them in some milliseconds, nearly all of which is waiting, and hundreds
// in hardly more. So they are collected until there are many or an action ends.
#pragma once
#include <QSet>
#include <QString>
#include <QStringList>

#include <mutex>

namespace corvanta {

/// Threads: any; those of one process share the one object.
class UnsyncedNames
{
public:
    static UnsyncedNames &ofProcess();

    /// `name` is a new file, complete and closed.
    void addFile(const QString &name);
    /// `name` lies in a folder where it has just replaced another file.
    void addFolderOf(const QString &name);
    /// Wait until the device has all that was added. The files that it did not take.
    QStringList sync();

private:
    struct Names
    {
        QStringList files;
        QSet<QString> folders;
    };
    static QStringList sync(const Names &names);

    std::mutex m_mutex; // guards everything below
    Names m_names;
    QStringList m_failed; // of those that were too many to wait
};

} // namespace corvanta
