// The columns of a table and its sort order, which are sent along with its rows.
//
// The type of a single column is MetaInfo (base/meta_info.h).
#pragma once
#include "base/meta_info.h"
#include "corvanta/export.h"

#include <QString>
#include <QVector>

/// One column of a sort order. The order is what the source declares; nothing checks it.
struct SortInfos
{
    QString column; ///< name
    bool ascending = true;
    bool operator==(const SortInfos &other) const = default;
};

/// Names, types and sort order of a table; shared by all rows of a batch. `names` and `types` have
/// one entry per column. Names may be empty or equal; see doCheckNameCollision(). Threads: a schema
/// that a batch refers to never changes, so any thread may read it.
struct TableSchema
{
    QVector<QString> names;
    QVector<MetaInfo> types;
    QVector<SortInfos> sortedOn; ///< most significant first; empty: not known to be sorted
    bool operator==(const TableSchema &other) const = default;
};

/// The columns of an output pin.
using PinOutMetaData = TableSchema;
