// Files that threads add while another one flushes them. The disk is replaced by functions that
// count the calls and fail for every third file.
#include "base/platform/files.h"
#include "unsynced_names.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <set>
#include <thread>
#include <vector>

namespace corvanta {

namespace {

std::atomic<int> syncedFiles = 0;
std::atomic<int> syncedFolders = 0;

bool isBad(const QString &name)
{
    return name.section(u'/', -1).toInt() % 3 == 0;
}

} // namespace

namespace platform {

void startSync(const QString &) {}

bool syncFile(const QString &name)
{
    ++syncedFiles;
    errno = EIO;
    return !isBad(name);
}

bool syncFolder(const QString &)
{
    ++syncedFolders;
    return true;
}

} // namespace platform

TEST(UnsyncedNames, FlushesEachFileOfAllThreadsOnce)
{
    // More files than addFile() collects.
    constexpr int kFiles = 1500;
    UnsyncedNames names;
    std::atomic<int> next = 0;
    std::vector<std::jthread> threads;
    for (int i = 0; i < 3; ++i) {
        threads.emplace_back([&](const std::stop_token &stop) {
            while (!stop.stop_requested()) {
                names.addFile(u"/f/"_qs + QString::number(next++));
            }
        });
    }
    QVector<UnsyncedNames::Failed> failed;
    while (next < kFiles) {
        failed += names.sync();
    }
    threads.clear(); // stops and joins them
    failed += names.sync();
    EXPECT_EQ(syncedFiles, next);
    EXPECT_GT(syncedFolders, 0);
    std::set<QString> reported;
    for (const UnsyncedNames::Failed &one : failed) {
        EXPECT_TRUE(isBad(one.name));
        EXPECT_EQ(one.error.number, EIO);
        reported.insert(one.name);
    }
    EXPECT_EQ(reported.size(), static_cast<size_t>((next + 2) / 3));
    EXPECT_EQ(static_cast<size_t>(failed.size()), reported.size());
    EXPECT_TRUE(names.sync().isEmpty());
}

} // namespace corvanta
