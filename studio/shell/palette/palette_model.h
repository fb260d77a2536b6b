// The tree of the palette: favourites, recent actions and the categories; or the matches of a
// search as a list.
#pragma once
#include "studio/canvas/catalogue.h"

#include <QStandardItemModel>

namespace corvanta {
class ActionRegistry;
}

namespace corvanta::studio {

class Settings;

/// Columns: name and description. Threads: the GUI thread.
class PaletteModel final : public QStandardItemModel
{
    Q_OBJECT

public:
    /// Role of the type name of an action; a category has none.
    static constexpr int kTypeRole = Qt::UserRole + 1;
    /// The data of a drag: the type name in UTF-8.
    static const QString kMimeType;

    /// All three must outlive the model.
    PaletteModel(const ActionRegistry &registry, const Catalogue &catalogue,
                 const Settings &settings, QObject *parent = nullptr);

    /// Show what matches `text`; for an empty text all categories.
    void setSearch(const QString &text);
    /// Show the favourites and the recent actions of the settings.
    void refresh() { setSearch(m_search); }

    QStringList mimeTypes() const override { return {kMimeType}; }
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    /// Draws the icon of an action when it is first shown.
    QVariant data(const QModelIndex &index, int role) const override;

private:
    /// Favourites and recent actions first, if there are any.
    void showCategories();
    /// Add a category with the actions of these types, unless there are none.
    void addCategory(const QString &title, const QStringList &types);
    /// Both cells of a row have the type, because a drag can start at each of them.
    void addEntry(QStandardItem *parent, const CatalogueEntry &entry);

    const ActionRegistry &m_registry;
    const Catalogue &m_catalogue;
    const Settings &m_settings;
    QString m_search;
};

} // namespace corvanta::studio
