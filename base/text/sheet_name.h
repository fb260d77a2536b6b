// Names of the sheets of a workbook that spreadsheet programs accept. Most report a workbook with
// any other name as damaged. Threads: pure functions.
#pragma once
#include <QString>

namespace corvanta {

/// UTF-16 units of the name of a sheet, at most; programs reject longer ones.
inline constexpr qsizetype kMaxSheetNameUnits = 31;

/// Whether the name of a sheet may have this character: not a control character, and none that
/// references and paths use (/ \ ? * [ ] :).
bool isSheetNameCharacter(QChar c);
/// Whether programs use the name themselves: "History", in any letter case.
bool isReservedSheetName(const QString &name);

/// `name` with `suffix`, which is short, after it. The name is cut for both to have
/// kMaxSheetNameUnits, without half a surrogate pair. Other rules are not applied.
QString shortSheetName(const QString &name, const QString &suffix = {});
/// `name` cut, and with "_" in place of all that programs reject. It stays valid in
/// shortSheetName().
QString validSheetName(const QString &name);

} // namespace corvanta
