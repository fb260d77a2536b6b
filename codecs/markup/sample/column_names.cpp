// For the values a/x, b/x and c: x is not distinct, so the names are "a.x", "b.x" and "c".
#include "codecs/markup/sample/column_names.h"

#include <algorithm>
#include <unordered_map>

namespace corvanta::markup {

namespace {

/// The parts in use, outermost first, and the suffix.
QString nameOf(const ColumnNameParts &column)
{
    QString name;
    for (qsizetype i = column.used; i > 0; --i) {
        name += column.names[i - 1];
        name += i > 1 ? QStringLiteral(".") : QString();
    }
    return name + column.suffix;
}

/// Use one more part in each name that is not distinct; false when nothing changed.
bool lengthenNames(std::vector<ColumnNameParts> *columns)
{
    std::unordered_map<QString, int> uses;
    for (const ColumnNameParts &column : *columns) {
        ++uses[nameOf(column)];
    }
    bool hasGrown = false;
    for (ColumnNameParts &column : *columns) {
        if (uses[nameOf(column)] > 1 && column.used < column.names.size()) {
            ++column.used;
            hasGrown = true;
        }
    }
    return hasGrown;
}

} // namespace

QStringList distinctNames(std::vector<ColumnNameParts> columns)
{
    // Ends: each turn uses up at least one part of a name.
    while (lengthenNames(&columns)) {
    }
    std::unordered_map<QString, int> uses;
    QStringList names;
    for (const ColumnNameParts &column : columns) {
        QString name = nameOf(column);
        for (const QString base = name; uses[name]++ > 0;) {
            name = base + u'_' + QString::number(uses[base]++);
        }
        names << name;
    }
    return names;
}

} // namespace corvanta::markup
