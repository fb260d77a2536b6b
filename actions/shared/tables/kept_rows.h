// What the actions that keep rows in temporary files share: options and failures.
#pragma once
#include "corvanta/action_base.h"
#include "io/rows/row_sorter.h"

namespace corvanta::shared {

/// Log that a temporary file in `folder` failed, and fail the run of `action`. Returns false.
bool failKeptRows(ActionBase *action, const QString &folder, SystemError error);

/// A failed write of a temporary file is retried as long as the user, asked about it, wants to.
BlockSpool::Options spoolOptions(const ActionBase *action);
rows::RowSorter::Options sorterOptions(const ActionBase *action);
/// failKeptRows() for the last failure of `sorter`.
bool failSorter(ActionBase *action, const rows::RowSorter &sorter);

} // namespace corvanta::shared
