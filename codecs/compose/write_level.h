// Levels and items: what a user declares about the form of a composed file.
//
// Both syntaxes share these structs; they differ only in the meaning of an item's type. The values
// come from saved graphs unchecked: the compilers of json_levels.h and xml_levels.h report names of
// columns and levels that do not exist. Plain values: copies are independent, and any thread may
// read one.
#pragma once
#include <QString>
#include <QStringList>

#include <vector>

namespace corvanta::compose {

/// One thing to write. Each type uses only some of the members and ignores the others.
struct WriteItem
{
    /// The saved number of a JsonItem or an XmlItem, whichever the writer uses. Other numbers are
    /// kept, so that a graph is saved as it was read; their items write nothing.
    int type = 0;
    QString text;        ///< written without escapes, by items with a fixed text
    QString calledLevel; ///< name of the sub-level, for items that write one; letter case counts
    QString p1;          ///< removed from the start of the keys that begin with it
    QStringList columns; ///< names; items for one column use the first and ignore the rest

    /// The type as a value of the writer's enumeration, which may be none of its enumerators.
    template <class Type> Type typeAs() const { return static_cast<Type>(type); }
    bool operator==(const WriteItem &) const = default;
};

/// An item of one of the writers' types, for the levels that a writer declares itself.
template <class Type>
WriteItem makeItem(Type type, const QString &text, const QStringList &columns = {})
{
    return {static_cast<int>(type), text, {}, {}, columns};
}

/// What is written for each element. The first level of a list is the top level, which has an
/// element per row; a sub-level has an array of elements per element of its caller.
struct WriteLevel
{
    QString name;         ///< by which items call the level; of equal names the first counts
    QString partitionCol; ///< rows of one value form one array of the sub-level; unused at the top
    bool commaSeparated = true; ///< a comma before every element of an array but the first
    std::vector<WriteItem> items;
    bool operator==(const WriteLevel &) const = default;
};

} // namespace corvanta::compose
