// How an action finds the sheet of a workbook that it reads or changes.
#pragma once
#include "corvanta/params/param_table.h"

namespace corvanta {

/// Which of the two other parameters is used. Saved as its number.
enum class SheetSelection { ByNumber, ByName };

namespace shared {

/// The lines for P::sheetMode, P::sheetIdx and P::sheetName. The number is a text, because it may
/// contain variables of the graph; it counts from 1. `modeMeaning` and `nameMeaning` describe the
/// parameters in panels.
template <class P> ParamGroup<P> sheetSelection(const char *modeMeaning, const char *nameMeaning)
{
    return {
        choice("sheetMode", &P::sheetMode,
               {{SheetSelection::ByNumber, "by number"}, {SheetSelection::ByName, "by name"}})
            .orAnyNumber("adds a sheet")
            .label("Select the sheet")
            .meaning(modeMeaning),
        text("sheetIdx", &P::sheetIdx)
            .wholeNumber(1, std::numeric_limits<int>::max())
            .otherwise("finds no sheet")
            .label("Sheet number")
            .meaning("Number of the sheet, from 1."),
        text("sheetName", &P::sheetName).expanded().label("Sheet name").meaning(nameMeaning),
    };
}

} // namespace shared

} // namespace corvanta
