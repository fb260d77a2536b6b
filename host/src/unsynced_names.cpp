// Flushes new files and changed folders in groups.
//
// The write-back of all files is started before the first wait, so that the disk works on them in
// parallel. Several threads then wait: the system completes the flushes that wait at one time
// together. The mutex is not held during the wait, so that other actions can add files.
#include "unsynced_names.h"

#include "base/platform/files.h"

#include <QFileInfo>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <exception>
#include <new>
#include <thread>
#include <utility>
#include <vector>

namespace corvanta {

namespace {

/// Flush the files that no other thread has taken; `errors` has one entry per file.
void syncNext(const QStringList &names, std::atomic<qsizetype> &next,
              std::vector<SystemError> &errors) noexcept
{
    for (qsizetype i = next++; i < names.size(); i = next++) {
        SystemError &error = errors[static_cast<size_t>(i)];
        try {
            error = platform::syncFile(names.at(i)) ? SystemError() : SystemError::ofLastCall();
        } catch (const std::bad_alloc &) {
            error = {ENOMEM};
        }
    }
}

/// Why files could not be flushed: one entry per file.
std::vector<SystemError> syncAll(const QStringList &names)
{
    constexpr qsizetype kMaxThreads = 4;
    constexpr qsizetype kFilesPerThread = 8;
    std::vector<SystemError> errors(static_cast<size_t>(names.size()));
    std::atomic<qsizetype> next = 0;
    std::vector<std::jthread> helpers; // last: joined before what they use is destroyed
    try {
        for (qsizetype i = std::min(kMaxThreads, names.size() / kFilesPerThread); i > 1; --i) {
            helpers.emplace_back([&] { syncNext(names, next, errors); });
        }
    } catch (const std::exception &) {
        // Without more threads it only takes longer.
    }
    syncNext(names, next, errors);
    helpers.clear();
    return errors;
}

} // namespace

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

/// Without the lock, because a slow disk must not delay writers that add names.
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
    const std::vector<SystemError> errors = syncAll(names.files);
    for (qsizetype i = 0; i < names.files.size(); ++i) {
        if (const SystemError error = errors[static_cast<size_t>(i)]) {
            failed << Failed{names.files.at(i), error};
        }
    }
    // Folders last, so that no entry is flushed before the content of its file.
    for (const QString &folder : names.folders) {
        platform::syncFolder(folder);
    }
    return failed;
}

} // namespace corvanta
