#include "actions/read_json/read_json.h"
#include "actions/read_json/read_json_panel.h"

namespace corvanta {

namespace {

// In "convert" no user corrects the levels, so that more records are examined to find them.
constexpr FileFormat kFormats[] = {
    {FileFormat::Read, FileFormat::Json, "json jsonl ndjson geojson",
     "autoFillNRows=10000 nullIsMissing=1"},
};

} // namespace

const ActionEntry kReadJsonEntry = {
    .typeName = "readJSON",
    .description = "Read and Parse a multi-level JSON file",
    .helpPage = "5_2_11_json_file_reader",
    .icon = ":/WriteReport/json.svg",
    .saveVersion = 3.92,
    .fileTypes = "json",
    .tags = "Common",
    .keywords = "file import input load json read in",
    .pinsIn = 0,
    .pinsOut = 1,
    .maxPinsIn = 2,
    .makeAction = makeAction<ActionReadJSON>,
    .makePanel = makePanel<Interface_ActionReadJSON>,
    .formats = kFormats,
};

} // namespace corvanta
