// How an action finds the sheet of a workbook that it reads or changes.
#pragma once
#include "corvanta/params/param_table.h"

namespace corvanta {

/// Which of the two other parameters is used. Saved as its number.
enum class SheetSelection { ByNumber, ByName };

namespace shared {

/// The lines for P::sheetMode and P::sheetIdx. The number is a text, because it may contain
/// variables of the graph; it counts from 1. `modeMeaning` describes the choice in panels. Both are
/// used when `parameter` has one of `values`. The line of P::sheetName follows them; each action
/// declares it, because they use the name in different cases.
template <class P>
ParamGroup<P> sheetSelection(const char *modeMeaning, const char *parameter,
                             const QStringList &values)
{
    return {
        choice("sheetMode", &P::sheetMode,
               {{SheetSelection::ByNumber, "by number"}, {SheetSelection::ByName, "by name"}})
            .orAnyNumber("adds a sheet")
            .onlyWhen(parameter, values)
            .label("Select the sheet")
            .meaning(modeMeaning),
        text("sheetIdx", &P::sheetIdx)
            .wholeNumber(1, std::numeric_limits<int>::max())
            .otherwise("finds no sheet")
            .onlyWhen(parameter, values)
            .onlyWhen("sheetMode", {QStringLiteral("0")})
            .label("Sheet number")
            .meaning("Number of the sheet, from 1."),
    };
}

} // namespace shared

} // namespace corvanta
