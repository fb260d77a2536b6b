// Targets of all writers of rows that are links, pipes, or on a full disk.
#include "corvanta/main_ui.h"
#include "tests/support/graph_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <optional>

using namespace corvanta::test;
using namespace Qt::StringLiterals;

namespace {

struct WriterCase
{
    const char *element; // the target is the file `name`
    const char *start;   // of the bytes of its files
    bool isSequential = true;
    bool appends = false;
    const char *row = nullptr; // the beginning of the only row; its last cell is a text
    const char *name = "link";
    bool readsRows = true; // off: it reads the table's file itself
};

constexpr WriterCase kWriters[] = {
    {"<writeExcel fileNameDestination='link'/>", "PK", false},
    {"<writeJSON fileName='link'/>", "[{"},
    {"<writeJSON fileMode='1' fileName='link'/>", "[{", true, true},
    {"<writeXML charMode='1' fileName='link'/>", "<?xml"},
    {"<writeXML fileMode='1' fileName='link'/>", "<data", true, true},
    {"<writeParquet file='link'/>", "PAR1"},
    {"<writeDocTable template='" CORVANTA_SOURCE_DIR
     "/examples/documents/report.docx' output='link'><v colWidths='1,1'/></writeDocTable>",
     "PK", false},
    {"<writeDoc output='k' template='t'><text><s>name</s></text></writeDoc>", "PK", false, false,
     "link," CORVANTA_SOURCE_DIR "/examples/documents/letter.docx,"},
    {"<writeReport output='link' template='>bar.xlsx'><Chart type='0' name='data'>"
     "<axis pinIdx='0'>k</axis><axis pinIdx='0'>t</axis></Chart></writeReport>",
     "PK", false},
    {"<writeCSV fileName='link'/>", "k,t\n"},
    {"<writeCSV fileName='link.csv.gz'/>", "\x1f\x8b", true, false, nullptr, "link.csv.gz"},
    {"<writeSAS autoWidth='1' fileName='link'/>", ""}, // the start is zero bytes
    {"<writeSASXPT autoWidth='1' fileName='link'/>", "HEADER RECORD*******LIBRARY HEADER"},
    {"<mergeFiles fileName='link.csv'><parts><s>in.csv</s></parts></mergeFiles>", "k,t\n", true,
     false, nullptr, "link.csv", false},
};

/// GoogleTest would print the bytes of the case, whose addresses differ from build to build.
void PrintTo(const WriterCase &writer, std::ostream *out)
{
    *out << writer.element;
}

/// In the name of the test: "2_writeJSON".
std::string nameOf(const testing::TestParamInfo<WriterCase> &info)
{
    const std::string_view element = info.param.element;
    return std::to_string(info.index) + '_' + std::string(element.substr(1, element.find(' ') - 1));
}

QByteArray table(int rows)
{
    QByteArray csv = "k,t\n";
    for (int i = 0; i < rows; ++i) {
        csv += QByteArray::number(i) + ',' + QByteArray::number(i * 7919LL % 65537) + '\n';
    }
    return csv;
}

class TargetFiles : public testing::TestWithParam<WriterCase>
{
protected:
    TargetFiles() { EXPECT_TRUE(QDir().mkdir(m_folder.path(u"real"_s))); }
    ~TargetFiles() override { MainUI::setDiskSpaceQuestion({}); }

    /// Run the writer on a table of so many rows.
    GraphOutcome run(int rows = 3) const
    {
        writeTable(rows);
        return runAgain();
    }
    void writeTable(int rows) const
    {
        QByteArray csv = table(rows);
        if (GetParam().row != nullptr) {
            csv = "k,t,name\n" + QByteArray(GetParam().row) + csv.replace(',', ' ').simplified();
        }
        m_folder.write(u"in.csv"_s, csv);
    }
    GraphOutcome runAgain() const
    {
        if (!GetParam().readsRows) {
            return m_folder.runChain({GetParam().element});
        }
        const QByteArray types = GetParam().row != nullptr ? "" : " types='K,U'";
        return m_folder.runChain({"<readCSV fileName='in.csv'" + types + "/>", GetParam().element});
    }
    QByteArray nativePath(const char *name) const
    {
        return QFile::encodeName(m_folder.path(QString::fromLatin1(name)));
    }
    QStringList names(const char *folder) const
    {
        return QDir(m_folder.path(QString::fromLatin1(folder)))
            .entryList(QDir::Files | QDir::System | QDir::Hidden, QDir::Name);
    }
    void link(const char *name, const char *target) const
    {
        ASSERT_EQ(::symlink(target, nativePath(name).constData()), 0);
    }
    std::string linkTarget(const char *name) const
    {
        std::array<char, 100> text{};
        const ssize_t n = ::readlink(nativePath(name).constData(), text.data(), text.size());
        return {text.data(), static_cast<size_t>(qMax<ssize_t>(n, 0))};
    }

    static const char *target() { return GetParam().name; }
    static QString targetName() { return QString::fromLatin1(target()); }

    GraphFolder m_folder;
};

} // namespace

TEST_P(TargetFiles, AChainOfLinksStaysAndTheFileAtItsEndIsWritten)
{
    link(target(), "second");
    link("second", "real/third");
    link("real/third", "file");
    for (const QByteArray &old : {QByteArray(), QByteArray("old")}) { // empty: does not exist
        m_folder.remove(u"real/file"_s);
        if (!old.isEmpty()) {
            m_folder.write(u"real/file"_s, old);
        }
        EXPECT_TRUE(run().succeeded);
        const QByteArray expected = (GetParam().appends ? old : QByteArray()) + GetParam().start;
        EXPECT_TRUE(m_folder.bytes(u"real/file"_s).startsWith(expected)) << old.toStdString();
        EXPECT_EQ(linkTarget(target()), "second");
        EXPECT_EQ(linkTarget("second"), "real/third");
        EXPECT_EQ(linkTarget("real/third"), "file");
        EXPECT_EQ(names("."), (QStringList{u"in.csv"_s, targetName(), u"second"_s}));
        EXPECT_EQ(names("real"), (QStringList{u"file"_s, u"third"_s}));
    }
}

TEST_P(TargetFiles, LinksInACircleFailTheRunAndStay)
{
    link(target(), "second");
    link("second", target());
    EXPECT_EQ(run().errors.size(), 1);
    EXPECT_EQ(linkTarget(target()), "second");
    EXPECT_EQ(names("."), (QStringList{u"in.csv"_s, targetName(), u"second"_s}));
}

TEST_P(TargetFiles, APipeIsWrittenDirectly)
{
    if (!GetParam().isSequential) {
        return; // a package needs to seek
    }
    const QByteArray pipe = nativePath("real/pipe");
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    link(target(), "real/pipe");
    const int reader = ::open(pipe.constData(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_TRUE(run().succeeded);
    std::array<char, 4096> bytes{};
    const ssize_t n = ::read(reader, bytes.data(), bytes.size());
    ::close(reader);
    EXPECT_TRUE(QByteArray(bytes.data(), qMax<ssize_t>(n, 0)).startsWith(GetParam().start));
    EXPECT_EQ(linkTarget(target()), "real/pipe");
    EXPECT_EQ(names("real"), QStringList{u"pipe"_s});
}

TEST_P(TargetFiles, AFullDiskIsAskedAboutAndRetriedWithoutLoss)
{
    constexpr int kRows = 20'000;
    ASSERT_TRUE(run(kRows).succeeded);
    const QByteArray expected = m_folder.bytes(targetName());
    m_folder.remove(targetName());
    std::optional<FileSizeLimit> full;
    int questions = 0;
    MainUI::setDiskSpaceQuestion([&](const QString &) {
        if (++questions == 3) {
            full.reset();
        }
        return true;
    });
    full.emplace(30'000);
    EXPECT_TRUE(runAgain().succeeded);
    EXPECT_EQ(questions, 3);
    EXPECT_EQ(m_folder.bytes(targetName()), expected);
}

TEST_P(TargetFiles, ADiskThatStaysFullFailsTheRunWithOneErrorAfterTheLastQuestion)
{
    int questions = 0;
    MainUI::setDiskSpaceQuestion([&](const QString &) { return ++questions < 3; });
    writeTable(20'000);
    const FileSizeLimit full(30'000);
    const GraphOutcome outcome = runAgain();
    EXPECT_EQ(questions, 3);
    EXPECT_EQ(outcome.errors.size(), 1);
    EXPECT_FALSE(names(".").contains(targetName()));
}

INSTANTIATE_TEST_SUITE_P(Writers, TargetFiles, testing::ValuesIn(kWriters), nameOf);

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv); // the module is found by the program's folder
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
