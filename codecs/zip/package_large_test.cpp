#include "codecs/deflate/crc32.h"
#include "codecs/zip/package_reader.h"
#include "codecs/zip/package_writer.h"
#include "codecs/zip/zip_format.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace corvanta::zip {
namespace {

using namespace Qt::StringLiterals;

constexpr qint64 kFourGiB = qint64(1) << 32;

class FileSink final : public ByteSink
{
public:
    explicit FileSink(const QString &path)
        : m_file(path)
    {
        EXPECT_TRUE(m_file.open(QFile::WriteOnly));
    }
    bool write(const void *bytes, qint64 n) override
    {
        return m_file.write(static_cast<const char *>(bytes), n) == n;
    }
    bool seek(qint64 offset) override { return m_file.seek(offset); }
    qint64 position() const override { return m_file.pos(); }
    bool flush() override { return m_file.flush(); }

private:
    QFile m_file;
};

class FileSource final : public ByteSource
{
public:
    explicit FileSource(const QString &path)
        : m_file(path)
    {
        EXPECT_TRUE(m_file.open(QFile::ReadOnly));
    }
    qint64 read(void *buffer, qint64 n) override
    {
        return m_file.read(static_cast<char *>(buffer), n);
    }
    qint64 size() override { return m_file.size(); }
    bool seek(qint64 offset) override { return m_file.seek(offset); }

private:
    QFile m_file;
};

// Python unpacks 4 GiB in a third of the time of unzip.
void expectGoodForPython(const QString &path)
{
    QProcess process;
    process.start(u"python3"_s, {u"-m"_s, u"zipfile"_s, u"-t"_s, path});
    ASSERT_TRUE(process.waitForFinished(-1));
    EXPECT_EQ(process.exitCode(), 0) << process.readAll().toStdString();
}

TEST(LargePackage, MembersMayGrowBeyondFourGiB)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"large.zip"_s);
    const QByteArray piece = QByteArray("<row><c><v>1</v></c></row>").repeated(40'000);
    qint64 written = 0;
    {
        FileSink sink(path);
        PackageWriter writer(sink);
        ASSERT_TRUE(writer.openMember("xl/worksheets/sheet1.xml"));
        for (; written <= kFourGiB; written += piece.size()) {
            ASSERT_TRUE(writer.write(piece));
        }
        ASSERT_TRUE(writer.closeMember());
        ASSERT_TRUE(writer.openMember("after"));
        ASSERT_TRUE(writer.write("small"));
        ASSERT_TRUE(writer.closeMember());
        ASSERT_TRUE(writer.close());
    }
    FileSource source(path);
    const auto reader = PackageReader::open(source);
    ASSERT_TRUE(reader);
    EXPECT_EQ((*reader)->members()[0].size, written);
    EXPECT_EQ(*(*reader)->readWhole("after"), "small");
    EXPECT_EQ((*reader)->readWhole("xl/worksheets/sheet1.xml").fault().code, Error::TooLarge);
    const auto stream = (*reader)->openStream("xl/worksheets/sheet1.xml");
    ASSERT_TRUE(stream);
    ASSERT_TRUE((*stream)->seek(written - 26));
    QByteArray row(27, '\0');
    EXPECT_EQ(readFully(**stream, row.data(), row.size()), 26);
    EXPECT_EQ(row.left(26), piece.right(26));
    expectGoodForPython(path);
}

// A file in memory that does not store large writes of zeros.
class SparseFile final : public ByteSink
{
public:
    bool write(const void *bytes, qint64 n) override
    {
        const QByteArrayView view(static_cast<const char *>(bytes), n);
        if (n < 65'536 || std::any_of(view.begin(), view.end(), [](char c) { return c != 0; })) {
            for (qint64 i = 0; i < n; ++i) {
                m_bytes[m_position + i] = view[i];
            }
        }
        m_position += n;
        m_size = std::max(m_size, m_position);
        return true;
    }
    bool seek(qint64 offset) override
    {
        m_position = offset;
        return true;
    }
    qint64 position() const override { return m_position; }
    bool flush() override { return true; }

    class Source;

private:
    std::map<qint64, char> m_bytes;
    qint64 m_position = 0;
    qint64 m_size = 0;
};

class SparseFile::Source final : public ByteSource
{
public:
    explicit Source(const SparseFile &file)
        : m_file(file)
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        n = std::min(n, m_file.m_size - m_position);
        std::memset(buffer, 0, static_cast<size_t>(n));
        const auto end = m_file.m_bytes.lower_bound(m_position + n);
        for (auto it = m_file.m_bytes.lower_bound(m_position); it != end; ++it) {
            static_cast<char *>(buffer)[it->first - m_position] = it->second;
        }
        m_position += n;
        return n;
    }
    qint64 size() override { return m_file.m_size; }
    bool seek(qint64 offset) override
    {
        m_position = offset;
        return offset <= m_file.m_size;
    }

private:
    const SparseFile &m_file;
    qint64 m_position = 0;
};

// A package of one stored member of zeros, larger than 4 GiB in the file itself.
void writeStoredZeros(SparseFile &file, qint64 pieces, const QByteArray &piece)
{
    Member member{.name = "zeros", .size = pieces * piece.size()};
    member.compressedSize = member.size;
    for (qint64 i = 0; i < pieces; ++i) {
        member.crc = deflate::crc32(member.crc, {piece.data(), size_t(piece.size())});
    }
    const auto put = [&file](const QByteArray &bytes) { file.write(bytes.data(), bytes.size()); };
    put(localHeader(member));
    for (qint64 i = 0; i < pieces; ++i) {
        put(piece);
    }
    QByteArray directory;
    const qint64 offset = file.position();
    appendCentralEntry(member, directory);
    put(directory + endRecords(1, offset, directory.size()));
}

TEST(LargePackage, CopiesAndOffsetsMayExceedFourGiB)
{
    const QByteArray piece(1 << 20, '\0');
    SparseFile original;
    writeStoredZeros(original, 4100, piece);
    SparseFile::Source source(original);
    const auto reader = PackageReader::open(source);
    ASSERT_TRUE(reader);

    SparseFile copy;
    PackageWriter writer(copy);
    ASSERT_TRUE(writer.copyRaw(**reader, (*reader)->members()[0]));
    ASSERT_TRUE(writer.openMember("after"));
    ASSERT_TRUE(writer.write("small"));
    ASSERT_TRUE(writer.closeMember());
    ASSERT_TRUE(writer.close());
    SparseFile::Source copySource(copy);
    const auto back = PackageReader::open(copySource);
    ASSERT_TRUE(back);
    EXPECT_EQ((*back)->members()[0].compressedSize, 4100 * piece.size());
    EXPECT_GT((*back)->members()[1].headerOffset, kFourGiB);
    EXPECT_EQ(*(*back)->readWhole("after"), "small");
    const auto raw = (*back)->openRaw((*back)->members()[0]);
    ASSERT_TRUE(raw);
    auto chunk = (*raw)->next();
    while (chunk && !chunk->isEmpty()) {
        chunk = (*raw)->next();
    }
    EXPECT_TRUE(chunk);
}

TEST(LargePackage, MoreThan65535MembersReadBack)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"many.zip"_s);
    constexpr int kMembers = 70'000;
    {
        FileSink sink(path);
        PackageWriter writer(sink);
        const RawMember member = deflateMember("", "x");
        for (int i = 0; i < kMembers; ++i) {
            RawMember named = member;
            named.member.name = "m" + QByteArray::number(i);
            ASSERT_TRUE(writer.addRaw(named));
        }
        ASSERT_TRUE(writer.close());
    }
    FileSource source(path);
    const auto reader = PackageReader::open(source);
    ASSERT_TRUE(reader);
    EXPECT_EQ((*reader)->members().size(), size_t(kMembers));
    EXPECT_EQ(*(*reader)->readWhole("m69999"), "x");
    expectGoodForPython(path);
}

} // namespace
} // namespace corvanta::zip
