// panels/string_list_editor.h
// Edits a list of strings: one line each, in an order that counts.
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
    /// What to call after each edit by the user.
    void setChanged(std::function<void()> changed) { m_changed = std::move(changed); }
    QStringList strings() const;
    void setStrings(const QStringList &strings);

private:
    QToolButton *addButton(const QString &text, const QString &toolTip,
                           std::function<void()> clicked);
    void addString();
    void removeCurrent();
    void moveCurrent(int by);

    QListWidget *m_list;
    std::function<void()> m_changed = [] {};
};

} // namespace corvanta
