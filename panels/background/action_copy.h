// Copies of an action for work on other threads, and questions to such copies.
#pragma once
#include "corvanta/action_item.h"
#include "corvanta/action_parameters.h"
#include "corvanta/edit/worker.h"
#include "panels/background/log_lines.h"

#include <memory>

namespace corvanta {

/// An action that nothing else uses, with its own variables. Threads: one at a time.
struct ActionCopy
{
    /// Null if `original` is of no graph.
    std::unique_ptr<GlobalParameters> global;
    std::unique_ptr<ActionItem> item;
    ActionParameters *parameters = nullptr; ///< the same object as `item`
};

/// With the parameters and the number in the graph of `original`, which declares its parameters.
/// On the GUI thread. Throws std::bad_alloc.
ActionCopy copyOf(ActionItem &original);

/// Call `find` as the work of `worker`, with a copy of `action` as it is now, and then `done` on
/// the GUI thread with what it returns. Messages that `find` logs are dropped. If it throws, the
/// result is a default one.
template <class Result>
void ask(Worker &worker, ActionItem &action, std::function<Result(ActionItem &copy)> find,
         std::function<void(const Result &)> done)
{
    const auto copy = std::make_shared<const ActionCopy>(copyOf(action));
    worker.start(
        [copy, find = std::move(find), done](const std::stop_token &) -> Worker::Show {
            LogLines log;
            const LogScope scope({&log, {}});
            return [done, result = find(*copy->item)] { done(result); };
        },
        [done](const QString &) { done(Result()); });
}

} // namespace corvanta
