// Reads the archives of the corpus, damaged and intact, and seeks in them.
#include "corvanta/log.h"
#include "io/input/archive_sources.h"
#include "io/input/input_name.h"
#include "tests/support/corpus.h"

#include <QCryptographicHash>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <zlib.h>

#include <random>

using namespace corvanta;
using namespace corvanta::input;

namespace {

Opened openByName(const QString &name)
{
    const InputName parts = parseInputName(name);
    switch (parts.kind) {
    case Kind::Rar:
        return openRar(parts.path);
    case Kind::Gzip:
        return openGzipFile(nullptr, parts.path);
    case Kind::Zip:
        return openZipMember(parts.path, parts.member);
    default:
        return openCompressFile(nullptr, parts.path);
    }
}

struct Content
{
    bool isOpen = false;
    bool isWhole = false;
    qint64 size = 0;
    QByteArray hash; // 16 digits, as in the corpus' manifest
    QString failure;
};

Content readAll(InputSource &source, qint64 pieceBytes)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    QByteArray piece(pieceBytes, '\0');
    Content content{true};
    qint64 got = 0;
    while ((got = source.read(piece.data(), pieceBytes)) > 0) {
        hash.addData(QByteArrayView(piece).first(got));
        content.size += got;
    }
    content.isWhole = got == 0;
    content.hash = hash.result().toHex().left(16);
    content.failure = source.failure();
    return content;
}

Content readAll(const QString &name, qint64 pieceBytes = 100'000)
{
    auto source = openByName(name);
    return source ? readAll(**source, pieceBytes) : Content{.failure = source.fault().detail};
}

QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

QString writeTemporary(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    QFile file(dir.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    return file.fileName();
}

QByteArray gzipped(const QByteArray &bytes)
{
    z_stream z{};
    EXPECT_EQ(deflateInit2(&z, 6, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY), Z_OK);
    QByteArray out(bytes.size() + 100, '\0');
    z.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(bytes.data()));
    z.avail_in = static_cast<uInt>(bytes.size());
    z.next_out = reinterpret_cast<Bytef *>(out.data());
    z.avail_out = static_cast<uInt>(out.size());
    EXPECT_EQ(deflate(&z, Z_FINISH), Z_STREAM_END);
    out.truncate(static_cast<qsizetype>(z.total_out));
    deflateEnd(&z);
    return out;
}

} // namespace

TEST(InputName, KindsAreTestedInOrder)
{
    struct Case
    {
        const char *name;
        Kind kind;
        const char *path;
        const char *member;
    };
    const Case cases[] = {
        {"a.rar", Kind::Rar, "a.rar", ""},
        {"b.zip@a.rar", Kind::Rar, "b.zip@a.rar", ""},
        {"a.gz", Kind::Gzip, "a.gz", ""},
        {"b.zip@a.gz", Kind::Gzip, "b.zip@a.gz", ""},
        {"a.zip", Kind::Zip, "a.zip", ""},
        {"d/a.zip@inner/a.json", Kind::Zip, "d/a.zip", "inner/a.json"},
        {"a.zip@b.zip@c", Kind::Zip, "a.zip", "b.zip@c"},
        {"a.zip@b.Z", Kind::Zip, "a.zip", "b.Z"},
        {"a.zip@b.xlsx@c", Kind::Zip, "a.zip", "b.xlsx@c"},
        {"book.xlsx@xl/workbook.xml", Kind::Zip, "book", "xl/workbook.xml"},
        {"b.xlsx@c.zip", Kind::Zip, "b.xl", "c.zip"},
        {"a.Z", Kind::Compress, "a.Z", ""},
        {"a.RAR", Kind::Plain, "a.RAR", ""},
        {"a.GZ", Kind::Plain, "a.GZ", ""},
        {"a.z", Kind::Plain, "a.z", ""},
        {"book.xlsx", Kind::Plain, "book.xlsx", ""},
        {"", Kind::Plain, "", ""},
    };
    for (const Case &c : cases) {
        const InputName parts = parseInputName(QString::fromLatin1(c.name));
        EXPECT_EQ(parts.kind, c.kind) << c.name;
        EXPECT_EQ(parts.path, QString::fromLatin1(c.path)) << c.name;
        EXPECT_EQ(parts.member, QString::fromLatin1(c.member)) << c.name;
    }
}

TEST(InputCorpus, ArchivesUnpackToTheirContent)
{
    CORVANTA_NEEDS_CORPUS();
    struct Case
    {
        const char *name;
        qint64 size;
        const char *hash;
    };
    const Case cases[] = {
        {"Z/bla.tar.Z", 10240, "8e081a961b6a97f6"},
        {"Z/dbase_83_b16.dbf.Z", 54449, "022bd66f945205e3"},
        {"Z/github_events.json.Z", 65132, "c9eebb2cf2d46649"},
        {"Z/seattle-weather_b11.csv.Z", 48219, "0845078a290b48e3"},
        {"Z/seattle-weather_b12.csv.Z", 48219, "0845078a290b48e3"},
        {"Z/test_archive_string_conversion.txt.Z", 363470, "8e0fe1220225dc85"},
        {"Z/test_compat_mac-1.tar.Z", 20480, "536fae70562ec583"},
        {"Z/test_read_format_iso_rockridge_new.iso.Z", 12707840, "58bf69ed204265a2"},
        {"Z/test_read_format_raw.data.Z", 4, "b5bb9d8014a0f9b1"},
        {"gz/64MiB_in_160KB.gz", 67108864, "b3c6c90ee0f7f06e"},
        {"gz/example_rn.ndjson.gz", 182, "c4759d22b478254c"},
        {"gz/github_events.json.gz", 65132, "c9eebb2cf2d46649"},
        {"gz/lorem-ipsum.txt.gz", 144060, "a00c4f3f36515c96"},
        {"gz/members.gz", 14, "354a2c81e652af74"},
        {"gz/multiple.gz", 2, "fb8e20fc2e4c3f24"},
        {"gz/tips.csv.gz", 7943, "22415aaf1e56e675"},
        {"gz/two_members.csv.gz", 48219, "0845078a290b48e3"},
        {"zip/COMPRESS-227.zip", 0, "e3b0c44298fc1c14"},
        {"zip/dbf_with_memo.zip", 54449, "022bd66f945205e3"},
        {"zip/dir_first.zip", 18, "fcf30b99ad097a0a"},
        {"zip/dir_then_xml.zip", 1030, "d782a4b91ed41c96"},
        {"zip/inner_members.zip", 11356, "d43b56b4c1ed2712"},
        {"zip/inner_members.zip@INNER/A.json", 11356, "d43b56b4c1ed2712"},
        {"zip/libzip_zip64.zip", 2, "87428fc522803d31"},
        {"zip/mixed.zip", 48891, "f283b70fa20d6863"},
        {"zip/test_read_format_zip_filename_utf8_jp.zip", 5, "185f8db32271fe25"},
        {"zip/test_read_format_zip_length_at_end.zip", 6, "5891b5b522d5df08"},
        {"zip/test_read_format_zip_nested.zip", 211, "8b81fdb05bed9647"},
        {"zip/test_read_format_zip_padded1.zip", 6, "fa02361e2f61ea34"},
        {"zip/test_read_format_zip_zip64a.zip", 6, "fa02361e2f61ea34"},
        {"zip/tsframe.json.zip", 1081, "cb0e152a772587de"},
        {"zip/two_xml_members.zip@test1.xml", 610, "506c377ae6116a19"},
        {"zip/utf8-winzip-test.zip", 19, "61c1bc32dcf7d0ce"},
        {"rar/rar3-solid.rar", 2048, "2eaebb4c18cdef7f"},
        {"rar/rar3-subdirs.rar", 6, "67ee5478eaadb034"},
        {"rar/rar3_compress_normal.rar", 20111, "ee16390e87152d7d"},
        {"rar/rar5-crc.rar", 2048, "2eaebb4c18cdef7f"},
        {"rar/rar5-solid.rar", 2048, "2eaebb4c18cdef7f"},
        {"rar/rar5_64MiB_in_3KB.rar", 67108864, "b3c6c90ee0f7f06e"},
        {"rar/seektest.rar", 2048, "2eaebb4c18cdef7f"},
        {"rar/stored_rar4_people.rar", 173, "ab8795cbeb44420f"},
        {"rar/stored_rar5_github_events.rar", 65132, "c9eebb2cf2d46649"},
        {"rar/stored_rar5_json_then_csv.rar", 11356, "d43b56b4c1ed2712"},
        {"rar/test_read_format_rar5_blake2.rar", 814, "1e98540238b2b13d"},
        {"rar/test_read_format_rar5_compressed.rar", 1200, "588870a2dade35c2"},
        {"rar/test_read_format_rar5_encrypted.rar", 18,
         "02dc86d8b326a1cd"}, // its first entry is plain
        {"rar/test_read_format_rar5_multiple_files.rar", 4096, "7d89f86f9f69d744"},
        {"rar/test_read_format_rar_multi_lzss_blocks.rar", 20131111, "49a84a381599f749"},
        {"rar/test_read_format_rar_noeof.rar", 20, "5a5f16e01faf8adf"},
        {"rar/test_read_format_rar_unicode.rar", 0, "e3b0c44298fc1c14"},
        {"rar/test_read_format_rar_windows.rar", 16, "2d45c5f87d1b6cef"},
        {"rar/testfile.rar3.rar", 12, "b2f51cd17b3cbe77"},
        {"rar/testfile.rar3.rr.rar", 12, "b2f51cd17b3cbe77"},
        {"rar/testfile.rar5.rar", 12, "b2f51cd17b3cbe77"},
    };
    for (const Case &c : cases) {
        const Content content =
            readAll(test::corpusFile(QStringLiteral("archives/") + QString::fromUtf8(c.name)));
        EXPECT_TRUE(content.isWhole) << c.name << ": " << content.failure.toStdString();
        EXPECT_EQ(content.size, c.size) << c.name;
        EXPECT_EQ(content.hash, c.hash) << c.name;
    }
}

TEST(InputCorpus, DamagedArchivesFail)
{
    CORVANTA_NEEDS_CORPUS();
    const char *const neverOpen[] = {"Z/reserved_flag_bit5.json.Z",
                                     "zip/bogus.zip",
                                     "zip/empty-pkware.zip",
                                     "zip/test_read_format_zip_encryption_data.zip",
                                     "zip/testbzip2.zip",
                                     "zip/inner_members.zip@absent",
                                     "zip/no-such-file.zip",
                                     "rar/rar15-comment.rar",
                                     "rar/no-such-file.rar",
                                     "gz/no-such-file.gz",
                                     "Z/no-such-file.Z"};
    for (const char *name : neverOpen) {
        const Content content =
            readAll(test::corpusFile(QStringLiteral("archives/") + QString::fromUtf8(name)));
        EXPECT_FALSE(content.isOpen) << name;
    }
    const char *const neverWhole[] = {
        "rar/test_read_format_rar5_truncated_huff.rar", "rar/test_read_format_rar_invalid1.rar",
        "zip/incons-cdoffset.zip", "zip/test_read_format_zip_malformed1.zip"};
    for (const char *name : neverWhole) {
        const Content content =
            readAll(test::corpusFile(QStringLiteral("archives/") + QString::fromUtf8(name)));
        EXPECT_FALSE(content.isWhole) << name;
    }
}

TEST(InputCorpus, EveryTruncationOfAPackedFileFails)
{
    CORVANTA_NEEDS_CORPUS();
    const QTemporaryDir dir;
    const char *const names[] = {"gz/tips.csv.gz", "rar/stored_rar4_people.rar",
                                 "rar/rar3-subdirs.rar", "rar/test_read_format_rar5_compressed.rar",
                                 "zip/tsframe.json.zip"};
    for (const char *name : names) {
        const QString path =
            test::corpusFile(QStringLiteral("archives/") + QString::fromUtf8(name));
        const QByteArray whole = bytesOf(path);
        const qint64 fullSize = readAll(path).size;
        for (qsizetype n = 2; n < whole.size() - 1; n += 1 + whole.size() / 200) {
            const QString cut = writeTemporary(
                dir, QStringLiteral("cut.") + path.section(QLatin1Char('.'), -1), whole.first(n));
            const Content content = readAll(cut);
            // The bytes after the first entry of a RAR archive are not read.
            EXPECT_TRUE(!content.isWhole || content.size == fullSize) << name << " cut at " << n;
        }
    }
}

TEST(InputCorpus, FlippedBitsNeverGiveWrongBytesWithoutAFailure)
{
    CORVANTA_NEEDS_CORPUS();
    const QTemporaryDir dir;
    std::mt19937 random(7);
    const char *const names[] = {
        "gz/tips.csv.gz", "rar/rar3_compress_normal.rar", "rar/test_read_format_rar5_blake2.rar",
        "rar/test_read_format_rar5_compressed.rar", "zip/tsframe.json.zip"};
    for (const char *name : names) {
        const QString path =
            test::corpusFile(QStringLiteral("archives/") + QString::fromUtf8(name));
        const QByteArray whole = bytesOf(path);
        const QByteArray hash = readAll(path).hash;
        for (int i = 0; i < 200; ++i) {
            QByteArray bad = whole;
            bad[static_cast<qsizetype>(random() % static_cast<unsigned>(bad.size() - 10) + 10)] ^=
                static_cast<char>(1 << random() % 8);
            const Content content = readAll(writeTemporary(
                dir, QStringLiteral("bad.") + path.section(QLatin1Char('.'), -1), bad));
            EXPECT_TRUE(!content.isWhole || content.hash == hash) << name;
        }
    }
}

struct Warnings : LogSink
{
    void add(const LogMessage &message) override { texts << message.text; }
    QStringList texts;
};

TEST(Gzip, AcceptsWhatZlibsReaderAccepts)
{
    const QTemporaryDir dir;
    const QByteArray member = gzipped(QByteArray(100'000, 'x') + "end");
    QByteArray decorated = member; // all optional header fields
    decorated[3] = 2 + 4 + 8 + 16;
    decorated.insert(10, QByteArray("\x03\x00"
                                    "abc"
                                    "name\0comment\0"
                                    "\x00\x00",
                                    20));
    QByteArray wrongSize = member;
    wrongSize[wrongSize.size() - 1] ^= 1;
    struct Case
    {
        const char *what;
        QByteArray bytes;
        bool isWhole;
        qint64 size;
        const char *warning = "";
    };
    const Case cases[] = {
        {"empty file", {}, true, 0},
        {"not gzip: unchanged", "plain text", true, 10},
        {"one byte", "a", true, 1},
        {"optional fields", decorated, true, 100'003},
        {"two members", member + member, true, 200'006},
        {"bytes after the end", member + "junk", true, 100'003,
         "' ends before the file; what follows is not read (count: 4 bytes)"},
        {"zeros and a damaged header", member + QByteArray(3, '\0') + "\x1F" + member.sliced(2),
         true, 100'003, "not read (count: "},
        {"zeros after the end", member + QByteArray(1000, '\0'), true, 100'003},
        {"second member cut", member + member.first(member.size() / 2), false, -1},
        {"second member's header cut", member + member.first(7), false, -1},
        {"no trailer", member.chopped(8), false, -1},
        {"half of the magic number, which that reader reads as text", "\x1F", false, -1},
        {"size wrong", wrongSize, false, -1},
    };
    for (const Case &c : cases) {
        const QString path = writeTemporary(dir, QStringLiteral("t.gz"), c.bytes);
        for (const qint64 piece : {1'000'000, 999, 1}) {
            Warnings warnings;
            const LogScope scope({&warnings, {}});
            const Content content = readAll(path, piece);
            EXPECT_EQ(warnings.texts.size(), *c.warning == '\0' ? 0 : 1) << c.what;
            EXPECT_TRUE(warnings.texts.join(QString()).contains(QLatin1StringView(c.warning)))
                << c.what;
            EXPECT_EQ(content.isWhole, c.isWhole) << c.what;
            EXPECT_EQ(content.failure.isEmpty(), c.isWhole) << c.what;
            EXPECT_TRUE(c.size < 0 || content.size == c.size) << c.what << content.size;
        }
    }
}

TEST(InputSource, SeeksByReadingFromTheStart)
{
    CORVANTA_NEEDS_CORPUS();
    for (const char *name :
         {"gz/github_events.json.gz", "Z/github_events.json.Z", "rar/stored_rar5_github_events.rar",
          "zip/mixed.zip", "gz/two_members.csv.gz"}) {
        auto source =
            openByName(test::corpusFile(QStringLiteral("archives/") + QString::fromUtf8(name)));
        ASSERT_TRUE(source);
        const Content first = readAll(**source, 5000);
        QByteArray tail(1000, '\0');
        ASSERT_TRUE((*source)->seek(first.size - 1000)) << name;
        EXPECT_EQ(readFully(**source, tail.data(), 1000), 1000) << name;
        EXPECT_GE((*source)->progressPosition(), 1000) << name;
        ASSERT_TRUE((*source)->seek(0)) << name;
        EXPECT_EQ(readAll(**source, 333).hash, first.hash) << name;
        EXPECT_FALSE((*source)->seek(first.size + 1)) << name;
    }
}
