// Previews: a few rows of a pin, and nothing that a preview must not do.
#include "corvanta/engine_runner.h"
#include "corvanta/row_listener.h"
#include "engine_case.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>

using namespace test;
using namespace std::chrono_literals;

namespace {

/// Makes registries load the module with the host's own actions.
void useOwnModule()
{
    qputenv("CORVANTA_PLUGIN_PATH",
            QFileInfo(QStringLiteral(CORVANTA_TABLES_MODULE)).path().toUtf8());
}

} // namespace

TEST_F(EngineTest, APreviewTakesAFewRowsAndEndsTheRest)
{
    const auto run = make(kChain);
    EngineRunner runner;
    ASSERT_TRUE(runner.run(m_graph, m_registry, QStringLiteral("c"), 0, EngineRunner::PinIn, {}));
    EXPECT_EQ(runner.columns().names,
              (QVector<QString>{QStringLiteral("n"), QStringLiteral("text")}));
    ASSERT_EQ(runner.rows().size(), EngineRunner::kPreviewRows);
    EXPECT_EQ(runner.rows().last(), (QStringList{QStringLiteral("199"), QStringLiteral("x")}));
    EXPECT_FALSE(runner.run(m_graph, m_registry, QStringLiteral("a"), 0, EngineRunner::PinIn, {}));
}

// A listener on a pin that does not exist would read past the pins of the action.
TEST_F(EngineTest, APreviewOfAPinThatDoesNotExistFails)
{
    const auto run = make(kChain);
    EngineRunner runner;
    const auto preview = [&](const char *id, int pin) {
        return runner.run(m_graph, m_registry, QString::fromLatin1(id), pin, EngineRunner::PinOut,
                          {});
    };
    EXPECT_TRUE(preview("a", 0));
    EXPECT_FALSE(preview("a", 1));
    EXPECT_FALSE(preview("a", -1));
    EXPECT_FALSE(preview("nobody", 0));
}

// A panel knows its action, not the place of the action in the graph.
TEST_F(EngineTest, APreviewForAnActionNeedsItsNumber)
{
    useOwnModule();
    QTemporaryDir dir;
    QByteArray inside;
    for (const QByteArray name : {"first", "second"}) {
        const QString file = dir.filePath(QString::fromLatin1(name));
        QFile content(file);
        ASSERT_TRUE(content.open(QIODevice::WriteOnly) && content.write(name + "\n1\n") > 0);
        inside += "<action id='" + name + "'><readCSV fileName='" + file.toUtf8() + "'/></action>";
    }
    auto graph =
        CorvantaGraph::parse("<graph>" + inside + "</graph>", QStringLiteral("test.graph"));
    ASSERT_TRUE(graph);
    MainUI::setEditorHooks({{}, {}, [&] { return &*graph; }, {}});
    RowListener action([](const TableSchema &, const OneRow *) { return true; });
    EngineRunner runner;
    EXPECT_FALSE(runner.run(0, &action, EngineRunner::PinOut, false));
    action.setIdx(1);
    ASSERT_TRUE(runner.run(0, &action, EngineRunner::PinOut, false));
    EXPECT_EQ(runner.columns().names, QVector<QString>{QStringLiteral("second")});
    action.setIdx(0);
    ASSERT_TRUE(runner.run(0, &action, EngineRunner::PinOut, false));
    EXPECT_EQ(runner.columns().names, QVector<QString>{QStringLiteral("first")});
    MainUI::setEditorHooks({});
}

TEST_F(EngineTest, APreviewWritesNoFileIfItMustNot)
{
    useOwnModule();
    ActionRegistry registry;
    registry.loadAll();
    const auto graph =
        CorvantaGraph::parse("<graph><action id='in'><readCSV fileName='none.csv'/></action>"
                             "<action id='out'><writeCSV fileName='no.csv'/></action>"
                             "<link from='in:0' to='out:0'/></graph>",
                             QStringLiteral("/test.graph"));
    ASSERT_TRUE(graph);
    EngineRunner runner;
    EXPECT_FALSE(runner.run(*graph, registry, QStringLiteral("out"), 0, EngineRunner::PinOut,
                            {.mayWrite = false, .log = &m_log}));
    EXPECT_EQ(m_log.messages,
              QStringList{QStringLiteral(
                  ": Error: a preview does not run actions that write files ('/no.csv')")});
}

// The run would miss the bytes.
TEST_F(EngineTest, APreviewReadsNoPipe)
{
    useOwnModule();
    ActionRegistry registry;
    registry.loadAll();
    const auto graph =
        CorvantaGraph::parse("<graph><action id='in'><readCSV fileName='/dev/null'/></action>"
                             "<action id='next'><select/></action>"
                             "<link from='in:0' to='next:0'/></graph>",
                             QStringLiteral("/test.graph"));
    ASSERT_TRUE(graph);
    EngineRunner runner;
    EXPECT_FALSE(runner.run(*graph, registry, QStringLiteral("next"), 0, EngineRunner::PinIn,
                            {.mayWrite = false, .log = &m_log}));
    EXPECT_EQ(m_log.messages, QStringList{QStringLiteral(
                                  ": Error: a preview does not read a pipe, whose bytes a run "
                                  "would miss ('/dev/null')")});
}

// Soon after the start, and in the middle of the rows.
TEST_F(EngineTest, APreviewCanBeStopped)
{
    const auto run = make(QByteArray(kChain).replace("30000", "2000000000"));
    const auto runUntil = [&](std::chrono::milliseconds time) {
        std::stop_source stop;
        const std::jthread stopper([&] {
            std::this_thread::sleep_for(time);
            stop.request_stop();
        });
        EngineRunner runner;
        return runner.run(m_graph, m_registry, QStringLiteral("b"), 0, EngineRunner::PinOut,
                          {.wholeTable = true, .stop = stop.get_token()});
    };
    EXPECT_FALSE(runUntil(0ms));
    EXPECT_FALSE(runUntil(20ms));
    EXPECT_EQ(g_seen.opened, g_seen.closed);
}
