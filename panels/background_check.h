// Runs checks that may take long, such as looking up files on a network drive that does not answer,
// in one thread for all panels.
#pragma once
#include <QObject>

#include <functional>
#include <memory>

namespace corvanta {

/// The checks of one owner, of which only the latest counts: one that waits is replaced by the next
/// one, and the result of one that runs is dropped. Threads: the GUI thread.
class BackgroundCheck final : public QObject
{
public:
    /// Shows the result of a check; called in the GUI thread.
    using Show = std::function<void()>;
    /// Does the check, in the other thread. It owns all that it needs: it may end after the panel
    /// is gone.
    using Check = std::function<Show()>;

    BackgroundCheck();
    ~BackgroundCheck() override; ///< waits for nothing
    /// Replace the check before it. An empty one only drops that.
    void start(Check check);

protected:
    /// Shows the result that has arrived.
    void customEvent(QEvent *event) override;

private:
    struct Slot;
    std::shared_ptr<Slot> m_slot;
};

} // namespace corvanta
