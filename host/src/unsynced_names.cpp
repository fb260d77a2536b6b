// Flushes new files and changed folders in groups.
//
// The write-back of all files is started before the first wait, so that the disk works on them in
// parallel. The mutex is not held during the wait, so that other actions can add files.
#include "unsynced_names.h"

#include "base/platform/files.h"

#include <QFileInfo>

#include <utility>

namespace corvanta {

void UnsyncedNames::addFile(const QString &name)
{
    constexpr qsizetype kMaxFiles = 256;
    addFolderOf(name); // takes the mutex itself
    std::unique_lock lock(m_mutex);
    m_names.files << name;
    if (m_names.files.size() < kMaxFiles) {
        return;
    }
    // Too many to wait for at the end: flush them now.
    const Names names = std::exchange(m_names, {});
    lock.unlock();
    const QVector<Failed> failed = sync(names);
    lock.lock();
    m_failed += failed;
}

void UnsyncedNames::addFolderOf(const QString &name)
{
    const QString folder = QFileInfo(name).absolutePath();
    const std::lock_guard lock(m_mutex);
    m_names.folders.insert(folder);
}

QVector<UnsyncedNames::Failed> UnsyncedNames::sync()
{
    std::unique_lock lock(m_mutex);
    const Names names = std::exchange(m_names, {});
    const QVector<Failed> failed = std::exchange(m_failed, {});
    lock.unlock();
    return failed + sync(names);
}

QVector<UnsyncedNames::Failed> UnsyncedNames::sync(const Names &names)
{
    for (const QString &name : names.files) {
        platform::startSync(name);
    }
    QVector<Failed> failed;
    for (const QString &name : names.files) {
        if (!platform::syncFile(name)) {
            failed << Failed{name, SystemError::ofLastCall()};
        }
    }
    // Folders last, so that no entry is flushed before the content of its file.
    for (const QString &folder : names.folders) {
        platform::syncFolder(folder);
    }
    return failed;
}

} // namespace corvanta
