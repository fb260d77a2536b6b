// What all writers of rows owe their targets: links, pipes and full disks.
#include "actions/write_excel/write_excel.h"
#include "actions/write_json/write_json.h"
#include "actions/write_parquet/write_parquet.h"
#include "actions/write_xml/write_xml.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/main_ui.h"
#include "corvanta/plugin_interface.h"
#include "corvanta/run.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>

using namespace corvanta;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

template <class Action> ActionItem *make()
{
    return new Action(XMLNode::emptyNode(), nullptr);
}

class Writers final : public CorvantaPluginInterface
{
public:
    ActionItem *createAction(int index, unsigned int) override
    {
        constexpr std::array kMakers{make<ActionWriteExcel>, make<ActionWriteJSON>,
                                     make<ActionWriteParquet>, make<ActionWriteXML>};
        return index < static_cast<int>(kMakers.size()) ? kMakers[static_cast<size_t>(index)]()
                                                        : nullptr;
    }
    void initialise() override {}
    double getVersion() override { return 1; }
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }
};

struct CollectingLog final : LogSink
{
    void add(const LogMessage &message) override { texts << message.text; }
    QStringList texts;
};

struct WriterCase
{
    const char *element; // without its end; the target is the file "link"
    const char *start;   // of the bytes of its files
    bool isSequential = true;
    bool appends = false;
};

constexpr WriterCase kWriters[] = {
    {"<writeExcel fileNameDestination='link'", "PK", false},
    {"<writeJSON fileName='link'", "[{"},
    {"<writeJSON fileMode='1' fileName='link'", "[{", true, true},
    {"<writeXML charMode='1' fileName='link'", "<?xml"},
    {"<writeXML fileMode='1' fileName='link'", "<data", true, true},
    {"<writeParquet file='link'", "PAR1"},
    {"<writeCSV fileName='link'", "k,t\n"},
};

/// Files cannot grow beyond `bytes` until lift().
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        m_oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit limit{bytes, m_old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        lift();
        std::signal(SIGXFSZ, m_oldHandler);
    }
    void lift() { setrlimit(RLIMIT_FSIZE, &m_old); }

private:
    rlimit m_old{};
    void (*m_oldHandler)(int) = nullptr;
};

class RowWriters : public testing::TestWithParam<WriterCase>
{
protected:
    RowWriters()
    {
        Writers plugin;
        m_registry.add(&plugin);
        qputenv("CORVANTA_PLUGIN_PATH", QFile::encodeName(m_dir.filePath(u"none"_s)));
        m_registry.loadAll(); // the CSV actions
        EXPECT_TRUE(QDir(m_dir.path()).mkdir(u"real"_s));
        QByteArray table = "k,t\n";
        for (int i = 0; i < 3; ++i) {
            table += QByteArray::number(i) + ",text\n";
        }
        write("in.csv", table);
    }
    ~RowWriters() override { MainUI::setDiskSpaceQuestion({}); }

    /// Run the writer on in.csv; true when the run succeeded. Messages are in m_log.
    bool run()
    {
        const QByteArray graphText =
            "<graph><action id='a'><readCSV fileName='in.csv' types='K,U'/></action>"
            "<action id='w'>" +
            QByteArray(GetParam().element) + "/></action><link from='a:0' to='w:0'/></graph>";
        const auto graph = CorvantaGraph::parse(graphText, path("test.graph"));
        EXPECT_TRUE(graph && graph->validate(m_registry, {}).isEmpty());
        m_log.texts.clear();
        RunOptions options;
        options.log = &m_log;
        options.outDir = m_dir.path();
        corvanta::Run run(*graph, m_registry, std::move(options));
        run.start();
        EXPECT_TRUE(run.waitFor(60s));
        run.wait();
        return run.succeeded();
    }
    std::string messages() const { return m_log.texts.join(u'|').toStdString(); }
    QString path(const char *name) const { return m_dir.filePath(QString::fromLatin1(name)); }
    QStringList files(const char *folder) const
    {
        return QDir(path(folder)).entryList(QDir::Files | QDir::System | QDir::Hidden, QDir::Name);
    }
    QByteArray content(const char *name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void write(const char *name, const QByteArray &bytes) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }
    void link(const char *name, const char *target) const
    {
        ASSERT_EQ(::symlink(target, QFile::encodeName(path(name)).constData()), 0);
    }
    std::string linkTarget(const char *name) const
    {
        std::array<char, 100> text{};
        const ssize_t n =
            ::readlink(QFile::encodeName(path(name)).constData(), text.data(), text.size());
        return {text.data(), static_cast<size_t>(qMax<ssize_t>(n, 0))};
    }

    QTemporaryDir m_dir;
    ActionRegistry m_registry;
    CollectingLog m_log;
};

} // namespace

TEST_P(RowWriters, AChainOfLinksStaysAndTheFileAtItsEndIsWritten)
{
    link("link", "second");
    link("second", "real/third");
    link("real/third", "file");
    for (const QByteArray &old : {QByteArray(), QByteArray("old")}) { // empty: does not exist
        QFile::remove(path("real/file"));
        if (!old.isEmpty()) {
            write("real/file", old);
        }
        EXPECT_TRUE(run()) << messages();
        const QByteArray expected = (GetParam().appends ? old : QByteArray()) + GetParam().start;
        EXPECT_TRUE(content("real/file").startsWith(expected)) << old.toStdString();
        EXPECT_EQ(linkTarget("link"), "second");
        EXPECT_EQ(linkTarget("second"), "real/third");
        EXPECT_EQ(linkTarget("real/third"), "file");
        EXPECT_EQ(files("."), (QStringList{u"in.csv"_s, u"link"_s, u"second"_s}));
        EXPECT_EQ(files("real"), (QStringList{u"file"_s, u"third"_s}));
    }
}

TEST_P(RowWriters, LinksInACircleFailTheRunAndStay)
{
    link("link", "second");
    link("second", "link");
    EXPECT_FALSE(run());
    EXPECT_EQ(m_log.texts.size(), 1);
    EXPECT_EQ(linkTarget("link"), "second");
    EXPECT_EQ(files("."), (QStringList{u"in.csv"_s, u"link"_s, u"second"_s}));
}

TEST_P(RowWriters, APipeIsWrittenDirectly)
{
    if (!GetParam().isSequential) {
        return; // a package needs to seek
    }
    const QByteArray pipe = QFile::encodeName(path("real/pipe"));
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    link("link", "real/pipe");
    const int reader = ::open(pipe.constData(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_TRUE(run()) << messages();
    std::array<char, 4096> bytes{};
    const ssize_t n = ::read(reader, bytes.data(), bytes.size());
    ::close(reader);
    EXPECT_TRUE(QByteArray(bytes.data(), qMax<ssize_t>(n, 0)).startsWith(GetParam().start));
    EXPECT_EQ(linkTarget("link"), "real/pipe");
    EXPECT_EQ(files("real"), QStringList{u"pipe"_s});
}

TEST_P(RowWriters, AFullDiskIsAskedAboutAndRetriedWithoutLoss)
{
    QByteArray table = "k,t\n";
    for (int i = 0; i < 20'000; ++i) {
        table += QByteArray::number(i) + ',' + QByteArray::number(i * 7919LL % 65537) + '\n';
    }
    write("in.csv", table);
    ASSERT_TRUE(run());
    const QByteArray expected = content("link");
    QFile::remove(path("link"));
    FileSizeLimit full(30'000);
    int questions = 0;
    MainUI::setDiskSpaceQuestion([&](const QString &) {
        if (++questions == 3) {
            full.lift();
        }
        return true;
    });
    EXPECT_TRUE(run()) << messages();
    EXPECT_EQ(questions, 3);
    EXPECT_EQ(content("link"), expected);
}

INSTANTIATE_TEST_SUITE_P(Actions, RowWriters, testing::ValuesIn(kWriters));
