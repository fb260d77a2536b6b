// Edits of parameters as steps that can be undone, for an editor of graphs.
//
// A panel changes the action and reports each edit through MainUI::parameterWasEdited(). The editor
// records it here, which also updates the element of the action in the graph. Undo and redo set
// that element back; the editor then passes it to the action with restoreParameters() and refreshes
// the panel. Threads: the GUI thread.
#pragma once
#include "corvanta/corvanta_graph.h"
#include "corvanta/export.h"

#include <vector>

class ActionItem;

namespace corvanta {

/// A change of one parameter by the user.
struct ParameterEdit
{
    QString parameter; ///< its name
    /// In the form of ActionParameters. A Structure may have attributes and elements that the
    /// action does not know; savedForm() keeps them.
    QString value;
    /// Consecutive edits of one parameter with the same number other than 0 are one step, such as
    /// the letters that are typed into a field.
    int series = 0;
};

/// The element of `action` as it is to be saved: what the action saves, and the attributes and
/// elements of `before`, its element so far, that the action does not know. `edit` is the change
/// since `before`. Returns an empty node if the action saves what is not XML.
CORVANTA_EXPORT XMLNode savedForm(ActionItem &action, const XMLNode &before,
                                  const ParameterEdit &edit);

/// The value of parameter `index` with the attributes and elements that the action does not know,
/// from the edited graph (MainUI::editedGraph). Without such a graph, and when the graph has
/// another value, that is ActionParameters::parameterValue().
CORVANTA_EXPORT QString storedValue(ActionItem &action, int index);

/// Set all parameters of `action` to those of a saved element. Without effect for an action that
/// does not declare its parameters.
CORVANTA_EXPORT void restoreParameters(ActionItem &action, const XMLNode &saved);

/// The steps of one graph.
class CORVANTA_EXPORT EditHistory
{
public:
    /// The element of an action before and after an edit.
    struct Step
    {
        QString action; ///< id
        ParameterEdit edit;
        XMLNode before;
        XMLNode after;
    };

    /// `graph` is the edited graph; its actions keep the numbers that ActionItem::getIdx() returns.
    explicit EditHistory(CorvantaGraph *graph);
    /// Add the step that led to the current parameters of `action`, and update its element in the
    /// graph. Steps that were undone before are dropped. Ignores an action that is not in the
    /// graph.
    void record(ActionItem *action, const ParameterEdit &edit);

    // Set the element of the action to the state before or after a step. Return that step, valid
    // until the next call of record(); null when there is none.
    const Step *undo();
    const Step *redo();

private:
    void setElement(const Step &step, const XMLNode &element);

    CorvantaGraph *m_graph;
    std::vector<Step> m_steps; // oldest first
    size_t m_done = 0;         // number of steps that are not undone
};

} // namespace corvanta
