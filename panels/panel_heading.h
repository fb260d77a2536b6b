// The heading of a property panel: the icon, the type name and the description of the action, and a
// button that opens its help page.
//
// Threads: the GUI thread.
#pragma once
#include <QCoreApplication>
#include <QWidget>

class ActionItem;
class QLabel;

namespace corvanta {

class PanelHeading final : public QWidget
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::PanelHeading)

public:
    /// `action` outlives the heading.
    PanelHeading(ActionItem *action, QWidget *parent);

protected:
    void changeEvent(QEvent *event) override;

private:
    void showIcon();

    ActionItem *m_action;
    QLabel *m_icon;
};

} // namespace corvanta
