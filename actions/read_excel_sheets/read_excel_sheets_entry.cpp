#include "actions/read_excel_sheets/read_excel_sheets.h"
#include "actions/read_excel_sheets/read_excel_sheets_panel.h"

namespace corvanta {

const ActionEntry kReadExcelSheetsEntry = {
    .typeName = "readExcelSheets",
    .description = "Read Sheet Names from MS-Excel files(old&&new)",
    .helpPage = "5_2_32_read_sheets_metadata_fro",
    .icon = ":/WriteReport/excelsheet_read.svg",
    .saveVersion = 2.35,
    .tags = "Uncommon",
    .keywords = "sheet file import input load office excel xls xlsx read in",
    .pinsIn = 0,
    .pinsOut = 1,
    .maxPinsIn = 1,
    .makeAction = makeAction<ActionReadExcelSheets>,
    .makePanel = makePanel<Interface_ActionReadExcelSheets>,
};

} // namespace corvanta
