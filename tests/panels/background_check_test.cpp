// The thread of the checks: only the latest result is shown, and owners do not wait for it.
#include "panels/background_check.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSemaphore>
#include <QStringList>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr int kLimitMs = 10000;

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

} // namespace

TEST(BackgroundChecks, OnlyTheLatestResultIsShown)
{
    const auto gate = std::make_shared<QSemaphore>();
    const auto begun = std::make_shared<QSemaphore>();
    QStringList shown;
    BackgroundCheck check;
    check.start([gate, begun, &shown]() -> BackgroundCheck::Show {
        begun->release();
        gate->acquire(); // as a drive that does not answer
        return [&shown] { shown << u"first"_s; };
    });
    begun->acquire();
    check.start([&shown]() -> BackgroundCheck::Show { return [&shown] { shown << u"second"_s; }; });
    check.start([&shown]() -> BackgroundCheck::Show { return [&shown] { shown << u"third"_s; }; });
    EXPECT_TRUE(shown.isEmpty());
    gate->release();
    EXPECT_TRUE(waitUntil([&] { return !shown.isEmpty(); }));
    EXPECT_EQ(shown, QStringList{u"third"_s});
    check.start([&shown]() -> BackgroundCheck::Show { return [&shown] { shown << u"late"_s; }; });
    check.start({});
    bool isDone = false;
    BackgroundCheck other;
    other.start([&isDone]() -> BackgroundCheck::Show { return [&isDone] { isDone = true; }; });
    EXPECT_TRUE(waitUntil([&] { return isDone; }));
    EXPECT_EQ(shown.size(), 1) << "dropped";
}

TEST(BackgroundChecks, OwnersShareTheThreadAndMayBeGoneBeforeTheEnd)
{
    const auto gate = std::make_shared<QSemaphore>();
    const auto begun = std::make_shared<QSemaphore>();
    const auto isShown = std::make_shared<std::atomic<bool>>(false);
    {
        BackgroundCheck gone;
        gone.start([gate, begun, isShown]() -> BackgroundCheck::Show {
            begun->release();
            gate->acquire();
            return [isShown] { *isShown = true; };
        });
        begun->acquire();
    } // does not wait
    BackgroundCheck other;
    bool isDone = false;
    other.start([&isDone]() -> BackgroundCheck::Show { return [&isDone] { isDone = true; }; });
    gate->release();
    EXPECT_TRUE(waitUntil([&] { return isDone; }));
    EXPECT_FALSE(*isShown);
}

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
