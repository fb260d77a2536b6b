#include "actions/write_json/write_json.h"
#include "actions/write_json/write_json_panel.h"

namespace corvanta {

namespace {

// An empty floatToString gives the fewest digits that read back as the same number, escapeControls
// makes the file valid JSON for all texts, and alwaysWrite gives a table without rows an empty
// array. Missing values are null, so that all objects have the same members. The level of the
// second line writes one object per line; its words are separated by tabs, because blanks separate
// settings.
constexpr FileFormat kFormats[] = {
    {FileFormat::Write, FileFormat::Json, "json",
     "floatToString= escapeControls=1 alwaysWrite=1 nullString=0 nullNumber=0"},
    {FileFormat::Write, FileFormat::Json, "jsonl ndjson",
     "floatToString= escapeControls=1 alwaysWrite=1 nullString=0 nullNumber=0 Prefix= Suffix= "
     "Levels=<Levels><Level\tcommaSeparated='0'><Item\ttype='0'\ttext='{'/><Item\ttype='1'/>"
     "<Item\ttype='0'\ttext='}&#10;'/></Level></Levels>"},
};

} // namespace

const ActionEntry kWriteJsonEntry = {
    .typeName = "writeJSON",
    .description = "Create a multi-level JSON file",
    .helpPage = "5_27_13_json_file_writer",
    .icon = ":/WriteReport/writeJson.svg",
    .saveVersion = 2.8,
    .keywords = "file export output save level multi json write out",
    .pinsIn = 1,
    .pinsOut = 1, // every input row, written or not
    .makeAction = makeAction<ActionWriteJSON>,
    .makePanel = makePanel<Interface_ActionWriteJSON>,
    .formats = kFormats,
};

} // namespace corvanta
