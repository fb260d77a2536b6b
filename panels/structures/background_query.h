// Asks a copy of an action something that may take long, such as what is in its file, on a worker
// thread.
//
// The worker outlives the object that asked; the answer is then dropped. A newer question drops the
// answers to the older ones.
#pragma once
#include "corvanta/action_item.h"

#include <QObject>

#include <functional>
#include <memory>

namespace corvanta {

/// Threads: the GUI thread.
class BackgroundQuery final
{
public:
    /// Called on the worker, with a copy of the action that only it uses. Messages that it logs are
    /// dropped.
    using Work = std::function<void(ActionItem &copy)>;
    /// Start `work` with a copy of `action` as it is now, and then call `done` on the GUI thread.
    /// What `work` finds must be shared with `done`, not with this object.
    void start(ActionItem &action, Work work, std::function<void()> done);

    /// The same for a function that returns what it finds.
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
    QObject m_guard; // answers are delivered as long as it exists
    int m_last = 0;  // number of the last question
};

} // namespace corvanta
