// Runs the work of a widget on other threads, so that the window never waits for a file.
//
// The newest work counts: start() stops the one before, and stop() and the destructor stop the
// current one. Work that is stopped ends when it next looks at its token, and its result is
// dropped.
//
// A call of the system may never return, for example for a network drive that does not answer.
// Newer work then runs on another thread. Only when kMaxThreads threads of one worker have not
// returned does the newest work wait for one of them. The program ends without them.
// Threads: the GUI thread, except that the work itself runs on others.
#pragma once
#include "corvanta/export.h"

#include <QCoreApplication>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <stop_token>

namespace corvanta {

class CORVANTA_EXPORT Worker final : public QObject
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::Worker)

public:
    /// Shows the result; called on the GUI thread, and only while the worker exists.
    using Show = std::function<void()>;
    /// The work, called once on another thread. It owns all that it needs, because it may end after
    /// the widget is gone. A null result: there is nothing to show.
    using Work = std::function<Show(const std::stop_token &stop)>;
    /// Called like Show if there is no result.
    using Failed = std::function<void(const QString &reason)>;

    Worker();
    ~Worker() override; ///< does not wait

    /// Start `work`, and show its result when it is complete. `failed` gets the reason if the work
    /// throws, or there is no thread for it.
    void start(Work work, Failed failed);
    /// Drop the current work; nothing is shown. Without effect if there is none.
    void stop();
    /// Whether a result will be shown.
    bool isRunning() const { return m_timer.isActive(); }

    /// Of one worker.
    static constexpr int kMaxThreads = 4;

private:
    struct Result;
    struct Shared;
    class Threads;
    void poll();

    std::shared_ptr<Shared> m_shared; // with its threads, which may exist longer
    Failed m_failed;
    QTimer m_timer; // asks for the result, so that the threads need nothing of Qt
};

} // namespace corvanta
