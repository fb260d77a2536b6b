// Edits a list of strings, one line each, for example the names of columns.
//
// The order of the lines is part of the value. Strings may be empty and may be equal.
// Threads: that of the user interface.
#pragma once
#include <QStringList>
#include <QWidget>

#include <functional>

class QListWidget;
class QToolButton;

namespace corvanta {

class StringListEditor final : public QWidget
{
public:
    explicit StringListEditor(QWidget *parent);
    /// Set what to call after each edit by the user. setStrings() does not call it.
    void setChanged(std::function<void()> changed) { m_changed = std::move(changed); }
    /// The lines from the first to the last.
    QStringList strings() const;
    /// Replace all lines.
    void setStrings(const QStringList &strings);

private:
    QToolButton *addButton(const QString &text, const QString &toolTip,
                           std::function<void()> clicked);
    // Actions of the buttons, on the selected line.
    /// Insert an empty line after the selected one, and edit it.
    void addString();
    void removeCurrent();
    /// Move the line by `by` positions; negative: up. Does nothing at the ends of the list.
    void moveCurrent(int by);

    QListWidget *m_list; // owned by this widget
    std::function<void()> m_changed = [] {};
};

} // namespace corvanta
