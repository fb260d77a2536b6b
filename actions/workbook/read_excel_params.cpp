// The table of parameters: names as saved graphs have them, texts as panels and help show them.
#include "actions/workbook/read_excel_params.h"

#include "actions/shared/params/reader_params.h"

namespace corvanta {

namespace {

using P = ReadExcelParams;

/// Sheets beyond the one of sheetMode.
ParamGroup<P> moreSheets()
{
    return {
        choice("sheets", &P::sheets,
               {{SheetChoice::Selected, "the selected sheet"},
                {SheetChoice::FirstWithData, "the first sheet with data"},
                {SheetChoice::Matching, "all sheets whose name matches the pattern"},
                {SheetChoice::All, "all sheets"}})
            .otherwise("reads the selected sheet")
            .label("Sheets")
            .meaning("Which sheets are read. A pattern is the sheet name with * and ?."),
        flag("skipHiddenSheets", &P::skipHiddenSheets)
            .ignoredWhen("sheets", {QStringLiteral("0")})
            .label("Skip hidden sheets")
            .meaning("Leaves hidden sheets out when several sheets or the first one with data are "
                     "read."),
        flag("outputSheetNames", &P::outputSheetNames)
            .onlyWhen("sheets", {QStringLiteral("0"), QStringLiteral("1")})
            .label("Add a column with the sheet name")
            .meaning("Adds the column _SheetName. Several sheets have it in any case."),
    };
}

/// Which cells are read.
ParamGroup<P> cells()
{
    return {
        text("range", &P::range)
            .expanded()
            .label("Range")
            .meaning("Cells such as B2:D9, B2: (to the end), A:C or 3:10, or the name of a table "
                     "or of a defined name. Empty: all cells."),
        number("skipRows", &P::skipRows)
            .range(0, 1048576)
            .unit("rows")
            .label("Rows to skip")
            .meaning("Rows at the beginning that are not read, before the column names."),
        choice("emptyRows", &P::emptyRows,
               {{EmptyRows::Keep, "keep them"},
                {EmptyRows::Skip, "skip them"},
                {EmptyRows::Stop, "stop at the first one"}})
            .otherwise("keeps them")
            .label("Empty rows")
            .meaning("What happens to rows without a cell between others."),
        flag("fillMerged", &P::fillMerged)
            .label("Fill merged cells")
            .meaning("All cells of a merged range have its value. Off: only the first one has it."),
        flag("skipHiddenRows", &P::skipHiddenRows)
            .label("Skip hidden rows")
            .meaning("Leaves hidden rows out."),
        flag("skipHiddenColumns", &P::skipHiddenColumns)
            .label("Skip hidden columns")
            .meaning("Leaves hidden columns out."),
    };
}

/// What becomes of values.
ParamGroup<P> values()
{
    return {
        flag("allText", &P::allText)
            .label("All columns are texts")
            .meaning("Reads all columns as texts. Off: the cells decide the types."),
        number("scanRows", &P::scanRows)
            .range(0, 1048576)
            .lowMeans("all rows")
            .unit("rows")
            .ignoredWhen("allText", {QStringLiteral("1")})
            .label("Rows that decide types")
            .meaning("Rows with cells that decide whether a column has numbers or texts; 0: all. A "
                     "number "
                     "column becomes a text column when a later row has a text, with a warning."),
        flag("sampleOnly", &P::sampleOnly)
            .ignoredWhen("allText", {QStringLiteral("1")})
            .ignoredWhen("scanRows", {QStringLiteral("0")})
            .label("Do not check later rows")
            .meaning("Reads only the rows of scanRows to decide types, so that the first rows "
                     "arrive early. A later cell that does not fit is an error."),
        choice("dates", &P::dates,
               {{DateCells::IsoText, "ISO 8601 texts"}, {DateCells::Serials, "serial numbers"}})
            .otherwise("reads ISO 8601 texts")
            .label("Dates")
            .meaning("How dates are read: as texts such as 2024-02-29, or as the numbers of days "
                     "that the workbook stores."),
        choice("errorCells", &P::errorCells,
               {{ErrorCells::Text, "texts"}, {ErrorCells::Missing, "missing"}})
            .otherwise("reads texts")
            .label("Cells with errors")
            .meaning("How cells such as #N/A are read: as texts, or as missing values with a "
                     "warning."),
    };
}

} // namespace

const ParamTable<ReadExcelParams> &readExcelParamTable()
{
    // The order is that of saved graphs.
    static const ParamTable<P> table{
        shared::fileNamesFromPin<P>(),
        shared::sheetMode<P>("Whether sheetIdx or sheetName selects the sheet.", "sheets",
                             {QStringLiteral("0")})
            .otherwise("reads the sheet of sheetIdx"),
        shared::sheetIdx<P>("sheets", {QStringLiteral("0")}),
        text(shared::kSheetName, &P::sheetName)
            .expanded()
            .onlyWhen("sheets", {QStringLiteral("0"), QStringLiteral("2")})
            .onlyWhen("sheetMode", {QStringLiteral("1")})
            .orWhen("sheets", {QStringLiteral("2")})
            .label("Sheet name")
            .meaning("Name of the sheet."),
        flag("firstLineContainsColumnNames", &P::firstLineContainsColumnNames)
            .label("The first row holds the column names")
            .meaning("Reads the column names from the first row. Off: columns are named after "
                     "their letters."),
        shared::outputFilenames<P>(),
        shared::abortIfMissing<P>(),
        moreSheets(),
        cells(),
        values(),
        flag("unionByName", &P::unionByName)
            .label("Join columns by name")
            .meaning("Joins the columns of several sheets or files by name. Off: all must have the "
                     "same columns."),
        shared::timeOut<P>(),
        shared::fileName<P>("Workbook to read, or a pattern such as *.xlsx."),
    };
    return table;
}

} // namespace corvanta
