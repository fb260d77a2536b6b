#include "codecs/opc/package_copy.h"
#include "tests/support/failing_sink.h"

#include <QByteArrayList>

#include <gtest/gtest.h>

namespace corvanta::opc {

namespace {

using Members = std::vector<std::pair<QByteArray, QByteArray>>;

const QByteArray kTypes = "<Types><Default Extension=\"xml\" ContentType=\"x\"/></Types>";
/// A document with one picture, as a word processor writes it, and a member stored twice.
const Members kTemplate{
    {"[Content_Types].xml", kTypes},
    {"_rels/.rels", "<Relationships><Relationship Id=\"rId1\" Type=\"o/officeDocument\" "
                    "Target=\"/word/document.xml\"/></Relationships>"},
    {"word\\Document.xml", "<document>%text%</document>"},
    {"word/_rels/Document.xml.rels", "<Relationships><Relationship Id=\"rId3\" Type=\"o/image\" "
                                     "Target=\"media/a.png\"/></Relationships>"},
    {"word/media/a.png", QByteArray(300'000, 'p')},
    {"docProps/app.xml", "<app/>"},
};

QByteArray packageOf(const Members &members)
{
    MemorySink sink;
    zip::PackageWriter writer(sink);
    for (const auto &[name, content] : members) {
        EXPECT_TRUE(writer.openMember(name) && writer.write(content) && writer.closeMember());
    }
    EXPECT_TRUE(writer.close());
    return sink.bytes();
}

/// A package in memory, open for reading.
struct Template
{
    explicit Template(const QByteArray &package)
        : bytes(package)
        , source(bytes)
        , reader(std::move(*zip::PackageReader::open(source)))
    {
    }
    QByteArray bytes;
    MemorySource source;
    std::unique_ptr<zip::PackageReader> reader;
};

Members membersOf(const QByteArray &package)
{
    Template read(package);
    Members members;
    for (const zip::Member &member : read.reader->members()) {
        members.emplace_back(member.name, *read.reader->readWhole(member));
    }
    return members;
}

bool always()
{
    return true;
}

/// Change the text, replace the picture, add another one, and write the relationships last.
Result<void, Error> fill(PackageCopy &copy, MemberWriter &output)
{
    const QByteArray document = copy.mainPart("none");
    auto text = copy.read(document);
    auto relationships = copy.readRelationships("word/Document.xml");
    const auto types = copy.contentTypes();
    if (!text || !relationships || !types) {
        return Fault<Error>{Error::Unexpected};
    }
    const QByteArray id =
        relationships->addPart(QStringLiteral("o/image"), targetOf(document, "word/media/b.png"));
    (*types)->declareExtension("png", "image/png");
    copy.put("word/media/a.png", "replaced below");
    copy.put("word/media/a.png", "new");
    copy.put("word/media/b.png", "added");
    const QByteArray member = copy.reserve(document);
    copy.reserve("word/_rels/Document.xml.rels");
    if (const auto copied = copy.copyMembers(output); !copied) {
        return copied;
    }
    if (const auto written = output.write(member, text->replace("%text%", id)); !written) {
        return written;
    }
    const auto written = output.write("word/_rels/Document.xml.rels", relationships->text());
    return written ? output.finish() : written;
}

} // namespace

TEST(PackageCopy, ChangesNothingButWhatIsPutOrReserved)
{
    Template source(packageOf(kTemplate));
    MemorySink sink;
    zip::PackageWriter writer(sink);
    MemberWriter output(writer);
    PackageCopy copy(*source.reader, always);
    ASSERT_TRUE(fill(copy, output));
    const Members expected{
        {"[Content_Types].xml",
         "<Types><Default Extension=\"xml\" ContentType=\"x\"/><Default Extension=\"png\" "
         "ContentType=\"image/png\"/></Types>"},
        kTemplate[1],
        kTemplate[5],
        {"word/media/a.png", "new"},
        {"word/media/b.png", "added"},
        {"word\\Document.xml", "<document>rId4</document>"},
        {"word/_rels/Document.xml.rels",
         "<Relationships><Relationship Id=\"rId3\" Type=\"o/image\" Target=\"media/a.png\"/>"
         "<Relationship Id=\"rId4\" Type=\"o/image\" Target=\"media/b.png\"/></Relationships>"}};
    EXPECT_EQ(membersOf(sink.bytes()), expected);
}

TEST(PackageCopy, ReadsPartsInPieces)
{
    Template source(packageOf(kTemplate));
    PackageCopy copy(*source.reader, always);
    QByteArray content;
    int pieces = 0;
    ASSERT_TRUE(copy.readInPieces("word/media/a.png", [&](QByteArrayView piece) {
        ++pieces;
        content += piece;
        return Result<void, Error>();
    }));
    EXPECT_EQ(content, kTemplate[4].second);
    EXPECT_GT(pieces, 1);
    const auto refused = copy.readInPieces("word/document.xml", [](QByteArrayView) {
        return Result<void, Error>(Fault<Error>{Error::Malformed});
    });
    EXPECT_EQ(refused.fault().code, Error::Malformed);
    EXPECT_EQ(refused.fault().detail, u"word/document.xml");
}

TEST(PackageCopy, FaultsNameTheMember)
{
    Members members = kTemplate;
    members[0].second = "<Types>";
    Template source(packageOf(members));
    PackageCopy copy(*source.reader, always);
    EXPECT_EQ(copy.read("word/none.xml").fault().code, Error::NoMember);
    EXPECT_EQ(copy.read("word/none.xml").fault().detail, u"word/none.xml");
    EXPECT_EQ(copy.contentTypes().fault().code, Error::Malformed);
    EXPECT_EQ(copy.contentTypes().fault().detail, u"[Content_Types].xml");
    EXPECT_EQ(copy.readRelationships("word/media/a.png").fault().code, Error::NoMember);

    QByteArray package = packageOf(kTemplate);
    const qsizetype app = package.indexOf("docProps/app.xml") + 16;
    package[app + 1] = static_cast<char>(package[app + 1] ^ 0x40); // in the compressed content
    Template damaged(package);
    MemorySink sink;
    zip::PackageWriter writer(sink);
    MemberWriter output(writer);
    const auto copied = PackageCopy(*damaged.reader, always).copyMembers(output);
    ASSERT_FALSE(copied);
    EXPECT_EQ(copied.fault().code, Error::Damaged);
    EXPECT_EQ(copied.fault().detail, u"docProps/app.xml");
    const auto again = output.write("_rels/.rels", {});
    EXPECT_EQ(again.fault().code, Error::NotAdded);
    EXPECT_EQ(again.fault().detail, u"_rels/.rels");
}

TEST(PackageCopy, StopsWhereverTheRunEnds)
{
    const QByteArray package = packageOf(kTemplate);
    for (int calls = 0; calls < static_cast<int>(kTemplate.size()); ++calls) {
        Template source(package);
        int left = calls;
        PackageCopy copy(*source.reader, [&] { return left-- > 0; });
        MemorySink sink;
        zip::PackageWriter writer(sink);
        MemberWriter output(writer);
        const auto copied = copy.copyMembers(output);
        ASSERT_FALSE(copied) << calls;
        EXPECT_EQ(copied.fault().code, Error::Stopped);
    }
}

TEST(PackageCopy, EachRefusedWriteIsFinal)
{
    const QByteArray package = packageOf(kTemplate);
    const auto run = [&](test::FailingSink &sink) {
        Template source(package);
        zip::PackageWriter writer(sink);
        MemberWriter output(writer);
        PackageCopy copy(*source.reader, always);
        return fill(copy, output);
    };
    test::FailingSink good([](int) { return false; });
    ASSERT_TRUE(run(good));
    for (int n = 0; n < good.calls(); ++n) {
        test::FailingSink full([n](int call) { return call >= n; });
        EXPECT_EQ(run(full).fault().code, Error::WriteFailed) << n;
        EXPECT_EQ(full.calls(), n + 1);
    }
}

} // namespace corvanta::opc
