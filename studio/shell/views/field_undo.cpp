// A field accepts its keys as ShortcutOverride, even if it has nothing to undo. An event that is
// not accepted becomes the shortcut of the window.
#include "studio/shell/views/field_undo.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QUndoStack>

namespace corvanta::studio {

namespace {

/// Of a text field, or of the one in a spin box or a combo box.
QString textOf(const QWidget *field)
{
    if (const auto *const text = qobject_cast<const QPlainTextEdit *>(field)) {
        return text->toPlainText();
    }
    const auto *line = qobject_cast<const QLineEdit *>(field);
    line = line == nullptr && field != nullptr ? field->findChild<const QLineEdit *>() : line;
    return line == nullptr ? QString() : line->text();
}

} // namespace

FieldUndo::FieldUndo(QWidget *panel)
    : QObject(panel)
{
    connect(qApp, &QApplication::focusChanged, this, [this, panel](QWidget *, QWidget *now) {
        m_field = now != nullptr && panel->isAncestorOf(now) ? now : nullptr;
        m_known = textOf(m_field);
        if (m_field != nullptr) {
            m_field->installEventFilter(this); // once, even if it already has this filter
        }
    });
}

void FieldUndo::follow(QUndoStack *steps)
{
    if (m_steps != nullptr) {
        m_steps->disconnect(this);
    }
    m_steps = steps;
    if (steps != nullptr) {
        connect(steps, &QUndoStack::indexChanged, this, [this] { m_known = textOf(m_field); });
    }
}

bool FieldUndo::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && watched == m_field &&
        textOf(m_field) == m_known) {
        const auto *const key = static_cast<const QKeyEvent *>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo)) {
            event->ignore();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace corvanta::studio
