// Runs the work of a widget on a thread of its own, so that the window never waits for a file.
//
// The newest work counts: start() stops the one before, and stop() and the destructor stop the
// current one. What is stopped ends when it next looks at its token; its result is dropped then,
// and nobody waits for it before the program ends. Work must use nothing of the widget: give it
// copies.
// Threads: the GUI thread, except that the work itself has its own.
#pragma once
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <stop_token>

namespace corvanta {

class Worker final : public QObject
{
public:
    /// Shows the result; called on the GUI thread, and only while the worker exists.
    using Show = std::function<void()>;
    /// The work, called once on its thread. It returns soon after a stop is requested.
    using Work = std::function<Show(const std::stop_token &stop)>;

    explicit Worker(QObject *parent);
    ~Worker() override;

    /// Start `work`, and show its result when it is complete. If it throws, `failed` gets the
    /// reason instead. Throws std::system_error if there is no thread.
    void start(Work work, std::function<void(const QString &reason)> failed);
    /// Drop the current work; nothing is shown. Without effect if there is none.
    void stop();
    /// Whether a result will be shown.
    bool isRunning() const { return m_job != nullptr; }

private:
    struct Job;
    class Threads;
    void poll();

    std::shared_ptr<Job> m_job; // null: no work
    std::function<void(const QString &)> m_failed;
    // Asks for the result: an event from the other thread could arrive after the widget is gone.
    QTimer m_timer;
};

} // namespace corvanta
