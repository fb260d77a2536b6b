// The runs of the editor: in another process, of a part of the graph, with their states and
// messages.
#include "studio/run/log_panel.h"
#include "studio/run/run_controller.h"
#include "studio/run/run_status.h"
#include "tests/studio/studio_folder.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStyleFactory>

#include <gtest/gtest.h>

#include <csignal>

using namespace Qt::StringLiterals;
using namespace corvanta;
using namespace corvanta::studio;
using test::StudioFolder;
using test::waitFor;

namespace {

const QByteArray kChain = "<action id='in'><readCSV fileName='in.csv'/></action>"
                          "<action id='copy'><writeCSV fileName='copy.csv'/></action>"
                          "<action id='last'><writeCSV fileName='last.csv'/></action>"
                          "<link from='in:0' to='copy:0'/><link from='copy:0' to='last:0'/>";

/// A document with its runs; the test is asked before files are overwritten.
struct Runs
{
    explicit Runs(const QByteArray &content = kChain)
        : folder(content)
        , controller(*folder.document)
    {
        folder.write(u"in.csv"_s, test::exampleCsv(5));
        controller.setQuestion([this](QWidget *, const QStringList &files) {
            asked << files;
            return answer;
        });
        QObject::connect(&controller, &RunController::finished, [this](RunEnd how) { end = how; });
    }
    /// Wait for the end of a run that was started.
    RunEnd wait()
    {
        EXPECT_TRUE(waitFor([this] { return !controller.isRunning(); }));
        return end;
    }
    NodeState state(const QString &id) const { return folder.document->runState(id).state; }
    /// The files that runs have written.
    QStringList outputs() const
    {
        QStringList files = folder.files();
        files.removeAll(u"in.csv"_s);
        files.removeAll(u"test.graph"_s);
        return files;
    }

    StudioFolder folder;
    RunController controller;
    QList<QStringList> asked;
    bool answer = true;
    RunEnd end = RunEnd::Crashed;
};

/// Runs that wait for a pipe until they are ended.
struct WaitingRuns : Runs
{
    WaitingRuns()
    {
        folder.remove(u"in.csv"_s);
        EXPECT_EQ(std::system(("mkfifo " + folder.path(u"in.csv"_s).toLatin1()).constData()), 0);
        folder.write(u"copy.csv"_s, "old");
        controller.runAll();
        EXPECT_TRUE(waitFor([this] { return state(u"in"_s) == NodeState::Running; }));
    }
};

} // namespace

TEST(GraphRun, StatesRowsAndFilesOfARun)
{
    Runs runs;
    RunStatus status;
    status.setController(&runs.controller);
    EXPECT_TRUE(runs.controller.status().isEmpty());
    runs.controller.runAll();
    EXPECT_EQ(runs.state(u"in"_s), NodeState::Waiting);
    EXPECT_EQ(runs.wait(), RunEnd::Done);
    for (const QString &id : runs.folder.document->ids()) {
        EXPECT_EQ(runs.state(id), NodeState::Done);
        EXPECT_EQ(runs.folder.document->runState(id).rows, QVector<qint64>{5});
    }
    EXPECT_EQ(runs.outputs(), (QStringList{u"copy.csv"_s, u"last.csv"_s}));
    EXPECT_TRUE(runs.controller.status().startsWith(u"Done in "_s));
    EXPECT_EQ(status.findChild<QLabel *>(u"runStatusText"_s)->text(), runs.controller.status());
    EXPECT_FALSE(runs.folder.document->isModified());
}

TEST(GraphRun, APartOfTheGraphWritesNoLaterFile)
{
    Runs runs;
    runs.controller.runTo({u"copy"_s});
    EXPECT_EQ(runs.wait(), RunEnd::Done);
    EXPECT_EQ(runs.outputs(), QStringList{u"copy.csv"_s});
    EXPECT_EQ(runs.state(u"last"_s), NodeState::Idle);
    // The same part again, of the graph with an edit that is not saved.
    runs.folder.document->setParameter({u"copy"_s}, u"fileName"_s, u"other.csv"_s);
    runs.controller.rerun();
    EXPECT_EQ(runs.wait(), RunEnd::Done);
    EXPECT_EQ(runs.outputs(), (QStringList{u"copy.csv"_s, u"other.csv"_s}));
}

TEST(GraphRun, AsksOnceBeforeItOverwrites)
{
    Runs runs;
    runs.folder.write(u"copy.csv"_s, "old");
    runs.answer = false;
    runs.controller.runAll();
    runs.wait();
    EXPECT_EQ(runs.asked, (QList<QStringList>{{runs.folder.path(u"copy.csv"_s)}}));
    EXPECT_EQ(runs.folder.bytes(u"copy.csv"_s), "old");
    EXPECT_EQ(runs.state(u"in"_s), NodeState::Idle);
    runs.answer = true;
    for (int i = 0; i < 2; ++i) {
        runs.controller.runAll();
        EXPECT_EQ(runs.wait(), RunEnd::Done);
    }
    EXPECT_EQ(runs.asked.size(), 2) << "the files of the first run were asked about again";
    EXPECT_NE(runs.folder.bytes(u"copy.csv"_s), "old");
}

TEST(GraphRun, NamesThatDependOnTheRowsMatchFiles)
{
    const StudioFolder folder(
        "<action id='in'><readCSV fileName='in.csv'/></action>"
        "<action id='out'><writeParquet file='part[1].parquet' split='1' splitVar='name'/></action>"
        "<link from='in:0' to='out:0'/>");
    for (const QString &name : {u"part[1]__a.parquet"_s, u"part1__a.parquet"_s,
                                u"Part[1]__a.parquet"_s, u"other.parquet"_s}) {
        folder.write(name, "");
    }
    EXPECT_EQ(existingTargets(folder.document->graph(), test::allActions()),
              QStringList{folder.path(u"part[1]__a.parquet"_s)});
    // The inputs next to documents whose names are in a column are no targets.
    const StudioFolder letters("<action id='in'><readCSV fileName='in.csv'/></action>"
                               "<action id='out'><writeDoc wordFile='name'/></action>"
                               "<link from='in:0' to='out:0'/>");
    EXPECT_EQ(existingTargets(letters.document->graph(), test::allActions()),
              QStringList{letters.path(u"*"_s)});
}

TEST(GraphRun, FailuresAreInTheLogWithTheirActions)
{
    Runs runs;
    runs.folder.remove(u"in.csv"_s);
    LogPanel panel(runs.controller.log());
    const QSignalSpy chosen(&panel, &LogPanel::actionChosen);
    runs.controller.runAll();
    EXPECT_EQ(runs.wait(), RunEnd::Failed);
    EXPECT_EQ(runs.state(u"in"_s), NodeState::Failed);
    EXPECT_EQ(runs.state(u"last"_s), NodeState::Stopped);
    EXPECT_TRUE(runs.controller.status().startsWith(u"Failed after "_s));
    auto *const view = panel.findChild<QAbstractItemView *>(u"logMessages"_s);
    // The error, and its reason with the level of the error.
    panel.findChild<QComboBox *>(u"logLevel"_s)->setCurrentIndex(3);
    EXPECT_EQ(view->model()->rowCount(), 2);
    panel.showAction(u"in"_s);
    EXPECT_EQ(view->model()->rowCount(), 2);
    Q_EMIT view->clicked(view->model()->index(0, LogModel::Text));
    ASSERT_EQ(chosen.size(), 1);
    EXPECT_EQ(chosen[0][0].toString(), u"in"_s);
    EXPECT_TRUE(panel.shownText().startsWith(u"[in] "_s));
    panel.findChild<QLineEdit *>(u"logText"_s)->setText(u"reason: "_s);
    EXPECT_EQ(view->model()->rowCount(), 1);
    const auto *const actions = panel.findChild<QComboBox *>(u"logAction"_s);
    EXPECT_EQ(actions->count(), 2) << "all, and the one with messages";
    runs.controller.log()->clear();
    EXPECT_EQ(actions->count(), 1);
}

TEST(GraphRun, AnInvalidGraphIsReported)
{
    Runs runs("<action id='a'><readCSV fileName='in.csv'/>\n</action>\n"
              "<action id='b'><noSuchType/></action>");
    runs.controller.runAll();
    EXPECT_EQ(runs.wait(), RunEnd::Failed);
    ASSERT_GE(runs.controller.log()->rowCount(), 1);
    const RunMessage &message = runs.controller.log()->message(0);
    EXPECT_TRUE(message.text.contains(u"test.graph:3: "_s)) << message.text.toStdString();
    EXPECT_EQ(message.action, u"b"_s) << "the line does not lead to the action";
}

TEST(GraphRun, StopsWithinASecond)
{
    WaitingRuns runs;
    QElapsedTimer timer;
    timer.start();
    runs.controller.stop();
    EXPECT_EQ(runs.wait(), RunEnd::Stopped);
    EXPECT_LT(timer.elapsed(), 1000);
    EXPECT_EQ(runs.folder.bytes(u"copy.csv"_s), "old");
    EXPECT_EQ(runs.state(u"in"_s), NodeState::Stopped);
}

TEST(GraphRun, AChildThatDoesNotReactIsKilled)
{
    WaitingRuns runs;
    ::kill(static_cast<pid_t>(runs.controller.processId()), SIGSTOP);
    runs.controller.stop();
    EXPECT_EQ(runs.wait(), RunEnd::Stopped);
}

TEST(GraphRun, ACrashLeavesTheDocument)
{
    WaitingRuns runs;
    runs.folder.document->setComment(u"in"_s, u"not saved"_s);
    ::kill(static_cast<pid_t>(runs.controller.processId()), SIGKILL);
    EXPECT_EQ(runs.wait(), RunEnd::Crashed);
    EXPECT_TRUE(runs.folder.document->isModified());
    EXPECT_EQ(runs.folder.bytes(u"copy.csv"_s), "old");
    const LogModel &log = *runs.controller.log();
    const QString text = log.message(log.rowCount() - 1).text;
    EXPECT_TRUE(text.startsWith(u"Error: the run ended unexpectedly"_s)) << text.toStdString();
    EXPECT_TRUE(runs.controller.status().startsWith(u"Ended unexpectedly after "_s));
}

TEST(GraphRun, AMissingProgramIsReported)
{
    const StudioFolder folder(kChain);
    RunController controller(*folder.document, nullptr, u"/no/such/program"_s);
    controller.runAll();
    EXPECT_TRUE(waitFor([&] { return !controller.isRunning(); }));
    EXPECT_TRUE(controller.log()->message(0).text.startsWith(u"Error: cannot start "_s));
}

TEST(RunLog, KeepsTheFirstMessagesAndCountsTheOthers)
{
    LogModel log;
    log.add(QVector<RunMessage>(LogModel::kMaxMessages + 5, RunMessage{2, u"a"_s, u"text"_s}));
    log.add({{1, u"a"_s, u"Error"_s}});
    EXPECT_EQ(log.rowCount(), LogModel::kMaxMessages);
    EXPECT_EQ(log.droppedCount(), 6);
    EXPECT_EQ(log.count(1), 1);
    log.clear();
    EXPECT_EQ(log.rowCount() + log.droppedCount(), 0);
}

TEST(RunLog, TimesAreReadable)
{
    EXPECT_EQ(elapsedText(850), u"850 ms"_s);
    EXPECT_EQ(elapsedText(12'340), u"12.3 s"_s);
    EXPECT_EQ(elapsedText(247'000), u"4:07"_s);
    EXPECT_EQ(elapsedText(3'847'000), u"1:04:07"_s);
}

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
