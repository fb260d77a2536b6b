#include "panels/structures/pins.h"

#include "corvanta/action_item.h"
#include "corvanta/edit/edit_history.h"
#include "corvanta/main_ui.h"
#include "corvanta/update_class_widget.h"
#include "panels/basic_editors.h"
#include "panels/glyphs.h"

#include <QHBoxLayout>
#include <QSpinBox>
#include <QToolButton>

namespace corvanta {

namespace {

/// Other parameters may belong to the pins, and have changed too.
void refreshPanelOf(const QWidget &field)
{
    for (QWidget *above = field.parentWidget(); above != nullptr; above = above->parentWidget()) {
        if (auto *const panel = dynamic_cast<UpdateClassWidget *>(above)) {
            panel->refresh();
            return;
        }
    }
}

/// Pins are added and removed one by one, because the action may refuse each of them.
void changePins(ActionItem *action, int count)
{
    int before = -1; // the action stops where it refuses
    while (action->pinInCount() != count && action->pinInCount() != before) {
        before = action->pinInCount();
        if (before < count) {
            action->addPinIn();
        } else {
            action->removePinIn();
        }
    }
}

} // namespace

PinCountField::PinCountField(const FieldContext &context)
    : FieldEditor(context)
    , m_box(new QSpinBox(this))
{
    m_box->setRange(static_cast<int>(context.info.low), static_cast<int>(context.info.high));
    m_box->setButtonSymbols(QAbstractSpinBox::NoButtons);
    m_box->setKeyboardTracking(false); // each number typed would add and remove pins
    auto *const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_box);
    row->addWidget(makeButton(Glyph::Add, tr("Add an input pin"), [this] { m_box->stepUp(); }));
    row->addWidget(
        makeButton(Glyph::Remove, tr("Remove the last input pin"), [this] { m_box->stepDown(); }));
    row->addStretch(1);
    setMainControl(m_box);
    ignoreWheelWithoutFocus(m_box);
    connect(m_box, &QSpinBox::valueChanged, this, [this](int count) { setPinCount(count); });
}

/// Signals are blocked: a number that is shown must not add or remove pins.
void PinCountField::setValue(const QString &value)
{
    const QSignalBlocker blocker(m_box);
    m_box->setValue(value.toInt());
}

/// The action may refuse, so only a number that has changed is an edit.
void PinCountField::setPinCount(int count)
{
    ActionItem *const action = context().action;
    const int before = action->pinInCount();
    changePins(action, count);
    if (action->pinInCount() != before) {
        const QString &name = context().info.name;
        MainUI::parameterWasEdited(action, {name, parameter(name), 0});
    }
    refreshPanelOf(*this); // also when the action refused
}

} // namespace corvanta
