#include "studio/run/log_panel.h"

#include "corvanta/main_ui.h"
#include "studio/widgets/local_keys.h"
#include "studio/widgets/part_action.h"
#include "studio/widgets/plain_table.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QScrollBar>
#include <QTableView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr int kSeverityLetters = 16;
constexpr int kActionLetters = 24;

} // namespace

LogPanel::LogPanel(LogModel *model, QWidget *parent)
    : QWidget(parent)
    , m_model(model)
    , m_level(new QComboBox)
    , m_action(new QComboBox)
    , m_text(new QLineEdit)
    , m_view(new QTableView)
    , m_note(new QLabel)
{
    setObjectName(u"logPanel"_s);
    m_filter.setSourceModel(m_model);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(makeFilters());
    makeView();
    layout->addWidget(m_view, 1);
    connect(m_model, &LogModel::modelReset, this, &LogPanel::updateActions);
    connect(m_model, &LogModel::rowsInserted, this, &LogPanel::updateActions);
    updateActions();
}

QWidget *LogPanel::makeFilters()
{
    auto *const bar = new QWidget;
    auto *const layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    makeLevels();
    m_action->setObjectName(u"logAction"_s);
    m_action->setAccessibleName(tr("Action of the messages"));
    m_action->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_action->setMaximumWidth(kActionLetters * fontMetrics().averageCharWidth());
    connect(m_action, &QComboBox::currentIndexChanged, this, &LogPanel::applyFilter);
    m_text->setObjectName(u"logText"_s);
    m_text->setAccessibleName(tr("Text in the messages"));
    m_text->setPlaceholderText(tr("Search the messages"));
    m_text->setClearButtonEnabled(true);
    connect(m_text, &QLineEdit::textChanged, this, &LogPanel::applyFilter);
    layout->addWidget(m_level);
    layout->addWidget(m_action);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_note);
    return bar;
}

/// Messages of libraries, the lowest level, help to find faults of this program only.
void LogPanel::makeLevels()
{
    m_level->setObjectName(u"logLevel"_s);
    m_level->setAccessibleName(tr("Severity of the messages"));
    m_level->addItem(tr("All messages"), MainUI::Diagnostic);
    m_level->addItem(tr("Errors, warnings, information"), MainUI::Info);
    m_level->addItem(tr("Errors and warnings"), MainUI::Warning);
    m_level->addItem(tr("Errors"), MainUI::Error);
    m_level->setCurrentIndex(m_level->findData(MainUI::Info));
    connect(m_level, &QComboBox::currentIndexChanged, this, &LogPanel::applyFilter);
}

void LogPanel::makeView()
{
    setUpTable(m_view, u"logMessages"_s, tr("Messages of the run"), &m_filter);
    m_view->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_view->setShowGrid(false);
    m_view->verticalHeader()->hide();
    m_view->horizontalHeader()->setStretchLastSection(true);
    // In letters, because the sizes follow the font.
    const int letter = fontMetrics().horizontalAdvance(u'x');
    m_view->setColumnWidth(LogModel::Severity, kSeverityLetters * letter);
    m_view->setColumnWidth(LogModel::Action, kActionLetters * letter);
    // By a click or Enter.
    connect(m_view, &QTableView::clicked, this, &LogPanel::chooseActionOf);
    connect(m_view, &QTableView::activated, this, &LogPanel::chooseActionOf);
    makeAction(m_view, {u"logCopy"_s, tr("Copy"), QKeySequence::Copy,
                        tr("Copy the selected messages, or all that are shown"),
                        [this] { QApplication::clipboard()->setText(shownText()); }});
    m_view->setContextMenuPolicy(Qt::ActionsContextMenu);
    new LocalKeys(m_view); // owned by the view
}

void LogPanel::applyFilter()
{
    m_filter.setFilter(m_level->currentData().toInt(), m_action->currentData().toString(),
                       m_text->text());
    updateNote();
}

/// An action without messages has no entry: then all messages are shown.
void LogPanel::showAction(const QString &id)
{
    const int index = m_action->findData(id);
    m_action->setCurrentIndex(qMax(0, index));
}

/// In the form of the command: "[ACTION] text".
QString LogPanel::shownText() const
{
    QModelIndexList rows = m_view->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    if (rows.isEmpty()) {
        for (int row = 0; row < m_filter.rowCount(); ++row) {
            rows << m_filter.index(row, 0);
        }
    }
    QString text;
    for (const QModelIndex &row : std::as_const(rows)) {
        const RunMessage &message = m_model->message(m_filter.mapToSource(row).row());
        text += message.action.isEmpty() ? QString() : u"[%1] "_s.arg(message.action);
        text += message.text + u'\n';
    }
    return text;
}

/// Adds the actions that have got their first message; all are removed when the log is cleared.
void LogPanel::updateActions()
{
    const QStringList &actions = m_model->actions();
    if (m_action->count() != actions.size() + 1) {
        const QString current = m_action->currentData().toString();
        const QSignalBlocker blocker(m_action);
        m_action->clear();
        m_action->addItem(tr("All actions"), QString());
        for (const QString &action : actions) {
            m_action->addItem(action, action);
        }
        showAction(current);
    }
    applyFilter();
    // The newest message, unless the user reads another one.
    if (!m_view->selectionModel()->hasSelection()) {
        m_view->scrollToBottom();
    }
}

/// Also what is not shown, so that a filter does not hide an error without a sign.
void LogPanel::updateNote()
{
    QStringList parts{tr("Errors: %1").arg(m_model->count(MainUI::Error)),
                      tr("Warnings: %1").arg(m_model->count(MainUI::Warning))};
    if (const int hidden = m_model->rowCount() - m_filter.rowCount(); hidden > 0) {
        parts << tr("Hidden by the filter: %1").arg(hidden);
    }
    if (m_model->droppedCount() > 0) {
        parts << tr("Not kept: %1").arg(m_model->droppedCount());
    }
    m_note->setText(parts.join(u"  \u00b7  "_s));
}

/// Messages of the whole run lead nowhere.
void LogPanel::chooseActionOf(const QModelIndex &index)
{
    const QString action = index.data(LogModel::ActionRole).toString();
    if (!action.isEmpty()) {
        Q_EMIT actionChosen(action);
    }
}

} // namespace corvanta::studio
