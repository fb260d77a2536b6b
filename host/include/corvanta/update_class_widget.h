// The base class of the property panels.
#pragma once
#include "corvanta/export.h"

#include <QWidget>

class ActionItem;

/// Shows and edits the parameters of one action, which must outlive it. A panel changes them with
/// ActionParameters::setParameterValue() and then calls MainUI::parameterWasEdited(). Threads: the
/// GUI thread, never during a run of the action.
class CORVANTA_EXPORT UpdateClassWidget : public QWidget
{
public:
    /// `parent` owns the panel unless it is null.
    UpdateClassWidget(QWidget *parent, ActionItem *action);
    ActionItem *action() const { return m_action; }
    /// Show the current parameters of the action, and what the editor knows about its input pins.
    virtual void refresh() = 0;

private:
    ActionItem *m_action;
};
