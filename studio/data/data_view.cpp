// From the pin to the table: refresh() gives the reader the graph and the pin; the reader says when
// rows have arrived (changed) or others are shown (replaced); the models take them from there.
#include "studio/data/data_view.h"

#include "studio/data/summary_panel.h"
#include "studio/widgets/local_keys.h"
#include "studio/widgets/part_action.h"
#include "studio/widgets/plain_table.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QSplitter>
#include <QTableView>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <numeric>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr int kDelayMs = 300;        // letters that are typed are one edit
constexpr int kFittedColumns = 50;   // more would take too long
constexpr int kMaxColumnWidth = 260; // at first, in pixels

/// The rows and columns that have selected cells.
struct SelectedCells
{
    QSet<int> rows;
    QSet<int> columns;
    bool isOneCell() const { return rows.size() == 1 && columns.size() == 1; }
};

SelectedCells selectedCells(const QTableView &table)
{
    SelectedCells selected;
    const QItemSelection ranges = table.selectionModel()->selection();
    for (const QItemSelectionRange &range : ranges) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            selected.rows << row;
        }
        for (int column = range.left(); column <= range.right(); ++column) {
            selected.columns << column;
        }
    }
    return selected;
}

} // namespace

/// The layout of columns needs both tables, so that the summary exists while it is hidden.
DataView::DataView(const ActionRegistry &registry, QWidget *parent)
    : QWidget(parent)
    , m_reader(registry)
    , m_bar(new QToolBar)
    , m_pins(new QComboBox)
    , m_search(new QLineEdit)
    , m_found(new QLabel)
    , m_splitter(new QSplitter)
    , m_table(new QTableView)
    , m_summary(new SummaryPanel)
    , m_layout(m_table, m_rows, m_summary->model())
    , m_note(new QLabel)
{
    setObjectName(u"data"_s);
    setFocusProxy(m_table);
    m_rows.setRows(&m_reader.rows());
    setUpTable(m_table, u"dataRows"_s, tr("Rows"), &m_rows);
    m_splitter->addWidget(m_table);
    m_splitter->addWidget(m_summary);
    m_splitter->setStretchFactor(0, 1);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_bar);
    layout->addWidget(m_splitter, 1);
    layout->addWidget(makeFooter());
    makeBar();
    connectSummary();
    (new LocalKeys(this))->add(m_table); // owned by this
    m_delay.setSingleShot(true);
    m_delay.setInterval(kDelayMs);
    connect(&m_delay, &QTimer::timeout, this, &DataView::refresh);
    connect(&m_reader, &PinReader::replaced, this, &DataView::showReplaced);
    connect(&m_reader, &PinReader::changed, this, &DataView::showChanged);
    showChanged();
}

/// Copying cells has no button, because users expect Ctrl+C.
void DataView::makeBar()
{
    m_bar->setObjectName(u"dataBar"_s);
    makePins();
    m_bar->addSeparator();
    makeSearch();
    m_bar->addSeparator();
    QAction *const copy =
        makeAction(this, {u"dataCopy"_s,
                          tr("Copy as CSV"),
                          {},
                          tr("Copy all rows, or those with selected cells, as CSV"),
                          [this] { QApplication::clipboard()->setText(selectedCsv()); }});
    makeAction(this, {u"dataCopyCells"_s, tr("Copy"), QKeySequence::Copy,
                      tr("Copy the selected cell, or several as CSV"), [this] { copyCells(); }});
    QAction *const reload =
        makeAction(this, {u"dataReload"_s, tr("Reload"), QKeySequence(u"Ctrl+R"_s),
                          tr("Read the rows again"), [this] { m_reader.reload(); }});
    m_stop = makeAction(this, {u"dataStop"_s, tr("Stop"), Qt::Key_Escape, tr("Stop reading rows"),
                               [this] { m_reader.stop(); }});
    m_bar->addActions({copy, reload, m_stop, makeColumnsAction()});
}

void DataView::makePins()
{
    m_pins->setObjectName(u"dataPins"_s);
    m_pins->setAccessibleName(tr("Pin of the rows"));
    m_pins->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    // A narrow bar takes room from the search and not from the name of the pin.
    constexpr int kMaxLetters = 40;
    m_pins->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_pins->setMaximumWidth(kMaxLetters * fontMetrics().averageCharWidth());
    connect(m_pins, &QComboBox::activated, this, &DataView::choosePin);
    m_bar->addWidget(m_pins);
}

void DataView::makeSearch()
{
    m_search->setObjectName(u"dataSearch"_s);
    m_search->setAccessibleName(tr("Search the rows"));
    m_search->setPlaceholderText(tr("Search the rows"));
    m_search->setClearButtonEnabled(true);
    const auto next = [this] { find(RowsModel::Direction::Forward); };
    connect(m_search, &QLineEdit::returnPressed, this, next);
    connect(m_search, &QLineEdit::textChanged, m_found, &QLabel::clear);
    makeAction(this, {u"dataFind"_s, tr("Find"), QKeySequence::Find,
                      tr("Search the rows that are shown"), [this] { m_search->setFocus(); }});
    m_bar->addWidget(m_search);
    QAction *const previous =
        makeAction(this, {u"dataFindPrevious"_s, tr("Previous"), QKeySequence::FindPrevious,
                          tr("Find the previous cell with the text"),
                          [this] { find(RowsModel::Direction::Backward); }});
    QAction *const following =
        makeAction(this, {u"dataFindNext"_s, tr("Next"), QKeySequence::FindNext,
                          tr("Find the next cell with the text"), next});
    // The bar is narrow; the tool tips and the list of shortcuts have the words.
    previous->setIconText(u"\u2191"_s);
    following->setIconText(u"\u2193"_s);
    m_bar->addActions({previous, following});
    m_bar->addWidget(m_found);
}

/// The summary takes half of the width, so it is shown on demand.
QAction *DataView::makeColumnsAction()
{
    QAction *const columns = makeAction(
        this, {u"dataColumns"_s, tr("Columns"), {}, tr("Show a summary of the columns"), [] {}});
    columns->setCheckable(true);
    connect(columns, &QAction::toggled, m_summary, &QWidget::setVisible);
    m_summary->hide();
    return columns;
}

void DataView::connectSummary()
{
    using Panel = SummaryPanel;
    connect(m_summary, &Panel::summarizeAllRequested, &m_reader, &PinReader::summarizeAll);
    connect(m_summary, &Panel::showAllRequested, &m_layout, &ColumnLayout::showAll);
    connect(m_summary, &Panel::moveRequested, &m_layout, &ColumnLayout::move);
    connect(m_summary, &Panel::columnChosen, this, [this](int column) {
        const int row = qMax(0, m_table->currentIndex().row());
        m_table->setCurrentIndex(m_rows.index(row, column));
    });
}

QWidget *DataView::makeFooter()
{
    auto *const footer = new QWidget;
    auto *const layout = new QHBoxLayout(footer);
    layout->setContentsMargins(0, 0, 0, 0);
    m_note->setObjectName(u"dataNote"_s);
    m_note->setTextFormat(Qt::PlainText); // a message may contain what looks like markup
    m_note->setWordWrap(true);
    m_note->setMinimumWidth(1); // a long name must not widen the window
    m_more = makeAction(this, {u"dataMore"_s, tr("More rows"), QKeySequence(u"Ctrl+Shift+M"_s),
                               tr("Read more rows"), [this] { m_reader.readMore(); }});
    auto *const button = new QToolButton;
    button->setDefaultAction(m_more);
    layout->addWidget(m_note, 1);
    layout->addWidget(button);
    return footer;
}

/// The pin that was shown for the document, and its rows if they are still known.
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
        follow(document);
    }
    m_shown = m_lastPins.value(document);
    refresh();
}

/// Everything that can change the rows of a pin or remove it. What changes nothing costs little:
/// the reader compares the graphs.
void DataView::follow(GraphDocument *document)
{
    using Document = GraphDocument;
    connect(document, &Document::upstreamChanged, this, &DataView::refreshLater);
    connect(document, &Document::linkAdded, this, &DataView::refreshLater);
    connect(document, &Document::linkRemoved, this, &DataView::refreshLater);
    connect(document, &Document::actionRemoved, this, &DataView::refreshLater);
    connect(document, &Document::variablesChanged, this, &DataView::refreshLater);
    connect(document, &Document::reloaded, this, &DataView::refreshLater);
    connect(document, &Document::actionRenamed, this, &DataView::renameAction);
    connect(document, &Document::destroyed, this, [this](const QObject *gone) {
        m_lastPins.remove(gone);
        refresh();
    });
}

/// A writer without output pins shows what reaches it.
void DataView::showAction(const QString &id)
{
    if (m_document != nullptr && m_document->contains(id) && id != m_shown.pin.action) {
        const bool hasOutput = m_document->outputCount(id) > 0;
        showPin({id, 0}, hasOutput ? EngineRunner::PinOut : EngineRunner::PinIn);
    }
}

void DataView::showPin(const PinRef &pin, EngineRunner::PinType type)
{
    m_shown = m_lastPins[m_document] = {pin, type};
    refresh();
}

void DataView::renameAction(const QString &oldId, const QString &id)
{
    if (m_shown.pin.action == oldId) {
        m_lastPins[m_document].pin.action = m_shown.pin.action = id;
        refreshLater();
    }
}

/// The numbers are those of links in graph files and of --tap.
QString DataView::titleOf(const ShownPin &shown)
{
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

/// Also the title of the view. The number of pins depends on links and parameters.
void DataView::updatePins()
{
    const QSignalBlocker blocker(m_pins);
    m_pins->clear();
    m_listed = hasPin() ? pinsOfAction() : QVector<ShownPin>();
    for (const ShownPin &pin : std::as_const(m_listed)) {
        m_pins->addItem(titleOf(pin));
    }
    m_pins->setEnabled(!m_listed.isEmpty());
    m_pins->setCurrentIndex(static_cast<int>(m_listed.indexOf(m_shown)));
}

/// Input pins without a link have no rows.
QVector<DataView::ShownPin> DataView::pinsOfAction() const
{
    const QString &id = m_shown.pin.action;
    QVector<ShownPin> pins;
    for (int i = 0; i < m_document->outputCount(id); ++i) {
        pins.append({{id, i}, EngineRunner::PinOut});
    }
    for (int i = 0; i < m_document->inputCount(id); ++i) {
        const ShownPin pin{{id, i}, EngineRunner::PinIn};
        if (pin == m_shown || !m_document->linksTo(pin.pin).isEmpty()) {
            pins << pin;
        }
    }
    return pins;
}

void DataView::choosePin(int index)
{
    const ShownPin chosen = m_listed[index];
    showPin(chosen.pin, chosen.type);
}

void DataView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    refresh();
}

/// Also pins of other documents may read these files.
void DataView::filesWritten(const QStringList &files)
{
    m_reader.filesChanged(files);
}

/// The models must not keep rows of the other pin for a moment.
void DataView::showReplaced()
{
    m_isFitted = false;
    m_found->clear();
    m_rows.setRows(&m_reader.rows());
    showChanged();
}

/// Called several times per second while rows arrive.
void DataView::showChanged()
{
    m_rows.update();
    m_summary->model().setRows(m_reader.rows());
    if (!m_isFitted && m_rows.columnCount() > 0) {
        m_isFitted = true;
        showNewColumns();
    }
    m_note->setText(noteText());
    const bool hasMore = m_reader.hasMore();
    m_more->setEnabled(hasMore && !m_reader.isReading());
    m_more->setText(hasMore ? tr("Show %1 rows").arg(QLocale().toString(m_reader.nextRows()))
                            : tr("More rows"));
    m_stop->setEnabled(m_reader.isReading());
    m_summary->setCanSummarizeAll(!m_reader.rows().isComplete && !m_reader.isReading());
}

/// The widths fit the first rows, and stay when more rows come.
void DataView::showNewColumns()
{
    for (int i = 0; i < qMin(kFittedColumns, m_rows.columnCount()); ++i) {
        m_table->resizeColumnToContents(i);
        m_table->setColumnWidth(i, qMin(kMaxColumnWidth, m_table->columnWidth(i)));
    }
    m_summary->fitColumns();
    m_layout.restore(titleOf(m_shown));
}

/// While rows are read, the number that was read is the only sign that something happens.
QString DataView::rowsText() const
{
    const PinRows &rows = m_reader.rows();
    const auto number = [](qint64 count) { return QLocale().toString(count); };
    if (m_reader.isReading()) {
        return tr("Reading\u2026 rows: %1").arg(number(rows.rowsRead));
    }
    if (rows.columns.names.isEmpty()) {
        return {};
    }
    if (!rows.isComplete) {
        return tr("The first %1 rows; there are more").arg(number(rows.rows));
    }
    return rows.rows == rows.rowsRead ? tr("All rows: %1").arg(number(rows.rows))
                                      : tr("The first %1 of %2 rows; the summary is of all rows")
                                            .arg(number(rows.rows), number(rows.rowsRead));
}

/// Says everything that makes the table differ from the rows of a run.
QString DataView::noteText() const
{
    QStringList parts{m_reader.problem(), rowsText()};
    if (m_reader.isFull()) {
        parts << tr("The memory for rows is used up; use an action to choose rows");
    }
    if (const qint64 cut = m_reader.rows().cutCells; cut > 0) {
        parts << tr("Cells cut after %1 characters: %2")
                     .arg(QString::number(RowChunk::kMaxCellUnits), QLocale().toString(cut));
    }
    if (const QStringList &skipped = m_reader.skipped(); !skipped.isEmpty()) {
        parts << tr("No file is written; the rows are those that reach '%1'")
                     .arg(skipped.join(u"', '"_s));
    }
    parts.removeAll(QString());
    return parts.join(u"  \u00b7  "_s);
}

/// The first hit is searched from the current cell, as in editors.
void DataView::find(RowsModel::Direction direction)
{
    const QModelIndex current = m_table->currentIndex();
    const RowsModel::Place place = m_rows.find(m_search->text(), m_layout.visibleColumns(),
                                               {current.row(), current.column()}, direction);
    if (place.row >= 0) {
        m_found->clear();
        m_table->setCurrentIndex(m_rows.index(place.row, place.column));
    } else if (!m_search->text().isEmpty()) {
        m_found->setText(m_reader.hasMore() ? tr("Not in the rows shown") : tr("Not found"));
    }
}

/// Rows and columns are chosen separately: CSV has no holes.
QString DataView::selectedCsv() const
{
    SelectedCells selected = selectedCells(*m_table);
    // A click on a cell selects it; one cell is not worth a file.
    if (selected.isOneCell()) {
        selected = {};
    }
    QVector<int> columns = m_layout.visibleColumns();
    if (!selected.columns.isEmpty()) {
        columns.removeIf([&](int column) { return !selected.columns.contains(column); });
    }
    QVector<int> rows(selected.rows.begin(), selected.rows.end());
    std::sort(rows.begin(), rows.end());
    if (rows.isEmpty()) {
        rows.resize(m_rows.rowCount());
        std::iota(rows.begin(), rows.end(), 0);
    }
    return csvOf(m_rows, rows, columns);
}

void DataView::copyCells() const
{
    const QModelIndex current = m_table->currentIndex();
    const bool isOneCell = selectedCells(*m_table).isOneCell();
    QApplication::clipboard()->setText(
        isOneCell ? m_rows.cell(current.row(), current.column()).toString() : selectedCsv());
}

} // namespace corvanta::studio
