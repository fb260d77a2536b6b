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
    // A button shows its keys nowhere else.
    const QString keys = spec.keys.toString(QKeySequence::NativeText);
    action->setToolTip(keys.isEmpty() ? spec.tip : u"%1 (%2)"_s.arg(spec.tip, keys));
    QObject::connect(action, &QAction::triggered, part, spec.onTriggered);
    part->addAction(action);
    return action;
}

} // namespace corvanta::studio
