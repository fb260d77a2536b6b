#include "actions/read_excel_old/read_excel_old.h"
#include "actions/read_excel_old/read_excel_old_panel.h"

namespace corvanta {

namespace {

constexpr FileFormat kFormats[] = {
    {FileFormat::Read, FileFormat::Workbook, "xls xlt", "", "scanRows=1000 sampleOnly=1"},
};

} // namespace

const ActionEntry kReadExcelOldEntry = {
    .typeName = "readExcelOld",
    .description = "Read an Old MS-Excel file",
    .helpPage = "5_2_33_read_the_old_excel_file_",
    .icon = ":/WriteReport/readXLS.svg",
    .saveVersion = 2.74,
    .fileTypes = "xls xlt",
    .tags = "Uncommon",
    .keywords = "file import input load office excel xls read in",
    .pinsIn = 0,
    .pinsOut = 1,
    .maxPinsIn = 1,
    .makeAction = makeAction<ActionReadExcelOld>,
    .makePanel = makePanel<Interface_ActionReadExcelOld>,
    .formats = kFormats,
};

} // namespace corvanta
