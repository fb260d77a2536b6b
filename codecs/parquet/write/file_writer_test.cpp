// Writes tables with every option and reads them back.
#include "codecs/parquet/read/table_reader.h"
#include "codecs/parquet/write/file_writer.h"
#include "tests/support/sweeps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace corvanta;
using namespace corvanta::parquet;

namespace {

/// Cells of one row; owns their bytes.
class RowOfCells
{
public:
    void addDouble(double value) { put(&value, sizeof value); }
    void addKey(quint32 key) { put(&key, sizeof key); }
    void addText(const std::u16string *text)
    {
        const quint32 code = text == nullptr ? 0 : cell::codeOfText(qsizetype(text->size()));
        std::vector<uchar> &bytes =
            m_cells.emplace_back(8 + (text == nullptr ? 0 : text->size() * 2));
        const int lengthBytes = cell::lengthBytes(code);
        uchar *const begin = bytes.data() + 4 - lengthBytes; // units at an even address
        cell::putLength(begin, code, lengthBytes);
        if (text != nullptr) {
            std::memcpy(bytes.data() + 4, text->data(), text->size() * 2);
        }
        m_pointers.push_back(begin);
    }
    const uchar *const *cells() const { return m_pointers.data(); }

private:
    void put(const void *value, size_t n)
    {
        const auto *const bytes = static_cast<const uchar *>(value);
        m_pointers.push_back(m_cells.emplace_back(bytes, bytes + n).data());
    }
    std::vector<std::vector<uchar>> m_cells;
    std::vector<const uchar *> m_pointers;
};

struct Written
{
    QByteArray bytes;
    std::optional<Fault<Error>> fault;
};

struct WriteSetup
{
    WriteOptions options;
    qint32 codec = kSnappy;
    int workers = 2;
};

template <class MakeRow>
Written write(const std::vector<WriterColumn> &columns, int rows, const WriteSetup &setup,
              MakeRow &&makeRow)
{
    MemorySink sink;
    PageCompressor compressor(setup.codec, setup.workers);
    FileWriter writer(sink, columns, setup.options, compressor);
    EXPECT_TRUE(writer.begin());
    for (int i = 0; i < rows; ++i) {
        RowOfCells row;
        makeRow(i, row);
        if (const auto done = writer.addRow(row.cells()); !done) {
            return {sink.bytes(), done.fault()};
        }
    }
    EXPECT_TRUE(writer.finish());
    return {sink.bytes(), std::nullopt};
}

/// Reads all rows; `check` gets the row's number and cells.
template <class Check> qint64 readBack(const QByteArray &bytes, Check &&check)
{
    MemorySource source(bytes);
    const auto reader = TableReader::open(source, ReadOptions(), 2);
    EXPECT_TRUE(reader) << (reader ? "" : reader.fault().detail.toStdString());
    if (!reader) {
        return -1;
    }
    std::vector<const uchar *> cells((*reader)->columns().size());
    for (qint64 row = 0;; ++row) {
        const auto more = (*reader)->next(cells.data());
        EXPECT_TRUE(more) << more.fault().detail.toStdString();
        if (!more || !*more) {
            EXPECT_EQ(row, (*reader)->declaredRows());
            return row;
        }
        check(row, cells);
    }
}

const std::vector<WriterColumn> kAllStorages{
    {"f", Storage::Double, 0},     {"u", Storage::KeyAsUint32, 1}, {"i", Storage::KeyAsInt32, 1},
    {"l", Storage::KeyAsInt64, 1}, {"t", Storage::Text, 2},        {"n", Storage::Text, 3},
};

std::u16string sampleText(int i)
{
    if (i % 17 == 0) {
        return {};
    }
    std::u16string text(static_cast<size_t>(i % 190), char16_t(u'a' + i % 20));
    return i % 3 == 0 ? text + u"\u00e9\u20ac\U0001F600" : text;
}

/// Missing cells in runs and single ones; column 3 is always missing.
void sampleRow(int i, RowOfCells &row)
{
    const bool isMissing = i % 5 == 0 || (i / 700) % 3 == 1;
    row.addDouble(isMissing ? cell::missingDouble() : i * 0.1);
    row.addKey(isMissing ? cell::kMissingKey : quint32(i) * 60000);
    const std::u16string text = sampleText(i);
    row.addText(isMissing ? nullptr : &text);
    row.addText(nullptr);
}

} // namespace

TEST(ParquetWriter, EveryStorageCodecAndOptionReadsBackEqual)
{
    constexpr int kRows = 20000;
    std::vector<WriteSetup> setups;
    for (const qint32 codec : {kUncompressed, kSnappy, kGzip, kBrotli, kZstd, kLz4Raw}) {
        setups.push_back({{}, codec});
    }
    setups.push_back({{1, 0, false, false}});
    setups.push_back({{1, 0, true, true}});
    setups.push_back({{64, 50, true, true}});
    for (const WriteSetup &setup : setups) {
        SCOPED_TRACE(testing::Message()
                     << "codec " << setup.codec << ", pages of " << setup.options.pageSizeKiB
                     << " KiB, dictionaries " << setup.options.dictionaryPages);
        const Written written = write(kAllStorages, kRows, setup, sampleRow);
        if (setup.codec > kGzip) { // the reader rejects these by default
            MemorySource source(written.bytes);
            EXPECT_FALSE(TableReader::open(source, ReadOptions(), 0));
            ReadOptions options;
            options.extendedEncodings = true;
            const auto reader = TableReader::open(source, options, 0);
            ASSERT_TRUE(reader);
            std::vector<const uchar *> cells(kAllStorages.size());
            while (*(*reader)->next(cells.data())) {
            }
            EXPECT_EQ((*reader)->rowsRead(), kRows);
            continue;
        }
        int wrong = 0;
        const qint64 rows = readBack(written.bytes, [&](qint64 i, const auto &cells) {
            RowOfCells expected;
            sampleRow(int(i), expected);
            const uchar *const *want = expected.cells();
            const bool isEqual =
                std::memcmp(cells[0], want[0], 8) == 0 && std::memcmp(cells[1], want[1], 4) == 0 &&
                std::memcmp(cells[2], want[1], 4) == 0 && std::memcmp(cells[3], want[1], 4) == 0 &&
                cell::readText(cells[4]).code == cell::readText(want[2]).code &&
                cell::readText(cells[4]).view() == cell::readText(want[2]).view() &&
                cell::readText(cells[5]).isMissing();
            wrong += isEqual ? 0 : 1;
        });
        EXPECT_EQ(rows, kRows);
        EXPECT_EQ(wrong, 0);
    }
}

TEST(ParquetWriter, BytesDoNotDependOnThreads)
{
    WriteSetup setup{{1, 0, true, true}};
    const std::vector<WriterColumn> one{{"k", Storage::KeyAsInt64, 0}};
    std::mt19937 random(7);
    std::vector<quint32> keys(300000);
    std::generate(keys.begin(), keys.end(), [&] { return quint32(random()); });
    const auto row = [&](int i, RowOfCells &cells) { cells.addKey(keys[size_t(i)]); };
    setup.workers = 0;
    const QByteArray alone = write(one, 300000, setup, row).bytes;
    for (const int workers : {1, 3}) {
        setup.workers = workers;
        EXPECT_TRUE(write(one, 300000, setup, row).bytes == alone) << workers;
    }
}

TEST(ParquetWriter, RowGroupsCloseWhenTheirPagesExceedTheThreshold)
{
    const auto groupsOf = [](const QByteArray &bytes) {
        MemorySource source(bytes);
        return readFooter(source)->rowGroups.size();
    };
    const auto row = [](int i, RowOfCells &cells) { cells.addKey(quint32(i)); };
    // Without compression a page of 1 KiB takes 128 keys of 8 bytes and 2 + 4 bytes of levels: two
    // of them exceed the threshold of one page size.
    WriteSetup setup{{1, 0, false, false}, kUncompressed};
    const std::vector<WriterColumn> one{{"k", Storage::KeyAsInt64, 0}};
    EXPECT_EQ(groupsOf(write(one, 128 * 10, setup, row).bytes), 10U);
    setup.options.rowGroupMiB = 1;
    EXPECT_EQ(groupsOf(write(one, 128 * 10, setup, row).bytes), 1U);
    // With many columns the threshold is one page per column.
    std::vector<WriterColumn> many(100, one[0]);
    setup.options = {1024, 50, false, false};
    EXPECT_EQ(groupsOf(write(many, 131072 / 2, setup, row).bytes), 1U);
}

TEST(ParquetWriter, EmptyWideAndAllNullTablesReadBack)
{
    const std::vector<WriterColumn> text{{"t", Storage::Text, 0}};
    // No rows: no row groups.
    const Written empty = write(text, 0, {}, [](int, RowOfCells &) {});
    EXPECT_EQ(readBack(empty.bytes, [](qint64, const auto &) {}), 0);
    EXPECT_TRUE(empty.bytes.startsWith("PAR1") && empty.bytes.contains("Corvanta"));
    // More missing texts than a page has room for levels.
    qint64 present = 0;
    const Written nulls =
        write(text, 200000, {}, [](int, RowOfCells &row) { row.addText(nullptr); });
    EXPECT_EQ(readBack(nulls.bytes,
                       [&](qint64, const auto &cells) {
                           present += !cell::readText(cells[0]).isMissing();
                       }),
              200000);
    EXPECT_EQ(present, 0);
    // A footer of more than 50 KiB.
    std::vector<WriterColumn> wide;
    for (int i = 0; i < 1000; ++i) {
        wide.push_back({"column number " + QByteArray::number(i), Storage::Double, 0});
    }
    const Written wideFile = write(wide, 3, {}, [](int i, RowOfCells &row) { row.addDouble(i); });
    EXPECT_EQ(readBack(wideFile.bytes,
                       [](qint64 i, const auto &cells) {
                           EXPECT_EQ(loadNative<double>(cells[999]), double(i));
                       }),
              3);
}

TEST(ParquetWriter, OnlyOneMissingKeyIsNull)
{
    const std::vector<WriterColumn> key{{"k", Storage::KeyAsInt64, 0}};
    const Written written = write(
        key, 2, {}, [](int i, RowOfCells &row) { row.addKey(cell::kMissingKey - quint32(i)); });
    MemorySource source(written.bytes);
    ReadOptions options;
    options.int64ToKey = false;
    const auto reader = TableReader::open(source, options, 0);
    const uchar *cells = nullptr;
    ASSERT_TRUE(*(*reader)->next(&cells));
    EXPECT_TRUE(cell::isMissingDouble(loadNative<double>(cells)));
    ASSERT_TRUE(*(*reader)->next(&cells));
    EXPECT_EQ(loadNative<double>(cells), 4294967294.0);
}

TEST(ParquetWriter, TextsMustFitAPage)
{
    const std::vector<WriterColumn> text{{"t", Storage::Text, 0}};
    for (const auto &[units, fits] : {std::pair{1024 - 5, true}, std::pair{1024 - 4, false}}) {
        const std::u16string value(size_t(units), u'x');
        const Written written = write(text, 2, {{1, 50, false, false}},
                                      [&](int, RowOfCells &row) { row.addText(&value); });
        EXPECT_EQ(!written.fault, fits);
        if (written.fault) {
            EXPECT_EQ(written.fault->code, Error::TextTooLong);
            EXPECT_EQ(written.fault->detail, QStringLiteral("t"));
        }
    }
}

TEST(ParquetWriter, StatisticsHoldTheRangeAndTheNulls)
{
    const std::vector<WriterColumn> columns{{"f", Storage::Double, 0}, {"t", Storage::Text, 1}};
    const Written written = write(columns, 3, {{64, 50, false, true}}, [](int i, RowOfCells &row) {
        const std::u16string texts[] = {u"b", u"\u00e9", u"a"};
        row.addDouble(i == 0 ? cell::missingDouble() : i == 1 ? 0.0 : -3.5);
        row.addText(&texts[i]);
    });
    MemorySource source(written.bytes);
    const auto footer = readFooter(source);
    const Statistics &f = *footer->rowGroups[0].columns[0].metaData->statistics;
    EXPECT_EQ(f.nullCount, 1);
    EXPECT_EQ(loadLE<double>(f.minValue->constData()), -3.5);
    EXPECT_FALSE(std::signbit(loadLE<double>(f.maxValue->constData())));
    const Statistics &t = *footer->rowGroups[0].columns[1].metaData->statistics;
    EXPECT_EQ(*t.minValue, "a");
    EXPECT_EQ(*t.maxValue, "\xC3\xA9");
    EXPECT_EQ(footer->columnOrders->size(), 2U);
}

TEST(ParquetReader, DamageAnywhereNeverCrashes)
{
    const Written written = write(kAllStorages, 300, {{1, 0, true, false}}, sampleRow);
    const auto survives = [](const QByteArray &bytes) {
        MemorySource source(bytes, 1000);
        ReadOptions options;
        options.skipsUnreadable = true;
        const auto reader = TableReader::open(source, options, 0);
        if (!reader) {
            return !reader.fault().detail.isEmpty();
        }
        if (const auto prepared = (*reader)->prepare(); !prepared) {
            return !prepared.fault().detail.isEmpty();
        }
        std::vector<const uchar *> cells((*reader)->columns().size());
        for (int row = 0; row < 1000; ++row) {
            const auto more = (*reader)->next(cells.data());
            if (!more || !*more) {
                return more || !more.fault().detail.isEmpty();
            }
        }
        return true;
    };
    const auto check = [&](const QByteArray &damaged) { ASSERT_TRUE(survives(damaged)); };
    test::forEveryFlip(written.bytes, check, written.bytes.size());
    test::forEveryTruncation(written.bytes, check);
}

TEST(ParquetReader, AnyNumberOfWorkersGivesTheSameRowsAndStops)
{
    const Written written = write(kAllStorages, 30000, {{4, 0, false, false}}, sampleRow);
    for (const int workers : {0, 1, 4}) {
        MemorySource source(written.bytes);
        const auto reader = TableReader::open(source, ReadOptions(), workers);
        std::vector<const uchar *> cells(kAllStorages.size());
        quint64 sum = 0;
        while (*(*reader)->next(cells.data())) {
            sum = sum * 31 + loadNative<quint32>(cells[1]) + loadNative<quint32>(cells[0]);
        }
        static quint64 first = sum;
        EXPECT_EQ(sum, first) << workers;
        EXPECT_EQ((*reader)->fractionDone(), 1.0F);

        const auto stopped = TableReader::open(source, ReadOptions(), workers);
        for (int i = 0; i < 5000; ++i) {
            ASSERT_TRUE(*(*stopped)->next(cells.data()));
        }
        (*stopped)->stop();
        qint64 more = 0;
        while (*(*stopped)->next(cells.data())) {
            ++more;
        }
        EXPECT_LT(more, kBlockRows);
    }
}

namespace {

/// A text column for each typed storage, with the texts that it gives back.
struct TypedCase
{
    Storage storage;
    std::vector<std::u16string> texts;
    std::vector<std::u16string> wrong;
};

const std::vector<TypedCase> kTypedCases{
    {Storage::Boolean, {u"true", u"false", u"false"}, {u"yes", u"2", u"truE "}},
    {Storage::Integer,
     {u"9223372036854775807", u"-9223372036854775808", u"0", u"-17"},
     {u"9223372036854775808", u"007", u"+1", u"1.0", u"-0", u"-"}},
    {Storage::Date, {u"2026-01-31", u"0001-01-01", u"9999-12-31"}, {u"2026-02-30", u"31.1.2026"}},
    {Storage::Timestamp,
     {u"2026-01-31T04:30:05.25Z", u"1969-12-31T23:59:59.999999Z"},
     {u"2026-01-31T04:30:05", u"2026-01-31T04:30:05.0000001Z"}},
    {Storage::Timestamp, {u"1969-12-31T23:59:59.999999"}, {u"2026-01-31T04:30:05Z"}},
    {Storage::Time, {u"04:30:05", u"23:59:59.999999", u"00:00:00"}, {u"24:00:00", u"25:10:10"}},
};

QStringList readTexts(const QByteArray &bytes)
{
    MemorySource source(bytes);
    ReadOptions options;
    options.logicalTypes = options.booleanTexts = true;
    const auto reader = TableReader::open(source, options, 1);
    EXPECT_TRUE(reader);
    QStringList texts;
    const uchar *cell = nullptr;
    for (auto more = (*reader)->next(&cell); more && *more; more = (*reader)->next(&cell)) {
        const cell::Text text = cell::readText(cell);
        texts << (text.isMissing() ? QStringLiteral("missing")
                                   : QString::fromUtf16(text.data(), text.size()));
    }
    return texts;
}

} // namespace

TEST(ParquetWriter, TypedColumnsReadBackAsTheirTextsAndRefuseOthers)
{
    const std::u16string empty;
    for (const TypedCase &one : kTypedCases) {
        for (const bool usesDictionary : {false, true}) {
            WriteSetup setup;
            setup.options.dictionaryPages = setup.options.statistics = usesDictionary;
            const int count = static_cast<int>(one.texts.size());
            const Written written =
                write({{"x", one.storage, 0}}, count + 2, setup, [&](int row, RowOfCells &cells) {
                    cells.addText(row < count    ? &one.texts[size_t(row)]
                                  : row == count ? &empty
                                                 : nullptr);
                });
            QStringList expected;
            for (const std::u16string &text : one.texts) {
                expected << QString::fromStdU16String(text);
            }
            EXPECT_EQ(readTexts(written.bytes),
                      expected + QStringList(2, QStringLiteral("missing")))
                << int(one.storage);
        }
        for (const std::u16string &wrong : one.wrong) {
            const Written written =
                write({{"x", one.storage, 0}}, 2, {}, [&](int row, RowOfCells &cells) {
                    cells.addText(row == 0 ? &one.texts.front() : &wrong);
                });
            ASSERT_TRUE(written.fault) << QString::fromStdU16String(wrong).toStdString();
            EXPECT_EQ(written.fault->code, Error::WrongValue);
        }
    }
}

TEST(ParquetWriter, NumbersBecomeIntegersAndBooleansOnlyExactly)
{
    const std::vector<WriterColumn> columns{{"i", Storage::Integer, 0, cell::Type::Double},
                                            {"b", Storage::Boolean, 1, cell::Type::Key}};
    WriteSetup setup;
    setup.options.statistics = true;
    const Written written = write(columns, 3, setup, [](int row, RowOfCells &cells) {
        cells.addDouble(row == 2 ? cell::missingDouble() : -5e15 * row);
        cells.addKey(row == 2 ? cell::kMissingKeyOther : static_cast<quint32>(row));
    });
    ASSERT_FALSE(written.fault);
    MemorySource source(written.bytes);
    ReadOptions options;
    options.logicalTypes = true;
    const auto reader = TableReader::open(source, options, 1);
    ASSERT_TRUE(reader);
    EXPECT_EQ((*reader)->columns()[0].form, Form::DoubleFromInt64); // by its statistics
    std::vector<const uchar *> cells(2);
    ASSERT_TRUE(*(*reader)->next(cells.data()));
    ASSERT_TRUE(*(*reader)->next(cells.data()));
    EXPECT_EQ(loadNative<double>(cells[0]), -5e15);
    EXPECT_EQ(loadNative<quint32>(cells[1]), 1U);
    ASSERT_TRUE(*(*reader)->next(cells.data()));
    EXPECT_TRUE(cell::isMissingDouble(loadNative<double>(cells[0])));
    EXPECT_TRUE(cell::isMissingKey(loadNative<quint32>(cells[1])));
    for (const double wrong : {0.5, 9223372036854775808.0, std::nan("")}) {
        EXPECT_TRUE(write({columns[0]}, 1, {}, [&](int, RowOfCells &cells) {
                        cells.addDouble(wrong);
                    }).fault);
    }
}
