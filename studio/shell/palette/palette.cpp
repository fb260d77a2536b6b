// The keyboard focus stays in the palette after an action was added, so that a chain of actions is
// typed without a change of the focus.
#include "studio/shell/palette/palette.h"

#include "studio/shell/palette/palette_model.h"
#include "studio/shell/preferences/settings.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTreeView>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

Palette::Palette(const ActionRegistry &registry, Settings &settings, QWidget *parent)
    : QWidget(parent)
    , m_settings(settings)
    , m_catalogue(registry)
    , m_model(new PaletteModel(registry, m_catalogue, settings, this))
    , m_search(new QLineEdit(this))
    , m_tree(new QTreeView(this))
{
    setObjectName(u"palette"_s);
    setMinimumWidth(fontMetrics().averageCharWidth() * 24); // the longest name and its icon
    makeSearch();
    makeTree();
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_search);
    layout->addWidget(m_tree);
    // The search is what a user of the keyboard wants.
    setFocusProxy(m_search);
}

void Palette::makeSearch()
{
    m_search->setObjectName(u"paletteSearch"_s);
    m_search->setAccessibleName(tr("Search actions"));
    m_search->setPlaceholderText(tr("Search actions"));
    m_search->setClearButtonEnabled(true);
    // A line edit ignores the keys that lead into the tree.
    m_search->installEventFilter(this);
    connect(m_search, &QLineEdit::textChanged, this, &Palette::search);
    connect(m_search, &QLineEdit::returnPressed, this, [this] {
        choose(firstAction());
        m_search->selectAll(); // what is typed next is another search
    });
}

void Palette::makeTree()
{
    m_tree->setObjectName(u"paletteTree"_s);
    m_tree->setAccessibleName(tr("Actions"));
    m_tree->setModel(m_model);
    m_tree->setHeaderHidden(true);
    // A narrow column ends with dots; one that is wider than the view is cut without a sign.
    m_tree->header()->setMinimumSectionSize(fontMetrics().averageCharWidth());
    m_tree->header()->setStretchLastSection(false);
    m_tree->viewport()->installEventFilter(this);
    m_tree->setDragEnabled(true);
    const int size = fontMetrics().height() * 4 / 3;
    m_tree->setIconSize({size, size});
    m_tree->setUniformRowHeights(true);
    m_tree->setIndentation(m_tree->indentation() / 2);
    m_tree->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff); // tool tips have the descriptions
    // A double click adds the action; the names are those of the modules.
    m_tree->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_tree, &QTreeView::activated, this, &Palette::choose);
    connect(m_tree, &QTreeView::customContextMenuRequested, this, &Palette::showMenu);
    search({});
}

void Palette::startSearch()
{
    m_search->setFocus(Qt::ShortcutFocusReason);
    m_search->selectAll();
}

void Palette::search(const QString &text)
{
    m_model->setSearch(text);
    m_tree->expandAll();
    m_tree->resizeColumnToContents(0);
    stretchDescriptions();
    // Only categories can be closed, and results have none.
    m_tree->setRootIsDecorated(text.trimmed().isEmpty());
    // Enter in the search field adds the current one.
    m_tree->setCurrentIndex(firstAction());
}

QModelIndex Palette::firstAction() const
{
    // Without a search the first row is a category.
    const QModelIndex first = m_model->index(0, 0);
    return m_model->hasChildren(first) ? m_model->index(0, 0, first) : first;
}

void Palette::choose(const QModelIndex &index)
{
    const QString type = index.data(PaletteModel::kTypeRole).toString();
    if (!type.isEmpty()) {
        Q_EMIT actionChosen(type);
    }
}

void Palette::noteUse(const QString &type)
{
    m_settings.addRecentAction(type);
    refresh();
}

void Palette::refresh()
{
    const QString type = m_tree->currentIndex().data(PaletteModel::kTypeRole).toString();
    // Makes the rows again, because the favourites and the recent actions have changed.
    search(m_search->text());
    // The last one is in its category, not among the recent ones.
    const QModelIndexList same = m_model->match(m_model->index(0, 0), PaletteModel::kTypeRole, type,
                                                -1, Qt::MatchExactly | Qt::MatchRecursive);
    if (!type.isEmpty() && !same.isEmpty()) {
        m_tree->setCurrentIndex(same.last());
    }
}

void Palette::showMenu(const QPoint &position)
{
    const QString type = m_tree->indexAt(position).data(PaletteModel::kTypeRole).toString();
    if (type.isEmpty()) {
        return;
    }
    QMenu menu(this);
    // References to locals are safe: the menu ends before this function does.
    connect(menu.addAction(tr("Add to the graph")), &QAction::triggered, this,
            [&] { Q_EMIT actionChosen(type); });
    QAction *const favourite = menu.addAction(tr("Favourite"));
    favourite->setCheckable(true);
    favourite->setChecked(m_settings.favouriteActions().contains(type));
    connect(favourite, &QAction::toggled, this, [&](bool isFavourite) {
        m_settings.setFavouriteAction(type, isFavourite);
        refresh();
    });
    connect(menu.addAction(tr("Help")), &QAction::triggered, this,
            [&] { Q_EMIT helpRequested(type); });
    menu.exec(m_tree->viewport()->mapToGlobal(position));
}

/// Does what the header does only while it is visible: the last column has the rest of the width.
void Palette::stretchDescriptions()
{
    QHeaderView *const header = m_tree->header();
    header->resizeSection(1, qMax(0, m_tree->viewport()->width() - header->sectionSize(0)));
}

bool Palette::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_tree->viewport() && event->type() == QEvent::Resize) {
        stretchDescriptions();
    }
    if (watched == m_search && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Down || key == Qt::Key_PageDown) {
            // As in a field with a list: the keys for the list work from the field.
            m_tree->setFocus(Qt::OtherFocusReason);
            return true;
        }
        // An empty field leaves the key to others, such as a dialog.
        if (key == Qt::Key_Escape && !m_search->text().isEmpty()) {
            m_search->clear();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace corvanta::studio
