// The Thrift compact protocol, the records built on it, and the footer.
#include "codecs/parquet/metadata/footer.h"
#include "codecs/parquet/metadata/records.h"
#include "tests/support/sweeps.h"

#include <gtest/gtest.h>

#include <limits>

using namespace corvanta;
using namespace corvanta::parquet;

namespace {

std::span<const uchar> span(const QByteArray &bytes)
{
    return {reinterpret_cast<const uchar *>(bytes.constData()), static_cast<size_t>(bytes.size())};
}

FileMetaData sampleFile()
{
    FileMetaData file;
    file.version = 1;
    file.schema.resize(2);
    file.schema[0].name = "schema";
    file.schema[0].numChildren = 1;
    file.schema[1].name = "x";
    file.schema[1].type = kInt32;
    file.schema[1].logicalType.emplace().integer = IntType{8, false};
    file.numRows = 70000;
    RowGroup &group = file.rowGroups.emplace_back();
    group.numRows = 70000;
    group.sortingColumns.emplace().push_back({0, true, false});
    ColumnChunk &chunk = group.columns.emplace_back();
    chunk.fileOffset = 4;
    chunk.metaData = std::make_unique<ColumnMetaData>();
    chunk.metaData->encodings.assign(20, kPlain); // a list whose size does not fit its header
    chunk.metaData->pathInSchema = {"x"};
    chunk.metaData->totalUncompressedSize = std::numeric_limits<qint64>::min();
    chunk.metaData->statistics = std::make_unique<Statistics>();
    chunk.metaData->statistics->max = QByteArray("\x00\xff", 2);
    file.keyValueMetadata.emplace().push_back({"key", "value"});
    file.createdBy = "test";
    return file;
}

} // namespace

TEST(Thrift, NumbersHaveTheBytesOfTheProtocol)
{
    const std::tuple<qint64, QByteArray> cases[] = {
        {0, QByteArray(1, '\0')},
        {-1, "\x01"},
        {1, "\x02"},
        {-64, "\x7f"},
        {64, "\x80\x01"},
        {std::numeric_limits<qint64>::max(), "\xfe\xff\xff\xff\xff\xff\xff\xff\xff\x01"},
        {std::numeric_limits<qint64>::min(), "\xff\xff\xff\xff\xff\xff\xff\xff\xff\x01"},
    };
    for (const auto &[value, bytes] : cases) {
        CompactWriter out;
        EXPECT_EQ(out.writeI64(value), bytes.size());
        EXPECT_EQ(out.bytes(), bytes);
        CompactReader in(span(bytes));
        qint64 back = 0;
        EXPECT_EQ(in.readI64(&back), bytes.size());
        EXPECT_EQ(back, value);
    }
}

TEST(Thrift, FieldHeadersHoldBoolsAndDistantIds)
{
    CompactWriter out;
    out.writeStructBegin();
    out.writeFieldBegin(ThriftType::Bool, 3);
    EXPECT_EQ(out.writeBool(true), 1); // part of the field's header
    out.writeFieldBegin(ThriftType::Byte, 300);
    out.writeByte(-5);
    out.writeFieldBegin(ThriftType::Double, 2);
    out.writeDouble(0.25);
    out.writeFieldBegin(ThriftType::Bool, -13); // damaged files have such ids
    EXPECT_EQ(out.writeBool(false), 2);
    out.writeFieldStop();
    out.writeStructEnd();
    EXPECT_EQ(out.bytes().left(6), QByteArray("\x31\x03\xd8\x04\xfb\x07", 6));

    CompactReader in(span(out.bytes()));
    ThriftType type = ThriftType::Stop;
    qint16 id = 0;
    bool flag = false;
    qint8 byte = 0;
    double real = 0;
    in.readStructBegin();
    EXPECT_EQ(in.readFieldBegin(&type, &id), 1);
    EXPECT_EQ(in.readBool(&flag), 0);
    EXPECT_TRUE(flag && id == 3 && type == ThriftType::Bool);
    EXPECT_EQ(in.readFieldBegin(&type, &id), 3);
    EXPECT_EQ(in.readByte(&byte), 1);
    EXPECT_TRUE(byte == -5 && id == 300);
    EXPECT_EQ(in.readFieldBegin(&type, &id), 2);
    EXPECT_EQ(in.readDouble(&real), 8);
    EXPECT_TRUE(real == 0.25 && id == 2);
    EXPECT_EQ(in.readFieldBegin(&type, &id), 2);
    EXPECT_EQ(in.readBool(&flag), 0);
    EXPECT_TRUE(!flag && id == -13);
    EXPECT_EQ(in.readFieldBegin(&type, &id), 1);
    EXPECT_EQ(type, ThriftType::Stop);
}

TEST(Thrift, MessageHeadersReadBackOrFail)
{
    CompactWriter out;
    EXPECT_EQ(out.writeMessageBegin("call", 1, 300), 9);
    QByteArray name;
    qint8 type = 0;
    qint32 sequence = 0;
    CompactReader in(span(out.bytes()));
    EXPECT_EQ(in.readMessageBegin(&name, &type, &sequence), 9);
    EXPECT_TRUE(name == "call" && type == 1 && sequence == 300);
    for (const char *bad : {"\x81\x21\x01\x00", "\x82\x22\x01\x00", "\x82"}) {
        const QByteArray bytes(bad);
        CompactReader reader(span(bytes));
        EXPECT_EQ(reader.readMessageBegin(&name, &type, &sequence), -1);
    }
}

TEST(Thrift, SkipsValuesOfEveryType)
{
    const std::tuple<ThriftType, QByteArray> cases[] = {
        {ThriftType::Bool, "\x01"},
        {ThriftType::Double, QByteArray(8, 'x')},
        {ThriftType::I32, "\x80\x01"},
        {ThriftType::String, "\x03"
                             "abc"},
        {ThriftType::Struct, QByteArray("\x15\x02\x18\x01"
                                        "a\x00",
                                        6)},
        {ThriftType::List, QByteArray("\x2c\x15\x02\x00\x00", 5)}, // two structs
        {ThriftType::Map, "\x02\x58\x02\x01"
                          "a\x04\x01"
                          "b"}, // i32 -> string
        {ThriftType::Map, QByteArray(1, '\0')},
        {ThriftType(1), ""},
        {ThriftType(16), ""},
    };
    for (const auto &[type, bytes] : cases) {
        const QByteArray followed = bytes + "rest";
        CompactReader in(span(followed));
        EXPECT_EQ(in.skip(type), bytes.size()) << int(type);
        CompactReader cut(
            span(bytes).first(static_cast<size_t>(std::max<qsizetype>(bytes.size() - 1, 0))));
        EXPECT_TRUE(bytes.isEmpty() || cut.skip(type) == -1) << int(type);
    }
}

TEST(Thrift, SizesAreCheckedAgainstTheAvailableBytes)
{
    ThriftType element = ThriftType::Stop;
    qint32 size = 0;
    QByteArray text;
    const QByteArray list("\xf5\xff\xff\xff\xff\x07", 6);
    EXPECT_EQ(CompactReader(span(list)).readListBegin(&element, &size), -1);
    const QByteArray longText("\xff\xff\xff\xff\x0f"
                              "abc",
                              8);
    EXPECT_EQ(CompactReader(span(longText)).readBinary(&text), -1);
    const QByteArray endless(20, '\xff');
    qint64 number = 0;
    EXPECT_EQ(CompactReader(span(endless)).readI64(&number), -1);
    const QByteArray deep(100000, '\x1c'); // a struct in a struct in ...
    EXPECT_EQ(CompactReader(span(deep)).skip(ThriftType::Struct), -1);
    const QByteArray lists(100000, '\x19');
    EXPECT_EQ(CompactReader(span(lists)).skip(ThriftType::List), -1);

    const QByteArray five = "\x55\x02\x02\x02\x02\x02";
    CompactReader limited(span(five));
    limited.setLimits(4, 0);
    EXPECT_EQ(limited.readListBegin(&element, &size), -1);
    const QByteArray abc = "\x03"
                           "abc";
    CompactReader shortTexts(span(abc));
    shortTexts.setLimits(0, 2);
    EXPECT_EQ(shortTexts.readString(&text), -1);
}

TEST(Records, ReadBackAndRejectEveryTruncation)
{
    CompactWriter out;
    const auto written = writeRecord(out, sampleFile());
    ASSERT_TRUE(written);
    ASSERT_EQ(*written, out.bytes().size());
    CompactReader in(span(out.bytes()));
    FileMetaData back;
    ASSERT_EQ(*readRecord(in, back), out.bytes().size());
    EXPECT_EQ(back.rowGroups[0].columns[0].metaData->encodings.size(), 20U);
    EXPECT_TRUE(back.rowGroups[0].sortingColumns->at(0).descending);
    EXPECT_EQ(back.schema[1].logicalType->integer->bitWidth, 8);
    CompactWriter again;
    ASSERT_TRUE(writeRecord(again, back));
    EXPECT_EQ(again.bytes(), out.bytes());
    test::forEveryTruncation(out.bytes(), [](const QByteArray &cut) {
        CompactReader reader(span(cut));
        FileMetaData ignored;
        EXPECT_FALSE(readRecord(reader, ignored));
    });
}

TEST(Records, SkipUnknownFieldsAndRequireRequiredOnes)
{
    PageHeader header;
    // type 0, sizes 1 and 2, then field 100 of type list of structs
    const QByteArray known("\x15\x00\x15\x02\x15\x04", 6);
    const QByteArray unknown("\x09\xc8\x01\x1c\x15\x02\x00", 7);
    const QByteArray whole = known + unknown + '\0';
    EXPECT_EQ(*readRecord(*std::make_unique<CompactReader>(span(whole)), header), whole.size());
    EXPECT_EQ(header.compressedPageSize, 2);
    const QByteArray incomplete = known.left(4) + '\0';
    EXPECT_FALSE(readRecord(*std::make_unique<CompactReader>(span(incomplete)), header));
}

TEST(Footer, EveryKindOfDamageHasItsError)
{
    CompactWriter out;
    ASSERT_TRUE(writeRecord(out, sampleFile()));
    const auto withLength = [](const QByteArray &metaData, quint32 length) {
        const char bytes[] = {char(length), char(length >> 8), char(length >> 16),
                              char(length >> 24)};
        return metaData + QByteArray(bytes, 4) + "PAR1";
    };
    const auto size = static_cast<quint32>(out.bytes().size());
    const std::tuple<QByteArray, Error> bad[] = {
        {"PAR1PAR", Error::Unreadable},
        {withLength(out.bytes(), size).chopped(1) + "E", Error::BadFooter}, // encrypted
        {withLength(out.bytes(), size).chopped(1) + "2", Error::BadFooter},
        {withLength(out.bytes(), size + 1), Error::BadFooter},
        {withLength({}, 0xFFFFFFFF), Error::BadFooter},
        {withLength(out.bytes(), size - 1), Error::BadThrift},
        {withLength({}, 0), Error::BadThrift},
    };
    for (const auto &[bytes, code] : bad) {
        MemorySource source(bytes);
        const auto footer = readFooter(source);
        ASSERT_FALSE(footer);
        EXPECT_EQ(footer.fault().code, code);
    }
    const QByteArray good = withLength("bytes before the metadata " + out.bytes(), size);
    MemorySource source(good, 3); // in pieces
    EXPECT_TRUE(readFooter(source));
}
