#include "actions/write_csv/write_csv.h"
#include "actions/write_csv/write_csv_panel.h"

namespace corvanta {

namespace {

constexpr FileFormat kFormats[] = {
    {FileFormat::Write, FileFormat::SeparatedText, "csv txt"},
    {FileFormat::Write, FileFormat::SeparatedText, "tsv tab", "separator=\\t"},
};

} // namespace

const ActionEntry kWriteCsvEntry = {
    .typeName = "writeCSV",
    .description = "Writes a text file with separators",
    .icon = ":/Tables/writeCSV.svg",
    .tags = "Common",
    .keywords = "file export output save csv text write out",
    .makeAction = makeAction<ActionWriteCsv>,
    .makePanel = makePanel<Interface_ActionWriteCSV>,
    .formats = kFormats,
};

} // namespace corvanta
