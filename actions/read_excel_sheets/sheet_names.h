// Reads the sheet names of one workbook and words what goes wrong.
#pragma once
#include "corvanta/action_base.h"

#include <QStringList>

#include <optional>

namespace corvanta {

/// The names in the order of the workbook. A path that ends with ".xlsx" is read as a package, any
/// other as a legacy workbook. std::nullopt when the action must end: the run has failed, or the
/// package cannot be opened, which is a warning. A legacy workbook that cannot be read gives no
/// names, with a warning.
std::optional<QStringList> sheetNamesOf(ActionBase &action, const QString &path);

} // namespace corvanta
