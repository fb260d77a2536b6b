// How an action finds the sheet of a workbook that it reads or changes.
#pragma once
#include "corvanta/params/param_table.h"

namespace corvanta {

/// Which of the two other parameters is used. Saved as its number.
enum class SheetSelection { ByNumber, ByName };

namespace shared {

/// Name of the parameter P::sheetName, for problems with it.
inline constexpr char kSheetName[] = "sheetName";

// The lines for P::sheetMode and P::sheetIdx. They are used when `parameter` has one of `values`.
// The line of P::sheetName follows them; each action declares it, because they use the name in
// different cases.

/// `meaning` describes the choice in panels.
template <class P>
Param<P> sheetMode(const char *meaning, const char *parameter, const QStringList &values)
{
    return choice("sheetMode", &P::sheetMode,
                  {{SheetSelection::ByNumber, "by number"}, {SheetSelection::ByName, "by name"}})
        .onlyWhen(parameter, values)
        .label("Select the sheet")
        .meaning(meaning);
}

/// The number is a text, because it may contain variables of the graph. It counts from 1.
template <class P> Param<P> sheetIdx(const char *parameter, const QStringList &values)
{
    return text("sheetIdx", &P::sheetIdx)
        .wholeNumber(1, std::numeric_limits<int>::max())
        .otherwise("finds no sheet")
        .onlyWhen(parameter, values)
        .onlyWhen("sheetMode", {QStringLiteral("0")})
        .label("Sheet number")
        .meaning("Number of the sheet, from 1.");
}

} // namespace shared

} // namespace corvanta
