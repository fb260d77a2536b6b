// Asks a copy of an action something that may take long, such as what is in its file, on a worker
// thread.
//
// The worker may outlive the object that asked; its answer is then dropped. A newer question drops
// the answers to the older ones, and those that have not been started yet.
#pragma once
#include "corvanta/action_item.h"

#include <atomic>
#include <functional>
#include <memory>

namespace corvanta {

/// Threads: the GUI thread.
class BackgroundQuery final
{
public:
    BackgroundQuery() = default;
    ~BackgroundQuery() { ++*m_last; }
    BackgroundQuery(const BackgroundQuery &) = delete;
    BackgroundQuery &operator=(const BackgroundQuery &) = delete;

    /// Call `find` on a worker, with a copy of `action` as it is now, which only the worker uses,
    /// and then `done` on the GUI thread with what it returns. Messages that `find` logs are
    /// dropped. Without memory the result is a default one.
    template <class Result>
    void ask(ActionItem &action, std::function<Result(ActionItem &copy)> find,
             std::function<void(const Result &)> done)
    {
        const auto found = std::make_shared<Result>();
        start(
            action, [found, find](ActionItem &copy) { *found = find(copy); },
            [found, done] { done(*found); });
    }

private:
    void start(ActionItem &action, std::function<void(ActionItem &copy)> work,
               std::function<void()> done);

    /// Number of the last question; workers compare theirs with it.
    std::shared_ptr<std::atomic<int>> m_last = std::make_shared<std::atomic<int>>(0);
};

} // namespace corvanta
