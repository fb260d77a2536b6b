// The panel changes nothing itself except the boxes: it asks for what the user wants by signals.
#include "studio/data/summary_panel.h"

#include "studio/widgets/local_keys.h"
#include "studio/widgets/part_action.h"
#include "studio/widgets/plain_table.h"

#include <QHeaderView>
#include <QTableView>
#include <QToolBar>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

/// Without row numbers: the order is that of the columns.
SummaryPanel::SummaryPanel(QWidget *parent)
    : QWidget(parent)
    , m_table(new QTableView)
{
    setUpTable(m_table, u"dataSummary"_s, tr("Columns"), &m_model);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->verticalHeader()->hide();
    connect(m_table, &QTableView::activated, this, [this](const QModelIndex &index) {
        Q_EMIT columnChosen(m_model.columnAt(index.row()));
    });
    m_all = makeAction(this, {u"dataSummarizeAll"_s,
                              tr("Summarize all rows"),
                              {},
                              tr("Read the whole table for the counts and ranges"),
                              [this] { Q_EMIT summarizeAllRequested(); }});
    QAction *const left =
        makeAction(this, {u"dataColumnLeft"_s, tr("Move left"), QKeySequence(u"Alt+Up"_s),
                          tr("Move the column to the left"), [this] { moveCurrent(-1); }});
    QAction *const right =
        makeAction(this, {u"dataColumnRight"_s, tr("Move right"), QKeySequence(u"Alt+Down"_s),
                          tr("Move the column to the right"), [this] { moveCurrent(1); }});
    QAction *const showAll = makeAction(
        this,
        {u"dataShowAll"_s, tr("Show all columns"), {}, tr("Show the hidden columns again"), [this] {
             Q_EMIT showAllRequested();
         }});
    auto *const bar = new QToolBar;
    bar->addActions({m_all, left, right, showAll});
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(bar);
    layout->addWidget(m_table, 1);
    (new LocalKeys(this))->add(m_table); // owned by this
}

void SummaryPanel::setCanSummarizeAll(bool isPossible)
{
    m_all->setEnabled(isPossible);
}

void SummaryPanel::fitColumns()
{
    m_table->resizeColumnsToContents();
}

/// Alt+Up and Alt+Down, because the columns are rows here.
void SummaryPanel::moveCurrent(int step)
{
    const QModelIndex current = m_table->currentIndex();
    if (current.isValid()) {
        const int to = current.row() + step;
        Q_EMIT moveRequested(current.row(), to);
        // The row of the column that was moved, so that the next key moves it further.
        m_table->setCurrentIndex(
            m_model.index(qBound(0, to, m_model.rowCount() - 1), current.column()));
    }
}

} // namespace corvanta::studio
