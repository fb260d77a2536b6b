#include "actions/read_stat/read_stat.h"
#include "actions/read_stat/read_stat_panel.h"

namespace corvanta {

namespace {

// Without saved graphs, dates are what users expect them to be.
constexpr FileFormat kFormats[] = {
    {FileFormat::Read, FileFormat::Statistics, "sas7bdat sav zsav por dta xpt xport xpt5 xpt8",
     "formatDates=1 fileNameColumn=_FileNames"},
};

} // namespace

const ActionEntry kReadStatEntry = {
    .typeName = "readStat",
    .description = "read SAS,SPSS or STATA dataset file",
    .helpPage = "5_2_8_sas__sas7bdat__spss__s",
    .icon = ":/WriteReport/readStat.png",
    .saveVersion = 2.08,
    .fileTypes = "SAS7BDAT DTA POR SAV",
    .tags = "Common",
    .keywords = "file import input load stata spss sas por dta sav sas7bdat read in",
    .pinsIn = 0,
    .pinsOut = 1,
    .maxPinsIn = 1,
    .makeAction = makeAction<ActionReadStat>,
    .makePanel = makePanel<Interface_ActionReadStat>,
    .formats = kFormats,
};

} // namespace corvanta
