// The actions that saved graphs and hosts rely on, with the values that must not change.
#pragma once
#include <iterator>

/// What hosts and saved graphs depend on: fixed values, written here again on purpose, so that a
/// change of an action's entry cannot go unnoticed. All other checks loop over the module's
/// actions.
struct Row
{
    const char *type;
    const char *helpPage;
    const char *fileTypes;
    const char *tags;
    const char *panel;
    int maxPinsIn;
    int pinsOut;
    const char *savedDefaults;
};

/// The actions that saved graphs and hosts rely on. Later ones follow them and need no row here.
inline constexpr Row kRows[] = {
    {"writeReport", "5_27_10_ms_office_charts_report", "", "", "Interface_ActionWriteReport", 1000,
     0, "<writeReport version='2.08' nPinIn='1' output='' template=''/>\n"},
    {"readExcel", "5_2_9_excel_file_reader", "xlsx xlsm", "Common", "Interface_ActionReadExcel", 1,
     1, "<readExcel version='3.82' fileName=''/>\n"},
    {"readExcelOld", "5_2_33_read_the_old_excel_file_", "xls xlt", "Uncommon",
     "Interface_ActionReadExcelOld", 1, 1, "<readExcelOld version='2.74' fileName=''/>\n"},
    {"readExcelSheets", "5_2_32_read_sheets_metadata_fro", "", "Uncommon",
     "Interface_ActionReadExcelSheets", 1, 1, "<readExcelSheets version='2.35' fileName=''/>\n"},
    {"writeExcel", "5_27_11_excel_file_writer", "", "", "Interface_ActionWriteExcel", 1, 1,
     "<writeExcel version='4.11'/>\n"},
    {"readStat", "5_2_8_sas__sas7bdat__spss__s", "SAS7BDAT DTA POR SAV", "Common",
     "Interface_ActionReadStat", 1, 1, "<readStat version='2.08' fileName=''/>\n"},
    {"readXML", "5_2_10_xml_html_file_reader", "xml html htm", "Common", "Interface_ActionReadXML",
     1, 1, "<readXML version='2.93' fileName=''/>\n"},
    {"writeXML", "5_27_12_xml_file_writer", "", "", "Interface_ActionWriteXML", 1, 1,
     "<writeXML version='4.11'>\n  <Prefix>&lt;data&gt;</Prefix>\n  "
     "<Suffix>&lt;/data&gt;</Suffix>\n</writeXML>\n"},
    {"readJSON", "5_2_11_json_file_reader", "json", "Common", "Interface_ActionReadJSON", 2, 1,
     "<readJSON version='3.92' fileName=''/>\n"},
    {"writeJSON", "5_27_13_json_file_writer", "", "", "Interface_ActionWriteJSON", 1, 1,
     "<writeJSON version='2.8'>\n  <Prefix>[</Prefix>\n  <Suffix>]</Suffix>\n</writeJSON>\n"},
    {"ReadXBF", "", "dbf dbfs xbf db", "Uncommon", "Interface_ActionReadXBF", 0, 1,
     "<ReadXBF version='2.08'/>\n"},
    {"readParquet", "", "parquet", "Uncommon", "Interface_ActionReadParquet", 2, 1,
     "<readParquet version='2.08' fileName=''/>\n"},
    {"writeParquet", "", "", "", "Interface_ActionWriteParquet", 1, 0,
     "<writeParquet version='2.08' pageSize='64' rowGroupSize='50' keyStorage='2' split='0' "
     "segmentSize='100' "
     "splitVar='' testCol='' testValue='' file=''/>\n"},
    {"writeSAS", "5_2_8_sas__sas7bdat__spss__s", "", "Common", "Interface_ActionWriteSAS", 1, 1,
     "<writeSAS version='2.08'/>\n"},
    {"writeSASXPT", "5_2_8_sas__sas7bdat__spss__s", "", "Common", "Interface_ActionWriteSASXPT", 1,
     1, "<writeSASXPT version='2.08'/>\n"},
    {"writeDoc", "5_27_20_write_in_docx_and_pptx", "", "", "Interface_ActionWriteDoc", 1, 0,
     "<writeDoc version='2.44' output='wordFile' template='templateFile'>\n  <text></text>\n  "
     "<image></image>\n</writeDoc>\n"},
    {"writeDocTable", "5_27_21_write_tables_in_docx", "", "180_Demo",
     "Interface_ActionWriteDocTable", 1000, 0, "<writeDocTable version='2.2'/>\n"},
};

inline constexpr int kFixedActions = std::size(kRows);
