#include "actions/write_doc/write_doc.h"
#include "actions/write_doc/write_doc_panel.h"

namespace corvanta {

const ActionEntry kWriteDocEntry = {
    .typeName = "writeDoc",
    .description = "Write some text or image into a .docx or .pptx document",
    // The templates themselves are named by the rows, so the action has no file types.
    .helpPage = "5_27_20_write_in_docx_and_pptx",
    .icon = ":/WriteReport/docxTxt.svg",
    .saveVersion = 2.44,
    .keywords = "text image jpeg jpg png .jpeg .jpg .png file export output save office .pptx "
                ".docx pptx docx write out",
    .pinsIn = 1,
    // The result is a document; no table leaves the action. Without formats, because a document is
    // not the image of a table that a program could convert.
    .pinsOut = 0,
    .makeAction = makeAction<ActionWriteDoc>,
    .makePanel = makePanel<Interface_ActionWriteDoc>,
};

} // namespace corvanta
