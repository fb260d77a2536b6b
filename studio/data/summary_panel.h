// Shows the columns of a table with their counts and ranges; the user hides and moves columns here,
// also by keys.
//
// Threads: the GUI thread.
#pragma once
#include "studio/data/summary_model.h"

#include <QWidget>

class QAction;
class QTableView;

namespace corvanta::studio {

class SummaryPanel final : public QWidget
{
    Q_OBJECT

public:
    explicit SummaryPanel(QWidget *parent = nullptr);

    SummaryModel &model() { return m_model; }
    /// Whether the rows that are not shown can be counted too.
    void setCanSummarizeAll(bool isPossible);
    /// Make the columns as wide as what they show.
    void fitColumns();

Q_SIGNALS:
    void summarizeAllRequested();
    void showAllRequested();
    /// Move the column at a place of the order to another place, which may not exist.
    void moveRequested(int from, int to);
    /// The user wants to see this column in the table.
    void columnChosen(int column);

private:
    /// Move the current column by `step` places.
    void moveCurrent(int step);

    SummaryModel m_model;
    QTableView *m_table;
    QAction *m_all;
};

} // namespace corvanta::studio
