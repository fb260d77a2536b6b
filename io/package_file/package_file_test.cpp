// Package files: replacing the target, and the cache and buffer of network drives.
#include "io/package_file/package_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

QByteArray contentOf(const QString &name, const char *member)
{
    const auto input = PackageInput::open(nullptr, name);
    const auto content =
        input ? (*input)->reader().readWhole(member) : Fault{zip::Error::ReadFailed};
    return content ? *content : QByteArray();
}

bool put(PackageOutput &output, const char *member, const QByteArray &content)
{
    zip::PackageWriter &writer = output.writer();
    return writer.openMember(member) && writer.write(content) && writer.closeMember() &&
           writer.close();
}

} // namespace

class PackageFile : public ::testing::TestWithParam<bool>
{
protected:
    void SetUp() override
    {
        if (GetParam()) {
            qputenv("CORVANTA_NET_DRIVE", m_dir.path().toUtf8());
        }
    }
    void TearDown() override { qunsetenv("CORVANTA_NET_DRIVE"); }
    QStringList files() const { return QDir(m_dir.path()).entryList(QDir::Files); }

    QTemporaryDir m_dir;
    QString m_name = m_dir.filePath(u"a.zip"_s);
};

TEST_P(PackageFile, ReplacesTheTargetOnlyWhenComplete)
{
    ASSERT_EQ(KobiFileInfo::isNetDrive(m_name), GetParam());
    for (const QByteArray &content : {QByteArray("first"), QByteArray(6 << 20, 'x')}) {
        const QByteArray before = contentOf(m_name, "m");
        {
            PackageOutput abandoned;
            ASSERT_TRUE(abandoned.open(m_name, {7}));
            EXPECT_TRUE(put(abandoned, "m", "never seen"));
        }
        EXPECT_EQ(contentOf(m_name, "m"), before);
        PackageOutput output;
        ASSERT_TRUE(output.open(m_name, {7}));
        EXPECT_TRUE(put(output, "m", content));
        EXPECT_TRUE(output.commit());
        EXPECT_EQ(contentOf(m_name, "m"), content);
        EXPECT_EQ(files(), QStringList{u"a.zip"_s});
    }
}

TEST_P(PackageFile, FailedMoveLeavesTheTargetUnchanged)
{
    PackageOutput first;
    ASSERT_TRUE(first.open(m_name, {7}) && put(first, "m", "old") && first.commit());
    PackageOutput output;
    ASSERT_TRUE(output.open(m_name, {7}) && put(output, "m", "new"));
    QString seen;
    EXPECT_FALSE(output.commit([&](const QString &temporary, const QString &) {
        seen = QString::fromUtf8(contentOf(temporary, "m"));
        return false;
    }));
    EXPECT_EQ(seen, u"new"_s);
    EXPECT_EQ(contentOf(m_name, "m"), "old");
    EXPECT_EQ(files(), QStringList{u"a.zip"_s});
}

namespace {

/// A file in memory that records the sizes of its reads.
class RecordingFile final : public MyReadFile
{
public:
    RecordingFile(QByteArrayView bytes, std::vector<qint64> &reads)
        : m_source(bytes)
        , m_reads(reads)
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        m_reads.push_back(m_source.read(buffer, n));
        return m_reads.back();
    }
    qint64 size() override { return m_source.size(); }
    bool seek(qint64 offset) override { return m_source.seek(offset); }
    qint64 position() const override { return 0; }

private:
    MemorySource m_source;
    std::vector<qint64> &m_reads;
};

} // namespace

TEST(PackageCache, JoinsSmallReadsAndSeeksAnywhere)
{
    QByteArray text(200'000, Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        text[i] = static_cast<char>(i * 31 >> 3);
    }
    std::vector<qint64> reads;
    MyReadFileCached file(new RecordingFile(text, reads), 65536);
    QByteArray back(text.size(), '\0');
    for (qsizetype at = 0; at < text.size(); at += 100) {
        ASSERT_EQ(readFully(file, back.data() + at, 100), 100);
    }
    EXPECT_TRUE(back == text);
    EXPECT_EQ(reads, (std::vector<qint64>{65536, 65536, 65536, 3392, 0}));
    for (const qint64 offset : {199'990LL, 140'000LL, 65'535LL, 0LL, 65'536LL, 199'999LL}) {
        QByteArray piece(200, '\0');
        ASSERT_TRUE(file.seek(offset));
        piece.resize(readFully(file, piece.data(), piece.size()));
        EXPECT_EQ(piece, text.mid(offset, 200)) << offset;
    }
}

INSTANTIATE_TEST_SUITE_P(Drives, PackageFile, ::testing::Bool());

} // namespace corvanta
