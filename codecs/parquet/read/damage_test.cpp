// Damaged and unsupported files: each gives its own reason. Every case changes one thing of a small
// file that can be read.
#include "codecs/parquet/read/table_reader.h"
#include "tests/support/small_parquet.h"

#include <functional>

using namespace corvanta;
using namespace corvanta::parquet;

namespace {

/// Bytes of which a part can be made unreadable, as if the file changed while it is read.
class ChangingSource final : public ByteSource
{
public:
    explicit ChangingSource(QByteArrayView bytes)
        : m_memory(bytes)
        , end(bytes.size())
    {
    }
    qint64 read(void *buffer, qint64 n) override
    {
        if (fails) {
            return -1;
        }
        const qint64 got = m_memory.read(buffer, std::min(n, std::max<qint64>(0, end - m_at)));
        m_at += got;
        return got;
    }
    qint64 size() override { return m_memory.size(); }
    bool seek(qint64 offset) override
    {
        m_at = offset;
        return m_memory.seek(offset);
    }

private:
    MemorySource m_memory;
    qint64 m_at = 0;

public:
    bool fails = false;
    qint64 end;
};

/// Why the rows cannot be read; empty if they can. `change` is made after the file was opened.
std::string reasonOf(const QByteArray &bytes,
                     const std::function<void(ChangingSource &)> &change = {})
{
    ChangingSource source(bytes);
    ReadOptions options;
    options.extendedEncodings = true;
    const auto reader = TableReader::open(source, options, 0);
    if (!reader) {
        return reader.fault().detail.toStdString();
    }
    if (change) {
        change(source);
    }
    for (;;) {
        const uchar *cell = nullptr;
        const auto row = (*reader)->next(&cell);
        if (!row) {
            return row.fault().detail.toStdString();
        }
        if (!*row) {
            return {};
        }
    }
}

void expectReason(SmallFile file, const std::string &reason)
{
    EXPECT_EQ(reasonOf(file.bytes()), "column 't': " + reason);
}

using Edit = std::function<void(SmallFile &)>;

} // namespace

TEST(DamagedParquet, MetadataOfAColumn)
{
    ASSERT_EQ(reasonOf(smallFile().bytes()), "");
    const std::pair<Edit, const char *> cases[] = {
        {[](SmallFile &f) { f.group().columns.clear(); }, "a row group has no data for it"},
        {[](SmallFile &f) { f.chunk().metaData.reset(); }, "its metadata is missing or encrypted"},
        {[](SmallFile &f) { f.chunk().filePath = "x.parquet"; },
         "its data is in another file, 'x.parquet'"},
        {[](SmallFile &f) { f.chunk().metaData->type = kInt64; },
         "a row group stores it as another type"},
        {[](SmallFile &f) { f.column().repetitionType = kRepeated; },
         "repeated columns are not supported"},
        {[](SmallFile &f) { f.setType(8); }, "its type is not known"},
        {[](SmallFile &f) { f.setType(kFixedLenByteArray); },
         "its values are of an impossible length"},
    };
    for (const auto &[edit, reason] : cases) {
        SmallFile file = smallFile();
        edit(file);
        expectReason(std::move(file), reason);
    }
}

TEST(DamagedParquet, HeadersOfPages)
{
    const std::pair<Edit, const char *> cases[] = {
        {[](SmallFile &f) { f.page().numValues = -1; }, "a page has a negative number of values"},
        {[](SmallFile &f) { f.pages.front().header.dataPageHeader.reset(); },
         "a page header is incomplete"},
        {[](SmallFile &f) { f.pages.front().header.type = kDataPageV2; },
         "a page header is incomplete"},
        {[](SmallFile &f) { f.pages.front().header.type = kDictionaryPage; },
         "a page header is incomplete"},
        {[](SmallFile &f) { f.pages.front().header.compressedPageSize = -1; },
         "a page of -1 bytes does not fit the file"},
        {[](SmallFile &f) { f.pages.front().header.compressedPageSize = 1'000'000; },
         "a page of 1000000 bytes does not fit the file"},
        {[](SmallFile &f) {
             f.setBody(QByteArray(300, '\1'));
             f.uncounted = 200;
         },
         "a page of 300 bytes does not fit its column chunk"},
        {[](SmallFile &f) {
             f.chunk().metaData->codec = kSnappy;
             f.pages.front().header.uncompressedPageSize = -1;
         },
         "a page of -1 bytes is too large"},
        {[](SmallFile &f) {
             f.addDictionary(2, kPlain);
             f.chunk().metaData->dataPageOffset = 12; // inside the first header
         },
         "a page header is damaged"},
    };
    for (const auto &[edit, reason] : cases) {
        SmallFile file = smallFile();
        edit(file);
        expectReason(std::move(file), reason);
    }
}

TEST(DamagedParquet, LevelsAndValuesOfPages)
{
    const auto optional = [](SmallFile &f, qint32 encoding, const QByteArray &body) {
        f.column().repetitionType = kOptional;
        f.page().definitionLevelEncoding = encoding;
        f.setBody(body);
    };
    const auto indexes = [](SmallFile &f, const QByteArray &body) {
        f.page().encoding = kRleDictionary;
        f.setBody(body);
        f.addDictionary(2, kPlain);
    };
    const std::pair<Edit, const char *> cases[] = {
        {[&](SmallFile &f) { optional(f, kRle, "ab"); }, "the levels of a page do not fit it"},
        {[&](SmallFile &f) { optional(f, kBitPacked, ""); }, "the levels of a page do not fit it"},
        {[](SmallFile &f) { f.setLevels(9); }, "the levels of a page do not fit it"},
        {[](SmallFile &f) { f.setLevels(-1); }, "the levels of a page do not fit it"},
        {[&](SmallFile &f) { optional(f, kPlain, "abcdefgh"); },
         "levels in the encoding PLAIN are not supported"},
        {[&](SmallFile &f) { optional(f, kRle, QByteArray(12, '\0')); },
         "the levels of a page are truncated or damaged"},
        {[](SmallFile &f) { f.setBody("abcdefg"); }, "the values of a page are truncated"},
        {[](SmallFile &f) {
             f.setType(kByteArray);
             f.setBody(QByteArray::fromHex("0100000061ffffffff"));
         },
         "the values of a page are truncated"},
        {[](SmallFile &f) {
             f.setType(kBoolean);
             f.setBody("");
         },
         "the values of a page are truncated"},
        {[](SmallFile &f) {
             f.setType(kBoolean);
             f.page().encoding = kRle;
             f.setBody("abc");
         },
         "the values of a page are truncated"},
        {[](SmallFile &f) {
             f.page().encoding = kDeltaBinaryPacked;
             f.setBody("\xff\xff\xff\xff");
         },
         "the values of a page are no DELTA_BINARY_PACKED data"},
        {[](SmallFile &f) { f.page().encoding = kRleDictionary; },
         "a page needs a dictionary that is not there"},
        {[](SmallFile &f) { f.addDictionary(2, kRle); },
         "a dictionary in the encoding RLE is not supported"},
        {[](SmallFile &f) { f.addDictionary(3, kPlain); }, "its dictionary is truncated"},
        {[&](SmallFile &f) { indexes(f, QByteArray(1, 33)); }, "a dictionary index of 33 bits"},
        {[&](SmallFile &f) { indexes(f, "\3"); }, "the values of a page are truncated"},
        {[&](SmallFile &f) { indexes(f, "\3\4\5"); }, "entry 5 of a dictionary of 2"},
    };
    for (const auto &[edit, reason] : cases) {
        SmallFile file = smallFile();
        edit(file);
        expectReason(std::move(file), reason);
    }
}

TEST(DamagedParquet, FilesThatChangeWhileTheyAreRead)
{
    SmallFile file = smallFile();
    file.setBody(QByteArray(100'000, '\1')); // more than one read
    const QByteArray bytes = file.bytes();
    EXPECT_EQ(reasonOf(bytes), "");
    EXPECT_EQ(reasonOf(bytes, [](ChangingSource &source) { source.fails = true; }),
              "column 't': a page cannot be read");
    EXPECT_EQ(reasonOf(bytes, [](ChangingSource &source) { source.end = 4; }),
              "column 't': the file ends where a page should begin");
    EXPECT_EQ(reasonOf(bytes, [](ChangingSource &source) { source.end = 50'000; }),
              "column 't': the file ends in a page");
}
