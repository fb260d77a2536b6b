#include "panels/string_list_editor.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QSignalBlocker>
#include <QToolButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Longer lists scroll.
constexpr int kVisibleRows = 6;

QListWidgetItem *newItem(const QString &text)
{
    auto *const item = new QListWidgetItem(text); // owned by the list it is added to
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    return item;
}

} // namespace

StringListEditor::StringListEditor(QWidget *parent)
    : QWidget(parent)
    , m_list(new QListWidget(this))
{
    // Buttons in a column on the right of the list: plus, minus, up, down.
    auto *const buttons = new QVBoxLayout;
    buttons->setSpacing(2);
    buttons->addWidget(addButton(u"+"_s, u"Add a line"_s, [this] { addString(); }));
    buttons->addWidget(addButton(u"\u2212"_s, u"Remove the line"_s, [this] { removeCurrent(); }));
    buttons->addWidget(addButton(u"\u2191"_s, u"Move the line up"_s, [this] { moveCurrent(-1); }));
    buttons->addWidget(addButton(u"\u2193"_s, u"Move the line down"_s, [this] { moveCurrent(1); }));
    buttons->addStretch();
    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    layout->addLayout(buttons);
    m_list->setFixedHeight(fontMetrics().lineSpacing() * kVisibleRows + 2 * m_list->frameWidth());
    m_list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::SelectedClicked);
    // A label's shortcut moves the focus to the list.
    setFocusProxy(m_list);
    connect(m_list, &QListWidget::itemChanged, this, [this] { m_changed(); });
}

QToolButton *StringListEditor::addButton(const QString &text, const QString &toolTip,
                                         std::function<void()> clicked)
{
    auto *const button = new QToolButton(this);
    button->setText(text);
    button->setToolTip(toolTip);
    button->setAutoRaise(true);
    connect(button, &QToolButton::clicked, this, std::move(clicked));
    return button;
}

QStringList StringListEditor::strings() const
{
    QStringList strings;
    for (int i = 0; i < m_list->count(); ++i) {
        strings << m_list->item(i)->text();
    }
    return strings;
}

void StringListEditor::setStrings(const QStringList &strings)
{
    const QSignalBlocker blocker(m_list); // a refresh is not an edit
    m_list->clear();
    for (const QString &string : strings) {
        m_list->addItem(newItem(string));
    }
}

void StringListEditor::addString()
{
    const int row = m_list->currentRow() + 1;
    m_list->insertItem(row, newItem(QString()));
    m_list->setCurrentRow(row);
    // The new line is reported as a change when the user has entered its text.
    m_list->editItem(m_list->item(row));
}

void StringListEditor::removeCurrent()
{
    if (m_list->currentRow() >= 0) {
        // takeItem() gives the item to the caller. It sends no itemChanged().
        delete m_list->takeItem(m_list->currentRow());
        m_changed();
    }
}

void StringListEditor::moveCurrent(int by)
{
    // Without a selection the row is -1.
    const int from = m_list->currentRow();
    const int to = from + by;
    if (from >= 0 && to >= 0 && to < m_list->count()) {
        m_list->insertItem(to, m_list->takeItem(from));
        m_list->setCurrentRow(to);
        m_changed();
    }
}

} // namespace corvanta
