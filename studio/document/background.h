// Runs the work of a document on another thread, so that the window never waits for a file.
//
// The newest work counts: start() stops the one before and drops its result. Work owns copies of
// all that it needs. A call of the system may never return, for example for a network drive that
// does not answer; the destructor waits for it at most kMaxWaitMs.
// Threads: the GUI thread, except that the work itself runs on another one.
#pragma once
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <stop_token>
#include <vector>

namespace corvanta::studio {

class Background final : public QObject
{
public:
    /// Uses the result, on the GUI thread. Null: there is nothing to do.
    using Use = std::function<void()>;
    using Work = std::function<Use(const std::stop_token &stop)>;

    Background();
    ~Background() override;

    void start(Work work);
    /// Drop the current work.
    void stop();
    bool isRunning() const { return m_timer.isActive(); }

    static constexpr int kMaxWaitMs = 5000;

private:
    struct Task;
    void poll();

    std::shared_ptr<Task> m_current;             // null: nothing is started
    std::vector<std::shared_ptr<Task>> m_active; // with those that are stopped but have not ended
    QTimer m_timer;                              // asks for the result
};

} // namespace corvanta::studio
