// Undo and redo in the fields of a panel.
//
// A text field has an undo of its own, which ends where the field got the focus. What is in the
// graph is undone by the graph, so that the keys mean the same in a field and on the canvas. Only
// letters that the graph does not have yet, such as those of a name, are undone by the field.
// Threads: the GUI thread.
#pragma once
#include <QObject>
#include <QPointer>
#include <QString>

class QUndoStack;
class QWidget;

namespace corvanta::studio {

class FieldUndo final : public QObject
{
    Q_OBJECT

public:
    /// For all fields in `panel`, also those that are made later. The panel owns the object.
    explicit FieldUndo(QWidget *panel);
    /// The steps of the graph that the panel shows; null for none.
    void follow(QUndoStack *steps);

protected:
    /// Leaves the keys to the window.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QPointer<QWidget> m_field; // that has the focus
    QString m_known;           // its text when the graph had it
    QPointer<QUndoStack> m_steps;
};

} // namespace corvanta::studio
