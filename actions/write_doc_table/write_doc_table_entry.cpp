#include "actions/write_doc_table/write_doc_table.h"
#include "actions/write_doc_table/write_doc_table_panel.h"

namespace corvanta {

const ActionEntry kWriteDocTableEntry = {
    .typeName = "writeDocTable",
    .description = "Write formatted Table(s) into a MS-Word document",
    .helpPage = "5_27_21_write_tables_in_docx",
    .icon = ":/WriteReport/docxTable.svg",
    .saveVersion = 2.2,
    .tags = "180_Demo",
    .keywords = "file export output save office .docx .doc write out",
    // One table per pin; a user adds pins.
    .pinsIn = 1,
    // The result is a document; no table leaves the action. Without formats, because a document is
    // not the image of a table that a program could convert.
    .pinsOut = 0,
    .maxPinsIn = ActionEntry::kManyPins,
    .makeAction = makeAction<ActionWriteDocTable>,
    .makePanel = makePanel<Interface_ActionWriteDocTable>,
};

} // namespace corvanta
