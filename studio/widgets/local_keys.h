// Gives the actions of a part of the window their keys while the part has the focus, also keys that
// a menu of the window has too, such as those of Copy and Find.
//
// Without it Qt finds the key ambiguous and does nothing. Fields for text keep the keys that they
// use. Threads: the GUI thread.
#pragma once
#include <QObject>

#include <functional>

class QWidget;

namespace corvanta::studio {

class LocalKeys final : public QObject
{
public:
    /// The actions are those of `part` (QWidget::actions), with their current shortcuts. `part`
    /// owns this object. While `isActive` returns false, `part` gets all keys itself.
    explicit LocalKeys(
        QWidget *part, std::function<bool()> isActive = [] { return true; });
    /// Also take the keys from a widget in the part that would use them itself, such as a table.
    void add(QWidget *widget);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *m_part;
    std::function<bool()> m_isActive;
};

} // namespace corvanta::studio
