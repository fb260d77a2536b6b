#include "panels/structures/background_query.h"

#include "corvanta/log.h"

#include <QCoreApplication>
#include <QThreadPool>

#include <new>

namespace corvanta {

namespace {

/// The panel shows what is wrong with a file elsewhere.
class NoLog final : public LogSink
{
public:
    void add(const LogMessage & /*message*/) override {}
};

/// An action, and the variables and folders that it refers to, which the GUI may change during the
/// work.
struct Copy
{
    explicit Copy(ActionItem &action)
    {
        if (action.globalParameters() != nullptr) {
            global = std::make_unique<GlobalParameters>(*action.globalParameters());
        }
        item.reset(action.clone(global.get()));
    }

    std::unique_ptr<GlobalParameters> global;
    std::unique_ptr<ActionItem> item; // null without memory
};

} // namespace

void BackgroundQuery::start(ActionItem &action, std::function<void(ActionItem &copy)> work,
                            std::function<void()> done)
{
    const int number = ++*m_last;
    const auto isWanted = [last = m_last, number] { return *last == number; };
    const auto copy = std::make_shared<Copy>(action);
    // The object is destroyed on the GUI thread too, so not between the test and the call.
    const auto deliver = [isWanted, done = std::move(done)] {
        if (isWanted()) {
            done();
        }
    };
    QThreadPool::globalInstance()->start([=, work = std::move(work)] {
        NoLog log;
        const LogScope scope({&log, {}});
        try {
            if (copy->item != nullptr && isWanted()) {
                work(*copy->item);
            }
        } catch (const std::bad_alloc &) {
            copy->item.reset(); // the answer is empty
        }
        QMetaObject::invokeMethod(qApp, deliver, Qt::QueuedConnection);
    });
}

} // namespace corvanta
