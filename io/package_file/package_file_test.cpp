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

TEST_P(PackageFile, ReplacesItsTargetOnlyWhenComplete)
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

TEST_P(PackageFile, ARefusedMoveLeavesTheTarget)
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

INSTANTIATE_TEST_SUITE_P(Drives, PackageFile, ::testing::Bool());

} // namespace corvanta
