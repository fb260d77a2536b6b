// Levels and items: what a user declares about the form of a composed file.
#pragma once
#include <QString>
#include <QStringList>

#include <vector>

namespace corvanta::compose {

/// One thing to write. The numbers of the types are those of the syntax: json_levels.h and
/// xml_levels.h.
struct WriteItem
{
    int type = 0;
    QString text;
    QString calledLevel; ///< name of the sub-level, for items that write one
    QString p1;          ///< removed from the start of the keys
    QStringList columns;
    bool operator==(const WriteItem &) const = default;
};

/// What is written for each row. The first level is the top level.
struct WriteLevel
{
    QString name;
    QString partitionCol; ///< rows of one value form one array of the sub-level; unused at the top
    bool commaSeparated = true;
    std::vector<WriteItem> items;
    bool operator==(const WriteLevel &) const = default;
};

} // namespace corvanta::compose
