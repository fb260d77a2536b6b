// Every reader and writer under every damage: no crash, no hang, no temporary file, no lost target.
//
// The actions run in graphs, loaded from the module as by any host. A normal run samples places;
// the argument "--places N" tries about N of each input, and so all if N is large.
#include "base/byte_sink.h"
#include "codecs/zip/package_writer.h"
#include "tests/support/graph_folder.h"
#include "tests/support/sweeps.h"

#include <QCoreApplication>
#include <QFile>

#include <gtest/gtest.h>
using namespace corvanta::test;
using namespace Qt::StringLiterals;

namespace {

qsizetype g_maxPlaces = 60;

/// Sizes of a full disk. A file is written in a few calls: more sizes only repeat their failures.
constexpr qsizetype kMaxLimits = 300;

constexpr int kRows = 60;

/// A table with each cell type, missing values and text that every format has to escape. It is
/// sorted on the column "part", which has three values.
QByteArray sampleCsv(int rows = kRows)
{
    QByteArray csv = "key,value,name,note,part\n";
    for (int i = 0; i < rows; ++i) {
        const QByteArray number = QByteArray::number(i);
        csv += (i % 7 == 3 ? QByteArray() : number) + ',' + (i % 5 == 2 ? "" : number + ".25") +
               ",\"n <&\"\"> " + number + "\"," +
               (i % 3 == 1 ? "" : "caf\xC3\xA9 \xF0\x9F\x98\x80") + ',' +
               QByteArray::number(3 * i / rows) + '\n';
    }
    return csv;
}

const QByteArray kReadSample = "<readCSV fileName='in.csv' types='K,F,U,U,U' sortedOn='part'/>";

struct Writer
{
    const char *name;
    QByteArray element;
    QStringList targets;     ///< in the order in which they are completed
    QByteArray before = {};  ///< writes an old target, or another file that the writer reads
    QStringList leaves = {}; ///< left next to the targets by a failed run
    bool failsWithoutRows = false;
    QByteArray rows = {};    ///< the table, if it is not the sample; all texts
    bool joinsParts = false; ///< it reads its input itself, and has a row per part
    bool updatesInPlace() const { return failsWithoutRows; }
};

/// Names the parameter in the messages of a failed test.
void PrintTo(const Writer &writer, std::ostream *out)
{
    *out << writer.name;
}

/// One row per document of writeDoc.
QByteArray letters(const QStringList &documents)
{
    const QByteArray folder = CORVANTA_SOURCE_DIR "/examples/documents/";
    QByteArray csv = "output,template,name,picture\n";
    for (const QString &document : documents) {
        csv += document.toUtf8() + ',' + folder + "letter.docx,A & B," + folder + "mars.png\n";
    }
    return csv;
}

const std::vector<Writer> &writers()
{
    const auto workbook = [](const QByteArray &name) -> QByteArray {
        return "<writeExcel fileNameDestination='" + name + "'/>";
    };
    const QByteArray copy = " fileNameSource='source.xlsx' fileNameDestination='out.xlsx'";
    const auto merge = [](const QByteArray &output, const QByteArray &part) -> QByteArray {
        return "<mergeFiles fileName='" + output + "'><parts><s>" + part +
               "</s></parts></mergeFiles>";
    };
    const QStringList parts{u"out0.json"_s, u"out1.json"_s, u"out2.json"_s};
    const QStringList documents{u"out0.docx"_s, u"out1.docx"_s, u"out2.docx"_s};
    static const std::vector<Writer> all = {
        {"writeCSV", "<writeCSV fileName='out.csv'/>", {u"out.csv"_s}},
        {"newWorkbook", workbook("out.xlsx"), {u"out.xlsx"_s}},
        {"addedSheet",
         "<writeExcel mode='1' fileNameDestination='out.xlsx' sheetName='New'/>",
         {u"out.xlsx"_s},
         workbook("out.xlsx"),
         {},
         true},
        {"appendedRows",
         "<writeExcel mode='2' fileNameDestination='out.xlsx' startRow='0'/>",
         {u"out.xlsx"_s},
         workbook("out.xlsx"),
         {},
         true},
        {"copyWithAddedSheet",
         "<writeExcel mode='3' sheetName='New'" + copy + "/>",
         {u"out.xlsx"_s},
         workbook("source.xlsx")},
        {"copyWithAppendedRows",
         "<writeExcel mode='4' startRow='0'" + copy + "/>",
         {u"out.xlsx"_s},
         workbook("source.xlsx")},
        {"writeJSON", "<writeJSON fileName='out.json'/>", {u"out.json"_s}},
        {"appendedJSON", "<writeJSON fileName='out.json' fileMode='1'/>", {u"out.json"_s}},
        {"splitJSON", "<writeJSON fileName='out.json' splitFile='1' splitCol='part'/>", parts},
        {"writeXML", "<writeXML fileName='out.xml' wellFormed='1'/>", {u"out.xml"_s}},
        {"appendedXML", "<writeXML fileName='out.xml' fileMode='1'/>", {u"out.xml"_s}},
        {"writeParquet",
         "<writeParquet file='out.parquet'/>",
         {u"out.parquet"_s},
         {},
         {u"out.parquet_TMP"_s}},
        {"writeDoc",
         "<writeDoc output='output' template='template'><text><s>name</s></text><image>"
         "<s>picture</s></image></writeDoc>",
         documents,
         {},
         {},
         false,
         letters(documents)},
        {"writeDocTable",
         "<writeDocTable template='" CORVANTA_SOURCE_DIR
         "/examples/documents/report.docx' output='out.docx'><v colWidths='1,1,1,1,1'/>"
         "</writeDocTable>",
         {u"out.docx"_s}},
        {"writeReport",
         "<writeReport output='out.xlsx' template='>bar.xlsx'><Chart type='0' name='data'>"
         "<axis pinIdx='0'>name</axis><axis pinIdx='0'>value</axis></Chart></writeReport>",
         {u"out.xlsx"_s}},
        {"splitParquet",
         "<writeParquet file='out.parquet' split='1' splitVar='part'/>",
         {u"out__0.parquet"_s, u"out__1.parquet"_s, u"out__2.parquet"_s},
         {},
         {u"out__0.parquet_TMP"_s, u"out__1.parquet_TMP"_s, u"out__2.parquet_TMP"_s}},
        {"writeSAS", "<writeSAS fileName='out.sas7bdat' autoWidth='1'/>", {u"out.sas7bdat"_s}},
        {"writeSASXPT", "<writeSASXPT fileName='out.xpt' autoWidth='1'/>", {u"out.xpt"_s}},
        {"mergedCSV", merge("out.csv", "in.csv"), {u"out.csv"_s}, {}, {}, false, {}, true},
        {"mergedJSON",
         merge("out.json", "part.json"),
         {u"out.json"_s},
         "<writeJSON fileName='part.json'/>",
         {},
         false,
         {},
         true},
        {"mergedParquet",
         merge("out.parquet", "part.parquet"),
         {u"out.parquet"_s},
         "<writeParquet file='part.parquet'/>",
         {},
         false,
         {},
         true},
    };
    return all;
}

class WriterSweep : public testing::TestWithParam<Writer>
{
protected:
    void SetUp() override
    {
        m_folder.write(u"in.csv"_s, hasSample() ? sampleCsv() : GetParam().rows);
        if (!GetParam().before.isEmpty()) {
            ASSERT_TRUE(m_folder.runChain({kReadSample, GetParam().before}).succeeded);
        }
        for (const QString &target : targets()) {
            const QByteArray old = m_folder.bytes(target);
            m_old << (old.isEmpty() ? QByteArray("old\n") : old);
        }
        restore();
        m_files = m_folder.files();
        const GraphOutcome whole = run();
        ASSERT_TRUE(whole.succeeded) << whole.errors.join(u'\n').toStdString();
        m_new = now();
        for (qsizetype i = 0; i < m_new.size(); ++i) {
            ASSERT_NE(m_new[i], m_old[i]);
        }
        restore();
    }

    const QStringList &targets() const { return GetParam().targets; }
    bool hasSample() const { return GetParam().rows.isEmpty(); }
    QByteArrayList now() const
    {
        QByteArrayList all;
        for (const QString &target : targets()) {
            all << m_folder.bytes(target);
        }
        return all;
    }
    void restore()
    {
        for (qsizetype i = 0; i < targets().size(); ++i) {
            m_folder.write(targets()[i], m_old[i]);
        }
    }
    GraphOutcome run(const GraphSettings &settings = {}) const
    {
        if (GetParam().joinsParts) {
            return m_folder.runChain({GetParam().element}, settings);
        }
        const QByteArray reader = hasSample() ? kReadSample : "<readCSV fileName='in.csv'/>";
        return m_folder.runChain({reader, GetParam().element}, settings);
    }
    /// The number of targets that a run replaced. Each is the old or the new file, and no target is
    /// new after one that is old.
    qsizetype newTargets() const
    {
        const QByteArrayList content = now();
        qsizetype replaced = 0;
        for (qsizetype i = 0; i < content.size(); ++i) {
            const bool isNew = content[i] == m_new[i];
            EXPECT_TRUE(isNew ? replaced == i : content[i] == m_old[i])
                << targets()[i].toStdString() << ": " << content[i].size() << " bytes";
            replaced += isNew ? 1 : 0;
        }
        return replaced;
    }

    /// After a run the targets are the old or the new files, as its result says, and nothing else
    /// is there. Puts the old files back.
    void checkAndRestore(const GraphOutcome &outcome)
    {
        EXPECT_TRUE(outcome.ended);
        const qsizetype replaced = newTargets();
        EXPECT_TRUE(!outcome.succeeded || replaced == targets().size());
        EXPECT_TRUE(!outcome.failed || replaced < targets().size());
        EXPECT_EQ(outcome.failed, !outcome.errors.isEmpty());
        if (outcome.failed) {
            EXPECT_TRUE(outcome.messages.join(u'\n').contains(u"/out"))
                << outcome.messages.join(u'\n').toStdString();
            for (const QString &left : GetParam().leaves) {
                m_folder.remove(left);
            }
        }
        EXPECT_EQ(m_folder.files(), m_files);
        restore();
    }

    GraphFolder m_folder;
    QStringList m_files;
    QByteArrayList m_old;
    QByteArrayList m_new;
};

} // namespace

TEST_P(WriterSweep, BatchesAndYieldsDoNotChangeTheFile)
{
    for (const int batchRows : {1, 7, 1024}) {
        for (const bool yields : {false, true}) {
            const GraphOutcome outcome = run({batchRows, yields, -1});
            EXPECT_TRUE(outcome.succeeded);
            EXPECT_EQ(outcome.rows.size(),
                      hasSample() && !GetParam().joinsParts ? kRows : targets().size());
            checkAndRestore(outcome);
        }
    }
}

TEST_P(WriterSweep, ATableWithoutRowsIsWritten)
{
    if (GetParam().updatesInPlace()) {
        GTEST_SKIP() << "an update without rows fails after its retries: tests/updates";
    }
    m_folder.write(u"in.csv"_s, hasSample() ? sampleCsv(0) : letters({}));
    const GraphOutcome outcome = run();
    EXPECT_TRUE(outcome.succeeded) << outcome.errors.join(u'\n').toStdString();
    EXPECT_FALSE(now().contains(QByteArray()));
    // A file for a table without a value to split by has another name.
    EXPECT_TRUE(targets().size() > 1 || m_folder.files() == m_files);
}

TEST_P(WriterSweep, AFullDiskKeepsTheOldFile)
{
    qsizetype largest = 0;
    for (const QByteArray &content : m_new) {
        largest = std::max(largest, content.size());
    }
    for (const qsizetype limit : placesIn(largest, std::min(g_maxPlaces, kMaxLimits))) {
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

/// A zip archive with the member "inner".
QByteArray zipped(const QByteArray &bytes)
{
    corvanta::MemorySink sink;
    corvanta::zip::PackageWriter package(sink);
    EXPECT_TRUE(package.openMember("inner") && package.write(bytes) && package.closeMember() &&
                package.close());
    return sink.bytes();
}

/// A table of one column, with each line of `bytes` as a row.
QByteArray linesAsColumn(const QByteArray &bytes)
{
    QByteArray csv = "doc\n";
    for (QByteArray line : bytes.trimmed().split('\n')) {
        csv += '"' + line.replace('"', "\"\"") + "\"\n";
    }
    return csv;
}

struct Reader
{
    const char *name;
    QList<QByteArray> chain;
    QString input;                                    ///< is damaged
    QByteArray writer;                                ///< writes it; empty: a copy of `sample`
    QByteArray (*pack)(const QByteArray &) = nullptr; ///< is applied to it
    QString sibling = {};                             ///< a copy of it: read before, or replaced
    QString part = {};                                ///< also names the input in messages
    QByteArray sample = "read_xbf/types/all.dbf";     ///< a file of the graph cases
};

void PrintTo(const Reader &reader, std::ostream *out)
{
    *out << reader.name;
}

const std::vector<Reader> &readers()
{
    const auto items = [](const QByteArray &prefix) {
        QByteArray all;
        for (const char *name : {"key", "value", "name", "note"}) {
            all += QByteArray("<e name='") + name + "' path='" + prefix + name + "'/>";
        }
        return all;
    };
    const auto json = [&](const QByteArray &name) -> QByteArray {
        return "<readJSON fileName='" + name + "'><Level>" + items({}) + "</Level></readJSON>";
    };
    const auto xml = [&](const QByteArray &name) -> QByteArray {
        return "<readXML fileName='" + name + "'><Level initialPath='data' subtagName='R'>" +
               items("@") + "</Level></readXML>";
    };
    const auto table = [](const char *type, const QByteArray &name) -> QByteArray {
        return QByteArray("<") + type + " fileName='" + name + "'/>";
    };
    const auto merge = [](const QByteArray &extension) -> QList<QByteArray> {
        return {"<mergeFiles fileName='out." + extension + "'><parts><s>input." + extension +
                "</s></parts></mergeFiles>"};
    };
    const QByteArray writeJson = "<writeJSON fileName='input.json'/>";
    const QByteArray writeXml = "<writeXML fileName='input.xml' wellFormed='1'/>";
    const QByteArray writeParquet = "<writeParquet file='input.parquet'/>";
    // One document per line.
    const QByteArray writeLines =
        "<writeJSON fileName='input.csv'><Prefix></Prefix><Suffix></Suffix><Levels>"
        "<Level commaSeparated='0'><Item text='{'/><Item type='1'/><Item text='}&#10;'/></Level>"
        "</Levels></writeJSON>";
    const auto stat = [&](const char *name, const QByteArray &file, const char *sample) -> Reader {
        return {name,  {table("readStat", file)}, QString::fromLatin1(file), {}, nullptr, {}, {},
                sample};
    };
    static const std::vector<Reader> all = {
        {"readCSV",
         {"<readCSV fileName='input.csv' types='K,F,U,U,U'/>"},
         u"input.csv"_s,
         "<writeCSV fileName='input.csv'/>"},
        {"compressedCSV",
         {"<readCSV fileName='input.csv.gz' types='K,F,U,U,U'/>"},
         u"input.csv.gz"_s,
         "<writeCSV fileName='input.csv.gz'/>"},
        {"readJSON", {json("input.json")}, u"input.json"_s, writeJson},
        {"archivedJSON",
         {json("input.zip@inner")},
         u"input.zip"_s,
         "<writeJSON fileName='input.zip'/>",
         zipped},
        {"twoJSON", {json("input*.json")}, u"input.json"_s, writeJson, nullptr, u"input-.json"_s},
        {"textFromThePin",
         {"<readCSV fileName='input.csv' types='U'/>",
          "<readJSON fileName='' fromInputPin='1' oneJSONPerRow='1' colJSON='doc'><Level>" +
              items({}) + "</Level></readJSON>"},
         u"input.csv"_s,
         writeLines,
         linesAsColumn,
         {},
         u"doc"_s},
        {"readXML", {xml("input.xml")}, u"input.xml"_s, writeXml},
        {"compressedXML",
         {xml("input.xml.gz")},
         u"input.xml.gz"_s,
         "<writeXML fileName='input.xml.gz' wellFormed='1'/>"},
        {"ReadXBF", {table("ReadXBF", "input.dbf")}, u"input.dbf"_s, {}},
        {"archivedXBF", {table("ReadXBF", "input.zip@inner")}, u"input.zip"_s, {}, zipped},
        {"readExcelOld",
         {table("readExcelOld", "input.xls")},
         u"input.xls"_s,
         {},
         nullptr,
         {},
         {},
         "read_excel_old/kinds/kinds.xls"},
        {"readExcelSheets",
         {table("readExcelSheets", "input.xls")},
         u"input.xls"_s,
         {},
         nullptr,
         {},
         {},
         "read_excel_sheets/names/c.xls"},
        {"twoXBF", {table("ReadXBF", "input*.dbf")}, u"input.dbf"_s, {}, nullptr, u"input-.dbf"_s},
        {"readExcel",
         {table("readExcel", "input.xlsx")},
         u"input.xlsx"_s,
         "<writeExcel fileNameDestination='input.xlsx'/>"},
        {"readParquet", {table("readParquet", "input.parquet")}, u"input.parquet"_s, writeParquet},
        {"twoParquet",
         {table("readParquet", "input*.parquet")},
         u"input.parquet"_s,
         writeParquet,
         nullptr,
         u"input-.parquet"_s},
        {"mergedParquet", merge("parquet"), u"input.parquet"_s, writeParquet, nullptr,
         u"out.parquet"_s},
        {"mergedJSON", merge("json"), u"input.json"_s, writeJson, nullptr, u"out.json"_s},
        {"mergedCSV", merge("csv.gz"), u"input.csv.gz"_s, "<writeCSV fileName='input.csv.gz'/>",
         nullptr, u"out.csv.gz"_s},
        stat("readSpss", "input.sav", "read_stat/values/v.sav"),
        stat("readStata", "input.dta", "read_stat/values/v.dta"),
        stat("readSas", "input.sas7bdat", "read_stat/sas/s.sas7bdat"),
        stat("readTransport", "input.xpt", "read_stat/values/v.xpt"),
    };
    return all;
}

class ReaderSweep : public testing::TestWithParam<Reader>
{
protected:
    void SetUp() override
    {
        if (GetParam().writer.isEmpty()) {
            QFile table(
                QString::fromLatin1(CORVANTA_SOURCE_DIR "/tests/graphs/" + GetParam().sample));
            ASSERT_TRUE(table.open(QIODevice::ReadOnly));
            m_folder.write(input(), table.readAll());
        } else {
            m_folder.write(u"in.csv"_s, sampleCsv());
            ASSERT_TRUE(m_folder.runChain({kReadSample, GetParam().writer}).succeeded);
        }
        m_bytes = m_folder.bytes(input());
        if (GetParam().pack != nullptr) {
            m_bytes = GetParam().pack(m_bytes);
            m_folder.write(input(), m_bytes);
        }
        if (!GetParam().sibling.isEmpty()) {
            m_folder.write(GetParam().sibling, m_bytes);
        }
        m_files = m_folder.files();
        const GraphOutcome whole = run();
        ASSERT_TRUE(whole.succeeded) << whole.errors.join(u'\n').toStdString();
        m_rows = whole.rows;
        ASSERT_FALSE(m_rows.isEmpty());
    }

    const QString &input() const { return GetParam().input; }
    GraphOutcome run(const GraphSettings &settings = {}) const
    {
        return m_folder.runChain(GetParam().chain, settings);
    }
    GraphOutcome runWith(const QByteArray &bytes) const
    {
        m_folder.write(input(), bytes);
        return run();
    }

    /// The run ended, failed with a message that names its input or not at all, and left no file.
    void checkEnd(const GraphOutcome &outcome) const
    {
        EXPECT_TRUE(outcome.ended);
        EXPECT_TRUE(outcome.succeeded || !outcome.errors.isEmpty());
        if (outcome.failed) {
            const QString errors = outcome.errors.join(u'\n');
            const QString &part = GetParam().part;
            EXPECT_TRUE(errors.contains(input()) || (!part.isEmpty() && errors.contains(part)))
                << errors.toStdString();
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

TEST(RowActionSweep, BatchesYieldsAndStopsDoNotChangeTheRows)
{
    const GraphFolder folder;
    folder.write(u"in.csv"_s, sampleCsv());
    for (const char *element :
         {"<select lastRow='50'><columns><s>name</s><s>key</s></columns></select>",
          "<filter where='key &lt; 30 or value is null'/>",
          "<sort><keys><s>-note</s></keys></sort>", "<cast><types><s>key=F</s></types></cast>",
          "<union/>"}) {
        SCOPED_TRACE(element);
        const GraphOutcome whole = folder.runChain({kReadSample, element});
        ASSERT_TRUE(whole.succeeded) << whole.errors.join(u'\n').toStdString();
        for (const int batchRows : {1, 7}) {
            for (const bool yields : {false, true}) {
                EXPECT_EQ(folder.runChain({kReadSample, element}, {batchRows, yields}).rows,
                          whole.rows);
            }
        }
        for (const qsizetype rows : placesIn(whole.rows.size(), g_maxPlaces)) {
            const GraphOutcome stopped = folder.runChain({kReadSample, element}, {1, false, rows});
            EXPECT_TRUE(stopped.ended && stopped.errors.isEmpty());
        }
    }
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (const qsizetype option = arguments.indexOf(u"--places"_s); option >= 0) {
        g_maxPlaces = arguments.value(option + 1).toInt();
    }
    return RUN_ALL_TESTS();
}
