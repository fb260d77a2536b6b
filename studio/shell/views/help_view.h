// The descriptions of the actions as pages, made from their entries and parameter tables.
#pragma once
#include <QHash>
#include <QTextBrowser>

class ActionItem;

namespace corvanta {
class ActionRegistry;
}

namespace corvanta::studio {

/// HTML with the description, the pins, the file types and one table row per parameter: label,
/// name, type, default and meaning. All texts are translated and escaped.
QString actionHelp(ActionItem &prototype);

/// Also shows what actions and panels pass to openHelp(). At most one exists at a time. Threads:
/// the GUI thread.
class HelpView final : public QTextBrowser
{
    Q_OBJECT

public:
    /// `registry` must outlive the view.
    explicit HelpView(const ActionRegistry &registry, QWidget *parent = nullptr);
    ~HelpView() override;
    /// Show an action; for an unknown or empty type what help there is.
    void showAction(const QString &type);

Q_SIGNALS:
    /// An action or a panel has asked for a page, which is now shown.
    void pageOpened();

private:
    /// `page` is a key that an action has passed to openHelp().
    void showPage(const QString &page, const QString &anchor);

    const ActionRegistry &m_registry;
    QHash<QString, QString> m_types; // by help page; the prototypes only pass them to openHelp()
};

} // namespace corvanta::studio
