// How widgets show texts of users: the cells of tables, and tool tips.
//
// Previews of panels and the tables of the editor show rows alike: a missing cell reads "missing"
// and an empty text is two quotation marks, both in quiet italics, so that neither looks like a
// text. Numbers are aligned right.
// Threads: the GUI thread.
#pragma once
#include "corvanta/export.h"
#include "corvanta/meta_info.h"

#include <QString>
#include <QVariant>

namespace corvanta {

/// A text for a tool tip: as it is, although tool tips show what looks like markup as HTML. Empty
/// for an empty text.
CORVANTA_EXPORT QString plainToolTip(const QString &text);

/// "text", "number" or "key", in the language of the user.
CORVANTA_EXPORT QString columnTypeText(const MetaInfo &type);

/// What QAbstractItemModel::data() returns for a cell of a column of that type; invalid for roles
/// that a cell does not have. A null `text` is a missing cell. The display text has one line of at
/// most 200 characters, and the tool tip has up to 2,000.
CORVANTA_EXPORT QVariant cellData(QStringView text, const MetaInfo &type, int role);

/// What QAbstractItemModel::headerData() returns for a table with these columns: the number of a
/// row, from 1, or the name of a column with its type on a second line.
CORVANTA_EXPORT QVariant headerData(const TableSchema &columns, int section,
                                    Qt::Orientation orientation, int role);

} // namespace corvanta
