// The kinds of columns of texts, from scans of their values before a run.
#pragma once
#include "codecs/values/column_scan.h"
#include "corvanta/action_parameters.h"

#include <span>

namespace corvanta {

/// How many rows a scan examines.
qint64 rowsToScan(ActionParameters::KindExtent extent);

/// The kinds of the columns `names`, one scan per column. Columns with the same name are texts:
/// a kind could not name one of them.
QVector<ColumnKind> kindsOf(const QStringList &names, std::span<const values::ColumnScan> scans);

/// The letters of the columns in order, separated by commas, as readers save them.
QString lettersOf(const QVector<ColumnKind> &columns);

} // namespace corvanta
