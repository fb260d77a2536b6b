#include "actions/write_excel/write_excel.h"
#include "actions/write_excel/write_excel_panel.h"

namespace corvanta {

namespace {

// An empty floatToString gives the fewest digits that read back as the same number; alwaysWrite
// gives a table without rows a workbook with its header row; isoDates reads the dates of ToDate
// without a format, and dateWidths shows them. The others make the sheet ready for reading.
constexpr FileFormat kFormats[] = {
    {FileFormat::Write, FileFormat::Workbook, "xlsx",
     "floatToString= alwaysWrite=1 isoDates=1 dateWidths=1 headerStyle=bold,fill freezeHeader=1 "
     "autoFilter=1 columnWidths=auto"},
};

} // namespace

const ActionEntry kWriteExcelEntry = {
    .typeName = "writeExcel",
    .description = "Create or update a MS-Excel file",
    .helpPage = "5_27_11_excel_file_writer",
    .icon = ":/WriteReport/excel_write.svg",
    .saveVersion = 4.11,
    .keywords = "file export output save office excel xls xlsx write out",
    .pinsIn = 1,
    .pinsOut = 1, // every input row, written or not
    .makeAction = makeAction<ActionWriteExcel>,
    .makePanel = makePanel<Interface_ActionWriteExcel>,
    .formats = kFormats,
};

} // namespace corvanta
