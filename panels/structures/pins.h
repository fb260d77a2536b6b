// The number of input pins, with buttons that add and remove one.
//
// The action adds and removes them itself, because other parameters belong to its pins. Threads:
// the GUI thread.
#pragma once
#include "panels/field_editor.h"

#include <QCoreApplication>

class QSpinBox;

namespace corvanta {

class PinCountField final : public FieldEditor
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::PinCountField)

public:
    explicit PinCountField(const FieldContext &context);

protected:
    void setValue(const QString &value) override;

private:
    /// Change the number of input pins of the action towards `count`, as one edit, and show the new
    /// values in the panel. The action may refuse a number.
    void setPinCount(int count);

    QSpinBox *m_box;
};

} // namespace corvanta
