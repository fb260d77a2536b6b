// The property panel of readCSV.
//
// The layout is in the source; the fields come from the parameter table. Threads: the GUI thread.
#pragma once
#include "panels/property_panel.h"

class Interface_ActionReadCSV final : public corvanta::PropertyPanel
{
    Q_OBJECT
public:
    /// `action` must outlive the panel.
    Interface_ActionReadCSV(QWidget *parent, ActionItem *action);
};
