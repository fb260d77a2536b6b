// The log of the last run, with filters by severity, action and text. A click on a message selects
// its action, and the newest message is visible unless one is selected.
//
// Threads: the GUI thread.
#pragma once
#include "studio/run/log_model.h"

#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QTableView;

namespace corvanta::studio {

class LogPanel final : public QWidget
{
    Q_OBJECT

public:
    /// `model` must outlive the panel.
    explicit LogPanel(LogModel *model, QWidget *parent = nullptr);
    /// Show the messages of this action only; an empty id: of all.
    void showAction(const QString &id);
    /// The messages that are shown, or the selected ones, as text for the clipboard.
    QString shownText() const;

Q_SIGNALS:
    /// The user has chosen a message of this action.
    void actionChosen(const QString &id);

private:
    // Called once, by the constructor.
    QWidget *makeFilters();
    void makeLevels();
    void makeView();

    void applyFilter();
    void updateActions();
    void updateNote();
    void chooseActionOf(const QModelIndex &index);

    LogModel *m_model;
    LogFilter m_filter;
    QComboBox *m_level;
    QComboBox *m_action;
    QLineEdit *m_text;
    QTableView *m_view;
    QLabel *m_note; // number of messages, and what is not shown
};

} // namespace corvanta::studio
