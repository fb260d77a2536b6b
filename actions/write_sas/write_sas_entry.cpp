#include "actions/write_sas/write_sas.h"
#include "actions/write_sas/write_sas_panel.h"

namespace corvanta {

namespace {

// A table from any source has text columns without declared widths, and names that SAS does not
// accept.
constexpr FileFormat kFormats[] = {
    {FileFormat::Write, FileFormat::Statistics, "sas7bdat", "columnNameMode=3 autoWidth=1"},
};

} // namespace

const ActionEntry kWriteSasEntry = {
    .typeName = "writeSAS",
    .description = "Create a .sas7bdat file",
    .helpPage = "5_2_8_sas__sas7bdat__spss__s",
    .icon = ":/WriteReport/writeSAS.png",
    .saveVersion = 2.08,
    .tags = "Common",
    .keywords = "file export output save sas sas7bdat write out",
    .pinsIn = 1,
    .pinsOut = 1,
    .makeAction = makeAction<ActionWriteSAS>,
    .makePanel = makePanel<Interface_ActionWriteSAS>,
    .formats = kFormats,
};

} // namespace corvanta
