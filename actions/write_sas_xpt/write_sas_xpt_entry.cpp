#include "actions/write_sas_xpt/write_sas_xpt.h"
#include "actions/write_sas_xpt/write_sas_xpt_panel.h"

namespace corvanta {

namespace {

// A table from any source has text columns without declared widths.
constexpr FileFormat kFormats[] = {
    {FileFormat::Write, FileFormat::Statistics, "xpt", "autoWidth=1"},
};

} // namespace

const ActionEntry kWriteSasXptEntry = {
    .typeName = "writeSASXPT",
    .description = "Create a SAS Export .xpt file",
    // The help page is that of writeSAS.
    .helpPage = "5_2_8_sas__sas7bdat__spss__s",
    .icon = ":/WriteReport/cdisc.svg",
    .saveVersion = 2.08,
    .tags = "Common",
    .keywords = "file export output save xpt sas xport write out",
    .pinsIn = 1,
    .pinsOut = 1,
    .makeAction = makeAction<ActionWriteSASXPT>,
    .makePanel = makePanel<Interface_ActionWriteSASXPT>,
    .formats = kFormats,
};

} // namespace corvanta
