// A list of what the catalogue finds, below a field that keeps the focus.
#include "studio/canvas/quick_add.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

// The field keeps the focus; arrow keys go to the list.
QuickAdd::QuickAdd(const ActionRegistry &registry, QWidget *parent)
    : QFrame(parent, Qt::Popup)
    , m_registry(registry)
    , m_catalogue(registry)
    , m_field(new QLineEdit(this))
    , m_list(new QListWidget(this))
{
    setObjectName(u"quickAdd"_s);
    setFrameStyle(StyledPanel);
    auto *const layout = new QVBoxLayout(this); // owned by the widget
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    m_field->setObjectName(u"quickAdd.search"_s);
    m_field->setAccessibleName(tr("Search actions"));
    m_field->setPlaceholderText(tr("Search actions"));
    m_list->setObjectName(u"quickAdd.actions"_s);
    m_list->setAccessibleName(tr("Actions"));
    m_list->setFocusPolicy(Qt::NoFocus);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // long texts end with dots
    layout->addWidget(m_field);
    layout->addWidget(m_list);
    m_field->installEventFilter(this);
    connect(m_field, &QLineEdit::textChanged, this, &QuickAdd::search);
    connect(m_list, &QListWidget::itemClicked, this, &QuickAdd::accept);
}

// The last search is forgotten: the place asks for another action.
void QuickAdd::ask(QPoint place, bool needsInput, std::function<void(const QString &)> chosen)
{
    constexpr QSize kLetters(64, 20);
    resize(kLetters.width() * fontMetrics().averageCharWidth(),
           kLetters.height() * fontMetrics().lineSpacing());
    m_needsInput = needsInput;
    m_chosen = std::move(chosen);
    m_field->clear();
    search();
    const QRect area = screen()->availableGeometry().adjusted(0, 0, -width(), -height());
    move(qBound(area.left(), place.x(), qMax(area.left(), area.right())),
         qBound(area.top(), place.y(), qMax(area.top(), area.bottom())));
    show();
    m_field->setFocus();
}

// Without a text all actions are listed, in the order of the palette. What follows an action mostly
// changes or writes its rows; a reader would take them as names of files.
void QuickAdd::search()
{
    m_list->clear();
    for (const CatalogueEntry *const entry : m_catalogue.search(m_field->text(), m_needsInput)) {
        ActionItem *const action = m_registry.prototype(entry->type);
        if (m_needsInput && action->maxPinIn() == 0) {
            continue;
        }
        auto *const item = new QListWidgetItem(u"%1 – %2"_s.arg(entry->type, entry->description),
                                               m_list); // owned by the list
        item->setData(Qt::UserRole, entry->type);
        if (const QPixmap *const icon = action->getIcon(1)) {
            item->setIcon(QIcon(*icon));
        }
    }
    m_list->setCurrentRow(0);
}

// Hidden first, so that a message of the edit is not covered.
void QuickAdd::accept()
{
    const QListWidgetItem *const item = m_list->currentItem();
    const auto chosen = std::move(m_chosen);
    m_chosen = nullptr;
    hide();
    if (item != nullptr && chosen) {
        chosen(item->data(Qt::UserRole).toString());
    }
}

// Escape and clicks elsewhere close every popup.
bool QuickAdd::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress) {
        return QFrame::eventFilter(watched, event);
    }
    const int key = static_cast<const QKeyEvent *>(event)->key();
    if (key == Qt::Key_Up || key == Qt::Key_Down) {
        const int row = m_list->currentRow() + (key == Qt::Key_Down ? 1 : -1);
        m_list->setCurrentRow(qBound(0, row, qMax(0, m_list->count() - 1)));
        return true;
    }
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        accept();
        return true;
    }
    return QFrame::eventFilter(watched, event);
}

} // namespace corvanta::studio
