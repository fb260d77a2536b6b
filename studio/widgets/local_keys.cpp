// Qt sends a key press to the widget with the focus as ShortcutOverride first. If the widget, or
// one around it, accepts that, no shortcut is looked up, and the key press itself follows.
#include "studio/widgets/local_keys.h"

#include <QAction>
#include <QKeyEvent>
#include <QWidget>

#include <algorithm>

namespace corvanta::studio {

namespace {

/// As QKeySequenceEdit records it: without the keypad, and a sign without the Shift that makes it.
QKeySequence keysOf(const QKeyEvent &event)
{
    const int key = event.key() == Qt::Key_Enter ? Qt::Key_Return : event.key();
    Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (key > Qt::Key_Space && key < Qt::Key_Escape && !QChar(key).isLetterOrNumber()) {
        modifiers &= ~Qt::ShiftModifier;
    }
    return QKeyCombination(modifiers, static_cast<Qt::Key>(key));
}

} // namespace

LocalKeys::LocalKeys(QWidget *part, std::function<bool()> isActive)
    : QObject(part)
    , m_part(part)
    , m_isActive(std::move(isActive))
{
    add(part);
}

void LocalKeys::add(QWidget *widget)
{
    widget->installEventFilter(this);
}

/// A disabled action leaves its key to the window, for example Escape when nothing is read.
bool LocalKeys::eventFilter(QObject *watched, QEvent *event)
{
    const bool isKey =
        event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    if (!isKey || !m_isActive()) {
        return QObject::eventFilter(watched, event);
    }
    const QKeySequence keys = keysOf(*static_cast<QKeyEvent *>(event));
    const QList<QAction *> actions = m_part->actions();
    const auto found = std::find_if(actions.begin(), actions.end(), [&](const QAction *action) {
        return action->isEnabled() && action->shortcuts().contains(keys);
    });
    if (found == actions.end()) {
        return QObject::eventFilter(watched, event);
    }
    if (event->type() == QEvent::KeyPress) {
        (*found)->trigger();
    }
    event->accept();
    return true;
}

} // namespace corvanta::studio
