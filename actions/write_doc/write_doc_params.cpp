#include "actions/write_doc/write_doc_params.h"

namespace corvanta {

const ParamTable<WriteDocParams> &writeDocParamTable()
{
    using P = WriteDocParams;
    static const ParamTable<P> table{
        text("output", &P::output)
            .always()
            .label("Column of the output documents")
            .meaning("Input column with the names of the documents to write."),
        text("template", &P::templateColumn)
            .always()
            .label("Column of the templates")
            .meaning("Input column with the names of the templates (.docx or .pptx)."),
        flag("processCR", &P::processCR)
            .label("Line ends become line breaks")
            .meaning("Line ends in texts become line breaks in Word documents."),
        flag("processLF", &P::processLF)
            .label("\\n becomes a line break")
            .meaning("The two characters backslash and n in a text become a line break."),
        flag("inlineImg", &P::inlineImg)
            .label("Store images in the document")
            .meaning("Stores images in the document. Off: it links to the image files."),
        strings("text", &P::textColumns)
            .always()
            .label("Text columns")
            .meaning("Columns whose texts replace their markers, %NAME%."),
        strings("image", &P::imageColumns)
            .always()
            .label("Image columns")
            .meaning("Columns with names of image files, for the pictures whose targets contain "
                     "%NAME%."),
    };
    return table;
}

} // namespace corvanta
