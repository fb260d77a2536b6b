#include "codecs/zip/package_writer.h"
#include "codecs/zip/zip_format.h"
#include "tests/support/sweeps.h"

#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace corvanta::zip {
namespace {

using namespace Qt::StringLiterals;

struct Written
{
    QByteArray name;
    QByteArray bytes;
};

std::vector<Written> someParts()
{
    QByteArray sheet;
    for (int row = 1; sheet.size() < 3'000'000; ++row) {
        sheet += "<row r=\"" + QByteArray::number(row) + "\"><c><v>" +
                 QByteArray::number(row * 17) + "</v></c></row>";
    }
    return {{"[Content_Types].xml", "<Types/>"},
            {"xl/worksheets/sheet1.xml", sheet},
            {"empty", ""},
            {"media/\xc3\xa9t\xc3\xa9.png", QByteArray(70'000, '\x89')}};
}

// Writes the parts up to the first failed call.
Result<void, Error> writeParts(const std::vector<Written> &parts, ByteSink &sink,
                               const deflate::StreamOptions &options)
{
    PackageWriter writer(sink, options);
    Result<void, Error> done;
    for (const Written &part : parts) {
        done = done ? writer.openMember(part.name) : done;
        done = done ? writer.write(part.bytes) : done;
        done = done ? writer.closeMember() : done;
    }
    return done ? writer.close() : done;
}

QByteArray writtenPackage(const std::vector<Written> &parts,
                          const deflate::StreamOptions &options = {})
{
    MemorySink sink;
    EXPECT_TRUE(writeParts(parts, sink, options));
    return sink.bytes();
}

TEST(PackageWriter, HeadersHaveNoOptionalFields)
{
    const QByteArray package = writtenPackage({{"a/b.xml", "hello"}});
    const QByteArray local = QByteArray::fromHex("504b0304 1400 0000 0800 0000 0000 86a61036 "
                                                 "07000000 05000000 0700 0000") +
                             "a/b.xml";
    EXPECT_EQ(package.left(local.size()).toHex(' '), local.toHex(' '));
    const qsizetype directoryAt = local.size() + 7;
    const QByteArray directory =
        QByteArray::fromHex("504b0102 1400 1400 0000 0800 0000 0000 86a61036 07000000 05000000 "
                            "0700 0000 0000 0000 0000 00000000 00000000") +
        "a/b.xml";
    EXPECT_EQ(package.mid(directoryAt, directory.size()).toHex(' '), directory.toHex(' '));
    const QByteArray end =
        QByteArray::fromHex("504b0506 0000 0000 0100 0100 35000000 2c000000 0000");
    EXPECT_EQ(package.mid(directoryAt + directory.size()).toHex(' '), end.toHex(' '));
}

TEST(PackageWriter, OnlyNonAsciiNamesAreMarkedAsUtf8)
{
    const QByteArray package = writtenPackage({{"\xc3\xa9.xml", ""}});
    EXPECT_EQ(package.mid(6, 2).toHex(), "0008");
    EXPECT_EQ(writtenPackage({{"e.xml", ""}}).mid(6, 2).toHex(), "0000");
}

TEST(PackageWriter, OtherProgramsReadThePackage)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"test.zip"_s);
    QFile file(path);
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    const std::vector<Written> parts = someParts();
    file.write(writtenPackage(parts));
    file.close();
    const std::pair<QString, QStringList> programs[] = {
        {u"unzip"_s, {u"-tqq"_s, path}},
        {u"7z"_s, {u"t"_s, path}},
        {u"python3"_s, {u"-m"_s, u"zipfile"_s, u"-t"_s, path}}};
    int tried = 0;
    for (const auto &[program, arguments] : programs) {
        if (!QStandardPaths::findExecutable(program).isEmpty()) {
            QProcess process;
            process.start(program, arguments);
            ASSERT_TRUE(process.waitForFinished());
            EXPECT_EQ(process.exitCode(), 0) << process.readAll().toStdString();
            ++tried;
        }
    }
    if (tried == 0) {
        GTEST_SKIP() << "no unzip, 7z or python3 here";
    }
}

TEST(PackageWriter, WorkersDoNotChangeTheBytes)
{
    const std::vector<Written> parts = someParts();
    const QByteArray expected = writtenPackage(parts, {{}, 0});
    for (const int workers : {1, 3, -1}) {
        EXPECT_EQ(writtenPackage(parts, {{}, workers}), expected) << workers;
    }
}

TEST(PackageWriter, EveryFailedWriteIsReported)
{
    const std::vector<Written> parts = someParts();
    test::FailingSink counter([](int) { return false; });
    EXPECT_TRUE(writeParts(parts, counter, {}));
    ASSERT_GT(counter.calls(), 12);
    test::forEveryFailedWrite(counter.calls(), [&](test::FailingSink &sink) {
        const auto written = writeParts(parts, sink, {});
        ASSERT_FALSE(written);
        EXPECT_EQ(written.fault().code, Error::WriteFailed);
    });
}

TEST(PackageWriter, RejectsInvalidAndDuplicateNames)
{
    MemorySink sink;
    PackageWriter writer(sink);
    EXPECT_EQ(writer.openMember("").fault().code, Error::BadName);
    EXPECT_EQ(writer.openMember(QByteArray(65'536, 'x')).fault().code, Error::BadName);
    ASSERT_TRUE(writer.openMember("a"));
    ASSERT_TRUE(writer.closeMember());
    EXPECT_EQ(writer.openMember("a").fault().code, Error::NameTaken);
}

} // namespace
} // namespace corvanta::zip
