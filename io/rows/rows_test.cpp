// Packing, keys, sorting and hashing of rows, against simple references.
#include "io/rows/packed_row.h"
#include "io/rows/row_key.h"
#include "io/rows/row_sorter.h"
#include "io/rows/row_table.h"
#include "io/spool/block_spool.h"
#include "tests/support/graph_folder.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <optional>
#include <random>

using namespace corvanta;
using namespace corvanta::rows;
using namespace Qt::StringLiterals;

namespace {

const uchar *textOf(RowBuffer &buffer, const QString &text)
{
    return text.isNull() ? cell::missingTextCell() : bytesFromQString(&buffer, text);
}

TEST(PackedRow, RestoresEveryCell)
{
    RowBuffer buffer(1 << 16);
    const ColumnTypes types{cell::Type::Text, cell::Type::Key, cell::Type::Double};
    for (const QString &text : {QString(), u""_s, u"a"_s, u"caf\u00E9"_s, u"\u0100 wide"_s,
                                QString(1, QChar(0)), QString(126, u'x'), QString(127, u'x'),
                                QString(70000, u'\u20AC'), QString(1, QChar(0xD800))}) {
        const uchar *const cells[] = {textOf(buffer, text), keyCell(&buffer, 7),
                                      doubleCell(&buffer, -0.5)};
        std::vector<char> packed(size_t(packedBytesAtMost(types, cells)));
        const char *const end = packRow(types, cells, packed.data());
        ASSERT_LE(end, packed.data() + packed.size());
        const uchar *restored[3];
        EXPECT_EQ(unpackRow(types, packed.data(), &buffer, restored), end);
        EXPECT_EQ(qStringFromBytes(restored[0]), text);
        EXPECT_EQ(qStringFromBytes(restored[0]).isNull(), text.isNull());
        EXPECT_EQ(loadNative<quint32>(restored[1]), 7U);
        EXPECT_EQ(loadNative<double>(restored[2]), -0.5);
    }
}

/// The keys of the values in the given order are in ascending order of their bytes.
void expectAscending(const KeyColumn &column, const std::vector<const uchar *> &cells)
{
    KeyEncoder encoder({column});
    std::string last;
    for (const uchar *cell : cells) {
        std::string key(size_t(encoder.bytesAtMost(&cell)), 0);
        char *const end = encoder.put(&cell, key.data());
        ASSERT_NE(end, nullptr);
        ASSERT_LE(end, key.data() + key.size());
        key.resize(size_t(end - key.data()));
        EXPECT_LT(last, key);
        last = key;
    }
}

TEST(RowKey, BytesAreInTheOrderOfTheValues)
{
    RowBuffer buffer(1 << 16);
    std::vector<const uchar *> numbers;
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {-infinity, -1e300, -2.0, -1e-300, 0.0, 1e-300, 1.0, 1.5, 1e300,
                               infinity, std::numeric_limits<double>::quiet_NaN()}) {
        numbers.push_back(doubleCell(&buffer, value));
    }
    std::vector<const uchar *> texts;
    for (const QString &text : {u""_s, QString(1, QChar(0)), u"\u0001"_s, u"a"_s, u"a\u0001"_s,
                                u"ab"_s, u"\u00E9"_s, u"\uFF5E"_s, u"\U0001F600"_s}) {
        texts.push_back(textOf(buffer, text));
    }
    std::vector<const uchar *> numberTexts;
    for (const QString &text : {u"-10"_s, u"9"_s, u"010"_s, u"1e3"_s}) {
        numberTexts.push_back(textOf(buffer, text));
    }
    const auto check = [](KeyColumn column, std::vector<const uchar *> cells,
                          const uchar *missing) {
        cells.push_back(missing);
        expectAscending(column, cells);
        // Descending: missing cells stay last.
        column.ascending = false;
        std::reverse(cells.begin(), cells.end() - 1);
        expectAscending(column, cells);
    };
    check({0, cell::Type::Double}, numbers, cell::missingDoubleCell());
    check({0, cell::Type::Text}, texts, cell::missingTextCell());
    check({0, cell::Type::Text, true, TextOrder::Numbers}, numberTexts, cell::missingTextCell());
    std::vector<const uchar *> words;
    for (const QString &text :
         {u"1969-12-31 23:59:59.9"_s, u"1970-01-01"_s, u"1970-01-01T00:00:00.5"_s,
          u"1970-01-01 00:00:01"_s, u"10:00"_s, u"1970-01-02T09:00"_s, u"1970-01-02 10:00:00.25"_s,
          u"FALSE"_s, u"false1"_s, u"true"_s}) {
        words.push_back(textOf(buffer, text));
    }
    check({0, cell::Type::Text, true, TextOrder::Words}, words, cell::missingTextCell());
}

std::string keyOf(const KeyColumn &column, const uchar *cell)
{
    KeyEncoder encoder({column});
    std::string key(size_t(encoder.bytesAtMost(&cell)), 0);
    key.resize(size_t(encoder.put(&cell, key.data()) - key.data()));
    return key;
}

TEST(RowKey, EqualWordsHaveEqualKeys)
{
    RowBuffer buffer(1 << 10);
    const auto wordKey = [&](const QString &text) {
        return keyOf({0, cell::Type::Text, true, TextOrder::Words}, textOf(buffer, text));
    };
    EXPECT_EQ(wordKey(u"2026-01-31"_s), wordKey(u"2026-01-31T00:00Z"_s));
    EXPECT_EQ(wordKey(u"2026-01-31 10:00"_s), wordKey(u"2026-01-31T10:00:00.0"_s));
    EXPECT_EQ(wordKey(u"10:00"_s), wordKey(u"10:00:00"_s));
    EXPECT_EQ(wordKey(u"TRUE"_s), wordKey(u"true"_s));
    EXPECT_NE(wordKey(u"\u00C4"_s), wordKey(u"\u00E4"_s)); // only letters of ASCII
}

TEST(RowKey, EqualNumbersOfAllTypesHaveEqualKeys)
{
    RowBuffer buffer(1 << 10);
    const std::string key = keyOf({0, cell::Type::Key}, keyCell(&buffer, 7));
    EXPECT_EQ(key, keyOf({0, cell::Type::Double}, doubleCell(&buffer, 7)));
    EXPECT_EQ(key,
              keyOf({0, cell::Type::Text, true, TextOrder::Numbers}, textOf(buffer, u"7.0"_s)));
    EXPECT_EQ(keyOf({0, cell::Type::Double}, doubleCell(&buffer, 0.0)),
              keyOf({0, cell::Type::Double}, doubleCell(&buffer, -0.0)));
    const uchar *const text = textOf(buffer, u"x"_s);
    KeyEncoder encoder({{0, cell::Type::Text, true, TextOrder::Numbers}});
    char room[64];
    EXPECT_EQ(encoder.put(&text, room), nullptr);
    EXPECT_EQ(encoder.failedColumn(), 0);
}

void addRow(RowSorter &sorter, const std::string &key, const std::string &row)
{
    char *const room = sorter.room(qsizetype(key.size() + row.size()));
    std::memcpy(room, key.data(), key.size());
    std::memcpy(room + key.size(), row.data(), row.size());
    ASSERT_TRUE(sorter.commit(qsizetype(key.size()), qsizetype(row.size())));
}

/// Rows with few different keys, some of them long, sorted within `memoryBytes`.
void checkSort(int rows, qint64 memoryBytes)
{
    std::mt19937 random(7);
    RowSorter sorter({.memoryBytes = memoryBytes});
    std::multimap<std::string, std::string> expected; // keeps the order of equal keys
    for (int i = 0; i < rows; ++i) {
        const auto number = random();
        std::string key = std::to_string(number % 300);
        key.insert(0, number % 3 == 0 ? 20 : 1, 'k');
        key += '\0';
        addRow(sorter, key, "row " + std::to_string(i));
        expected.emplace(key, "row " + std::to_string(i));
    }
    ASSERT_TRUE(sorter.finish());
    for (const auto &[key, row] : expected) {
        const auto next = sorter.next();
        ASSERT_TRUE(next && *next);
        ASSERT_EQ(**next, row);
    }
    const auto end = sorter.next();
    EXPECT_TRUE(end && !*end);
}

TEST(RowSorter, SortsInMemoryAndThroughRuns)
{
    checkSort(0, 1 << 20);
    checkSort(1, 1);
    checkSort(5000, 1 << 20);
    checkSort(5000, 10000);
    checkSort(3000, 1); // a run per row: runs are merged before the end
}

TEST(RowSorter, ReportsAFolderThatDoesNotExist)
{
    qputenv("TMPDIR", "/nowhere");
    RowSorter sorter({.memoryBytes = 1});
    char *const room = sorter.room(2);
    room[0] = room[1] = 'x';
    EXPECT_FALSE(sorter.commit(1, 1));
    EXPECT_EQ(sorter.error().number, ENOENT);
    EXPECT_EQ(sorter.folder(), u"/nowhere"_s);
    qunsetenv("TMPDIR");
}

TEST(BlockSpool, ARetryWritesABlockThatWasCutAgain)
{
    std::optional<test::FileSizeLimit> full;
    BlockSpool spool({.memoryBytes = 0, .retryWrite = [&] {
                          full.reset();
                          return true;
                      }});
    std::string block;
    for (int i = 0; i < 5000; ++i) {
        block += std::to_string(i);
    }
    full.emplace(block.size() * 3 / 2);
    ASSERT_TRUE(spool.put(block));
    ASSERT_TRUE(spool.put(block));
    ASSERT_TRUE(spool.rewind());
    for (int i = 0; i < 2; ++i) {
        const auto read = spool.next();
        ASSERT_TRUE(read && *read);
        EXPECT_EQ(**read, block);
    }
}

TEST(RowTable, FindsAllRowsOfAKeyInOrder)
{
    RowTable table;
    for (int i = 0; i < 10000; ++i) {
        const std::string key = std::to_string(i % 1000);
        std::memcpy(table.room(qsizetype(key.size())), key.data(), key.size());
        table.commit(qsizetype(key.size()), 0);
    }
    table.index();
    EXPECT_EQ(table.find("1000"), RowTable::kNone);
    int found = table.find("17");
    for (int row = 17; row < 10000; row += 1000) {
        ASSERT_EQ(found, row);
        found = table.findNext(found);
    }
    EXPECT_EQ(found, RowTable::kNone);
    table.clear();
    table.index();
    EXPECT_EQ(table.find("17"), RowTable::kNone);
}

} // namespace
