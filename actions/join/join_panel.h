// The property panel of join.
//
// The layout is in the source; the fields come from the parameter table. Threads: the GUI thread.
#pragma once
#include "panels/property_panel.h"

/// Hosts depend on the name of the class.
class Interface_ActionJoin final : public corvanta::PropertyPanel
{
    Q_OBJECT
public:
    /// `action` must outlive the panel.
    Interface_ActionJoin(QWidget *parent, ActionItem *action);
};
