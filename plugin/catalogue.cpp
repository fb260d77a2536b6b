#include "plugin/catalogue.h"

#include "panels/interface_actions.h"

#include <array>
#include <cstring>
#include <iterator>

namespace corvanta {

namespace {

constexpr auto kSasHelp = "5_2_8_sas__sas7bdat__spss__s";

QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(u' ', Qt::SkipEmptyParts);
}

using PanelMaker = UpdateClassWidget *(*)(QWidget *parent, ActionItem *action);

/// Owned by the caller, as the panel operation of an action says.
template <class Panel> UpdateClassWidget *panel(QWidget *parent, ActionItem *action)
{
    return new Panel(parent, action);
}

struct Row
{
    const char *typeName;
    const char *description;
    const char *helpPage;
    const char *icon;
    double saveVersion;
    const char *fileTypes;
    const char *tags;
    const char *keywords;
    int pinsIn;
    int pinsOut;
    int maxPinsIn;
    PanelMaker makePanel;
};

constexpr int kManyPins = 1000;

constexpr Row kRows[kActionCount] = {
    {"writeReport", "Create a chart into any MS-Office document", "5_27_10_ms_office_charts_report",
     ":/WriteReport/writeReport.svg", 2.08, "", "",
     "file export output save office .pptx .ppt .xlsx .xls .docx .doc chart write out", 1, 0,
     kManyPins, panel<Interface_ActionWriteReport>},
    {"readExcel", "Read a MS-Excel file", "5_2_9_excel_file_reader", ":/WriteReport/excel_read.svg",
     3.82, "xlsx xlsm", "Common", "file import input load office excel xlsx read in", 0, 1, 1,
     panel<Interface_ActionReadExcel>},
    {"readExcelOld", "Read an Old MS-Excel file", "5_2_33_read_the_old_excel_file_",
     ":/WriteReport/readXLS.svg", 2.74, "xls xlt", "Uncommon",
     "file import input load office excel xls read in", 0, 1, 1,
     panel<Interface_ActionReadExcelOld>},
    {"readExcelSheets", "Read Sheet Names from MS-Excel files(old&&new)",
     "5_2_32_read_sheets_metadata_fro", ":/WriteReport/excelsheet_read.svg", 2.35, "", "Uncommon",
     "sheet file import input load office excel xls xlsx read in", 0, 1, 1,
     panel<Interface_ActionReadExcelSheets>},
    {"writeExcel", "Create or update a MS-Excel file", "5_27_11_excel_file_writer",
     ":/WriteReport/excel_write.svg", 4.11, "", "",
     "file export output save office excel xls xlsx write out", 1, 1, 1,
     panel<Interface_ActionWriteExcel>},
    {"readStat", "read SAS,SPSS or STATA dataset file", kSasHelp, ":/WriteReport/readStat.png",
     2.08, "SAS7BDAT DTA POR SAV", "Common",
     "file import input load stata spss sas por dta sav sas7bdat read in", 0, 1, 1,
     panel<Interface_ActionReadStat>},
    {"readXML", "Read and Parse a multi-level XML file", "5_2_10_xml_html_file_reader",
     ":/WriteReport/xml_read.svg", 2.93, "xml html htm", "Common",
     "file import input load xml read in", 0, 1, 1, panel<Interface_ActionReadXML>},
    {"writeXML", "Create a multi-level XML file", "5_27_12_xml_file_writer",
     ":/WriteReport/xml_write.svg", 4.11, "", "",
     "file export output save level multi xml write out", 1, 1, 1, panel<Interface_ActionWriteXML>},
    {"readJSON", "Read and Parse a multi-level JSON file", "5_2_11_json_file_reader",
     ":/WriteReport/json.svg", 3.92, "json", "Common", "file import input load json read in", 0, 1,
     2, panel<Interface_ActionReadJSON>},
    {"writeJSON", "Create a multi-level JSON file", "5_27_13_json_file_writer",
     ":/WriteReport/writeJson.svg", 2.8, "", "",
     "file export output save level multi json write out", 1, 1, 1,
     panel<Interface_ActionWriteJSON>},
    {"ReadXBF", "Read a DBase,Paradox,FoxPro database file", "", ":/WriteReport/xbf.svg", 2.08,
     "dbf dbfs xbf db", "Uncommon",
     "dbf database import input load clipper foxpro paradox dbase db memo fpt dbt xbf read in", 0,
     1, 0, panel<Interface_ActionReadXBF>},
    {"readParquet", "Read a parquet file", "", ":/WriteReport/parquet_read.png", 2.08, "parquet",
     "Uncommon", "file import input load parquet read in", 0, 1, 2,
     panel<Interface_ActionReadParquet>},
    {"writeParquet", "Write a parquet file", "", ":/WriteReport/parquet_write.png", 2.08, "", "",
     "file export output save parquet write out", 1, 0, 1, panel<Interface_ActionWriteParquet>},
    {"writeSAS", "Create a .sas7bdat file", kSasHelp, ":/WriteReport/writeSAS.png", 2.08, "",
     "Common", "file export output save sas sas7bdat write out", 1, 1, 1,
     panel<Interface_ActionWriteSAS>},
    {"writeSASXPT", "Create a SAS Export .xpt file", kSasHelp, ":/WriteReport/cdisc.svg", 2.08, "",
     "Common", "file export output save xpt sas xport write out", 1, 1, 1,
     panel<Interface_ActionWriteSASXPT>},
    {"writeDoc", "Write some text or image into a .docx or .pptx document",
     "5_27_20_write_in_docx_and_pptx", ":/WriteReport/docxTxt.svg", 2.44, "", "",
     "text image jpeg jpg png .jpeg .jpg .png file export output save office .pptx .docx pptx docx "
     "write out",
     1, 0, 1, panel<Interface_ActionWriteDoc>},
    {"writeDocTable", "Write formatted Table(s) into a MS-Word document",
     "5_27_21_write_tables_in_docx", ":/WriteReport/docxTable.svg", 2.2, "", "180_Demo",
     "file export output save office .docx .doc write out", 1, 0, kManyPins,
     panel<Interface_ActionWriteDocTable>},
};

std::array<ActionDescription, kActionCount> makeDescriptions()
{
    std::array<ActionDescription, kActionCount> all;
    for (size_t i = 0; i < all.size(); ++i) {
        const Row &row = kRows[i];
        all[i] = {row.typeName,    row.description,      row.helpPage,    row.icon,
                  row.saveVersion, words(row.fileTypes), words(row.tags), words(row.keywords),
                  row.pinsIn,      row.pinsOut,          row.maxPinsIn,   row.makePanel};
    }
    return all;
}

} // namespace

const ActionDescription &catalogueRow(const char *typeName)
{
    static const std::array<ActionDescription, kActionCount> descriptions = makeDescriptions();
    for (const ActionDescription &description : descriptions) {
        if (std::strcmp(description.typeName, typeName) == 0) {
            return description;
        }
    }
    std::abort(); // only our own constructors ask
}

} // namespace corvanta
