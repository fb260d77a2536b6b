// Runs graphs of the test actions on the engine.
//
// For the tests of the engine and of previews. Threads: that of the test.
#pragma once
#include "corvanta/action_registry.h"
#include "corvanta/run.h"
#include "test_actions.h"

#include <gtest/gtest.h>

#include <chrono>
#include <mutex>

namespace test {

using namespace std::chrono_literals;

/// The messages of a run, each after the action's number.
struct CollectingLog final : LogSink
{
    void add(const LogMessage &message) override
    {
        const std::lock_guard lock(mutex);
        messages << message.action + QStringLiteral(": ") + message.text.trimmed();
    }
    std::mutex mutex;
    QStringList messages;
};

/// The registry with the test actions, and a run of a graph at a time.
class EngineTest : public testing::Test
{
protected:
    EngineTest()
    {
        Plugin plugin;
        m_registry.add(&plugin);
        g_seen.reset();
    }

    /// A run of the graph inside <graph>...</graph>.
    std::unique_ptr<corvanta::Run> make(const QByteArray &inside, RunOptions options = {})
    {
        auto loaded =
            CorvantaGraph::parse("<graph>" + inside + "</graph>", QStringLiteral("test.graph"));
        EXPECT_TRUE(loaded);
        m_graph = *std::move(loaded);
        EXPECT_TRUE(m_graph.validate(m_registry, {}).isEmpty());
        options.log = &m_log;
        return std::make_unique<corvanta::Run>(m_graph, m_registry, std::move(options));
    }

    void runToEnd(corvanta::Run &run)
    {
        run.start();
        ASSERT_TRUE(run.waitFor(60s)) << "a thread is left";
        run.wait();
        EXPECT_EQ(g_seen.opened, g_seen.closed);
    }

    ActionRegistry m_registry;
    CorvantaGraph m_graph;
    CollectingLog m_log;
};

/// A source, and two sinks after each other.
inline constexpr char kChain[] =
    "<action id='a'><source rows='30000'/></action><action id='b'><sink/></action>"
    "<action id='c'><sink/></action><link from='a:0' to='b:0'/><link from='b:0' to='c:0'/>";

} // namespace test
