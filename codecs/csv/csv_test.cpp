// Records and fields of CSV texts, however their bytes arrive, and the text of rows.
#include "codecs/csv/find_separator.h"
#include "codecs/csv/record_reader.h"
#include "codecs/csv/record_writer.h"
#include "tests/support/failing_source.h"
#include "tests/support/sweeps.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace corvanta;
using namespace corvanta::csv;
using namespace Qt::StringLiterals;

namespace {

/// All records, one per line: its line number and its fields, quoted ones in quotes, separated by
/// "|". Ends with the code, line and offset of a fault.
QByteArray describe(ByteSource &source, RecordReader::Limits limits = {}, Dialect dialect = {})
{
    RecordReader reader(source, std::move(dialect), limits);
    QByteArray all;
    for (;;) {
        const auto found = reader.next();
        if (!found) {
            return all + "fault " + QByteArray::number(static_cast<int>(found.fault().code)) +
                   " line " + QByteArray::number(reader.line()) + " offset " +
                   QByteArray::number(found.fault().offset) + '\n';
        }
        if (!*found) {
            return all;
        }
        all += QByteArray::number(reader.line()) + ": ";
        QByteArrayList texts;
        for (const Field &field : reader.fields()) {
            const QByteArray text(field.text, field.size);
            texts << (field.isQuoted ? '"' + text + '"' : text);
        }
        all += texts.join('|');
        all += '\n';
    }
}

struct Case
{
    const char *text;
    const char *records;
};

constexpr Case kCases[] = {
    {"", ""},
    {"a,b\n1,2\n", "1: a|b\n2: 1|2\n"},
    {"a,b\r\n1,2", "1: a|b\n2: 1|2\n"},
    {"\xEF\xBB\xBF"
     "a\n\xEF\xBB\xBF\n",
     "1: a\n2: \xEF\xBB\xBF\n"},
    {"\n\r\n,\n", "1: \n2: \n3: |\n"},
    {"\"\",\"a\"\"b\",\"x,\ny\"\nz", "1: \"\"|\"a\"b\"|\"x,\ny\"\n3: z\n"},
    {"a\rb,c\r\n\r\r\nd\r", "1: a\rb|c\n2: \r\n3: d\r\n"},
    {"\"a\"\r", "1: \"a\"\n"},
    {"a\"b\"c\n", "1: a\"b\"c\n"},
    {"a,", "1: a|\n"},
    {"\"a\nb\"\n\"c\"d\n", "1: \"a\nb\"\nfault 3 line 3 offset 6\n"},
    {"x\n\"open\n", "1: x\nfault 3 line 2 offset 2\n"},
    {"\"\"\"", "fault 3 line 1 offset 0\n"},
    {"sixteen bytes or more,of plain text,then the end",
     "1: sixteen bytes or more|of plain text|then the end\n"},
};

} // namespace

TEST(RecordReader, FindsTheSameRecordsWhereverTheTextIsSplit)
{
    for (const Case &one : kCases) {
        test::forEverySplit([&](int piece) {
            for (const size_t block : {size_t(1), size_t(5), size_t(1) << 20}) {
                MemorySource source(one.text, piece);
                EXPECT_EQ(describe(source, {block, size_t(1) << 30}), one.records)
                    << "text " << one.text << " block " << block;
            }
        });
    }
}

TEST(RecordReader, UsesTheGivenSeparator)
{
    MemorySource source(QByteArrayView("a,b\t\"c\td\"\n"));
    EXPECT_EQ(describe(source, {}, {.separator = '\t'}), "1: a,b|\"c\td\"\n");
}

TEST(RecordReader, SkipsLinesAndUsesTheGivenQuoteWhereverTheTextIsSplit)
{
    const Dialect dialect{.quote = '\'', .comment = "//", .skippedLines = 2};
    test::forEverySplit([&](int piece) {
        for (const size_t block : {size_t(1), size_t(5), size_t(1) << 20}) {
            MemorySource source(QByteArrayView("'open\n\n//c\na,/\n'//\n''',\"b\"\n/\n//\n//end"),
                                piece);
            EXPECT_EQ(describe(source, {block, size_t(1) << 30}, dialect),
                      "4: a|/\n5: \"//\n'\"|\"b\"\n7: /\n");
        }
    });
    MemorySource plain(QByteArrayView("\"a,\"b\n"));
    EXPECT_EQ(describe(plain, {}, {.quote = Dialect::kNoQuote}), "1: \"a|\"b\n");
}

TEST(RecordReader, EndsLinesWithCarriageReturnsWhereverTheTextIsSplit)
{
    const Dialect dialect{.endsLinesWithCr = true, .comment = "#", .skippedLines = 1};
    test::forEverySplit([&](int piece) {
        for (const size_t block : {size_t(1), size_t(5), size_t(1) << 20}) {
            MemorySource source(QByteArrayView("x\ra,b\r#c\r\"1\r2\",\r\r\n3,4"), piece);
            EXPECT_EQ(describe(source, {block, size_t(1) << 30}, dialect),
                      "2: a|b\n4: \"1\r2\"|\n6: \n7: 3|4\n");
        }
    });
}

TEST(FindSeparator, ChoosesTheOneThatGivesRegularRecords)
{
    struct Text
    {
        const char *text;
        char separator;
    };
    constexpr Text kTexts[] = {
        {"", ','},
        {"a\nb\n", ','},
        {"a,b\n1,2\n", ','},
        {"a;b\n1,5;2,5\n", ';'},
        {"a\tb,c\n1\t2\n", '\t'},
        {"a|b|c\n1|2,3|4\n1|2|3\n", '|'},
        {"\"a,b\";c\n\"d,e\";f\n", ';'},
        {"\"x\ny;z\",b\n1,2\n", ','},
        {"name\nDoe, John\nRoe, Jane\n", ';'},
        {"a,b;c\n1;2\n3;4\n", ';'},
        {"a;b\n\n1;2\n1,2,3", ';'},
    };
    for (const Text &one : kTexts) {
        EXPECT_EQ(findSeparator(one.text, true, {}), one.separator) << one.text;
    }
    EXPECT_EQ(findSeparator("a;b,c\n1;2\n3,4,", false, {}), ';');
    EXPECT_EQ(findSeparator("# a,b\nx;y\n", true, {.comment = "#"}), ';');
}

TEST(RecordReader, RejectsARecordThatIsTooLong)
{
    const QByteArray text = "short\n" + QByteArray(100, 'x') + "\nafter\n";
    MemorySource enough(text);
    EXPECT_EQ(describe(enough, {8, 101}), "1: short\n2: " + QByteArray(100, 'x') + "\n3: after\n");
    MemorySource tooShort(text);
    EXPECT_EQ(describe(tooShort, {8, 100}), "1: short\nfault 2 line 2 offset 6\n");
}

TEST(RecordReader, ReportsAFailedReadAndNotAnEarlyEnd)
{
    test::FailingSource source("a,b\n1,2\nc");
    EXPECT_EQ(describe(source), "1: a|b\n2: 1|2\nfault 1 line 3 offset 8\n");
}

namespace {

/// One row of texts, null strings being missing cells.
class TextRow
{
public:
    explicit TextRow(const QStringList &texts)
        : m_types(static_cast<size_t>(texts.size()))
        , m_names(texts.begin(), texts.end())
    {
        for (const QString &text : texts) {
            const quint32 code = text.isNull() ? 0 : cell::codeOfText(text.size());
            const int lengthBytes = cell::lengthBytes(code);
            // Units begin at an even address, as in the rows of a pin.
            m_cells.emplace_back(4 + static_cast<size_t>(text.size()) * 2);
            uchar *const cell = m_cells.back().data() + (4 - lengthBytes);
            std::memcpy(cell::putLength(cell, code, lengthBytes), text.utf16(),
                        static_cast<size_t>(text.size()) * 2);
            m_pointers.push_back(cell);
        }
    }
    RowView view() const
    {
        return {m_pointers.data(), m_names.data(), m_types.data(),
                static_cast<int>(m_pointers.size())};
    }

private:
    std::vector<MetaInfo> m_types;
    std::vector<QString> m_names;
    std::vector<std::vector<uchar>> m_cells;
    std::vector<const uchar *> m_pointers;
};

} // namespace

TEST(RecordWriter, EndsLinesWithCrLf)
{
    RecordWriter writer(',', LineEnd::CrLf);
    writer.addNames(TextRow({u"n"_s, u"a\nb"_s}).view());
    writer.addRow(TextRow({u"1"_s, QString()}).view());
    EXPECT_EQ(writer.bytes().toByteArray(), "n,\"a\nb\"\r\n1,\r\n");
}

TEST(RecordWriter, QuotesOnlyWhereNeededAndDistinguishesMissingFromEmpty)
{
    const TextRow row({u"plain, long enough for a block"_s, u""_s, QString(), u"a\"b"_s, u"\r"_s,
                       u"semi;colon"_s, u" é😀 "_s, u"\"\"twice, \"and\" again\""_s});
    RecordWriter writer(',');
    writer.addNames(TextRow({u"n"_s, u"a,b"_s}).view());
    writer.addRow(row.view());
    EXPECT_EQ(
        writer.bytes().toByteArray(),
        "n,\"a,b\"\n\"plain, long enough for a block\",\"\",,\"a\"\"b\",\"\r\",semi;colon, é😀 "
        ",\"\"\"\"\"twice, \"\"and\"\" again\"\"\"\n");
    writer.clear();
    EXPECT_TRUE(writer.bytes().isEmpty());
}

TEST(RecordWriter, NumbersReadBackToTheSameValueAndMarkersAreEmpty)
{
    const quint32 keys[] = {0, 4294967293U, cell::kMissingKey, cell::kMissingKeyOther};
    const double doubles[] = {0.25, 1e300, cell::missingDouble()};
    std::vector<const uchar *> cells;
    std::vector<MetaInfo> types;
    for (const quint32 &key : keys) {
        cells.push_back(reinterpret_cast<const uchar *>(&key));
        types.emplace_back(MetaInfo::Key, -1);
    }
    for (const double &value : doubles) {
        cells.push_back(reinterpret_cast<const uchar *>(&value));
        types.emplace_back(MetaInfo::Float, -1);
    }
    RecordWriter writer(';');
    writer.addRow({cells.data(), nullptr, types.data(), static_cast<int>(cells.size())});
    EXPECT_EQ(writer.bytes().toByteArray(), "0;4294967293;;;0.25;1e+300;\n");
}

TEST(RecordWriter, GrowsForARowThatIsLargerThanTheBuffer)
{
    const QString large(3 << 20, u'"');
    RecordWriter writer(',');
    writer.addRow(TextRow({large, u"end"_s}).view());
    EXPECT_TRUE(writer.isFull());
    EXPECT_EQ(writer.bytes().size(), 2 * large.size() + 2 + 5);
    EXPECT_TRUE(writer.bytes().endsWith("\"\",end\n"));
}
