// FileSeries with files that a graph cannot provide: those that appear late, block, or fail.
#include "actions/shared/file_series.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/main_ui.h"
#include "corvanta/plugin_interface.h"
#include "corvanta/run.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>

using namespace corvanta;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using OpenError = FileSeries::OpenError;

/// What the fake reader finds under one name.
struct FakeContent
{
    QVector<QString> names = {u"a"_s, u"b"_s};
    QVector<MetaInfo> types = {MetaInfo(MetaInfo::Key, -1), MetaInfo(MetaInfo::Key, -1)};
    int rows = 2;
    bool blocks = false; ///< next() waits until stop() is called
    std::optional<OpenError> error = {};
};

/// What the fake reader does, and what it saw.
struct Script
{
    QStringList files;
    std::map<QString, FakeContent> contents;
    FileSeries::Options options;
    bool skipsBadFiles = true; ///< missing and unreadable ones
    std::function<void()> whenOpened = [] {};
    QStringList events;
    std::vector<float> fractions; ///< before each row
    std::atomic<bool> isBlocked = false;
};
Script *g_script = nullptr;

class FakeFile final : public SeriesFile
{
public:
    FakeFile(ActionBase &action, FakeContent content)
        : m_action(action)
        , m_content(std::move(content))
    {
    }
    TableSchema columns() const override { return {m_content.names, m_content.types, {}}; }
    bool next(OneRow &row, Found *found) override
    {
        std::unique_lock lock(m_mutex);
        g_script->isBlocked = m_content.blocks;
        g_script->isBlocked.notify_all();
        m_changed.wait(lock, [&] { return !m_content.blocks || m_isStopped; });
        if (m_isStopped) {
            return false;
        }
        g_script->fractions.push_back(m_action.computeCompletion());
        *found = m_calls % 2 == 0 ? Found::Nothing : Found::Row; // each row after a "deleted" one
        if (m_calls++ == 2 * m_content.rows) {
            *found = Found::End;
        }
        for (int i = 0; i < static_cast<int>(m_content.names.size()); ++i) {
            row.setCol(i, keyCell(m_action.bufferForOutputPin(0), static_cast<quint32>(m_calls)));
        }
        return true;
    }
    bool finish() override
    {
        g_script->events << u"finish"_s;
        return true;
    }
    float fractionDone() const override
    {
        return static_cast<float>(m_calls) / static_cast<float>(2 * m_content.rows + 1);
    }
    void stop() override
    {
        const std::lock_guard lock(m_mutex);
        m_isStopped = true;
        m_changed.notify_all();
    }

private:
    ActionBase &m_action;
    const FakeContent m_content;
    int m_calls = 0;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    bool m_isStopped = false; // guarded by m_mutex
};

struct NoParams
{
};

class FakeReader final : public ParamAction<FakeReader, NoParams>, private FileSeries::Format
{
public:
    FakeReader(const XMLNode &saved, GlobalParameters *parameters)
        : ParamAction({.typeName = "fake", .pinsIn = 0}, saved, parameters)
    {
    }
    static const ParamTable<NoParams> &paramTable()
    {
        static const ParamTable<NoParams> table{};
        return table;
    }
    float computeCompletion() override { return m_series.fractionDone(); }
    void wakeAll() override { m_series.stop(); }

private:
    void start() override { m_series.reset(); }
    bool step() override
    {
        if (!m_series.hasBegun()) {
            m_series.start(*this, g_script->files, g_script->options);
            if (!m_series.openNext()) {
                return false;
            }
        }
        return m_series.step();
    }
    void finish() override { m_series.finish(); }

    FileSeries::Opened openFile(const QString &name) override
    {
        g_script->events << u"open "_s + name;
        const auto found = g_script->contents.find(name);
        const std::optional<OpenError> error =
            found == g_script->contents.end() ? OpenError::Missing : found->second.error;
        g_script->whenOpened();
        if (error) {
            return Fault{*error};
        }
        return FileSeries::Opened(std::make_unique<FakeFile>(*this, found->second));
    }
    bool report(const QString &text)
    {
        g_script->events << text;
        return g_script->skipsBadFiles || fail(text);
    }
    bool reportMissing(const QString &name) override { return report(u"missing "_s + name); }
    bool reportUnreadable(const QString &name) override { return report(u"unreadable "_s + name); }
    bool reportMismatch(const ColumnMismatch &mismatch) override
    {
        const QString text = u"%1 %2 '%3' %4 %5 %6"_s.arg(
            QString::number(static_cast<int>(mismatch.kind)), QString::number(mismatch.column),
            mismatch.name, mismatch.first, mismatch.found, mismatch.file);
        g_script->events << text;
        return fail(text);
    }

    FileSeries m_series{*this};
};

/// Collects its rows as texts.
class Sink final : public ParamAction<Sink, NoParams>
{
public:
    Sink(const XMLNode &saved, GlobalParameters *parameters)
        : ParamAction({.typeName = "sink", .pinsOut = 0}, saved, parameters)
    {
    }
    static const ParamTable<NoParams> &paramTable() { return FakeReader::paramTable(); }
    static QStringList lines;

private:
    void start() override { lines.clear(); }
    bool step() override
    {
        while (const OneRow *const row = getNextRowFromInPin(0)) {
            QStringList cells;
            for (int i = 0; i < row->numberOfColumns(); ++i) {
                cells << row->colName(i) + u'=' + row->text(i);
            }
            lines << cells.join(u' ');
        }
        return false;
    }
};
QStringList Sink::lines;

template <class Action> ActionItem *make()
{
    return new Action(XMLNode::emptyNode(), nullptr);
}

class Plugin final : public CorvantaPluginInterface
{
public:
    ActionItem *createAction(int index, unsigned int) override
    {
        return index == 0 ? make<FakeReader>() : index == 1 ? make<Sink>() : nullptr;
    }
    void initialise() override {}
    double getVersion() override { return 1; }
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }
};

class FileSeriesTest : public testing::Test
{
protected:
    FileSeriesTest() { g_script = &m_script; }

    /// Run the fake reader into the sink; true when the run succeeded.
    bool run(const std::function<void(corvanta::Run &)> &whileRunning = [](corvanta::Run &) {})
    {
        Plugin plugin;
        ActionRegistry registry;
        registry.add(&plugin);
        const auto graph =
            CorvantaGraph::parse("<graph><action id='a'><fake/></action><action id='s'><sink/>"
                                 "</action><link from='a:0' to='s:0'/></graph>",
                                 u"test.graph"_s);
        EXPECT_TRUE(graph && graph->validate(registry, {}).isEmpty());
        RunOptions options;
        options.log = &m_log;
        corvanta::Run run(*graph, registry, std::move(options));
        m_run = &run;
        run.start();
        whileRunning(run);
        EXPECT_TRUE(run.waitFor(60s));
        run.wait();
        return run.succeeded();
    }
    std::string events() const { return m_script.events.join(u", "_s).toStdString(); }

    struct Log final : LogSink
    {
        void add(const LogMessage &message) override
        {
            const std::lock_guard lock(mutex);
            texts << message.text;
        }
        std::mutex mutex;
        QStringList texts;
    };
    Script m_script;
    Log m_log;
    corvanta::Run *m_run = nullptr;
};

TEST_F(FileSeriesTest, JoinsFilesAndNamesTheFileOfEachRow)
{
    m_script.files = {u"x"_s, u"empty"_s, u"y"_s};
    m_script.contents[u"x"_s] = {};
    m_script.contents[u"empty"_s].rows = 0;
    m_script.contents[u"y"_s].rows = 1;
    m_script.options.fileNameColumn = u"_FileNames"_s;
    EXPECT_TRUE(run());
    EXPECT_EQ(Sink::lines, (QStringList{u"a=2 b=2 _FileNames=x"_s, u"a=4 b=4 _FileNames=x"_s,
                                        u"a=2 b=2 _FileNames=y"_s}));
    EXPECT_EQ(events(), "open x, finish, open empty, finish, open y, finish");
    // Two rows: five calls. Files weigh the same, whatever their size.
    EXPECT_FLOAT_EQ(m_script.fractions[4], 4.0F / 5 / 3);
    EXPECT_FLOAT_EQ(m_script.fractions[5], 1.0F / 3);
    EXPECT_FLOAT_EQ(m_script.fractions.back(), (2 + 2.0F / 3) / 3);
}

TEST_F(FileSeriesTest, BadFilesAreSkippedOrFailTheRun)
{
    const QStringList good = {u"a=2 b=2"_s, u"a=4 b=4"_s};
    m_script.files = {u"gone"_s, u"x"_s, u"bad"_s, u"gone"_s};
    m_script.contents[u"x"_s] = {};
    m_script.contents[u"bad"_s].error = OpenError::Unreadable;
    EXPECT_TRUE(run());
    EXPECT_EQ(Sink::lines, good);
    EXPECT_EQ(events(), "open gone, missing gone, open x, finish, open bad, unreadable bad, "
                        "open gone, missing gone");

    m_script.events.clear();
    m_script.skipsBadFiles = false;
    EXPECT_FALSE(run());
    EXPECT_EQ(events(), "open gone, missing gone");

    m_script.events.clear();
    m_script.files.removeFirst();
    EXPECT_FALSE(run());
    EXPECT_EQ(events(), "open x, finish, open bad, unreadable bad");
}

TEST_F(FileSeriesTest, ReportsOneColumnThatDiffersInTheOrderAsked)
{
    const MetaInfo key(MetaInfo::Key, -1);
    const MetaInfo number(MetaInfo::Float, -1);
    struct Case
    {
        FakeContent second;
        FileSeries::Order order;
        const char *report;
    };
    using Order = FileSeries::Order;
    const Case cases[] = {
        {{.names = {u"a"_s}, .types = {key}}, Order::FirstToLast, "0 0 '' 2 1 y"},
        {{.names = {u"c"_s, u"d"_s}}, Order::FirstToLast, "1 0 'c' a c y"},
        {{.names = {u"c"_s, u"d"_s}}, Order::LastToFirst, "1 1 'd' b d y"},
        {{.names = {u"c"_s, u"b"_s}, .types = {key, number}}, Order::LastToFirst, "2 1 'b' K F y"},
    };
    m_script.files = {u"x"_s, u"y"_s, u"x"_s};
    m_script.contents[u"x"_s] = {};
    for (const Case &c : cases) {
        m_script.contents[u"y"_s] = c.second;
        m_script.options.order = c.order;
        m_script.events.clear();
        EXPECT_FALSE(run());
        EXPECT_EQ(events(), std::string("open x, finish, open y, ") + c.report);
    }
}

TEST_F(FileSeriesTest, ColumnsThatAreGivenAreNotCompared)
{
    m_script.files = {u"gone"_s};
    m_script.options.columns = TableSchema{{u"t"_s}, {MetaInfo()}, {}};
    EXPECT_TRUE(run());
    m_script.files = {u"x"_s, u"y"_s};
    m_script.contents[u"x"_s] = {.names = {u"p"_s}, .rows = 1};
    m_script.contents[u"y"_s] = {.names = {u"q"_s}, .rows = 0};
    m_script.options.columns = TableSchema{{u"t"_s}, {MetaInfo(MetaInfo::Key, -1)}, {}};
    EXPECT_TRUE(run());
    EXPECT_EQ(Sink::lines, QStringList(u"t=2"_s));
}

TEST_F(FileSeriesTest, RetriesAMissingFile)
{
    m_script.files = {u"late"_s};
    m_script.options.retries = 1;
    m_script.whenOpened = [&] { m_script.contents[u"late"_s].rows = 1; };
    EXPECT_TRUE(run());
    EXPECT_EQ(Sink::lines.size(), 1);
    EXPECT_EQ(events(), "open late, open late, finish");
    EXPECT_EQ(m_log.texts, QStringList(u"Warning: cannot read file 'late': Attempting again..."_s));
}

TEST_F(FileSeriesTest, StopEndsRetriesWithoutAReport)
{
    m_script.files = {u"gone"_s, u"x"_s};
    m_script.options.retries = -1;
    m_script.whenOpened = [&] { m_run->stop(); };
    EXPECT_FALSE(run());
    EXPECT_EQ(events(), "open gone");
}

TEST_F(FileSeriesTest, StopEndsAWaitForARow)
{
    m_script.files = {u"x"_s};
    m_script.contents[u"x"_s].blocks = true;
    EXPECT_FALSE(run([&](corvanta::Run &run) {
        m_script.isBlocked.wait(false);
        run.stop();
    }));
    EXPECT_TRUE(m_script.fractions.empty());
}

} // namespace
