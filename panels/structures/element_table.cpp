#include "panels/structures/element_table.h"

#include "corvanta/edit/shown_text.h"
#include "panels/glyphs.h"
#include "panels/note_label.h"
#include "panels/structures/cell_delegate.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QToolButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using Type = ParameterInfo::Type;

constexpr int kVisibleElements = 6; // longer tables scroll
constexpr int kRowMargin = 8;       // pixels around the text of a row

/// The label in two lines, so that a narrow column has room for it.
QString titleOf(const ParameterInfo &member)
{
    QString title = member.label;
    title += member.unit.isEmpty() ? QString() : u" (%1)"_s.arg(unitText(member.unit, 2));
    const qsizetype space = title.lastIndexOf(u' ', title.size() / 2 + 1);
    return space < 0 ? title : title.replace(space, 1, u'\n');
}

} // namespace

ElementTable::ElementTable(const FieldContext &context, const Texts &texts)
    : FieldEditor(context)
    , m_table(new QTableWidget(this))
    , m_delegate(new CellDelegate(this->context().info.members, this))
    , m_meaning(new NoteLabel(this))
{
    auto *const column = new QVBoxLayout(this);
    auto *const buttons = new QHBoxLayout; // below the table, which needs the whole width
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(m_table);
    column->addLayout(buttons);
    column->addWidget(m_meaning);
    buttons->setSpacing(2);
    buttons->addWidget(makeButton(
        Glyph::Add, texts.add, [this] { addRow(); }, Qt::Key_Insert));
    buttons->addWidget(makeButton(
        Glyph::Remove, texts.remove, [this] { removeRow(); }, Qt::Key_Delete));
    buttons->addWidget(makeButton(
        Glyph::Up, tr("Move the row up"), [this] { moveRow(-1); }, Qt::CTRL | Qt::Key_Up));
    buttons->addWidget(makeButton(
        Glyph::Down, tr("Move the row down"), [this] { moveRow(1); }, Qt::CTRL | Qt::Key_Down));
    buttons->addStretch(1);
    setUpTable();
    setUpHeader();
}

/// The height does not depend on the rows: fields below must not move when one is added.
void ElementTable::setUpTable()
{
    const int height = fontMetrics().lineSpacing() + kRowMargin;
    m_table->verticalHeader()->setDefaultSectionSize(height);
    m_table->verticalHeader()->setVisible(false);
    m_table->setFixedHeight(height * (kVisibleElements + 1) + 2 * m_table->frameWidth());
    m_table->setItemDelegate(m_delegate);
    m_table->setTabKeyNavigation(false); // Tab leaves the table, as in the other fields
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                             QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    m_table->installEventFilter(this);
    setMainControl(m_table);
    connect(m_table, &QTableWidget::itemChanged, this,
            [this](const QTableWidgetItem *cell) { take(*cell); });
    connect(m_table, &QTableWidget::currentCellChanged, this, [this] { showMeaning(); });
}

/// The titles of the columns are short, and a tool tip needs a mouse.
void ElementTable::showMeaning()
{
    const int column = m_table->currentRow() < 0 ? -1 : m_table->currentColumn();
    m_meaning->setNote(NoteLabel::Kind::Remark, context().info.members.value(column).meaning);
}

/// Only texts stretch. The other columns need no more room than their titles and values.
void ElementTable::setUpHeader()
{
    const QVector<ParameterInfo> &members = context().info.members;
    m_table->setColumnCount(static_cast<int>(members.size()));
    QHeaderView *const header = m_table->horizontalHeader();
    for (int i = 0; i < members.size(); ++i) {
        auto *const title = new QTableWidgetItem(titleOf(members[i]));
        title->setToolTip(members[i].meaning);
        m_table->setHorizontalHeaderItem(i, title);
        header->setSectionResizeMode(i, members[i].type == Type::Text
                                            ? QHeaderView::Stretch
                                            : QHeaderView::ResizeToContents);
    }
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    updateMinimumWidth();
}

/// All titles are readable. Columns of texts share the width that the others leave.
void ElementTable::updateMinimumWidth()
{
    const QHeaderView *const header = m_table->horizontalHeader();
    int widest = 0;
    int texts = 0;
    int others = m_rowToolTip.isEmpty() ? 0 : fontMetrics().horizontalAdvance(u"999"_s);
    for (int i = 0; i < m_table->columnCount(); ++i) {
        const int width = m_table->isColumnHidden(i) ? 0 : header->sectionSizeHint(i);
        const bool isText = header->sectionResizeMode(i) == QHeaderView::Stretch;
        widest = isText ? qMax(widest, width) : widest;
        texts += isText ? 1 : 0;
        others += isText ? 0 : width;
    }
    m_table->setMinimumWidth(widest * texts + others + 2 * m_table->frameWidth());
}

/// The numbers take room, so the minimum width changes.
void ElementTable::showRowNumbers(const QString &toolTip)
{
    m_rowToolTip = toolTip;
    m_table->verticalHeader()->setVisible(true);
    updateMinimumWidth();
}

void ElementTable::setSuggestions(Suggestions suggestions)
{
    m_delegate->setSuggestions(std::move(suggestions));
}

void ElementTable::setEmptyText(const QString &text)
{
    m_delegate->setEmptyText(text);
}

/// The member keeps its value: it is only not shown.
void ElementTable::hideMember(const QString &name)
{
    const QVector<ParameterInfo> &members = context().info.members;
    for (int i = 0; i < members.size(); ++i) {
        if (members[i].name == name) {
            m_table->setColumnHidden(i, true);
        }
    }
    updateMinimumWidth();
}

// ---- Showing

void ElementTable::setValue(const QString &value)
{
    std::vector<Element> elements = elementsOf(context().info, value);
    keepWrapper(value);
    // While a cell is edited, an equal value must not end it.
    if (valueOf(context().info, elements) != valueOf(context().info, m_elements) ||
        m_table->rowCount() == 0) {
        showElements(std::move(elements));
    }
}

/// The current cell stays, so that the user can continue at the same place.
void ElementTable::showElements(std::vector<Element> elements)
{
    const QSignalBlocker blocker(m_table);
    const int row = m_table->currentRow();
    const int column = qMax(0, m_table->currentColumn());
    m_elements = std::move(elements);
    const int rows = static_cast<int>(m_elements.size());
    m_table->setRowCount(rows);
    for (int i = 0; i < rows * m_table->columnCount(); ++i) {
        m_table->setItem(i / m_table->columnCount(), i % m_table->columnCount(),
                         new QTableWidgetItem);
    }
    for (int i = 0; !m_rowToolTip.isEmpty() && i < rows; ++i) {
        auto *const title = new QTableWidgetItem(QString::number(i));
        title->setToolTip(m_rowToolTip.arg(i));
        m_table->setVerticalHeaderItem(i, title);
    }
    m_table->setCurrentCell(qBound(-1, row, rows - 1), column);
    showMeaning();
    updateCells();
}

/// Signals are blocked, because a cell that is shown has not been edited.
void ElementTable::updateCells()
{
    const QSignalBlocker blocker(m_table);
    for (int i = 0; i < m_table->rowCount(); ++i) {
        for (int j = 0; j < m_table->columnCount(); ++j) {
            updateCell(i, j);
        }
    }
}

void ElementTable::updateCell(int row, int column)
{
    const ParameterInfo &member = context().info.members[column];
    const Element &element = m_elements[static_cast<size_t>(row)];
    const QString value = memberValue(element, member);
    QTableWidgetItem *const cell = m_table->item(row, column);
    if (member.type == Type::Flag) {
        cell->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        cell->setCheckState(value == "0"_L1 ? Qt::Unchecked : Qt::Checked);
    } else {
        cell->setText(value);
    }
    const QString remark = m_remark(element, member);
    cell->setIcon(remark.isEmpty() ? QIcon() : warningMark(palette()));
    cell->setToolTip(plainToolTip(remark.isEmpty() ? value : remark));
}

/// The first remark is enough: every cell shows its own.
ParameterProblem ElementTable::problem() const
{
    for (const Element &element : m_elements) {
        for (const ParameterInfo &member : context().info.members) {
            const QString remark = m_remark(element, member);
            if (!remark.isEmpty()) {
                return {context().info.name, remark, ParameterProblem::Severity::Warning};
            }
        }
    }
    return {};
}

// ---- Edits

void ElementTable::take(const QTableWidgetItem &cell)
{
    const ParameterInfo &member = context().info.members[cell.column()];
    const bool isOn = cell.checkState() == Qt::Checked;
    Element *const element = &m_elements[static_cast<size_t>(cell.row())];
    setMember(element, member, member.type == Type::Flag ? (isOn ? u"1"_s : u"0"_s) : cell.text());
    cellEdited(element);
    reportElements();
}

/// Rows that only show what the file offers are not part of the value.
void ElementTable::reportElements()
{
    updateCells();
    std::vector<Element> reported;
    std::copy_if(m_elements.begin(), m_elements.end(), std::back_inserter(reported),
                 [this](const Element &element) { return isReported(element); });
    report(valueOf(context().info, reported, m_wrapper));
}

/// On a copy, because showElements() replaces the elements and all cells.
void ElementTable::addRow()
{
    const int row = m_table->currentRow() + 1; // the first one without a current row
    std::vector<Element> elements = m_elements;
    elements.insert(elements.begin() + row, newElement(context().info));
    showElements(std::move(elements));
    m_table->setCurrentCell(row, 0);
    reportElements();
}

void ElementTable::removeRow()
{
    const int row = m_table->currentRow();
    if (row >= 0) {
        std::vector<Element> elements = m_elements;
        elements.erase(elements.begin() + row);
        showElements(std::move(elements));
        reportElements();
    }
}

/// The current cell moves with its row, so that it can be moved further.
void ElementTable::moveRow(int by)
{
    const int from = m_table->currentRow();
    const int to = from + by;
    if (from >= 0 && to >= 0 && to < m_table->rowCount()) {
        std::vector<Element> elements = m_elements;
        std::swap(elements[static_cast<size_t>(from)], elements[static_cast<size_t>(to)]);
        showElements(std::move(elements));
        m_table->setCurrentCell(to, m_table->currentColumn());
        reportElements();
    }
}

bool ElementTable::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress) {
        return FieldEditor::eventFilter(watched, event);
    }
    const auto *const key = static_cast<const QKeyEvent *>(event);
    const bool isControl = key->modifiers().testFlag(Qt::ControlModifier);
    if (key->key() == Qt::Key_Insert) {
        addRow();
    } else if (key->key() == Qt::Key_Delete) {
        removeRow();
    } else if (isControl && key->key() == Qt::Key_Up) {
        moveRow(-1);
    } else if (isControl && key->key() == Qt::Key_Down) {
        moveRow(1);
    } else if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
        // A dialog would take it as its default button. The editor of a cell passes it on.
        if (!m_table->isPersistentEditorOpen(m_table->currentItem())) {
            m_table->edit(m_table->currentIndex());
        }
    } else {
        return FieldEditor::eventFilter(watched, event);
    }
    return true;
}

} // namespace corvanta
