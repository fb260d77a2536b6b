#include "engine/action_progress.h"

namespace corvanta {

using State = ActionProgress::State;

namespace {

/// Not known for an action that throws: the progress is only shown.
float fractionOf(ActionItem &action) noexcept
{
    try {
        return action.computeCompletion();
    } catch (...) {
        return -1;
    }
}

} // namespace

ActionProgress progressOf(const QString &id, ActionItem &action, Ports &ports, State state)
{
    ActionProgress progress{id, QString::fromLatin1(action.getTypeName())};
    for (int i = 0; i < ports.pinsIn(); ++i) {
        progress.rowsIn += ports.in(i).rowCount();
    }
    for (int i = 0; i < ports.pinsOut(); ++i) {
        progress.rowsOut << ports.out(i).rowCount();
    }
    // An action with input pins that has taken no row has nothing to do yet.
    const bool waits = state == State::Running && ports.pinsIn() > 0 && progress.rowsIn == 0;
    progress.state = waits ? State::Waiting : state;
    progress.fraction = progress.isFinished() ? 1 : fractionOf(action);
    return progress;
}

State closedState(const ActionItem &action, bool isEnded)
{
    if (action.errorFlag() != 0) {
        return State::Failed;
    }
    if (isEnded) {
        return State::Stopped;
    }
    return action.warningFlag() != 0 ? State::Warned : State::Done;
}

} // namespace corvanta
