// The engine: no row lost, no thread left, close always called, whatever the actions do.
#include "corvanta/main_ui.h"
#include "corvanta/row_listener.h"
#include "engine_case.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <chrono>
#include <random>
#include <thread>

using namespace test;
using namespace std::chrono_literals;

namespace {

quint64 sumOf(quint64 rows)
{
    return rows * (rows - 1) / 2;
}

/// One source on all three pins of a sink, which reads the last pin to its end first.
QByteArray meeting(qint64 rows, const QByteArray &text)
{
    return "<action id='a'><source rows='" + QByteArray::number(rows) + "' text='" + text +
           "'/></action>"
           "<action id='b'><sink/></action><action id='c'><sink/></action><link from='a:0' "
           "to='b:0'/>"
           "<link from='b:0' to='c:0'/><link from='a:0' to='c:1'/><link from='a:0' to='c:2'/>";
}

} // namespace

TEST_F(EngineTest, EveryRowArrivesOnceInOrderWhateverTheBatchAndTheYields)
{
    for (const int batchRows : {1, 7, 1024}) {
        for (const bool yields : {false, true}) {
            g_seen.reset();
            RunOptions options;
            options.batchRows = batchRows;
            options.yieldAtBatches = yields;
            const auto run = make(kChain, std::move(options));
            runToEnd(*run);
            EXPECT_TRUE(run->succeeded());
            EXPECT_EQ(g_seen.rows, 60000);
            EXPECT_EQ(g_seen.sum, 2 * sumOf(30000));
            EXPECT_EQ(g_seen.disordered, 0);
        }
    }
}

TEST_F(EngineTest, TablesThatAreFannedOutAndMeetAgainDoNotBlock)
{
    const auto run = make(meeting(200000, "short"));
    runToEnd(*run);
    EXPECT_TRUE(run->succeeded());
    EXPECT_EQ(g_seen.rows, 4 * 200000);
    EXPECT_EQ(g_seen.disordered, 0);
}

TEST_F(EngineTest, WaitingRowsBeyondTheMemoryLimitGoThroughAFile)
{
    const auto run = make(meeting(40000, QByteArray(2000, 'x')));
    runToEnd(*run);
    EXPECT_TRUE(run->succeeded());
    EXPECT_EQ(g_seen.rows, 4 * 40000);
    EXPECT_EQ(g_seen.sum, 4 * sumOf(40000));
    EXPECT_EQ(g_seen.disordered, 0);
}

// The file is emptied and filled again, or has rows while there is room in memory.
TEST_F(EngineTest, RowsKeepTheirOrderWhenTheFileIsUsedAgain)
{
    for (const char *const rowsOfPin0 : {"1000", "700"}) {
        g_seen.reset();
        const auto run =
            make("<action id='a'><source rows='3000' text='" + QByteArray(20000, 'x') +
                 "'/></action><action id='b'><sink/></action><action id='c'><turns rows='1000' "
                 "failAt='" +
                 rowsOfPin0 +
                 "'/></action><link from='a:0' to='b:0'/><link from='a:0' to='c:0'/><link "
                 "from='b:0' to='c:1'/>");
        runToEnd(*run);
        EXPECT_TRUE(run->succeeded());
        EXPECT_EQ(g_seen.rows, 3 * 3000);
        EXPECT_EQ(g_seen.disordered, 0);
    }
}

// Otherwise the file of a slow reader grows until its producer has ended.
TEST_F(EngineTest, AProducerWaitsWhileItsRowsComeBackFromAFile)
{
    const auto run =
        make("<action id='a'><source rows='40000' text='" + QByteArray(2000, 'x') +
             "'/></action><action id='b'><sink failAt='12000' how='leave'/></action>"
             "<action id='c'><late/></action>"
             "<link from='a:0' to='b:0'/><link from='a:0' to='c:0'/><link from='b:0' to='c:1'/>");
    runToEnd(*run);
    EXPECT_TRUE(run->succeeded());
    EXPECT_EQ(g_seen.rows, 12000 + 40000);
    EXPECT_GE(g_seen.firstLead, 12000);
    EXPECT_LE(g_seen.largestLead, g_seen.firstLead + 1000);
}

TEST_F(EngineTest, AQueueKeepsItsBoundWhereNoTablesMeetAgain)
{
    const auto run = make("<action id='a'><source rows='10000' text='" + QByteArray(2000, 'x') +
                          "'/></action><action id='b'><source rows='200000'/></action>"
                          "<action id='c'><late/></action>"
                          "<link from='a:0' to='c:0'/><link from='b:0' to='c:1'/>");
    runToEnd(*run);
    EXPECT_TRUE(run->succeeded());
    EXPECT_EQ(g_seen.rows, 10000);
    EXPECT_LE(g_seen.firstLead, 200000 + 1000);
}

// The writer ends its data when its file is complete, and that waits for the reader.
TEST_F(EngineTest, AWriterAndTheReaderOfItsOldFileMayMeet)
{
    const auto run =
        make("<action id='a'><source rows='10'/></action><action id='w'><sink file='/f'/></action>"
             "<action id='r'><source file='/f' rows='20000' text='" +
             QByteArray(500, 'x') +
             "'/></action><action id='c'><sink/></action><link from='a:0' to='w:0'/>"
             "<link from='r:0' to='c:0'/><link from='w:0' to='c:1'/>");
    runToEnd(*run);
    EXPECT_TRUE(run->succeeded());
    EXPECT_EQ(g_seen.rows, 10 + 10 + 20000);
    EXPECT_EQ(g_seen.disordered, 0);
}

// Whether the first rows for the file are those of a full batch or of the last one.
TEST_F(EngineTest, AFolderForTemporaryFilesThatIsMissingFailsTheRun)
{
    const QByteArray before = qgetenv("TMPDIR");
    qputenv("TMPDIR", "/nonexistent");
    int failures = 0;
    for (int rows = 8300; rows < 8700; rows += 20) {
        g_seen.reset();
        m_log.messages.clear();
        const auto run = make(meeting(rows, QByteArray(2000, 'x')));
        runToEnd(*run);
        if (run->failed()) {
            ++failures;
            ASSERT_FALSE(m_log.messages.isEmpty());
            EXPECT_TRUE(m_log.messages[0].endsWith(
                QStringLiteral(": cannot create a temporary file for waiting rows in the folder "
                               "'/nonexistent': No such file or directory")))
                << m_log.messages[0].toStdString();
        }
    }
    EXPECT_GT(failures, 0);
    before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before);
}

TEST_F(EngineTest, RowsThatNobodyReadsTakeLittleMemory)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "AddressSanitizer keeps freed memory";
#endif
    const auto peakKiB = [] {
        rusage usage = {};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    const long before = peakKiB();
    const auto run = make("<action id='a'><source rows='300' text='" + QByteArray(500'000, 'x') +
                          "'/></action>");
    runToEnd(*run);
    EXPECT_TRUE(run->succeeded());
    EXPECT_EQ(run->progress()[0].allRowsOut(), 300);
    EXPECT_EQ(run->progress()[0].state, ActionProgress::State::Done);
    EXPECT_LT(peakKiB() - before, 100'000);
}

TEST_F(EngineTest, RowsThatAreRenamedArriveRenamed)
{
    QStringList names;
    const auto see = [&](const TableSchema &columns, const OneRow *row) {
        names << (row != nullptr ? columns.names[0] : QString());
        return true;
    };
    RunOptions options;
    options.listeners.push_back(
        {QStringLiteral("x"), {QStringLiteral("b"), 0}, std::make_unique<RowListener>(see)});
    const auto run = make("<action id='a'><source rows='3'/></action><action id='b'><renamer/>"
                          "</action><link from='a:0' to='b:0'/>",
                          std::move(options));
    runToEnd(*run);
    EXPECT_EQ(names.mid(0, 3), QStringList(3, QStringLiteral("renamed")));
    EXPECT_EQ(g_seen.disordered, 0); // copyFrom() takes over the name of the input every time
}

TEST_F(EngineTest, WhatAnotherActionThrowsFailsTheRun)
{
    for (const char *const where : {"init", "run", "close"}) {
        g_seen.reset();
        m_log.messages.clear();
        RunOptions options;
        options.listeners.push_back({QStringLiteral("x"),
                                     {QStringLiteral("c"), 0},
                                     std::make_unique<Thrower>(QString::fromLatin1(where))});
        const auto run = make(kChain, std::move(options));
        runToEnd(*run);
        EXPECT_TRUE(run->failed());
        EXPECT_EQ(m_log.messages,
                  QStringList{QStringLiteral("x: Error: ") + QString::fromLatin1(where)});
    }
}

TEST_F(EngineTest, AFailureEndsEveryActionAndClosesIt)
{
    const std::pair<const char *, const char *> cases[] = {
        {"<action id='a'><source failAt='20000' rows='30000'/></action><action "
         "id='b'><sink/></action>",
         "a: source fails"},
        {"<action id='a'><source rows='1000000'/></action><action id='b'><sink "
         "failAt='5'/></action>",
         "b: sink fails"},
        {"<action id='a'><source rows='1000000'/></action><action id='b'><sink failAt='5' "
         "how='throw'/></action>",
         "b: Error: 'sink': sink throws"},
        {"<action id='a'><source/></action><action id='b'><sink how='init'/></action>",
         "b: init fails"},
    };
    for (const auto &[actions, message] : cases) {
        g_seen.reset();
        m_log.messages.clear();
        const auto run = make(QByteArray(actions) +
                              "<action id='c'><sink/></action><action id='d'><blocker/></action>"
                              "<link from='a:0' to='b:0'/><link from='b:0' to='c:0'/>");
        runToEnd(*run);
        EXPECT_TRUE(run->failed());
        EXPECT_EQ(m_log.messages, QStringList{QString::fromLatin1(message)});
    }
}

TEST_F(EngineTest, AnActionThatStopsReadingDoesNotBlockItsSource)
{
    const auto run = make("<action id='a'><source rows='300000'/></action><action id='b'><sink "
                          "failAt='5' how='leave'/></action>"
                          "<link from='a:0' to='b:0'/>");
    runToEnd(*run);
    EXPECT_TRUE(run->succeeded());
    EXPECT_EQ(g_seen.rows, 5);
}

TEST_F(EngineTest, AnActionEndsWithTheLastOfItsReaders)
{
    constexpr qint64 kMany = 1'000'000'000;
    const QByteArray source = "<action id='a'><source rows='";
    const QByteArray rest = "'/></action><action id='b'><sink failAt='5' how='leave'/></action>"
                            "<action id='c'><sink OPTIONS/></action><link from='a:0' to='c:0'/>";
    const struct
    {
        qint64 made;
        const char *options;
        const char *from;
        qint64 rows;
    } cases[] = {
        {kMany, "failAt='9000' how='leave'", "a:0", 5 + 9000}, // both readers leave
        {300'000, "", "a:0", 5 + 300'000},                     // one of two
        {kMany, "", "c:0", -1},                                // the reader of a reader
        {30'000, "file='/f'", "c:0", 5 + 30'000},              // which writes a file
    };
    for (const auto &[made, options, from, rows] : cases) {
        g_seen.reset();
        const auto run =
            make(source + QByteArray::number(made) + QByteArray(rest).replace("OPTIONS", options) +
                 "<link from='" + from + "' to='b:0'/>");
        runToEnd(*run);
        EXPECT_TRUE(run->succeeded());
        EXPECT_EQ(g_seen.disordered, 0);
        if (rows >= 0) {
            EXPECT_EQ(g_seen.rows, rows);
        }
        if (made == kMany) {
            EXPECT_LT(g_seen.made, 10'000'000);
        } else {
            EXPECT_EQ(g_seen.made, made);
        }
    }
}

TEST_F(EngineTest, RowsBeforeAFailureAreKeptOnRequest)
{
    const std::pair<QByteArray, qint64> cases[] = {
        {QByteArray(kChain).replace("<source", "<source failAt='20000'"), 2 * 20000},
        {QByteArray(kChain).replace("'b'><sink", "'b'><sink failAt='20000'"), 2 * 20000},
        {meeting(30000, "x").replace("<source", "<source failAt='20000'"), 4 * 20000},
        {QByteArray(kChain).replace("<source", "<source failAt='0'"), 0},
    };
    for (const auto &[inside, rows] : cases) {
        g_seen.reset();
        m_log.messages.clear();
        RunOptions options;
        options.keepPartial = true;
        const auto run = make(inside, std::move(options));
        runToEnd(*run);
        EXPECT_TRUE(run->failed());
        EXPECT_FALSE(run->succeeded());
        EXPECT_EQ(m_log.messages.size(), 1);
        EXPECT_EQ(g_seen.rows, rows);
        EXPECT_EQ(g_seen.disordered, 0);
        EXPECT_EQ(run->control().isRunning(), rows > 0);
    }
}

TEST_F(EngineTest, AStopOfTheReadersKeepsTheirRows)
{
    for (const qint64 rows : {-1, 0, 100, 5000}) {
        g_seen.reset();
        RunOptions options;
        options.keepPartial = true;
        const auto run =
            make(QByteArray(kChain).replace("30000", "1000000000"), std::move(options));
        const bool isEarly = rows < 0; // before the start
        EXPECT_TRUE(!isEarly || run->stopReading());
        run->start();
        while (g_seen.rows < rows) {
            std::this_thread::yield();
        }
        EXPECT_TRUE(isEarly || run->stopReading());
        ASSERT_TRUE(run->waitFor(60s)) << "a thread is left";
        run->wait();
        EXPECT_FALSE(run->succeeded());
        EXPECT_FALSE(run->failed());
        EXPECT_TRUE(!isEarly || g_seen.made == 0);
        EXPECT_EQ(g_seen.rows, 2 * g_seen.made);
        EXPECT_EQ(g_seen.disordered, 0);
    }
    EXPECT_FALSE(make(kChain)->stopReading());
}

TEST_F(EngineTest, StopAtAnyMomentEndsWithinASecond)
{
    std::mt19937 random(7);
    for (int i = 0; i < 200; ++i) {
        g_seen.reset();
        RunOptions options;
        // A request to yield that ends must not hide the stop, which is one too.
        options.yieldAtBatches = i % 2 == 1;
        const auto run = make(meeting(100000000, "text") + "<action id='d'><blocker/></action>",
                              std::move(options));
        run->start();
        // The moment is chosen by what the run has done, not by a clock.
        const qint64 rows = random() % 20000;
        while (g_seen.rows < rows) {
            std::this_thread::yield();
        }
        const auto begin = std::chrono::steady_clock::now();
        run->stop();
        run->wait();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 1s);
        EXPECT_FALSE(run->succeeded());
        EXPECT_FALSE(run->failed());
        ASSERT_EQ(g_seen.opened, g_seen.closed);
    }
}

TEST_F(EngineTest, ActionsThatWriteOneFileTakeTurns)
{
    // A fan-out and a chain after it: each sink but the first would block the source.
    const QByteArray sinks = "<action id='a'><source rows='30000'/></action>"
                             "<action id='b'><sink file='/f' access='0'/></action>"
                             "<action id='c'><sink file='/./f' access='1'/></action>"
                             "<action id='d'><sink file='/f' access='2'/></action>"
                             "<link from='a:0' to='b:0'/><link from='a:0' to='d:0'/>"
                             "<link from='b:0' to='c:0'/>";
    auto run = make(sinks);
    EXPECT_TRUE(run->problems().isEmpty());
    runToEnd(*run);
    EXPECT_TRUE(run->succeeded());
    EXPECT_EQ(g_seen.rows, 90000);
    EXPECT_EQ(g_seen.overlapping, 0);
    for (int i = 0; i < 20; ++i) { // stops while they wait
        run = make(sinks);
        run->start();
        std::this_thread::sleep_for(std::chrono::microseconds(500 * i));
        run->stop();
        ASSERT_TRUE(run->waitFor(10s)) << "a thread is left";
        run->wait();
    }
    EXPECT_EQ(g_seen.opened, g_seen.closed);
    EXPECT_EQ(g_seen.overlapping, 0);
    run = make(QByteArray(sinks).replace("access='2'", "access='0'"));
    ASSERT_EQ(run->problems().size(), 1);
    EXPECT_TRUE(run->problems()[0].text.contains(QStringLiteral("'d' creates the file '/f'")));
}

TEST_F(EngineTest, ProgressCanBeAskedForAtAnyTime)
{
    const auto run = make(kChain);
    run->start();
    qint64 last = 0;
    while (!run->waitFor(0ms)) {
        const QVector<ActionProgress> progress = run->progress();
        EXPECT_GE(progress[1].rowsIn, last);
        last = progress[1].rowsIn;
    }
    run->wait();
    EXPECT_EQ(run->progress()[1].rowsIn, 30000);
    EXPECT_EQ(run->progress()[2].rowsIn, 30000);
}

TEST_F(EngineTest, AListenerOfTheFirstRowsEndsItsSourceWithoutAnError)
{
    for (const qint64 most : {0, 1, 10, 2000}) {
        qint64 rows = 0;
        QVector<QString> names;
        bool hasEnd = false;
        const auto see = [&](const TableSchema &columns, const OneRow *row) {
            names = columns.names;
            hasEnd = row == nullptr;
            rows += hasEnd ? 0 : 1;
            return true;
        };
        RunOptions options;
        options.listeners.push_back({QStringLiteral("head"),
                                     {QStringLiteral("a"), 0},
                                     std::make_unique<RowListener>(see),
                                     most});
        g_seen.reset();
        // Rows after the requested ones are not read.
        const auto run = make("<action id='a'><source rows='100000000' failAt='2001'/></action>",
                              std::move(options));
        runToEnd(*run);
        EXPECT_TRUE(run->succeeded());
        EXPECT_EQ(rows, most);
        EXPECT_TRUE(hasEnd);
        EXPECT_EQ(names.size(), most > 0 ? 2 : 0);
    }
    EXPECT_TRUE(m_log.messages.isEmpty());
}
