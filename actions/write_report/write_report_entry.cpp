#include "actions/write_report/write_report.h"
#include "actions/write_report/write_report_panel.h"

namespace corvanta {

const ActionEntry kWriteReportEntry = {
    .typeName = "writeReport",
    .description = "Create a chart into any MS-Office document",
    .helpPage = "5_27_10_ms_office_charts_report",
    .icon = ":/WriteReport/writeReport.svg",
    .saveVersion = 2.08,
    .keywords = "file export output save office .pptx .ppt .xlsx .xls .docx .doc chart write out",
    // One table per pin; a user adds pins.
    .pinsIn = 1,
    // The result is a document; no table leaves the action. Without formats, because a document is
    // not the image of a table that a program could convert.
    .pinsOut = 0,
    .maxPinsIn = ActionEntry::kManyPins,
    .makeAction = makeAction<ActionWriteReport>,
    .makePanel = makePanel<Interface_ActionWriteReport>,
};

} // namespace corvanta
