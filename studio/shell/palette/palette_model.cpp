// The items hold type names only; everything else is looked up in the catalogue.
#include "studio/shell/palette/palette_model.h"

#include "corvanta/action_registry.h"
#include "studio/shell/command_icons.h"
#include "studio/shell/preferences/settings.h"

#include <QGuiApplication>
#include <QMimeData>
#include <QPixmap>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

const QString PaletteModel::kMimeType = u"application/x-corvanta-action"_s;

PaletteModel::PaletteModel(const ActionRegistry &registry, const Catalogue &catalogue,
                           const Settings &settings, QObject *parent)
    : QStandardItemModel(parent)
    , m_registry(registry)
    , m_catalogue(catalogue)
    , m_settings(settings)
{
    setSearch({});
}

void PaletteModel::setSearch(const QString &text)
{
    m_search = text;
    clear();
    setColumnCount(2);
    if (text.trimmed().isEmpty()) {
        showCategories();
        return;
    }
    // Without categories: the best result is the first row, whatever its category.
    for (const CatalogueEntry *const entry : m_catalogue.search(text)) {
        addEntry(invisibleRootItem(), *entry);
    }
}

void PaletteModel::showCategories()
{
    addCategory(tr("Favourites"), m_settings.favouriteActions());
    // A few: more would push the categories out of sight.
    addCategory(tr("Recent"), m_settings.recentActions().mid(0, 5));
    QString title;
    QStringList types;
    // They are sorted by category. The first title is empty, as is its list, which adds nothing.
    for (const CatalogueEntry &entry : m_catalogue.entries()) {
        if (entry.category != title) {
            addCategory(title, types);
            title = entry.category;
            types.clear();
        }
        types << entry.type;
    }
    addCategory(title, types);
}

void PaletteModel::addCategory(const QString &title, const QStringList &types)
{
    auto category = std::make_unique<QStandardItem>(title);
    // Not drag-enabled: a category cannot be added.
    category->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    category->setColumnCount(2);
    for (const QString &type : types) {
        // A module that was there in an earlier session may be missing now.
        if (const CatalogueEntry *const entry = m_catalogue.find(type)) {
            addEntry(category.get(), *entry);
        }
    }
    if (category->rowCount() > 0) {
        appendRow(category.release()); // the model owns its items
    }
}

void PaletteModel::addEntry(QStandardItem *parent, const CatalogueEntry &entry)
{
    auto *const name = new QStandardItem(entry.type); // the parent owns its items
    auto *const description = new QStandardItem(entry.description);
    // Both know the type: a row can be chosen and dragged at either column.
    for (QStandardItem *const item : {name, description}) {
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
        item->setData(entry.type, kTypeRole);
        item->setToolTip(entry.description);
    }
    // The description is another column, which a screen reader does not read with the name.
    name->setAccessibleDescription(entry.description);
    parent->appendRow({name, description});
}

QMimeData *PaletteModel::mimeData(const QModelIndexList &indexes) const
{
    const QString type = indexes.value(0).data(kTypeRole).toString();
    // Null ends the drag.
    if (type.isEmpty()) {
        return nullptr;
    }
    auto *const data = new QMimeData; // the drag owns it
    data->setData(kMimeType, type.toUtf8());
    return data;
}

QVariant PaletteModel::data(const QModelIndex &index, int role) const
{
    // Made when it is drawn, because the theme may have changed.
    if (role == Qt::DecorationRole && index.column() == 0) {
        const QString type = QStandardItemModel::data(index, kTypeRole).toString();
        if (ActionItem *const prototype = m_registry.prototype(type)) {
            return actionIcon(*prototype->getIcon(1), QGuiApplication::palette());
        }
    }
    return QStandardItemModel::data(index, role);
}

} // namespace corvanta::studio
