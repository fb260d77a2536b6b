#include "io/replace/file_swap.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace corvanta {

namespace {

class FileSwap : public ::testing::Test
{
protected:
    QString path(const QString &name) const { return m_dir.filePath(name); }
    void write(const QString &name, const QByteArray &content)
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QByteArray read(const QString &name)
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    SwapNames names() const { return {path(u"new"_qs), path(u"book"_qs), path(u"old"_qs)}; }
    SwapObserver observer(int giveUpAfter = 99)
    {
        return {[this](const QString &from, const QString &to) {
                    m_attempts << QFileInfo(from).fileName() + u'>' + QFileInfo(to).fileName();
                },
                [this, giveUpAfter](int) {
                    m_onPause();
                    return m_attempts.size() < giveUpAfter;
                }};
    }
    QStringList files() const
    {
        return QDir(m_dir.path()).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    }

    QTemporaryDir m_dir;
    QStringList m_attempts;
    std::function<void()> m_onPause = [] {};
};

} // namespace

TEST_F(FileSwap, ReplacesAndKeepsPermissions)
{
    write(u"book"_qs, "old");
    write(u"new"_qs, "new");
    QFile::setPermissions(path(u"book"_qs),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup);
    const auto permissions = QFile::permissions(path(u"book"_qs));
    EXPECT_TRUE(swapFile(names(), observer()));
    EXPECT_EQ(read(u"book"_qs), "new");
    EXPECT_EQ(QFile::permissions(path(u"book"_qs)), permissions);
    EXPECT_EQ(files(), QStringList{u"book"_qs});
    EXPECT_TRUE(m_attempts.isEmpty());
}

TEST_F(FileSwap, CreatesAMissingTarget)
{
    write(u"new"_qs, "new");
    EXPECT_TRUE(swapFile(names(), observer()));
    EXPECT_EQ(files(), QStringList{u"book"_qs});
}

TEST_F(FileSwap, LeftOversOfAnEarlierRunAreHarmless)
{
    write(u"book"_qs, "old");
    write(u"new"_qs, "new");
    write(u"old"_qs, "left over"); // so the backup cannot be linked
    EXPECT_TRUE(swapFile(names(), observer()));
    EXPECT_EQ(read(u"book"_qs), "new");
    EXPECT_EQ(read(u"old"_qs), "left over");
}

TEST_F(FileSwap, GivesUpAfterFiveRetriesWithTheOldFileInPlace)
{
    write(u"book"_qs, "old");
    const auto swapped = swapFile(names(), observer()); // without a temporary file
    ASSERT_FALSE(swapped);
    EXPECT_EQ(swapped.fault().code.from, path(u"new"_qs));
    EXPECT_EQ(swapped.fault().code.to, path(u"book"_qs));
    EXPECT_EQ(m_attempts, QStringList(5, u"new>book"_qs));
    EXPECT_EQ(read(u"book"_qs), "old");
    EXPECT_EQ(files(), QStringList{u"book"_qs});
}

TEST_F(FileSwap, NamesTheBackupWhenNoFileExists)
{
    const auto swapped = swapFile(names(), observer(2));
    ASSERT_FALSE(swapped);
    EXPECT_EQ(swapped.fault().code.from, path(u"book"_qs));
    EXPECT_EQ(swapped.fault().code.to, path(u"old"_qs));
    EXPECT_EQ(m_attempts, QStringList(2, u"book>old"_qs));
}

TEST_F(FileSwap, OldFileStaysDuringRetries)
{
    write(u"book"_qs, "old");
    m_onPause = [this] {
        EXPECT_EQ(read(u"book"_qs), "old");
        if (m_attempts.size() == 3) {
            write(u"new"_qs, "new");
        }
    };
    EXPECT_TRUE(swapFile(names(), observer()));
    EXPECT_EQ(m_attempts.size(), 3);
    EXPECT_EQ(read(u"book"_qs), "new");
    EXPECT_EQ(files(), QStringList{u"book"_qs});
}

} // namespace corvanta
