// Names that begin with the searched words come before those that have them elsewhere.
#include "studio/canvas/quick_add.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QScreen>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// In the language of the window.
QString descriptionOf(const ActionItem &action)
{
    return QCoreApplication::translate("Parameters", action.getDescription().toUtf8());
}

/// How well an action fits the searched text: 0 best; negative: not at all.
int rankOf(const ActionItem &action, const QString &text)
{
    const QString type = QString::fromLatin1(action.getTypeName());
    if (type.startsWith(text, Qt::CaseInsensitive)) {
        return 0;
    }
    if (type.contains(text, Qt::CaseInsensitive)) {
        return 1;
    }
    const QStringList words = action.getKeywords() + action.getTags() +
                              action.getAlternativeNames() +
                              QStringList{action.getDescription(), descriptionOf(action)};
    return words.join(u' ').contains(text, Qt::CaseInsensitive) ? 2 : -1;
}

} // namespace

// The field keeps the focus; arrow keys go to the list.
QuickAdd::QuickAdd(const ActionRegistry &registry, QWidget *parent)
    : QFrame(parent, Qt::Popup)
    , m_registry(registry)
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

// Without a text all actions are listed, in the order of the catalogue.
void QuickAdd::search()
{
    const QString text = m_field->text().trimmed();
    std::vector<std::pair<int, ActionItem *>> found;
    for (const auto &action : m_registry.prototypes()) {
        const int rank = rankOf(*action, text);
        if (rank >= 0 && (!m_needsInput || action->maxPinIn() > 0)) {
            found.emplace_back(rank, action.get());
        }
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    m_list->clear();
    for (const auto &[rank, action] : found) {
        const QString type = QString::fromLatin1(action->getTypeName());
        auto *const item = new QListWidgetItem(u"%1 – %2"_s.arg(type, descriptionOf(*action)),
                                               m_list); // owned by the list
        item->setData(Qt::UserRole, type);
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
