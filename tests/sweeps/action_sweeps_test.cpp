// Every reader and writer under every damage: no crash, no hang, no temporary file, no lost target.
//
// The actions run in graphs, loaded from the module as by any host. A normal run samples places;
// with the argument --exhaustive it tries all.
#include "tests/support/graph_folder.h"
#include "tests/support/sweeps.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>

using namespace corvanta::test;
using namespace Qt::StringLiterals;

namespace {

qsizetype g_maxPlaces = 60;

constexpr int kRows = 60;

/// A table with each cell type, missing values and text that every format has to escape.
QByteArray sampleCsv(int rows = kRows)
{
    QByteArray csv = "key,value,name,note\n";
    for (int i = 0; i < rows; ++i) {
        const QByteArray number = QByteArray::number(i);
        csv += (i % 7 == 3 ? QByteArray() : number) + ',' + (i % 5 == 2 ? "" : number + ".25") +
               ",\"n <&\"\"> " + number + "\"," +
               (i % 3 == 1 ? "" : "caf\xC3\xA9 \xF0\x9F\x98\x80") + '\n';
    }
    return csv;
}

const QByteArray kReadSample = "<readCSV fileName='in.csv' types='K,F,U,U'/>";

struct Writer
{
    const char *name;
    QByteArray element;
    QString target;
    bool updatesWorkbook = false; ///< the old target is a workbook
    QString leaves;               ///< left next to the target by a failed run
};

/// Names the parameter in the messages of a failed test.
void PrintTo(const Writer &writer, std::ostream *out)
{
    *out << writer.name;
}

const std::vector<Writer> &writers()
{
    static const std::vector<Writer> all = {
        {"writeCSV", "<writeCSV fileName='out.csv'/>", u"out.csv"_s},
        {"newWorkbook", "<writeExcel fileNameDestination='out.xlsx'/>", u"out.xlsx"_s},
        {"addedSheet", "<writeExcel mode='1' fileNameDestination='out.xlsx' sheetName='New'/>",
         u"out.xlsx"_s, true},
        {"appendedRows", "<writeExcel mode='2' fileNameDestination='out.xlsx' startRow='0'/>",
         u"out.xlsx"_s, true},
        {"writeJSON", "<writeJSON fileName='out.json'/>", u"out.json"_s},
        {"appendedJSON", "<writeJSON fileName='out.json' fileMode='1'/>", u"out.json"_s},
        {"writeXML", "<writeXML fileName='out.xml' wellFormed='1'/>", u"out.xml"_s},
        {"writeParquet", "<writeParquet file='out.parquet'/>", u"out.parquet"_s, false,
         u"out.parquet_TMP"_s},
    };
    return all;
}

class WriterSweep : public testing::TestWithParam<Writer>
{
protected:
    void SetUp() override
    {
        m_folder.write(u"in.csv"_s, sampleCsv());
        if (GetParam().updatesWorkbook) {
            const QByteArray workbook = "<writeExcel fileNameDestination='out.xlsx'/>";
            ASSERT_TRUE(m_folder.runChain({kReadSample, workbook}).succeeded);
            m_old = m_folder.bytes(target());
        }
        restore();
        m_files = m_folder.files();
        const GraphOutcome whole = run();
        ASSERT_TRUE(whole.succeeded) << whole.errors.join(u'\n').toStdString();
        m_new = m_folder.bytes(target());
        ASSERT_NE(m_new, m_old);
        restore();
    }

    const QString &target() const { return GetParam().target; }
    void restore() { m_folder.write(target(), m_old); }
    GraphOutcome run(const GraphSettings &settings = {}) const
    {
        return m_folder.runChain({kReadSample, GetParam().element}, settings);
    }

    /// After a run the target is the old or the new file, as its result says, and nothing else is
    /// there. Puts the old file back.
    void checkAndRestore(const GraphOutcome &outcome)
    {
        EXPECT_TRUE(outcome.ended);
        const QByteArray now = m_folder.bytes(target());
        EXPECT_TRUE(now == (outcome.succeeded ? m_new : m_old) ||
                    (!outcome.succeeded && !outcome.failed && now == m_new))
            << now.size() << " bytes";
        EXPECT_EQ(outcome.failed, !outcome.errors.isEmpty());
        if (outcome.failed) {
            EXPECT_TRUE(outcome.errors.join(u'\n').contains(target()))
                << outcome.errors.join(u'\n').toStdString();
            m_folder.remove(GetParam().leaves);
        }
        EXPECT_EQ(m_folder.files(), m_files);
        restore();
    }

    GraphFolder m_folder;
    QStringList m_files;
    QByteArray m_old = "old\n";
    QByteArray m_new;
};

} // namespace

TEST_P(WriterSweep, BatchesAndYieldsDoNotChangeTheFile)
{
    for (const int batchRows : {1, 7, 1024}) {
        for (const bool yields : {false, true}) {
            const GraphOutcome outcome = run({batchRows, yields, -1});
            EXPECT_TRUE(outcome.succeeded);
            EXPECT_EQ(outcome.rows.size(), kRows);
            checkAndRestore(outcome);
        }
    }
}

TEST_P(WriterSweep, ATableWithoutRowsIsWritten)
{
    if (GetParam().updatesWorkbook) {
        GTEST_SKIP() << "an update without rows fails after its retries: tests/updates";
    }
    m_folder.write(u"in.csv"_s, sampleCsv(0));
    const GraphOutcome outcome = run();
    EXPECT_TRUE(outcome.succeeded) << outcome.errors.join(u'\n').toStdString();
    EXPECT_FALSE(m_folder.bytes(target()).isEmpty());
    EXPECT_EQ(m_folder.files(), m_files);
}

TEST_P(WriterSweep, AFullDiskKeepsTheOldFile)
{
    for (const qsizetype limit : placesIn(m_new.size(), g_maxPlaces)) {
        SCOPED_TRACE(testing::Message() << "no file over " << limit << " bytes");
        const GraphOutcome outcome = [&] {
            const FileSizeLimit full(limit);
            return run();
        }();
        EXPECT_TRUE(outcome.failed);
        checkAndRestore(outcome);
    }
}

TEST_P(WriterSweep, AStopAtAnyRowKeepsTheOldFile)
{
    for (const qsizetype rows : placesIn(kRows + 1, g_maxPlaces)) {
        SCOPED_TRACE(testing::Message() << "stopped after " << rows << " rows");
        checkAndRestore(run({1, false, rows}));
    }
}

INSTANTIATE_TEST_SUITE_P(, WriterSweep, testing::ValuesIn(writers()),
                         [](const auto &info) { return info.param.name; });

namespace {

struct Reader
{
    const char *name;
    QByteArray element;
    QString input;
    QByteArray writer; ///< writes the input; empty: a copy of kTable
};

void PrintTo(const Reader &reader, std::ostream *out)
{
    *out << reader.name;
}

constexpr char kTable[] = CORVANTA_SOURCE_DIR "/tests/graphs/read_xbf/types/all.dbf";

const std::vector<Reader> &readers()
{
    const auto items = [](const QByteArray &prefix) {
        QByteArray all;
        for (const char *name : {"key", "value", "name", "note"}) {
            all += QByteArray("<e name='") + name + "' path='" + prefix + name + "'/>";
        }
        return all;
    };
    static const std::vector<Reader> all = {
        {"readCSV", "<readCSV fileName='input.csv' types='K,F,U,U'/>", u"input.csv"_s,
         "<writeCSV fileName='input.csv'/>"},
        {"readJSON", "<readJSON fileName='input.json'><Level>" + items({}) + "</Level></readJSON>",
         u"input.json"_s, "<writeJSON fileName='input.json'/>"},
        {"readXML",
         "<readXML fileName='input.xml'><Level initialPath='data' subtagName='R'>" + items("@") +
             "</Level></readXML>",
         u"input.xml"_s, "<writeXML fileName='input.xml' wellFormed='1'/>"},
        {"ReadXBF", "<ReadXBF fileName='input.dbf'/>", u"input.dbf"_s, {}},
        {"readParquet", "<readParquet fileName='input.parquet'/>", u"input.parquet"_s,
         "<writeParquet file='input.parquet'/>"},
    };
    return all;
}

class ReaderSweep : public testing::TestWithParam<Reader>
{
protected:
    void SetUp() override
    {
        if (GetParam().writer.isEmpty()) {
            ASSERT_TRUE(QFile::copy(QString::fromLatin1(kTable), m_folder.path(input())));
        } else {
            m_folder.write(u"in.csv"_s, sampleCsv());
            ASSERT_TRUE(m_folder.runChain({kReadSample, GetParam().writer}).succeeded);
        }
        m_files = m_folder.files();
        m_bytes = m_folder.bytes(input());
        const GraphOutcome whole = run();
        ASSERT_TRUE(whole.succeeded) << whole.errors.join(u'\n').toStdString();
        m_rows = whole.rows;
        ASSERT_FALSE(m_rows.isEmpty());
    }

    const QString &input() const { return GetParam().input; }
    GraphOutcome run(const GraphSettings &settings = {}) const
    {
        return m_folder.runChain({GetParam().element}, settings);
    }
    GraphOutcome runWith(const QByteArray &bytes) const
    {
        m_folder.remove(input()); // a test of the copied table must not change the original
        m_folder.write(input(), bytes);
        return run();
    }

    /// The run ended, failed with a message that names its input or not at all, and left no file.
    void checkEnd(const GraphOutcome &outcome) const
    {
        EXPECT_TRUE(outcome.ended);
        EXPECT_TRUE(outcome.succeeded || !outcome.errors.isEmpty());
        if (outcome.failed) {
            EXPECT_TRUE(outcome.errors.join(u'\n').contains(input()))
                << outcome.errors.join(u'\n').toStdString();
        }
        EXPECT_EQ(m_folder.files(), m_files);
    }

    GraphFolder m_folder;
    QStringList m_files;
    QByteArray m_bytes;
    QVector<QStringList> m_rows;
};

} // namespace

TEST_P(ReaderSweep, BatchesAndYieldsDoNotChangeTheRows)
{
    for (const int batchRows : {1, 7, 1024}) {
        for (const bool yields : {false, true}) {
            EXPECT_EQ(run({batchRows, yields, -1}).rows, m_rows);
        }
    }
}

TEST_P(ReaderSweep, ATruncatedFileGivesTheRowsBeforeItsEnd)
{
    const auto check = [&](const QByteArray &cut) {
        const GraphOutcome outcome = runWith(cut);
        checkEnd(outcome);
        // The last row may be incomplete: a truncated text is a valid file of some formats.
        ASSERT_LE(outcome.rows.size(), m_rows.size());
        for (qsizetype row = 0; row + 1 < outcome.rows.size(); ++row) {
            ASSERT_EQ(outcome.rows[row], m_rows[row]) << row;
        }
    };
    forEveryTruncation(m_bytes, check, 2 * g_maxPlaces);
}

TEST_P(ReaderSweep, AFlippedBitGivesRowsOrAFailure)
{
    forEveryFlip(
        m_bytes, [&](const QByteArray &damaged) { checkEnd(runWith(damaged)); },
        std::min(2 * g_maxPlaces, m_bytes.size()));
}

TEST_P(ReaderSweep, AStopAtAnyRowEndsTheRun)
{
    for (const qsizetype rows : placesIn(m_rows.size() + 1, g_maxPlaces)) {
        SCOPED_TRACE(testing::Message() << "stopped after " << rows << " rows");
        const GraphOutcome outcome = run({1, false, rows});
        EXPECT_TRUE(outcome.ended);
        EXPECT_FALSE(outcome.failed);
        EXPECT_EQ(outcome.rows, m_rows.first(outcome.rows.size()));
        EXPECT_EQ(m_folder.files(), m_files);
    }
}

INSTANTIATE_TEST_SUITE_P(, ReaderSweep, testing::ValuesIn(readers()),
                         [](const auto &info) { return info.param.name; });

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    if (QCoreApplication::arguments().contains(u"--exhaustive"_s)) {
        g_maxPlaces = kAllPlaces / 2;
    }
    return RUN_ALL_TESTS();
}
