// corvanta/update_class_widget.h
// Base of every property panel.
#pragma once
#include "corvanta/export.h"

#include <QWidget>

class ActionItem;

/// Shows and edits the parameters of one action, which must outlive it.
class CORVANTA_EXPORT UpdateClassWidget : public QWidget
{
public:
    UpdateClassWidget(QWidget *parent, ActionItem *action);
    ActionItem *action() const { return m_action; }
    /// Show the action's parameters as they are now.
    virtual void refresh() = 0;

private:
    ActionItem *m_action;
};
