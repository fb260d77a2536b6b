// The actions of all modules, as the palette and the canvas offer them: categories and search.
//
// Threads: the GUI thread, because texts are translated.
#pragma once
#include <QString>
#include <QStringList>
#include <QVector>

namespace corvanta {
class ActionRegistry;
}

namespace corvanta::studio {

/// An action that can be added to a graph.
struct CatalogueEntry
{
    QString type;            ///< name of the type
    QString description;     ///< one line, translated
    QString category;        ///< title, translated
    QStringList words;       ///< lower case: keywords, tags, other names, file extensions
    bool isUncommon = false; ///< is listed after the common ones of its category
    bool isReader = false;   ///< seldom needs an input
};

class Catalogue final
{
public:
    /// `registry` need not outlive the catalogue.
    explicit Catalogue(const ActionRegistry &registry);

    /// Ordered by category, the common actions of a category first, else in the order of the
    /// modules.
    const QVector<CatalogueEntry> &entries() const { return m_entries; }
    /// Null for an unknown type. Valid as long as the catalogue.
    const CatalogueEntry *find(const QString &type) const;
    /// The entries that match every word of `text`, best first: a word of the name counts most,
    /// then the beginning of a keyword, then any part of the description. All entries for an empty
    /// text. `readersLast`: for a place after an action.
    QVector<const CatalogueEntry *> search(const QString &text, bool readersLast = false) const;

private:
    QVector<CatalogueEntry> m_entries;
};

} // namespace corvanta::studio
