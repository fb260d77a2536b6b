// What a data set says about its variables, for hosts that look at the file before a run.
#pragma once
#include "actions/read_stat/read_stat_params.h"
#include "corvanta/action_base.h"

namespace corvanta {

/// The notes for the columns of `name`, with value labels also of the catalogue of the parameters.
/// Logs nothing; what cannot be read has no notes. Outside runs. `action` expands file names.
QVector<ColumnNotes> statNotes(const ActionBase &action, const QString &name,
                               const ReadStatParams &params);

/// The columns of `name` that the run reads as ISO 8601 texts (with formatDates) or that hold only
/// integers. Nothing if the file cannot be read. As above.
std::optional<QVector<ColumnKind>> statColumnKinds(const ActionBase &action, const QString &name,
                                                   const ReadStatParams &params);

/// The number of rows of `name`, or a little more: a transport file may have padding. The fault is
/// the reason in words.
Result<qint64, QString> statRowCount(const ActionBase &action, const QString &name,
                                     const ReadStatParams &params);

} // namespace corvanta
