#include "actions/read_excel/read_excel.h"
#include "actions/read_excel/read_excel_panel.h"

namespace corvanta {

namespace {

constexpr FileFormat kFormats[] = {
    {FileFormat::Read, FileFormat::Workbook, "xlsx xlsm", "", "scanRows=1000 sampleOnly=1"},
};

} // namespace

const ActionEntry kReadExcelEntry = {
    .typeName = "readExcel",
    .description = "Read a MS-Excel file",
    .helpPage = "5_2_9_excel_file_reader",
    .icon = ":/WriteReport/excel_read.svg",
    .saveVersion = 3.82,
    .fileTypes = "xlsx xlsm",
    .tags = "Common",
    .keywords = "file import input load office excel xlsx read in",
    .pinsIn = 0,
    .pinsOut = 1,
    .maxPinsIn = 1,
    .makeAction = makeAction<ActionReadExcel>,
    .makePanel = makePanel<Interface_ActionReadExcel>,
    .formats = kFormats,
};

} // namespace corvanta
