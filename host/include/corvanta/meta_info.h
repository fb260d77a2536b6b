// What a column holds and how a table is sorted; both travel with the rows.
#pragma once
#include "base/meta_info.h"
#include "corvanta/export.h"

#include <QString>
#include <QVector>

/// One column of a sort order.
struct SortInfos
{
    QString column;
    bool ascending = true;
    bool operator==(const SortInfos &other) const = default;
};

/// Names, types and sort order of a table; shared by all rows of a batch.
struct TableSchema
{
    QVector<QString> names;
    QVector<MetaInfo> types;
    QVector<SortInfos> sortedOn;
    bool operator==(const TableSchema &other) const = default;
};

/// What an output pin delivers.
using PinOutMetaData = TableSchema;
