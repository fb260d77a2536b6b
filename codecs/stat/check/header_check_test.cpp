// The reasons for which the dictionaries of SPSS files and the catalogues of SAS are refused.
#include "codecs/stat/check/header_check.h"

#include <gtest/gtest.h>

using namespace corvanta;
using namespace corvanta::stat;

namespace {

/// The reason for which `check` refuses the bytes; empty if it does not.
std::string refusal(Result<void, Error> (*check)(ByteSource &), const QByteArray &bytes)
{
    MemorySource source(bytes);
    const Result<void, Error> checked = check(source);
    return checked ? std::string() : checked.fault().detail.toStdString();
}

/// A portable file with these records in its dictionary.
std::string porRefusal(const QByteArray &records)
{
    QByteArray characters(256, '0');
    characters.replace(64, 36, "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ");
    characters[126] = ' ';
    characters[127] = '.';
    characters[137] = '*';
    characters[142] = '/';
    return refusal(checkPor,
                   QByteArray(200, ' ') + characters + "SPSSPORTA8/202601016/000000" + records);
}

QByteArray int32s(std::initializer_list<quint32> numbers)
{
    QByteArray bytes;
    for (const quint32 number : numbers) {
        for (int shift = 0; shift < 32; shift += 8) {
            bytes += static_cast<char>(number >> shift & 0xFF);
        }
    }
    return bytes;
}

/// A system file, little-endian, with these records in its dictionary.
std::string savRefusal(const QByteArray &records)
{
    const QByteArray header = "$FL2" + QByteArray(60, ' ') + int32s({2});
    return refusal(checkSav, header.leftJustified(176, ' ') + records + int32s({999, 0}));
}

QByteArray savVariable(quint32 width, quint32 hasLabel = 0)
{
    return int32s({2, width, hasLabel, 0, 0, 0, 0x20202041, 0x20202020});
}

/// A catalogue of 32 bits, little-endian, with one format of two values.
struct Catalogue
{
    quint32 pages = 3;
    int nextPage = 0; // of the link before the block
    int nextPosition = 0;
    int blockBytes = 0; // that the link announces; 0: as many as there are
    int capacity = 2;
    int used = 2;
    char nameStart = 'F';
    int valueBytes = 24;
    int label = 1; // of the second value
    int labelBytes = 3;

    QByteArray bytes() const
    {
        constexpr int kPage = 4096;
        constexpr int kHeader = 1024;
        constexpr int kPosition = 64;
        QByteArray file(kHeader + 3 * kPage, '\0');
        file.replace(12, 4, "\xC2\xEA\x81\x63");
        file[37] = 1;
        put(&file, 196, {kHeader, kPage, pages});
        const int entry = kHeader + kPage + 856;
        file.replace(entry, 4, "XLSR");
        put(&file, entry + 4, {3});
        put(&file, entry + 8, {kPosition});
        file[entry + 50] = 'O';
        const QByteArray block = this->block();
        const int at = kHeader + 2 * kPage + kPosition;
        const int announced = blockBytes > 0 ? blockBytes : static_cast<int>(block.size());
        put(&file, at, {quint32(nextPage), quint32(nextPosition | announced << 16)});
        file.replace(at + 16, block.size(), block);
        return file;
    }

private:
    static void put(QByteArray *bytes, int at, std::initializer_list<quint32> numbers)
    {
        const QByteArray words = int32s(numbers);
        bytes->replace(at, words.size(), words);
    }
    QByteArray block() const
    {
        QByteArray block(106, '\0');
        block[8] = nameStart;
        put(&block, 38, {quint32(capacity), quint32(used)});
        for (int i = 0; i < 2; ++i) {
            QByteArray value(6 + 24, '\0');
            value[2] = static_cast<char>(i == 0 ? 24 : valueBytes);
            value[10] = static_cast<char>(i == 0 ? 0 : label);
            block += value;
        }
        for (const int n : {3, labelBytes}) {
            block += QByteArray(8, '\0') + char(n & 0xFF) + char(n >> 8) + "abc" + '\0';
        }
        return block;
    }
};

} // namespace

TEST(HeaderCheck, RefusesACatalogueWithWrongLengths)
{
    EXPECT_EQ(refusal(checkCatalogue, Catalogue().bytes()), "");
    EXPECT_EQ(refusal(checkCatalogue, Catalogue{.used = 0, .labelBytes = 30000}.bytes()), "");
    EXPECT_EQ(refusal(checkCatalogue, Catalogue{.label = 0}.bytes()), "");
    const Catalogue wrong[] = {
        {.nextPage = 3, .nextPosition = 64}, // the block follows itself
        {.blockBytes = 60000},
        {.blockBytes = 150}, // ends before the second value
        {.capacity = 1},
        {.used = -1},
        {.capacity = 3},
        {.nameStart = '$', .valueBytes = 9},
        {.valueBytes = -1},
        {.label = 2},
        {.labelBytes = 60000},
    };
    for (const Catalogue &each : wrong) {
        EXPECT_EQ(refusal(checkCatalogue, each.bytes()),
                  "the lengths of its value labels are wrong")
            << &each - wrong;
    }
    EXPECT_EQ(refusal(checkCatalogue, Catalogue{.pages = 4}.bytes()),
              "the header announces 4 pages of 4096 bytes after 1024 bytes, but the file has 13312 "
              "bytes");
}

TEST(HeaderCheck, NamesTheFaultOfAPortableFile)
{
    const QByteArray variable = "70/1/A5/0/0/5/0/0/";
    EXPECT_EQ(porRefusal("41/" + variable + "81/C1/xF"), "");
    EXPECT_EQ(porRefusal("41/" + variable), "the file ends in the dictionary");
    EXPECT_EQ(porRefusal("\rF"), "a line ends in a carriage return alone");
    EXPECT_EQ(porRefusal("5" + QByteArray(101, '1') + "/F"),
              "a number has more than 100 characters");
    EXPECT_EQ(porRefusal("1-5/xF"), "the dictionary has a wrong count");
    EXPECT_EQ(porRefusal("1M6L/" + QByteArray(20001, 'x') + 'F'), "a text has 20001 bytes");
    EXPECT_EQ(porRefusal("C1/xF"), "a label precedes the variables");
    EXPECT_EQ(porRefusal("ZF"), "the dictionary has an unknown record");
    EXPECT_EQ(porRefusal("41/41/F"), "the number of variables occurs twice");
    EXPECT_EQ(porRefusal("41/" + variable + variable + 'F'),
              "there are more variables than the 1 that it announces");
    EXPECT_EQ(porRefusal("41/78G/1/A5/0/0/5/0/0/F"), "a variable has the width 256");
    EXPECT_EQ(porRefusal("81/F"), "a missing value precedes the variables");
    EXPECT_EQ(porRefusal("41/" + variable + "81/82/83/84/F"),
              "a variable has more than 3 missing values");
}

TEST(HeaderCheck, NamesTheFaultOfASystemFile)
{
    EXPECT_EQ(savRefusal(savVariable(0)), "");
    EXPECT_EQ(savRefusal(int32s({6, 100})), "the file ends in the dictionary");
    EXPECT_EQ(savRefusal(int32s({5})), "the dictionary has a record of the unknown type 5");
    EXPECT_EQ(savRefusal(savVariable(300)), "a variable has the width 300 and 0 missing values");
    EXPECT_EQ(savRefusal(savVariable(~0U)), "the first variable continues another one");
    EXPECT_EQ(savRefusal(savVariable(0, 1) + int32s({70000})),
              "a label of a variable has 70000 bytes");
    EXPECT_EQ(savRefusal(int32s({3, ~0U})), "a record announces -1 value labels");
    EXPECT_EQ(savRefusal(int32s({3, 0, 5, 0})), "value labels have no list of variables");
    EXPECT_EQ(savRefusal(savVariable(0) + int32s({3, 0, 4, 1, 2})),
              "value labels belong to the variable 2");
    EXPECT_EQ(savRefusal(int32s({7, 3, 0x10000, 0x10000})),
              "an extension record has 4294967296 bytes");
    EXPECT_EQ(savRefusal(int32s({7, 13, 1, 4}) + "ABCD"),
              "the record of long names is not a list of names");
    EXPECT_EQ(savRefusal(int32s({7, 21, 1, 4, 100})),
              "the record of labels of long texts has wrong lengths");
}
