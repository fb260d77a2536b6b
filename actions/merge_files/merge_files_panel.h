// The property panel of mergeFiles.
//
// The layout is in the source; the fields come from the parameter table. Threads: the GUI thread.
#pragma once
#include "panels/property_panel.h"

/// Hosts depend on the name of the class.
class Interface_ActionMergeFiles final : public corvanta::PropertyPanel
{
    Q_OBJECT
public:
    /// `action` must outlive the panel.
    Interface_ActionMergeFiles(QWidget *parent, ActionItem *action);
};
