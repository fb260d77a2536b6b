#include "studio/widgets/part_action.h"

#include <QAction>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

/// The shortcut is also found without LocalKeys, as long as no menu has the same one.
QAction *makeAction(QWidget *part, const ActionSpec &spec)
{
    auto *const action = new QAction(spec.text, part);
    action->setObjectName(spec.name);
    action->setShortcut(spec.keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    action->setStatusTip(spec.tip);
    showShortcut(action, spec.tip);
    QObject::connect(action, &QAction::triggered, part, spec.onTriggered);
    part->addAction(action);
    return action;
}

void showShortcut(QAction *action, const QString &text)
{
    const QString keys = action->shortcut().toString(QKeySequence::NativeText);
    action->setToolTip(keys.isEmpty() ? text : u"%1 (%2)"_s.arg(text, keys));
}

} // namespace corvanta::studio
