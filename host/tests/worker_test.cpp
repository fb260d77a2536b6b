// Work in the background: only the newest result is shown, and nothing waits for work that does not
// return.
#include "corvanta/edit/worker.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QStringList>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <new>
#include <semaphore>
#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr int kLimitMs = 20000; // sanitizers are slow

/// Handles events until `isDone` or too long.
template <class Condition> bool waitUntil(Condition isDone)
{
    QElapsedTimer timer;
    timer.start();
    while (!isDone() && timer.elapsed() < kLimitMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return isDone();
}

/// A drive that does not answer.
struct Drive
{
    std::atomic<int> begun = 0;
    std::counting_semaphore<> answers{0};
};

/// Work that asks the drive, and then shows `text`.
Worker::Work asking(const std::shared_ptr<Drive> &drive, QStringList *shown, const QString &text)
{
    return [=](const std::stop_token &) -> Worker::Show {
        ++drive->begun;
        drive->answers.acquire();
        return [=] { *shown << text; };
    };
}

Worker::Work showing(QStringList *shown, const QString &text)
{
    return [=](const std::stop_token &) -> Worker::Show { return [=] { *shown << text; }; };
}

enum class State { None, Begun, Ended };
using SharedState = std::shared_ptr<std::atomic<State>>;

/// Work that lasts until it is stopped.
Worker::Work untilStopped(const SharedState &state)
{
    return [state](const std::stop_token &stop) -> Worker::Show {
        *state = State::Begun;
        while (!stop.stop_requested()) {
            QThread::msleep(1);
        }
        *state = State::Ended;
        return [] { ADD_FAILURE() << "dropped results are not shown"; };
    };
}

bool waitFor(const SharedState &state, State wanted)
{
    return waitUntil([&] { return *state == wanted; });
}

void unexpected(const QString &reason)
{
    ADD_FAILURE() << reason.toStdString();
}

} // namespace

TEST(Workers, TheNewestWorkIsShownOnTheGuiThread)
{
    const auto state = std::make_shared<std::atomic<State>>(State::None);
    QThread *shownOn = nullptr;
    Worker worker;
    worker.start(untilStopped(state), unexpected);
    EXPECT_TRUE(waitFor(state, State::Begun));
    worker.start(
        [&](const std::stop_token &) -> Worker::Show {
            EXPECT_NE(QThread::currentThread(), qApp->thread());
            return [&] { shownOn = QThread::currentThread(); };
        },
        unexpected);
    EXPECT_TRUE(worker.isRunning());
    EXPECT_TRUE(waitUntil([&] { return shownOn != nullptr; }));
    EXPECT_TRUE(waitFor(state, State::Ended));
    EXPECT_EQ(shownOn, qApp->thread());
    EXPECT_FALSE(worker.isRunning());
}

TEST(Workers, WorkThatIsStoppedOrLosesItsWidgetIsDropped)
{
    const auto state = std::make_shared<std::atomic<State>>(State::None);
    auto worker = std::make_unique<Worker>();
    worker->start(untilStopped(state), unexpected);
    EXPECT_TRUE(waitFor(state, State::Begun));
    worker->stop();
    EXPECT_FALSE(worker->isRunning());
    EXPECT_TRUE(waitFor(state, State::Ended));
    worker->start(untilStopped(state), unexpected);
    EXPECT_TRUE(waitFor(state, State::Begun));
    worker.reset();
    EXPECT_TRUE(waitFor(state, State::Ended));
    QCoreApplication::processEvents();
}

TEST(Workers, AResultMayStartOtherWorkOrDeleteTheWorker)
{
    QStringList shown;
    auto worker = std::make_unique<Worker>();
    worker->start(
        [&](const std::stop_token &) -> Worker::Show {
            return [&] {
                worker->start(
                    [](const std::stop_token &) -> Worker::Show {
                        throw std::runtime_error("why");
                    },
                    [&](const QString &reason) {
                        worker.reset();
                        shown << reason;
                    });
            };
        },
        unexpected);
    EXPECT_TRUE(waitUntil([&] { return !shown.isEmpty(); }));
    EXPECT_EQ(shown, QStringList{u"why"_s});
}

TEST(Workers, WorkThatDoesNotReturnDelaysOnlyItsOwnWorker)
{
    const auto drive = std::make_shared<Drive>();
    QStringList shown;
    Worker worker;
    // The user corrects the name, which is on another drive.
    worker.start(asking(drive, &shown, u"dropped"_s), unexpected);
    ASSERT_TRUE(waitUntil([&] { return drive->begun == 1; }));
    worker.start(showing(&shown, u"corrected"_s), unexpected);
    EXPECT_TRUE(waitUntil([&] { return shown == QStringList{u"corrected"_s}; }));
    // The number of threads is limited; of what waits only the newest is done.
    for (int i = 2; i <= Worker::kMaxThreads; ++i) {
        worker.start(asking(drive, &shown, u"dropped"_s), unexpected);
        ASSERT_TRUE(waitUntil([&] { return drive->begun == i; }));
    }
    worker.start(showing(&shown, u"replaced"_s), unexpected);
    worker.start(showing(&shown, u"newest"_s), unexpected);
    Worker other;
    other.start(showing(&shown, u"other"_s), unexpected);
    EXPECT_TRUE(waitUntil([&] { return shown == QStringList({u"corrected"_s, u"other"_s}); }));
    drive->answers.release();
    EXPECT_TRUE(waitUntil([&] { return !worker.isRunning(); }));
    EXPECT_EQ(shown.last(), u"newest"_s);
    drive->answers.release(Worker::kMaxThreads - 1);
    EXPECT_EQ(shown.size(), 3);
}

TEST(Workers, MissingMemoryIsAReason)
{
    QString failure;
    Worker worker;
    worker.start([](const std::stop_token &) -> Worker::Show { throw std::bad_alloc(); },
                 [&](const QString &reason) { failure = reason; });
    EXPECT_TRUE(waitUntil([&] { return !failure.isEmpty(); }));
    EXPECT_EQ(failure, u"There is not enough memory."_s);
}

TEST(Workers, TheProgramEndsAlthoughADriveNeverAnswers)
{
    const auto drive = std::make_shared<Drive>();
    QStringList shown;
    Worker worker;
    worker.start(asking(drive, &shown, {}), unexpected);
    // The rest of this test is the end of main().
    EXPECT_TRUE(waitUntil([&] { return drive->begun == 1; }));
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
