#include "studio/data/data_view.h"

#include "studio/widgets/local_keys.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QSplitter>
#include <QStyle>
#include <QTableView>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr int kDelayMs = 300;
constexpr int kFittedColumns = 50;   // more would take too long
constexpr int kMaxColumnWidth = 260; // at first, in pixels

/// What both tables of the view have.
void setUpTable(QTableView *table, const QString &name, const QString &description)
{
    table->setObjectName(name);
    table->setAccessibleName(description);
    table->setTabKeyNavigation(false);
    table->setWordWrap(false);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().lineSpacing() + 6);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table->horizontalHeader()->setHighlightSections(false);
}

} // namespace

DataView::DataView(const ActionRegistry &registry, QWidget *parent)
    : QWidget(parent)
    , m_reader(registry)
    , m_bar(new QToolBar)
    , m_pins(new QComboBox)
    , m_search(new QLineEdit)
    , m_found(new QLabel)
    , m_splitter(new QSplitter)
    , m_table(new QTableView)
    , m_summary(new QTableView)
    , m_note(new QLabel)
{
    setObjectName(u"dataView"_s);
    m_rows.setRows(&m_reader.rows());
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_bar);
    layout->addWidget(m_splitter, 1);
    makeTable();
    m_splitter->addWidget(m_table);
    m_splitter->addWidget(makeSummary());
    m_splitter->setStretchFactor(0, 1);
    makeActions();
    layout->addWidget(makeFooter());
    auto *const keys = new LocalKeys(this); // owned by this
    keys->add(m_table);
    keys->add(m_summary);
    m_delay.setSingleShot(true);
    m_delay.setInterval(kDelayMs);
    connect(&m_delay, &QTimer::timeout, this, &DataView::refresh);
    connect(&m_reader, &PinReader::replaced, this, &DataView::showReplaced);
    connect(&m_reader, &PinReader::changed, this, &DataView::showChanged);
    showChanged();
}

QAction *DataView::addAction(const QString &name, const QString &text, const QKeySequence &shortcut,
                             const QString &tip)
{
    auto *const action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    action->setStatusTip(tip);
    const QString keys = shortcut.toString(QKeySequence::NativeText);
    action->setToolTip(keys.isEmpty() ? tip : u"%1 (%2)"_s.arg(tip, keys));
    QWidget::addAction(action);
    return action;
}

void DataView::makeActions()
{
    m_bar->setObjectName(u"dataBar"_s);
    m_bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    m_pins->setObjectName(u"dataPins"_s);
    m_pins->setAccessibleName(tr("Pin of the rows"));
    m_pins->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    connect(m_pins, &QComboBox::activated, this, [this](int index) {
        const QString &id = m_shown.pin.action;
        const int inputs = index - m_document->outputCount(id);
        inputs < 0 ? showPin({id, index}, EngineRunner::PinOut)
                   : showPin({id, inputs}, EngineRunner::PinIn);
    });
    m_search->setObjectName(u"dataSearch"_s);
    m_search->setAccessibleName(tr("Search the rows"));
    m_search->setPlaceholderText(tr("Search the rows"));
    m_search->setClearButtonEnabled(true);
    connect(m_search, &QLineEdit::returnPressed, this,
            [this] { find(RowsModel::Direction::Forward); });
    connect(m_search, &QLineEdit::textChanged, m_found, &QLabel::clear);
    QAction *const focus = addAction(u"dataFind"_s, tr("Find"), QKeySequence::Find,
                                     tr("Search the rows that are shown"));
    connect(focus, &QAction::triggered, m_search, qOverload<>(&QWidget::setFocus));
    QAction *const next = addAction(u"dataFindNext"_s, tr("Next"), QKeySequence::FindNext,
                                    tr("Find the next cell with the text"));
    connect(next, &QAction::triggered, this, [this] { find(RowsModel::Direction::Forward); });
    QAction *const previous =
        addAction(u"dataFindPrevious"_s, tr("Previous"), QKeySequence::FindPrevious,
                  tr("Find the previous cell with the text"));
    connect(previous, &QAction::triggered, this, [this] { find(RowsModel::Direction::Backward); });
    QAction *const copy = addAction(u"dataCopy"_s, tr("Copy as CSV"), QKeySequence::Copy,
                                    tr("Copy the selected cells, or all rows, as CSV"));
    connect(copy, &QAction::triggered, this,
            [this] { QApplication::clipboard()->setText(selectedCsv()); });
    QAction *const reload =
        addAction(u"dataReload"_s, tr("Reload"), QKeySequence::Refresh, tr("Read the rows again"));
    connect(reload, &QAction::triggered, &m_reader, &PinReader::reload);
    m_stop = addAction(u"dataStop"_s, tr("Stop"), Qt::Key_Escape, tr("Stop reading rows"));
    connect(m_stop, &QAction::triggered, &m_reader, &PinReader::stop);
    QAction *const columns =
        addAction(u"dataColumns"_s, tr("Columns"), {}, tr("Show a summary of the columns"));
    columns->setCheckable(true);
    connect(columns, &QAction::toggled, m_splitter->widget(1), &QWidget::setVisible);
    m_splitter->widget(1)->hide();
    m_bar->addWidget(m_pins);
    m_bar->addSeparator();
    m_bar->addWidget(m_search);
    m_bar->addActions({previous, next});
    m_bar->addWidget(m_found);
    m_bar->addSeparator();
    m_bar->addActions({copy, reload, m_stop, columns});
}

void DataView::makeTable()
{
    setUpTable(m_table, u"dataRows"_s, tr("Rows"));
    m_table->setModel(&m_rows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    QHeaderView *const header = m_table->horizontalHeader();
    header->setSectionsMovable(true);
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QHeaderView::customContextMenuRequested, this, &DataView::showHeaderMenu);
    connect(header, &QHeaderView::sectionMoved, this, &DataView::updateOrder);
}

QWidget *DataView::makeSummary()
{
    auto *const side = new QWidget;
    auto *const layout = new QVBoxLayout(side);
    layout->setContentsMargins(0, 0, 0, 0);
    setUpTable(m_summary, u"dataSummary"_s, tr("Columns"));
    m_summary->setModel(&m_columns);
    m_summary->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_summary->verticalHeader()->hide();
    connect(&m_columns, &SummaryModel::shownChanged, this, [this](int column, bool isShown) {
        m_table->setColumnHidden(column, !isShown);
        saveLayout();
    });
    // A column that is chosen in the summary is shown in the table.
    connect(m_summary, &QTableView::activated, this, [this](const QModelIndex &index) {
        const int row = qMax(0, m_table->currentIndex().row());
        m_table->setCurrentIndex(m_rows.index(row, m_columns.columnAt(index.row())));
    });
    auto *const bar = new QToolBar;
    m_all = addAction(u"dataSummarizeAll"_s, tr("Summarize all rows"), {},
                      tr("Read the whole table for the counts and ranges"));
    connect(m_all, &QAction::triggered, &m_reader, &PinReader::summarizeAll);
    QAction *const up = addAction(u"dataColumnUp"_s, tr("Move left"), QKeySequence(u"Alt+Up"_s),
                                  tr("Move the column to the left"));
    connect(up, &QAction::triggered, this, [this] { moveColumn(-1); });
    QAction *const down =
        addAction(u"dataColumnDown"_s, tr("Move right"), QKeySequence(u"Alt+Down"_s),
                  tr("Move the column to the right"));
    connect(down, &QAction::triggered, this, [this] { moveColumn(1); });
    m_showAll = addAction(u"dataShowAll"_s, tr("Show all columns"), {},
                          tr("Show the hidden columns again"));
    connect(m_showAll, &QAction::triggered, this, [this] {
        for (int i = 0; i < m_columns.rowCount(); ++i) {
            m_columns.setShown(i, true);
        }
    });
    bar->addActions({m_all, up, down, m_showAll});
    layout->addWidget(bar);
    layout->addWidget(m_summary, 1);
    return side;
}

QWidget *DataView::makeFooter()
{
    auto *const footer = new QWidget;
    auto *const layout = new QHBoxLayout(footer);
    layout->setContentsMargins(0, 0, 0, 0);
    m_note->setObjectName(u"dataNote"_s);
    m_note->setTextFormat(Qt::PlainText);
    m_note->setWordWrap(true);
    m_more = addAction(u"dataMore"_s, tr("More rows"), QKeySequence(u"Ctrl+Shift+M"_s),
                       tr("Read more rows"));
    connect(m_more, &QAction::triggered, &m_reader, &PinReader::readMore);
    auto *const button = new QToolButton;
    button->setDefaultAction(m_more);
    layout->addWidget(m_note, 1);
    layout->addWidget(button);
    return footer;
}

void DataView::setDocument(GraphDocument *document)
{
    if (m_document == document) {
        return;
    }
    if (m_document != nullptr) {
        m_document->disconnect(this);
    }
    m_document = document;
    if (document != nullptr) {
        using Document = GraphDocument;
        connect(document, &Document::upstreamChanged, this, &DataView::refreshLater);
        connect(document, &Document::linkAdded, this, &DataView::refreshLater);
        connect(document, &Document::linkRemoved, this, &DataView::refreshLater);
        connect(document, &Document::actionRemoved, this, &DataView::refreshLater);
        connect(document, &Document::variablesChanged, this, &DataView::refreshLater);
        connect(document, &Document::reloaded, this, &DataView::refreshLater);
        connect(document, &Document::actionRenamed, this, &DataView::renameAction);
        connect(document, &Document::destroyed, this,
                [this](const QObject *gone) { m_lastPins.remove(gone); });
    }
    m_shown = m_lastPins.value(document);
    refresh();
}

void DataView::showAction(const QString &id)
{
    const bool hasOutput = m_document != nullptr && m_document->outputCount(id) > 0;
    showPin({id, 0}, hasOutput ? EngineRunner::PinOut : EngineRunner::PinIn);
}

void DataView::showPin(const PinRef &pin, EngineRunner::PinType type)
{
    m_shown = {pin, type};
    m_lastPins.insert(m_document, m_shown);
    refresh();
}

void DataView::renameAction(const QString &oldId, const QString &id)
{
    if (m_shown.pin.action == oldId) {
        m_shown.pin.action = id;
        m_lastPins.insert(m_document, m_shown);
        refreshLater();
    }
}

void DataView::refreshLater()
{
    m_delay.start();
}

QString DataView::titleOf(const ShownPin &shown) const
{
    // The numbers are those of links in graph files and of --tap.
    return (shown.type == EngineRunner::PinOut ? tr("%1: output %2") : tr("%1: input %2"))
        .arg(shown.pin.action, QString::number(shown.pin.pin));
}

/// A hidden view reads nothing; showEvent() makes up for it.
void DataView::refresh()
{
    m_delay.stop();
    updatePins();
    if (!hasPin()) {
        m_reader.clear();
    } else if (isVisible()) {
        m_reader.show(m_document->graph(), {m_shown.pin.action, m_shown.pin.pin}, m_shown.type);
    }
}

/// The output pins, then the input pins.
void DataView::updatePins()
{
    const QSignalBlocker blocker(m_pins);
    m_pins->clear();
    m_pins->setEnabled(hasPin());
    if (!hasPin()) {
        return;
    }
    const auto &[id, pin] = m_shown.pin;
    const int outputs = m_document->outputCount(id);
    for (int i = 0; i < outputs; ++i) {
        m_pins->addItem(titleOf({{id, i}, EngineRunner::PinOut}));
    }
    for (int i = 0; i < m_document->inputCount(id); ++i) {
        m_pins->addItem(titleOf({{id, i}, EngineRunner::PinIn}));
    }
    m_pins->setCurrentIndex(m_shown.type == EngineRunner::PinOut ? pin : outputs + pin);
}

void DataView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    refresh();
}

void DataView::filesWritten(const QStringList &files)
{
    m_reader.filesChanged(files);
}

void DataView::showReplaced()
{
    m_isFitted = false;
    m_found->clear();
    m_rows.setRows(&m_reader.rows());
    showChanged();
}

void DataView::showChanged()
{
    const bool hadColumns = m_rows.columnCount() > 0 && m_isFitted;
    m_rows.update();
    m_columns.setRows(m_reader.rows());
    if (!hadColumns && m_rows.columnCount() > 0) {
        m_isFitted = true;
        fitColumns();
        restoreLayout();
    }
    m_note->setText(noteText());
    m_more->setEnabled(m_reader.hasMore() && !m_reader.isReading());
    m_more->setText(m_reader.hasMore()
                        ? tr("Show %1 rows").arg(QLocale().toString(m_reader.nextRows()))
                        : tr("More rows"));
    m_stop->setEnabled(m_reader.isReading());
    m_all->setEnabled(!m_reader.rows().isComplete && !m_reader.isReading());
}

QString DataView::noteText() const
{
    const PinRows &rows = m_reader.rows();
    const QLocale locale;
    QStringList parts;
    if (!m_reader.problem().isEmpty()) {
        parts << m_reader.problem();
    }
    if (m_reader.isReading()) {
        parts << tr("Reading\u2026 rows: %1").arg(locale.toString(rows.rowsRead));
    } else if (rows.columns.names.isEmpty()) {
        return parts.join(u'\n');
    } else if (rows.isComplete && rows.rows == rows.rowsRead) {
        parts << tr("All rows: %1").arg(locale.toString(rows.rows));
    } else if (rows.isComplete) {
        parts << tr("The first %1 of %2 rows; the summary is of all rows")
                     .arg(locale.toString(rows.rows), locale.toString(rows.rowsRead));
    } else {
        parts << tr("The first %1 rows; there are more").arg(locale.toString(rows.rows));
    }
    if (m_reader.isFull()) {
        parts << tr("The memory for rows is used up; use an action to choose rows");
    }
    if (rows.cutCells > 0) {
        parts << tr("Cells cut after %1 characters: %2")
                     .arg(QString::number(RowChunk::kMaxCellUnits), locale.toString(rows.cutCells));
    }
    if (!m_reader.skipped().isEmpty()) {
        parts << tr("No file is written; the rows are those that reach %1")
                     .arg(m_reader.skipped().join(u", "_s));
    }
    return parts.join(u"  \u00b7  "_s);
}

void DataView::fitColumns()
{
    for (int i = 0; i < qMin(kFittedColumns, m_rows.columnCount()); ++i) {
        m_table->resizeColumnToContents(i);
        m_table->setColumnWidth(i, qMin(kMaxColumnWidth, m_table->columnWidth(i)));
    }
    m_summary->resizeColumnsToContents();
}

QVector<int> DataView::shownColumns() const
{
    const QHeaderView *const header = m_table->horizontalHeader();
    QVector<int> columns;
    columns.reserve(m_rows.columnCount());
    for (int visual = 0; visual < m_rows.columnCount(); ++visual) {
        const int column = header->logicalIndex(visual);
        if (!header->isSectionHidden(column)) {
            columns << column;
        }
    }
    return columns;
}

void DataView::find(RowsModel::Direction direction)
{
    const QModelIndex current = m_table->currentIndex();
    const RowsModel::Place place =
        m_rows.find(m_search->text(), shownColumns(), {current.row(), current.column()}, direction);
    if (place.row < 0) {
        m_found->setText(m_search->text().isEmpty() ? QString()
                         : m_reader.hasMore()       ? tr("Not in the rows shown")
                                                    : tr("Not found"));
        return;
    }
    m_found->clear();
    m_table->setCurrentIndex(m_rows.index(place.row, place.column));
    m_table->scrollTo(m_table->currentIndex());
}

QString DataView::selectedCsv() const
{
    QVector<int> columns = shownColumns();
    QVector<int> rows;
    const QItemSelection selection = m_table->selectionModel()->selection();
    const bool isOneCell =
        selection.size() == 1 && selection[0].width() == 1 && selection[0].height() == 1;
    QSet<int> chosenRows;
    QSet<int> chosenColumns;
    if (!isOneCell) {
        for (const QItemSelectionRange &range : selection) {
            for (int row = range.top(); row <= range.bottom(); ++row) {
                chosenRows << row;
            }
            for (int column = range.left(); column <= range.right(); ++column) {
                chosenColumns << column;
            }
        }
    }
    for (int row = 0; row < m_rows.rowCount(); ++row) {
        if (chosenRows.isEmpty() || chosenRows.contains(row)) {
            rows << row;
        }
    }
    if (!chosenColumns.isEmpty()) {
        columns.removeIf([&](int column) { return !chosenColumns.contains(column); });
    }
    return csvOf(m_rows, rows, columns);
}

void DataView::showHeaderMenu(QPoint place)
{
    const int column = m_table->horizontalHeader()->logicalIndexAt(place);
    QMenu menu;
    QAction *const hide = menu.addAction(tr("Hide the column"));
    hide->setEnabled(column >= 0 && shownColumns().size() > 1);
    menu.addAction(m_showAll);
    if (menu.exec(m_table->horizontalHeader()->mapToGlobal(place)) == hide) {
        m_columns.setShown(column, false);
    }
}

void DataView::moveColumn(int step)
{
    QHeaderView *const header = m_table->horizontalHeader();
    const int from = m_summary->currentIndex().row();
    const int to = from + step;
    if (from >= 0 && to >= 0 && to < m_rows.columnCount()) {
        header->moveSection(from, to);
        m_summary->setCurrentIndex(m_columns.index(to, m_summary->currentIndex().column()));
    }
}

void DataView::updateOrder()
{
    QVector<int> order;
    order.reserve(m_rows.columnCount());
    for (int visual = 0; visual < m_rows.columnCount(); ++visual) {
        order << m_table->horizontalHeader()->logicalIndex(visual);
    }
    m_columns.setOrder(order);
    saveLayout();
}

void DataView::saveLayout()
{
    Layout layout;
    for (int row = 0; row < m_columns.rowCount(); ++row) {
        const int column = m_columns.columnAt(row);
        layout.order << m_rows.columnName(column);
        if (!m_columns.isShown(column)) {
            layout.hidden << m_rows.columnName(column);
        }
    }
    m_layouts.insert(titleOf(m_shown), layout);
}

/// Columns that the pin did not have before stay at their places, after those that move.
void DataView::restoreLayout()
{
    const Layout layout = m_layouts.value(titleOf(m_shown));
    QHeaderView *const header = m_table->horizontalHeader();
    QVector<int> order;
    order.reserve(layout.order.size());
    for (const QString &name : layout.order) {
        const auto column = static_cast<int>(m_reader.rows().columns.names.indexOf(name));
        if (column >= 0 && !order.contains(column)) {
            order << column;
        }
    }
    const QSignalBlocker blocker(header);
    for (int to = 0; to < order.size(); ++to) {
        header->moveSection(header->visualIndex(order[to]), to);
    }
    for (int column = 0; column < m_rows.columnCount(); ++column) {
        const bool isShown = !layout.hidden.contains(m_rows.columnName(column));
        m_table->setColumnHidden(column, !isShown);
        m_columns.setShown(column, isShown);
    }
    updateOrder();
}

} // namespace corvanta::studio
