// Checks an action that is being edited, in a thread of its own: looking up files can take minutes
// when a network drive does not answer.
#pragma once
#include "corvanta/action_parameters.h"
#include "corvanta/export.h"

#include <memory>

class ActionItem;

namespace corvanta {

/// A copy of an action with its parameters, of its variables and of its graph.
class CORVANTA_EXPORT EditCheck
{
public:
    /// Copy the action and the edited graph (MainUI::editedGraph), if there is one. Threads: the
    /// GUI thread.
    explicit EditCheck(ActionItem &action);
    ~EditCheck();

    /// What valueProblems() finds, and that another action of the graph uses the same file in a way
    /// that a run rejects. Threads: any, one at a time.
    QVector<ParameterProblem> problems() const;

private:
    struct Private; // in edit/edit_check.cpp
    std::unique_ptr<Private> d;
};

} // namespace corvanta
