// The base class of the property panels.
#include "corvanta/update_class_widget.h"

UpdateClassWidget::UpdateClassWidget(QWidget *parent, ActionItem *action)
    : QWidget(parent)
    , m_action(action)
{
}
