// The thread that unpacks a RAR entry ends together with its input.
#include "io/input/archive_sources.h"
#include "io/platform/rar_archive.h"
#include "tests/support/corpus.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <random>

using namespace corvanta;
using namespace corvanta::input;

namespace {

size_t threadCount()
{
    return static_cast<size_t>(QDir(QStringLiteral("/proc/self/task")).count());
}

} // namespace

TEST(RarThreads, OpeningAndClosingAtAnyTimeLeavesNoThread)
{
    CORVANTA_NEEDS_CORPUS();
    // One archive for each library. Both unpack to more bytes than the ring holds.
    const QString paths[] = {test::corpusFile(QStringLiteral("archives/rar/rar5_64MiB_in_3KB.rar")),
                             test::corpusFile(QStringLiteral(
                                 "archives/rar/test_read_format_rar_multi_lzss_blocks.rar"))};
    ASSERT_TRUE(openRar(paths[0])); // a sanitizer starts its own thread with the first one
    const size_t before = threadCount();
    std::mt19937 random(3);
    std::vector<char> buffer(100'000);
    for (int i = 0; i < 300; ++i) {
        auto source = openRar(paths[i % 2]);
        ASSERT_TRUE(source);
        for (unsigned reads = random() % 4; reads > 0; --reads) {
            ASSERT_GT(
                (*source)->read(buffer.data(), static_cast<qint64>(random() % buffer.size() + 1)),
                0);
        }
        if (random() % 8 == 0) {
            ASSERT_TRUE((*source)->seek(static_cast<qint64>(random() % 100'000)));
        }
    }
    EXPECT_EQ(threadCount(), before);
}

TEST(RarArchive, AStoredEntryEndsWhereItsArchiveIsCutAfterItWasOpened)
{
    CORVANTA_NEEDS_CORPUS();
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.rar"));
    const auto stored = QStringLiteral("archives/rar/stored_rar5_github_events.rar");
    ASSERT_TRUE(QFile::copy(test::corpusFile(stored), path));
    const auto archive = platform::openRarArchive(path);
    ASSERT_TRUE(archive);
    ASSERT_TRUE(QFile::resize(path, 1000));
    const auto done = (*archive)->unpack([](std::span<const char>) { return true; });
    ASSERT_FALSE(done);
    EXPECT_EQ(done.fault().code, platform::RarError::Damaged);
    EXPECT_TRUE(done.fault().detail.endsWith(QStringLiteral("is truncated")));
}
