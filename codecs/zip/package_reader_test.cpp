#include "base/bytes.h"
#include "codecs/zip/package_reader.h"
#include "codecs/zip/package_writer.h"
#include "codecs/zip/zip_format.h"
#include "tests/support/corpus.h"
#include "tests/support/sweeps.h"

#include <QCryptographicHash>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <functional>

namespace corvanta::zip {
namespace {

using namespace Qt::StringLiterals;

struct Part
{
    QByteArray name;
    QByteArray bytes;
};

const std::vector<Part> kParts = {{"[Content_Types].xml", "<Types>of some length</Types>"},
                                  {"xl\\sheet1.xml", QByteArray(5000, 'x') + "end"},
                                  {"empty", ""}};

QByteArray packageOf(const std::vector<Part> &parts)
{
    MemorySink sink;
    PackageWriter writer(sink);
    for (const Part &part : parts) {
        EXPECT_TRUE(writer.openMember(part.name));
        EXPECT_TRUE(writer.write(part.bytes));
        EXPECT_TRUE(writer.closeMember());
    }
    EXPECT_TRUE(writer.close());
    return sink.bytes();
}

// A stored member: the writer copies such members but never creates them.
RawMember storedMember(const QByteArray &name, const QByteArray &bytes)
{
    RawMember raw = deflateMember(name, bytes);
    raw.member.method = kStored;
    raw.member.compressedSize = bytes.size();
    raw.bytes = bytes;
    return raw;
}

QByteArray packageOf(const RawMember &raw)
{
    MemorySink sink;
    PackageWriter writer(sink);
    EXPECT_TRUE(writer.addRaw(raw));
    EXPECT_TRUE(writer.close());
    return sink.bytes();
}

struct Opened
{
    explicit Opened(QByteArrayView bytes, qint64 pieceBytes = -1)
        : source(bytes, pieceBytes)
    {
        auto result = PackageReader::open(source);
        if (result) {
            reader = std::move(*result);
        } else {
            error = result.fault().code;
            detail = result.fault().detail;
        }
    }
    MemorySource source;
    std::unique_ptr<PackageReader> reader;
    Error error = {};
    QString detail;
};

TEST(PackageReader, ReadsWhatWasWritten)
{
    const QByteArray package = packageOf(kParts);
    test::forEverySplit([&](int piece) {
        Opened package1(package, piece);
        ASSERT_TRUE(package1.reader);
        ASSERT_EQ(package1.reader->members().size(), kParts.size());
        for (size_t i = 0; i < kParts.size(); ++i) {
            EXPECT_EQ(package1.reader->members()[i].name, kParts[i].name);
            EXPECT_EQ(package1.reader->members()[i].size, kParts[i].bytes.size());
            const auto bytes = package1.reader->readWhole(kParts[i].name);
            ASSERT_TRUE(bytes);
            EXPECT_EQ(*bytes, kParts[i].bytes);
            EXPECT_EQ(bytes->data()[bytes->size()], '\0');
        }
    });
}

TEST(PackageReader, WholeReadsMatchNamesExactlyAndStreamsTryBackslashes)
{
    const QByteArray package = packageOf(kParts);
    Opened opened(package);
    for (const char *name : {"xl/sheet1.xml", "EMPTY", ""}) {
        EXPECT_EQ(opened.reader->readWhole(name).fault().code, Error::NoMember);
    }
    EXPECT_EQ(opened.reader->openStream("xl/sheet2.xml").fault().code, Error::NoMember);
    const auto stream = opened.reader->openStream("xl/sheet1.xml");
    ASSERT_TRUE(stream);
    QByteArray bytes(6000, '\0');
    bytes.resize(readFully(**stream, bytes.data(), bytes.size()));
    EXPECT_EQ(bytes, kParts[1].bytes);
}

TEST(PackageReader, StreamsSeekAndShareTheSource)
{
    const QByteArray package = packageOf(kParts);
    Opened opened(package);
    auto first = std::move(*opened.reader->openStream(opened.reader->members()[0]));
    auto second = std::move(*opened.reader->openStream(opened.reader->members()[1]));
    char one[4];
    char other[4];
    for (const qint64 offset : {0, 10, 3, 25, 25}) {
        ASSERT_TRUE(first->seek(offset));
        ASSERT_TRUE(second->seek(offset + 4970));
        ASSERT_EQ(readFully(*first, one, 4), 4);
        ASSERT_EQ(readFully(*second, other, 4), 4);
        EXPECT_EQ(QByteArray(one, 4), kParts[0].bytes.mid(offset, 4));
        EXPECT_EQ(QByteArray(other, 4), kParts[1].bytes.mid(offset + 4970, 4));
    }
    EXPECT_FALSE(first->seek(30));
}

TEST(PackageReader, AcceptsStoredMembersAndBytesAroundThePackage)
{
    const QByteArray stored = packageOf(storedMember("a", "some bytes"));
    for (const QByteArray &bytes : {stored, "before" + stored, stored + "after"}) {
        Opened opened(bytes);
        ASSERT_TRUE(opened.reader);
        EXPECT_EQ(*opened.reader->readWhole("a"), "some bytes");
    }
}

TEST(PackageReader, ReadsMembersThatBeginWithBlocksWithoutContent)
{
    RawMember raw = deflateMember("a", "some bytes");
    raw.bytes.prepend(QByteArray("\0\0\0\xFF\xFF", 5).repeated(60'000)); // more than a chunk
    raw.member.compressedSize = raw.bytes.size();
    const QByteArray package = packageOf(raw);
    Opened opened(package);
    ASSERT_TRUE(opened.reader);
    EXPECT_EQ(*opened.reader->readWhole("a"), "some bytes");
}

// The result of reading a whole package: its content, or the fault.
QByteArray readAll(QByteArrayView bytes)
{
    Opened opened(bytes);
    if (!opened.reader) {
        return "unopened";
    }
    QByteArray content;
    for (const Member &member : opened.reader->members()) {
        const auto whole = opened.reader->readWhole(member);
        content += member.name + '=' + (whole ? *whole : QByteArray("fault")) + '\n';
    }
    return content;
}

TEST(PackageReader, RejectsTruncatedPackages)
{
    test::forEveryTruncation(packageOf(kParts),
                             [](const QByteArray &cut) { EXPECT_EQ(readAll(cut), "unopened"); });
}

// Whichever bit is wrong, no member is read with wrong bytes.
TEST(PackageReader, FlippedBitsNeverGiveWrongBytes)
{
    test::forEveryFlip(packageOf(kParts), [](const QByteArray &package) {
        Opened opened(package);
        for (const Part &part : kParts) {
            const auto whole = opened.reader ? opened.reader->readWhole(part.name)
                                             : Result<QByteArray, Error>(Fault{opened.error});
            if (whole) {
                EXPECT_EQ(*whole, part.bytes);
            }
        }
    });
}

TEST(PackageReader, RejectsFilesThatAreNotPackages)
{
    const QByteArray package = packageOf({{"a", "some bytes"}, {"b", "other bytes"}});
    const qsizetype end = package.size() - kEndBytes;
    const auto entry = package.indexOf("PK\1\2");
    const auto entry2 = package.indexOf("PK\1\2", entry + 1);
    struct Case
    {
        const char *what;
        qsizetype at;
        QByteArray bytes;
        const char *detail; // null: not a package at all
    };
    const Case cases[] = {
        {"disk number", end + 4, "\1", "part of a set of several files"},
        {"entry count", end + 10, "\3", "wrong number of entries"},
        {"directory too long", end + 12, "\xff\xff", "directory outside the file"},
        {"directory beyond the end", end + 16, "\xff\xff\xff\x7f", "directory outside the file"},
        {"zip64 without its locator", end + 16, "\xff\xff\xff\xff", "directory outside the file"},
        {"no entry", entry, "PK\5\6", "bad entry"},
        {"name longer than the directory", entry2 + 28, "\xff\xff", "bad entry"},
        {"comment longer than the directory", entry2 + 32, "\1", "bad entry"},
        {"member after the directory", entry2 + 42, "\xff\xff", "bad entry"},
        {"member over another", entry2 + 42, QByteArray("\0", 1), "members overlap"},
        {"member into the next", entry + 20, "\x40", "members overlap"},
        {"zip64 size without its field", entry + 24, "\xff\xff\xff\xff", "bad entry"},
        {"no end", end, "XX", nullptr},
    };
    for (const Case &bad : cases) {
        QByteArray bytes = package;
        bytes.replace(bad.at, bad.bytes.size(), bad.bytes);
        Opened opened(bytes);
        EXPECT_FALSE(opened.reader) << bad.what;
        EXPECT_EQ(opened.error, bad.detail ? Error::BadDirectory : Error::NotAPackage) << bad.what;
        EXPECT_EQ(opened.detail.toStdString(), bad.detail ? bad.detail : "") << bad.what;
    }
    QByteArray zip64 = package;
    zip64.insert(end, QByteArray("PK\6\7").leftJustified(20, '\0'));
    zip64.replace(zip64.size() - 6, 4, "\xff\xff\xff\xff");
    EXPECT_EQ(Opened(zip64).detail.toStdString(), "no zip64 end record");
}

TEST(PackageReader, RejectsMembersWithWrongFacts)
{
    struct Case
    {
        const char *what;
        std::function<void(RawMember &)> lie;
        Error error;
        const char *detail = "";
    };
    const Case cases[] = {
        {"encrypted", [](RawMember &r) { r.member.flags = 1; }, Error::Encrypted},
        {"method", [](RawMember &r) { r.member.method = 9; }, Error::UnknownMethod, "9"},
        {"bomb", [](RawMember &r) { r.member.size = 1 << 30; }, Error::BadSize,
         "more than deflate can say in so few bytes"},
        {"too long", [](RawMember &r) { r.member.size += 1; }, Error::BadSize},
        {"too short", [](RawMember &r) { r.member.size -= 1; }, Error::BadSize},
        {"checksum", [](RawMember &r) { r.member.crc ^= 1; }, Error::BadChecksum},
        {"no deflate", [](RawMember &r) { r.bytes.fill('\xff'); }, Error::BadData},
        {"cut", [](RawMember &r) { r.bytes.chop(1), r.member.compressedSize -= 1; }, Error::BadData,
         "the data ends too early"},
        {"stored sizes", [](RawMember &r) { r.member.method = kStored; }, Error::BadSize,
         "more than deflate can say in so few bytes"},
    };
    for (const Case &bad : cases) {
        RawMember raw = deflateMember("a", QByteArray(1000, 'a') + "some bytes");
        bad.lie(raw);
        QByteArray package = packageOf(raw);
        package[package.indexOf("PK\1\2") + 8] = static_cast<char>(raw.member.flags);
        Opened opened(package);
        ASSERT_TRUE(opened.reader) << bad.what;
        const auto whole = opened.reader->readWhole("a");
        ASSERT_FALSE(whole) << bad.what;
        EXPECT_EQ(whole.fault().code, bad.error) << bad.what;
        EXPECT_EQ(whole.fault().detail.toStdString(), bad.detail) << bad.what;
        MemorySink sink;
        PackageWriter writer(sink);
        const auto copied = writer.copyRaw(*opened.reader, opened.reader->members()[0]);
        ASSERT_FALSE(copied) << bad.what;
        EXPECT_EQ(copied.fault().code, bad.error) << bad.what;
        ASSERT_TRUE(writer.close());
        EXPECT_EQ(readAll(sink.bytes()), "") << bad.what;
    }
}

TEST(PackageReader, RejectsLocalHeadersThatMoveTheData)
{
    QByteArray package = packageOf({{"a", "some bytes"}, {"b", "other bytes"}});
    package[28] = 40; // extra bytes that reach into the next member
    Opened opened(package);
    EXPECT_EQ(opened.reader->readWhole("a").fault().code, Error::BadLocalHeader);
    EXPECT_EQ(*opened.reader->readWhole("b"), "other bytes");
}

class CountingSink final : public ByteSink
{
public:
    explicit CountingSink(int refused)
        : m_refused(refused)
    {
    }
    bool write(const void *bytes, qint64 n) override
    {
        return m_calls++ != m_refused && m_sink.write(bytes, n);
    }
    bool seek(qint64 offset) override { return m_sink.seek(offset); }
    qint64 position() const override { return m_sink.position(); }
    bool flush() override { return m_calls++ != m_refused; }
    const QByteArray &bytes() const { return m_sink.bytes(); }
    int calls() const { return m_calls; }

private:
    int m_refused;
    int m_calls = 0;
    MemorySink m_sink;
};

// Copies every member, up to the first failed call.
Result<void, Error> copyPackage(PackageReader &reader, ByteSink &sink)
{
    PackageWriter writer(sink);
    Result<void, Error> done;
    for (const Member &member : reader.members()) {
        done = done ? writer.copyRaw(reader, member) : done;
    }
    return done ? writer.close() : done;
}

// Refuses each write and flush of a copy in turn. Returns the bytes of the whole copy.
QByteArray checkRefusals(PackageReader &reader)
{
    CountingSink whole(-1);
    EXPECT_TRUE(copyPackage(reader, whole));
    for (int refused = 0; refused < whole.calls(); ++refused) {
        CountingSink sink(refused);
        const auto copied = copyPackage(reader, sink);
        EXPECT_TRUE(!copied && copied.fault().code == Error::WriteFailed) << refused;
    }
    return whole.bytes();
}

TEST(RawCopy, EveryFailedWriteIsReported)
{
    MemorySink big;
    PackageWriter writer(big);
    QByteArray noise(900'000, '\0');
    for (qsizetype i = 0; i < noise.size(); ++i) {
        noise[i] = static_cast<char>(qHash(i));
    }
    ASSERT_TRUE(writer.addRaw(storedMember("noise", noise)));
    ASSERT_TRUE(writer.addRaw(deflateMember("text", noise.toHex())));
    ASSERT_TRUE(writer.close());
    Opened opened(big.bytes());
    EXPECT_TRUE(checkRefusals(*opened.reader) == big.bytes());
}

TEST(RawCopy, StopsBetweenTwoChunks)
{
    const QByteArray package = packageOf(kParts);
    Opened opened(package);
    MemorySink sink;
    PackageWriter writer(sink);
    writer.stop();
    const auto copied = writer.copyRaw(*opened.reader, opened.reader->members()[0]);
    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.fault().code, Error::Stopped);
}

TEST(RawCopy, AFailedFlushIsReported)
{
    const QByteArray package = packageOf(storedMember("noise", QByteArray(6'000'000, 'n')));
    Opened opened(package);
    EXPECT_TRUE(checkRefusals(*opened.reader) == package);
}

// Files that are not zip files (a password makes a package an OLE file) or are truncated. All
// others must read completely.
const QStringList kNoPackages = {u"bug53475-password-is-pass.docx"_s, u"null_file.xlsx"_s,
                                 u"pass_protected.xlsx"_s, u"truncated62886.docx"_s};

class CorpusPackage : public testing::TestWithParam<const char *>
{
};

TEST_P(CorpusPackage, ReadsCompletelyAndCopiesByteForByte)
{
    CORVANTA_NEEDS_CORPUS();
    const QDir folder(corvanta::test::corpusFile(QLatin1StringView(GetParam())));
    int read = 0;
    for (const QString &name : folder.entryList(QDir::Files)) {
        SCOPED_TRACE(name.toStdString());
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QFile::ReadOnly));
        const QByteArray bytes = file.readAll();
        Opened opened(bytes);
        MemorySink sink;
        if (!opened.reader || !copyPackage(*opened.reader, sink)) {
            EXPECT_TRUE(kNoPackages.contains(name));
            continue;
        }
        EXPECT_FALSE(kNoPackages.contains(name));
        Opened copy(sink.bytes());
        ASSERT_TRUE(copy.reader);
        ASSERT_EQ(copy.reader->members().size(), opened.reader->members().size());
        for (size_t i = 0; i < opened.reader->members().size(); ++i) {
            const auto before = opened.reader->readRaw(opened.reader->members()[i]);
            const auto after = copy.reader->readRaw(copy.reader->members()[i]);
            ASSERT_TRUE(before && after);
            EXPECT_EQ(before->member.name, after->member.name);
            EXPECT_TRUE(before->bytes == after->bytes);
        }
        EXPECT_EQ(readAll(bytes), readAll(sink.bytes()));
        ++read;
    }
    EXPECT_GT(read, 0);
}

// Facts that another program reports about archives from many sources: "members=2; first=NAME ...
// first sha256=DIGITS".
TEST(PackageReader, EqualsTheFactsOfTheCorpus)
{
    CORVANTA_NEEDS_CORPUS();
    QFile manifest(corvanta::test::corpusFile(u"MANIFEST.tsv"_s));
    ASSERT_TRUE(manifest.open(QFile::ReadOnly));
    const QRegularExpression facts(
        u"^(archives/zip/[^\t]+)\t.*\tmembers=(\\d+); .*first (?:sha256=([0-9a-f]+)|not readable)"_s);
    int compared = 0;
    for (const QByteArray &line : manifest.readAll().split('\n')) {
        const QRegularExpressionMatch fact = facts.match(QString::fromUtf8(line));
        if (!fact.hasMatch()) {
            continue;
        }
        SCOPED_TRACE(fact.captured(1).toStdString());
        QFile file(corvanta::test::corpusFile(fact.captured(1)));
        ASSERT_TRUE(file.open(QFile::ReadOnly));
        const QByteArray bytes = file.readAll();
        Opened opened(bytes);
        const bool isReadable =
            opened.reader && opened.reader->readWhole(opened.reader->members()[0]);
        EXPECT_EQ(isReadable, !fact.captured(3).isEmpty() && !line.contains("method=12"));
        if (isReadable) {
            EXPECT_EQ(opened.reader->members().size(), fact.captured(2).toULongLong());
            const QByteArray content = *opened.reader->readWhole(opened.reader->members()[0]);
            const QByteArray hash =
                QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
            EXPECT_EQ(QString::fromLatin1(hash.left(fact.captured(3).size())), fact.captured(3));
            ++compared;
        }
    }
    EXPECT_GT(compared, 10);
}

INSTANTIATE_TEST_SUITE_P(Office, CorpusPackage, testing::Values("xlsx", "docx", "pptx", "charts"));

} // namespace
} // namespace corvanta::zip
