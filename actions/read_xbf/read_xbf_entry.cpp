#include "actions/read_xbf/read_xbf.h"
#include "actions/read_xbf/read_xbf_panel.h"

namespace corvanta {

namespace {

constexpr FileFormat kFormats[] = {
    {FileFormat::Read, FileFormat::Database, "dbf", "readAllTypes=1 declaredEncoding=1"},
};

} // namespace

const ActionEntry kReadXbfEntry = {
    .typeName = "ReadXBF",
    .description = "Read a DBase,Paradox,FoxPro database file",
    .icon = ":/WriteReport/xbf.svg",
    .saveVersion = 2.08,
    .fileTypes = "dbf dbfs xbf db",
    .tags = "Uncommon",
    .keywords =
        "dbf database import input load clipper foxpro paradox dbase db memo fpt dbt xbf read in",
    .pinsIn = 0,
    .pinsOut = 1,
    .makeAction = makeAction<ActionReadXBF>,
    .makePanel = makePanel<Interface_ActionReadXBF>,
    .formats = kFormats,
};

} // namespace corvanta
