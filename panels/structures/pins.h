// Adds and removes input pins in a panel.
//
// The action does it itself, because parameters belong to its pins. Threads: the GUI thread.
#pragma once
#include "panels/field_editor.h"

#include <QCoreApplication>

class QSpinBox;

namespace corvanta {

/// Change the number of input pins of the action towards `count`, as an edit of the parameter of
/// `field`, and show the new values in its panel. The action may refuse a number.
void setPinCount(const FieldEditor &field, int count);

/// The number of input pins, with buttons that add and remove one.
class PinCountField final : public FieldEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::PinCountField)

public:
    explicit PinCountField(const FieldContext &context);

protected:
    void setValue(const QString &value) override;

private:
    QSpinBox *m_box;
};

} // namespace corvanta
