#include "panels/column_picker.h"

#include "base/mapped.h"
#include "panels/basic_editors.h"
#include "panels/glyphs.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QSet>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Longer lists scroll.
constexpr int kVisibleColumns = 6;
/// Names in one message; more are counted only.
constexpr int kNamesInMessage = 3;

QListWidgetItem *newItem(const QString &text)
{
    auto *const item = new QListWidgetItem(text); // owned by the list it is added to
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    return item;
}

ParameterProblem unknownColumns(const FieldContext &context, const QStringList &names)
{
    if (names.isEmpty()) {
        return {};
    }
    const QString some = names.mid(0, kNamesInMessage).join(u"', '"_s);
    const QString text = names.size() > kNamesInMessage
                             ? ListEditor::tr("%1 columns are not in the input, for example '%2'")
                                   .arg(QString::number(names.size()), some)
                             : ListEditor::tr("the input has no column '%1'").arg(some);
    return {context.info.name, text, ParameterProblem::Severity::Warning};
}

/// Widgets below each other.
QWidget *columnOf(std::initializer_list<QWidget *> widgets)
{
    auto *const box = new QWidget;
    auto *const column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addStretch(1);
    for (QWidget *const widget : widgets) {
        column->addWidget(widget);
    }
    column->addStretch(1);
    return box;
}

} // namespace

// ---- One column

ColumnField::ColumnField(const FieldContext &context)
    : SuggestionField(context, [this] { return inputColumns().names; })
{
    refreshContext();
}

/// Without known columns the user must type the name.
void ColumnField::refreshContext()
{
    SuggestionField::refreshContext();
    setPlaceholder(inputColumns().names.isEmpty() ? tr("Name of a column") : tr("Choose a column"));
}

ParameterProblem ColumnField::problem() const
{
    // A variable may be replaced by any name.
    const QString name = text();
    const QVector<QString> known = inputColumns().names;
    const bool isKnown =
        known.isEmpty() || name.isEmpty() || name.contains("${"_L1) || known.contains(name);
    return unknownColumns(context(), isKnown ? QStringList() : QStringList{name});
}

// ---- A list of texts

ListEditor::ListEditor(const FieldContext &context, QString hint)
    : FieldEditor(context)
    , m_hint(std::move(hint))
    , m_search(new QLineEdit(this))
    , m_left(new QListWidget(this))
    , m_list(new QListWidget(this))
{
    auto *const toRight = makeButton(
        Glyph::ToRight, tr("Add the selected columns"), [this] { addSelected(); }, Qt::Key_Return);
    auto *const toLeft = makeButton(
        Glyph::ToLeft, tr("Remove the selected columns"), [this] { removeSelected(); },
        Qt::Key_Delete);
    m_removeLine = makeButton(
        Glyph::Remove, tr("Remove the selected lines"), [this] { removeSelected(); },
        Qt::Key_Delete);
    auto *const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_search);
    auto *const row = new QHBoxLayout;
    column->addLayout(row);
    auto *const offeredTitle = new QLabel(tr("In the input"));
    auto *const chosenTitle = new QLabel(tr("Chosen"));
    QWidget *const offered = columnOf({offeredTitle, m_left});
    QWidget *const between = columnOf({toRight, toLeft});
    m_needOffered = {offered, between, chosenTitle};
    row->addWidget(offered, 1);
    row->addWidget(between);
    row->addWidget(columnOf({chosenTitle, m_list}), 1);
    row->addWidget(columnOf(
        {m_removeLine,
         makeButton(
             Glyph::Up, tr("Move the line up"), [this] { moveCurrent(-1); }, Qt::CTRL | Qt::Key_Up),
         makeButton(
             Glyph::Down, tr("Move the line down"), [this] { moveCurrent(1); },
             Qt::CTRL | Qt::Key_Down)}));
    setUpLists();
    setOffered({});
}

void ListEditor::setUpLists()
{
    const int height = fontMetrics().lineSpacing() * kVisibleColumns + 2 * m_list->frameWidth();
    for (QListWidget *const list : {m_left, m_list}) {
        list->setFixedHeight(height);
        list->setSelectionMode(QAbstractItemView::ExtendedSelection);
        list->installEventFilter(this); // for the keys
        list->setTabKeyNavigation(false);
    }
    m_search->installEventFilter(this);
    nameControl(m_search, tr("Search or add: %1").arg(context().label));
    nameControl(m_left, tr("Columns that can be added"));
    setMainControl(m_list);
    m_list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    // Items are dragged within the list, and copied from the left.
    m_list->setDragDropMode(QAbstractItemView::DragDrop);
    m_list->setDefaultDropAction(Qt::MoveAction);
    m_left->setDragDropMode(QAbstractItemView::DragOnly);
    m_left->setDefaultDropAction(Qt::CopyAction);
    connect(m_left, &QListWidget::itemDoubleClicked, this,
            [this](const QListWidgetItem *item) { add({item->text()}); });
    connect(m_search, &QLineEdit::textChanged, this, [this] { showOffered(); });
    // Where nothing can be searched, a text is meant for the list also without Enter.
    connect(m_search, &QLineEdit::editingFinished, this, [this] {
        if (m_offered.isEmpty() && !m_search->text().isEmpty()) {
            addTyped();
        }
    });
    connect(m_list, &QListWidget::itemChanged, this, [this] { reportList(); });
    // A drop has several steps, so look at the list when they are complete.
    const auto reportLater = [this] {
        QMetaObject::invokeMethod(
            this, [this] { reportList(); }, Qt::QueuedConnection);
    };
    connect(m_list->model(), &QAbstractItemModel::rowsInserted, this, reportLater);
    connect(m_list->model(), &QAbstractItemModel::rowsRemoved, this, reportLater);
}

QStringList ListEditor::chosen() const
{
    QStringList texts;
    for (int i = 0; i < m_list->count(); ++i) {
        texts << m_list->item(i)->text();
    }
    return texts;
}

QStringList ListEditor::named() const
{
    return mapped<QStringList>(chosen(), [this](const QString &name) { return offeredOf(name); });
}

QStringList ListEditor::unknown() const
{
    // Without known columns every name would be unknown.
    QStringList names = m_offered.isEmpty() ? QStringList() : named();
    names.removeIf([this](const QString &name) { return m_offered.contains(name); });
    return names;
}

void ListEditor::setOffered(const QStringList &texts)
{
    m_offered = texts;
    // An empty list on the left would only take room.
    for (QWidget *const widget : m_needOffered) {
        widget->setVisible(!texts.isEmpty());
    }
    m_removeLine->setVisible(texts.isEmpty());
    m_search->setPlaceholderText(texts.isEmpty() ? m_hint
                                                 : tr("Search, or type a name and press Enter"));
    showOffered();
    markUnknown();
}

/// Shows the offered texts that contain the searched one and are not in the list.
void ListEditor::showOffered()
{
    m_left->clear();
    const QStringList list = named();
    const QSet<QString> texts(list.begin(), list.end());
    for (const QString &text : std::as_const(m_offered)) {
        if (!texts.contains(text) && text.contains(m_search->text(), Qt::CaseInsensitive)) {
            m_left->addItem(text);
        }
    }
}

void ListEditor::markUnknown()
{
    const QSignalBlocker blocker(m_list); // a mark is not an edit
    const QIcon mark = warningMark(palette());
    const QSet<QString> offered(m_offered.begin(), m_offered.end()); // there may be thousands
    for (int i = 0; i < m_list->count(); ++i) {
        QListWidgetItem *const item = m_list->item(i);
        const bool isKnown = offered.isEmpty() || offered.contains(offeredOf(item->text()));
        // A change of the item would reset its text while the user edits it.
        if (item->icon().isNull() != isKnown) {
            item->setIcon(isKnown ? QIcon() : mark);
        }
        item->setToolTip(isKnown ? QString() : tr("The input has no such column"));
        if (!item->flags().testFlag(Qt::ItemIsEditable)) { // it was dropped
            item->setFlags(item->flags() | Qt::ItemIsEditable);
        }
    }
}

void ListEditor::setValue(const QString &value)
{
    const QStringList texts = value.isEmpty() ? QStringList() : value.split(u'\n');
    if (texts == chosen()) {
        return; // keeps the selection
    }
    m_list->clear();
    for (const QString &text : texts) {
        m_list->addItem(newItem(text));
    }
    showOffered();
    markUnknown();
}

/// A single text is edited at once where something must be added to it, such as a new name.
void ListEditor::add(const QStringList &texts)
{
    int row = m_list->currentRow() < 0 ? m_list->count() : m_list->currentRow() + 1;
    for (const QString &text : texts) {
        m_list->insertItem(row++, newItem(m_offered.contains(text) ? addedText(text) : text));
    }
    m_list->setCurrentRow(row - 1);
    reportList();
    if (texts.size() == 1 && m_list->currentItem()->text() != texts.first()) {
        editCurrent(texts.first().size() + 1);
    }
}

/// Selects the text from `start`, which the user is expected to replace.
void ListEditor::editCurrent(qsizetype start)
{
    QListWidgetItem *const item = m_list->currentItem();
    m_list->editItem(item);
    if (auto *const line = m_list->viewport()->findChild<QLineEdit *>()) {
        line->setSelection(static_cast<int>(start), static_cast<int>(item->text().size() - start));
    }
}

void ListEditor::addSelected()
{
    const QList<QListWidgetItem *> items = m_left->selectedItems();
    if (items.isEmpty()) {
        return;
    }
    add(mapped<QStringList>(items, [](const QListWidgetItem *item) { return item->text(); }));
}

void ListEditor::addTyped()
{
    // A user who searches sees the only match, and means it.
    const bool isOnlyMatch = m_left->count() == 1 && !m_search->text().isEmpty();
    // An empty text is a value too.
    add({isOnlyMatch ? m_left->item(0)->text() : m_search->text()});
    m_search->clear();
}

void ListEditor::removeSelected()
{
    qDeleteAll(m_list->selectedItems()); // an item removes itself from its list
    reportList();
}

/// The line is taken out and inserted again, because a list has no other way to move it.
void ListEditor::moveCurrent(int by)
{
    const int from = m_list->currentRow(); // -1 without a current line
    const int to = from + by;
    if (from >= 0 && to >= 0 && to < m_list->count()) {
        m_list->insertItem(to, m_list->takeItem(from));
        m_list->setCurrentRow(to);
        reportList();
    }
}

void ListEditor::reportList()
{
    showOffered();
    markUnknown();
    report(chosen().join(u'\n'));
}

bool ListEditor::eventFilter(QObject *watched, QEvent *event)
{
    // The dialog around a panel would take Enter as its default button.
    if (event->type() != QEvent::KeyPress) {
        return FieldEditor::eventFilter(watched, event);
    }
    const auto *const key = static_cast<const QKeyEvent *>(event);
    const bool isEnter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    const bool isControl = key->modifiers().testFlag(Qt::ControlModifier);
    if (watched == m_search && isEnter) {
        addTyped();
    } else if (watched == m_left && isEnter) {
        addSelected();
    } else if (watched == m_list && key->key() == Qt::Key_Delete) {
        removeSelected();
    } else if (watched == m_list && isControl && key->key() == Qt::Key_Up) {
        moveCurrent(-1);
    } else if (watched == m_list && isControl && key->key() == Qt::Key_Down) {
        moveCurrent(1);
    } else {
        return FieldEditor::eventFilter(watched, event);
    }
    return true;
}

// ---- A list of columns

ColumnPicker::ColumnPicker(const FieldContext &context)
    : ListEditor(context, tr("Type a name and press Enter to add it"))
{
    refreshContext();
}

void ColumnPicker::refreshContext()
{
    setOffered(inputColumns().names);
}

ParameterProblem ColumnPicker::problem() const
{
    return unknownColumns(context(), unknown());
}

QString SortKeyPicker::offeredOf(const QString &text) const
{
    // As in the action: a column whose name begins with "-" is meant before a direction.
    return text.startsWith(u'-') && !offered().contains(text) ? text.mid(1) : text;
}

QString ColumnPairPicker::offeredOf(const QString &text) const
{
    // A name can contain "=" too, so a column that exists is meant first.
    for (qsizetype end = text.size(); end > 0; end = text.lastIndexOf(u'=', end - 1)) {
        if (offered().contains(text.left(end))) {
            return text.left(end);
        }
    }
    return text.section(u'=', 0, 0);
}

ColumnTextPicker::ColumnTextPicker(const FieldContext &context, QString text)
    : ColumnPairPicker(context)
    , m_text(std::move(text))
{
}

QString ColumnTextPicker::addedText(const QString &offered) const
{
    return offered + u'=' + (m_text.isEmpty() ? offered : m_text);
}

} // namespace corvanta
