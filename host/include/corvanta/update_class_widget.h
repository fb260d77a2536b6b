// The base class of the property panels.
#pragma once
#include "corvanta/export.h"

#include <QWidget>

class ActionItem;
class ActionParameters;

/// Shows and edits the parameters of one action, which must outlive it. A panel passes the edits of
/// the user to editParameter(). Threads: the GUI thread, never during a run of the action.
class CORVANTA_EXPORT UpdateClassWidget : public QWidget
{
public:
    /// `parent` owns the panel unless it is null.
    UpdateClassWidget(QWidget *parent, ActionItem *action);
    ActionItem *action() const { return m_action; }
    /// Those of the action; null if it does not declare them.
    ActionParameters *parameters() const;
    /// Show the current parameters of the action, and what the editor knows about its input pins.
    virtual void refresh() = 0;

protected:
    /// Set parameter `index` to what the user entered, and report the edit to the host, as a step
    /// that can be undone. Returns false, and changes nothing, when `value` is not of the
    /// parameter's type. `series`: see corvanta::ParameterEdit.
    bool editParameter(int index, const QString &value, int series = 0);

private:
    ActionItem *m_action;
};
