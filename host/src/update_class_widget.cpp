// The base class of the property panels.
#include "corvanta/update_class_widget.h"

#include "corvanta/action_item.h"
#include "corvanta/action_parameters.h"
#include "corvanta/edit/edit_history.h"
#include "corvanta/main_ui.h"

UpdateClassWidget::UpdateClassWidget(QWidget *parent, ActionItem *action)
    : QWidget(parent)
    , m_action(action)
{
}

ActionParameters *UpdateClassWidget::parameters() const
{
    return dynamic_cast<ActionParameters *>(m_action);
}

bool UpdateClassWidget::editParameter(int index, const QString &value, int series)
{
    ActionParameters *const all = parameters();
    const bool isSet = all->setParameterValue(index, value);
    if (isSet) {
        MainUI::parameterWasEdited(m_action, {all->parameters()[index].name, value, series});
    }
    return isSet;
}
