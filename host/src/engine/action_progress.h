// The progress of one action of a run, from its counters and flags. Threads: any, see below.
#pragma once
#include "corvanta/run.h"
#include "engine/pins.h"

namespace corvanta {

/// The numbers of an action in the state `state`. May be called while the action runs.
ActionProgress progressOf(const QString &id, ActionItem &action, Ports &ports,
                          ActionProgress::State state);
/// The state of an action that has been closed. `isEnded`: its run ended before it was done. Call
/// it on the thread of the action.
ActionProgress::State closedState(const ActionItem &action, bool isEnded);

} // namespace corvanta
