// The tree is made again after changes: an update item by item costs more code than time.
#include "studio/shell/views/outline.h"

#include "studio/document/graph_document.h"
#include "studio/widgets/plain_table.h"

#include <QSet>
#include <QSignalBlocker>
#include <QTreeWidgetItemIterator>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr int kIdRole = Qt::UserRole;
constexpr int kLinkRole = Qt::UserRole + 1; // each link has two rows, one at each end
constexpr int kNoteRole = Qt::UserRole + 2;
constexpr int kColumnLetters = 32;

} // namespace

Outline::Outline(QWidget *parent)
    : QTreeWidget(parent)
{
    setObjectName(u"outline"_s);
    setAccessibleName(tr("Actions and links"));
    setHeaderLabels({tr("Action"), tr("Type"), tr("Comment")});
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setUniformRowHeights(true);
    m_update.setSingleShot(true);
    // After the step that causes the changes.
    m_update.setInterval(0);
    connect(&m_update, &QTimer::timeout, this, &Outline::fill);
    connect(this, &QTreeWidget::itemSelectionChanged, this, &Outline::reportSelection);
    connect(this, &QTreeWidget::itemActivated, this, [this](const QTreeWidgetItem *item) {
        if (const QString id = idOf(*item); !id.isEmpty()) {
            Q_EMIT shown(id);
        }
    });
}

void Outline::setDocument(GraphDocument *document)
{
    if (m_document != nullptr) {
        m_document->disconnect(this);
    }
    m_document = document;
    m_ids.clear();
    m_links.clear();
    m_notes.clear();
    if (document != nullptr) {
        // A step may emit hundreds of signals; the timer runs once for all of them.
        const auto update = [this] { m_update.start(); };
        connect(document, &GraphDocument::actionAdded, this, update);
        connect(document, &GraphDocument::actionRemoved, this, update);
        connect(document, &GraphDocument::actionRenamed, this, update);
        connect(document, &GraphDocument::actionChanged, this, update);
        connect(document, &GraphDocument::linkAdded, this, update);
        connect(document, &GraphDocument::linkRemoved, this, update);
        connect(document, &GraphDocument::notesChanged, this, update);
        connect(document, &GraphDocument::reloaded, this, update);
    }
    fill();
}

void Outline::fill()
{
    const QSignalBlocker blocker(this);
    QSet<QString> open;
    for (int i = 0; i < topLevelItemCount(); ++i) {
        if (topLevelItem(i)->isExpanded()) {
            open.insert(idOf(*topLevelItem(i)));
        }
    }
    const QString current = currentItem() == nullptr ? QString() : currentItem()->text(0);
    clear();
    if (m_document == nullptr) {
        return;
    }
    for (const QString &id : m_document->ids()) {
        addAction(id);
        topLevelItem(topLevelItemCount() - 1)->setExpanded(open.contains(id));
    }
    for (const Note &note : m_document->notes()) {
        auto *const item = new QTreeWidgetItem(this, {tr("Note"), {}, note.text.simplified()});
        item->setData(0, kNoteRole, note.key);
    }
    // An edit must not take the place of a user who reads the tree.
    if (const auto same = findItems(current, Qt::MatchExactly | Qt::MatchRecursive);
        !same.isEmpty()) {
        setCurrentItem(same.first(), 0, QItemSelectionModel::NoUpdate);
    }
    for (int i = 0; i < columnCount(); ++i) {
        fitColumn(this, i, kColumnLetters);
    }
    // The items are new, the selection of the canvas is not.
    setSelected(m_ids, m_links, m_notes);
}

void Outline::addAction(const QString &id)
{
    // In one line, because all rows have the same height.
    const QString comment = m_document->comment(id).simplified();
    auto *const item = new QTreeWidgetItem(this, {id, m_document->type(id), comment});
    item->setData(0, kIdRole, id);
    const auto addLink = [&](const LinkRef &link, const PinRef &other, const QString &text) {
        const QString target = u"%1:%2"_s.arg(other.action, QString::number(other.pin));
        const int pin = link.from == other ? link.to.pin : link.from.pin;
        auto *const child = new QTreeWidgetItem(item, {text.arg(QString::number(pin), target)});
        // Enter on a link leads to the action at its other end.
        child->setData(0, kIdRole, other.action);
        child->setData(0, kLinkRole, QVariant::fromValue(link));
    };
    for (int pin = 0; pin < m_document->inputCount(id); ++pin) {
        for (const LinkRef &link : m_document->linksTo({id, pin})) {
            addLink(link, link.from, tr("input %1 from %2"));
        }
    }
    for (int pin = 0; pin < m_document->outputCount(id); ++pin) {
        for (const LinkRef &link : m_document->linksFrom({id, pin})) {
            addLink(link, link.to, tr("output %1 to %2"));
        }
    }
}

QString Outline::idOf(const QTreeWidgetItem &item)
{
    return item.data(0, kIdRole).toString();
}

void Outline::setSelected(const QStringList &ids, const QVector<LinkRef> &links,
                          const QVector<int> &notes)
{
    m_ids = ids;
    m_links = links;
    m_notes = notes;
    // The selection comes from the canvas: reporting it would be a loop.
    const QSignalBlocker blocker(this);
    // A graph may have thousands of actions, and all may be selected.
    const QSet<QString> wanted(ids.begin(), ids.end());
    QTreeWidgetItem *first = nullptr;
    clearSelection();
    for (QTreeWidgetItemIterator it(this); *it != nullptr; ++it) {
        const QVariant link = (*it)->data(0, kLinkRole);
        const QVariant note = (*it)->data(0, kNoteRole);
        const bool isSelected = link.isValid()   ? links.contains(link.value<LinkRef>())
                                : note.isValid() ? notes.contains(note.toInt())
                                                 : wanted.contains(idOf(**it));
        if (isSelected) {
            const QTreeWidgetItem *const parent = (*it)->parent();
            // Scrolling to it would unfold its action.
            const bool isFolded = parent != nullptr && !parent->isExpanded();
            first = first != nullptr || isFolded ? first : *it;
            (*it)->setSelected(true);
        }
    }
    // While the user moves in the tree, its current item is the one that counts.
    if (first != nullptr && !hasFocus()) {
        setCurrentItem(first, 0, QItemSelectionModel::NoUpdate);
        scrollToItem(first);
    }
}

void Outline::reportSelection()
{
    QStringList ids;
    QVector<LinkRef> links;
    QVector<int> notes;
    // The commands act on these, so that a link must not stand for its action.
    for (const QTreeWidgetItem *const item : selectedItems()) {
        if (const QVariant link = item->data(0, kLinkRole); link.isValid()) {
            links << link.value<LinkRef>();
        } else if (const QVariant note = item->data(0, kNoteRole); note.isValid()) {
            notes << note.toInt();
        } else {
            ids << idOf(*item);
        }
    }
    Q_EMIT selectionChosen(ids, links, notes);
}

} // namespace corvanta::studio
