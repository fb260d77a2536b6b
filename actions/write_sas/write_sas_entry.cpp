#include "actions/write_sas/write_sas.h"
#include "actions/write_sas/write_sas_panel.h"

namespace corvanta {

namespace {

// Without settings: no parameter is off only because of saved graphs.
constexpr FileFormat kFormats[] = {
    {FileFormat::Write, FileFormat::Statistics, "sas7bdat"},
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
    // A run passes no rows on: it ends with an error before the first one.
    .pinsOut = 1,
    .makeAction = makeAction<ActionWriteSAS>,
    .makePanel = makePanel<Interface_ActionWriteSAS>,
    .formats = kFormats,
};

} // namespace corvanta
