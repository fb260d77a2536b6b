#include "actions/read_csv/read_csv.h"
#include "actions/read_csv/read_csv_panel.h"

namespace corvanta {

namespace {

constexpr FileFormat kFormats[] = {
    {FileFormat::Read, FileFormat::SeparatedText, "csv txt",
     "separator=auto encoding=auto lineEnd=auto"},
    {FileFormat::Read, FileFormat::SeparatedText, "tsv tab",
     "separator=\\t encoding=auto lineEnd=auto"},
};

} // namespace

const ActionEntry kReadCsvEntry = {
    .typeName = "readCSV",
    .description = "Reads a text file with separators",
    .icon = ":/Tables/readCSV.svg",
    .fileTypes = "csv tsv txt",
    .tags = "Common",
    .keywords = "file import input load csv text read in",
    .pinsIn = 0,
    .maxPinsIn = 1,
    .makeAction = makeAction<ActionReadCsv>,
    .makePanel = makePanel<Interface_ActionReadCSV>,
    .formats = kFormats,
};

} // namespace corvanta
