#include "panels/structures/background_query.h"

#include "corvanta/log.h"

#include <QCoreApplication>
#include <QPointer>
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

void BackgroundQuery::start(ActionItem &action, Work work, std::function<void()> done)
{
    const int number = ++m_last;
    const auto copy = std::make_shared<Copy>(action);
    const QPointer<QObject> guard(&m_guard);
    const auto deliver = [this, guard, number, done = std::move(done)] {
        // On the GUI thread, so the object cannot disappear in between.
        if (!guard.isNull() && number == m_last) {
            done();
        }
    };
    QThreadPool::globalInstance()->start([copy, work = std::move(work), deliver] {
        NoLog log;
        const LogScope scope({&log, {}});
        try {
            if (copy->item != nullptr) {
                work(*copy->item);
            }
        } catch (const std::bad_alloc &) {
            copy->item.reset(); // the answer is empty
        }
        QMetaObject::invokeMethod(qApp, deliver, Qt::QueuedConnection);
    });
}

} // namespace corvanta
