#include "actions/write_excel/write_excel_params.h"

#include "actions/shared/params/writer_params.h"

// The lines are in the order of saved graphs. A group is a run of neighbouring lines, so a few
// groups mix subjects: new lines may be added anywhere, but saved ones keep their order.
namespace corvanta {

namespace {

using P = WriteExcelParams;

/// What is written, and which files that involves.
ParamGroup<P> workbooks()
{
    return {
        choice(
            "mode", &P::mode,
            {{WorkbookMode::Create, "Create a new Excel File (or overwrite an existing file)"},
             {WorkbookMode::AddSheet, "Update an existing File by adding a new Sheet"},
             {WorkbookMode::ChangeSheet, "Update an existing File by changing an existing Sheet"},
             {WorkbookMode::CopyAndAddSheet, "Copy and update the duplicate by adding a new Sheet"},
             {WorkbookMode::CopyAndChangeSheet,
              "Copy and update the duplicate by changing an existing Sheet"}})
            .otherwise("creates a new workbook")
            .label("What to do")
            .meaning("Whether a new workbook is written, or an existing one is updated in place or "
                     "as a copy."),
        text("fileNameSource", &P::fileNameSource)
            .inputFile()
            .requiredWhen("mode", {QStringLiteral("3"), QStringLiteral("4")})
            .label("Workbook to copy")
            .meaning("Workbook that modes 3 and 4 read; it is not changed."),
        text("fileNameDestination", &P::fileNameDestination)
            .outputFile()
            .required()
            .label("Workbook to write")
            .meaning("Workbook that is written; modes 1 and 2 read it first."),
    };
}

/// Which sheet is written.
ParamGroup<P> sheetChoice()
{
    const QStringList changed{QStringLiteral("2"), QStringLiteral("4")};
    return {
        shared::sheetMode<P>("How modes 2 and 4 find the sheet to change: by sheetIdx or by "
                             "sheetName. Any other value adds a sheet.",
                             "mode", changed)
            .orAnyNumber("adds a sheet"),
        shared::sheetIdx<P>("mode", changed),
        text(shared::kSheetName, &P::sheetName)
            .role(ParameterInfo::Role::SheetName)
            .expanded()
            .label("Sheet name")
            .meaning("Name of the new sheet or of the sheet to change."),
    };
}

/// Where in the sheet the rows go, and the defined name for their cells.
ParamGroup<P> cellRange()
{
    return {
        text("startRow", &P::startRow)
            .onlyWhen("mode", {QStringLiteral("2"), QStringLiteral("4")})
            .wholeNumber(0, std::numeric_limits<int>::max())
            .otherwise(
                "uses the whole part of a number from 1, at most 2147483647; else it appends "
                "after the last row")
            .label("Overwrite sheet content starting at row:\n(use \"0\" to append rows at the end "
                   "of the sheet)")
            .meaning("First row that modes 2 and 4 overwrite; 0 appends after the last row."),
        text(kNamedRange, &P::namedRange)
            .label("Defined name")
            .meaning("Name given to the cells that are written; empty for none."),
        flag("nrIncludeTitleRow", &P::nrIncludeTitleRow)
            .ignoredWhen(kNamedRange, {QString()})
            .label("The defined name includes the header row")
            .meaning("The cells of the defined name include the header row. Default on in graphs "
                     "saved by version 2.56 or older."),
    };
}

/// What the sheet holds apart from the format of its cells.
ParamGroup<P> sheetContent()
{
    return {
        flag("firstLineContainsColumnNames", &P::firstLineContainsColumnNames)
            .label("Write the column names")
            .meaning("Writes a header row with the column names."),
        flag("noNans", &P::noNans)
            .label("Leave cells of NaN and infinite numbers empty")
            .meaning("Leaves cells of NaN and infinite numbers empty. Off: they are written as the "
                     "texts nan, inf and -inf."),
        flag("useComma", &P::useComma)
            .label("Decimal comma (without effect)")
            .meaning("Saved with the graph; has no effect on the cells."),
        flag<P>("createDir", &P::createDir)
            .role(ParameterInfo::Role::CreateFolder)
            .label("Create the folder of the workbook")
            .meaning("Creates missing folders of a new workbook."),
        flag("alwaysWrite", &P::alwaysWrite)
            .label("Write a workbook even without rows")
            .meaning("Writes the sheet with its header row even when there is no row."),
    };
}

/// What becomes of single cells, and what happens to the finished workbook.
ParamGroup<P> cellForms()
{
    return {
        flag("equalisFormula", &P::equalisFormula)
            .label("Texts that start with \"=\" are formulas")
            .meaning(
                "Text cells that start with \"=\" are written as formulas, in all text columns."),
        flag("runExcel", &P::runExcel)
            .label("Recompute and save the workbook with the spreadsheet application")
            .meaning(
                "Opens and saves the written workbook with the installed spreadsheet application."),
        flag("excelHack", &P::excelHack)
            .label("Dates before March 1900 as the spreadsheet counts them")
            .meaning("Date serials below 61 are decreased by one. Default off in graphs saved "
                     "before version 3.04."),
        flag("urlTag", &P::urlTag)
            .label("URL(\"label\",\"url\") is a hyperlink")
            .meaning(
                "Text cells of the form URL(\"label\",\"url\") or URL(\"url\") become hyperlinks."),
        flag("crop", &P::crop)
            .label("Truncate cells to fewer than 32768 characters")
            .meaning("Truncates longer cells to fewer than 32768 characters. Off: they are written "
                     "whole, "
                     "with a warning."),
    };
}

/// How the texts of date columns are read.
ParamGroup<P> dateInput()
{
    return {
        choice("dateFormatType", &P::dateFormatType,
               {{DateInput::Own, "own format"},
                {DateInput::SystemShortDate, "system short date"},
                {DateInput::SystemLongDate, "system long date"},
                {DateInput::SystemShortTime, "system short time"},
                {DateInput::SystemLongTime, "system long time"},
                {DateInput::SystemShortDateTime, "system short date and time"},
                {DateInput::SystemLongDateTime, "system long date and time"}})
            .otherwise("reads no dates")
            .ignoredWhen(shared::kToDate, {QString()})
            .label("Format of the dates in the table")
            .meaning("How the texts of the ToDate columns are read."),
        text(kDateFormat, &P::dateFormat)
            .ignoredWhen(shared::kToDate, {QString()})
            .onlyWhen("dateFormatType", {QStringLiteral("0")})
            .expanded()
            .label("Own date format")
            .meaning("Format of the dates, for example yyyy-MM-dd or dd/MM/yyyy hh:mm:ss."),
        flag("isoDates", &P::isoDates)
            .ignoredWhen(shared::kToDate, {QString()})
            .onlyWhen("dateFormatType", {QStringLiteral("0")})
            .onlyWhen(kDateFormat, {QString()})
            .label("Without a format, read ISO 8601 dates")
            .meaning("With an empty dateFormat, reads dates such as 2024-02-29 and "
                     "2024-02-29T12:30:00. Off: no text is a date then."),
        flag("keepOddDates", &P::keepOddDates)
            .ignoredWhen(shared::kToDate, {QString()})
            .label("Keep texts that are not dates")
            .meaning("Texts in ToDate columns that are not dates, or before 1900, are written as "
                     "texts. Off: their cells are empty, with a warning."),
    };
}

/// How new sheets look.
ParamGroup<P> look()
{
    const QStringList header{QStringLiteral("1")};
    return {
        text(kHeaderStyle, &P::headerStyle)
            .onlyWhen("firstLineContainsColumnNames", header)
            .label("Style of the header row")
            .meaning("Style of the header row in new sheets: bold, fill (a light blue background), "
                     "or bold,fill for both, which is also what 1 means. Empty: no style."),
        flag("freezeHeader", &P::freezeHeader)
            .onlyWhen("firstLineContainsColumnNames", header)
            .label("Keep the header row visible")
            .meaning("The header row of new sheets stays visible when the sheet is scrolled."),
        flag("autoFilter", &P::autoFilter)
            .onlyWhen("firstLineContainsColumnNames", header)
            .label("Filter buttons in the header row")
            .meaning("The header cells of new sheets have buttons that sort and filter the rows."),
        text(kColumnWidths, &P::columnWidths)
            .label("Column widths")
            .meaning("Widths of the columns in new sheets: auto, from the header and the first "
                     "1,000 rows, or numbers of digits in column order, separated by commas, for "
                     "example 12,,30. A column without a number has the default width."),
        text(kOverflow, &P::overflow)
            .label("After the last row of a sheet")
            .meaning("newSheet: rows after row 1,048,576 are written to further sheets. Empty: "
                     "they are written to the same sheet, which spreadsheet programs cannot "
                     "open."),
    };
}

/// How a spreadsheet program shows the date cells.
Param<P> dateDisplay()
{
    return choice("dateFormatExcel", &P::dateFormatExcel,
                  {{DateDisplay::Date, "yyyy-MM-dd"},
                   {DateDisplay::DateMinutes, "yyyy-MM-dd h:mm"},
                   {DateDisplay::DateSeconds, "yyyy-MM-dd h:mm:ss"},
                   {DateDisplay::SystemDateTime, "system date and time, short"},
                   {DateDisplay::SystemDate, "system date, short"},
                   {DateDisplay::DayMonthYear, "d-MMM-yy"},
                   {DateDisplay::DayMonth, "d-MMM"},
                   {DateDisplay::MonthYear, "MMM-yy"},
                   {DateDisplay::Minutes12, "h:mm AM/PM"},
                   {DateDisplay::Seconds12, "h:mm:ss AM/PM"},
                   {DateDisplay::Minutes24, "h:mm"},
                   {DateDisplay::Seconds24, "h:mm:ss"}})
        .range(0, static_cast<int>(DateDisplay::Seconds24))
        .ignoredWhen(shared::kToDate, {QString()})
        .label("Display of date cells")
        .meaning("Number format of the date cells in the sheet.");
}

/// Which columns are written as other than their cells say. All are child elements.
ParamGroup<P> columnKinds()
{
    return {
        strings(shared::kToDate, &P::toDate)
            .label("Date columns")
            .meaning("Text columns that are written as dates."),
        strings(shared::kToDateTime, &P::toDateTime)
            .label("Columns of dates with times")
            .meaning("Text columns of ISO 8601 dates, with or without times, that are written as "
                     "dates. Other texts stay texts."),
        strings(shared::kToTime, &P::toTime)
            .label("Columns of times")
            .meaning("Text columns of times of day, such as 04:30:05, that are written as times. "
                     "Other texts stay texts."),
        strings(shared::kToBoolean, &P::toBoolean)
            .label("Boolean columns")
            .meaning("Text columns whose texts true and false, in any letter case, are written as "
                     "booleans. Other texts stay texts."),
        strings(kToFormula, &P::toFormula)
            .label("Formula columns")
            .meaning("Text columns that are written as formulas."),
        strings(kColumnFormats, &P::columnFormats)
            .label("Number formats of columns")
            .meaning("Number formats of columns in new sheets, each as COLUMN=FORMAT, for example "
                     "price=#,##0.00 or day=dd/mm/yyyy."),
    };
}

} // namespace

void adjustWriteExcelDefaults(WriteExcelParams &params, double savedVersion)
{
    // Saved graphs do not hold defaults, so a changed default depends on the version that saved.
    constexpr double kTitleRowLeftOutSince = 2.56;
    constexpr double kDateHackSince = 3.04;
    params.nrIncludeTitleRow = savedVersion <= kTitleRowLeftOutSince;
    params.excelHack = savedVersion >= kDateHackSince;
}

const ParamTable<WriteExcelParams> &writeExcelParamTable()
{
    static const ParamTable<P> table{
        workbooks(),
        sheetChoice(),
        cellRange(),
        shared::floatToString<P>(),
        flag("createIfNotExists", &P::createIfNotExists)
            .role(ParameterInfo::Role::CreateFile)
            .ignoredWhen("mode", {QStringLiteral("0")})
            .label("Create the Excel file and/or the Excel Sheet if it does not exists")
            .meaning("Creates a missing workbook or sheet. Off: it is an error."),
        shared::checkNameCollision<P>(),
        flag("forceRecompute", &P::forceRecompute)
            .ignoredWhen("mode", {QStringLiteral("0")})
            .label("Recompute formulas when the workbook is opened")
            .meaning("Marks an updated workbook for a full calculation on load."),
        shared::writeAllColumns<P>(
            "Writes every column. Off: only the columns of ToWrite, in that order."),
        sheetContent(),
        cellForms(),
        dateInput(),
        dateDisplay(),
        flag("dateWidths", &P::dateWidths)
            .ignoredWhen(shared::kToDate, {QString()})
            .orUnless(shared::kToDateTime, {QString()})
            .orUnless(shared::kToTime, {QString()})
            .ignoredWhen("columnWidths", {QStringLiteral("auto")})
            .label("Wide date columns in a new sheet")
            .meaning("Date columns of a new sheet are wide enough for their format. Off: they have "
                     "the default width, in which most programs show ### instead of a date."),
        look(),
        flag("keepStyles", &P::keepStyles)
            .onlyWhen("mode", {QStringLiteral("2"), QStringLiteral("4")})
            .label("Appended rows look like the last row")
            .meaning("Appended rows get the cell formats of the last row of the sheet, if it is "
                     "not its only row. Date columns keep their own format where that of the row "
                     "shows no dates."),
        shared::testCol<P>(),
        shared::testValue<P>(),
        shared::writeAllRows<P>(),
        shared::lockTimeOut<P>(),
        // Child elements come after all attributes.
        shared::columnsToWrite<P>("ToWrite").required(),
        columnKinds(),
    };
    return table;
}

} // namespace corvanta
