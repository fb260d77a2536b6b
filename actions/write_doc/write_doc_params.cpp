#include "actions/write_doc/write_doc_params.h"

// The lines are in the order of saved graphs.
namespace corvanta {

namespace {

using P = WriteDocParams;

/// The input columns that name the files of a row.
ParamGroup<P> documents()
{
    return {
        text("output", &P::output)
            .required()
            .always()
            .label("Column of the output documents")
            .meaning("Input column with the names of the documents to write."),
        text("template", &P::templateColumn)
            .required()
            .always()
            .label("Column of the templates")
            .meaning("Input column with the names of the templates (.docx or .pptx)."),
    };
}

/// How texts and images are put into a document.
ParamGroup<P> conversions()
{
    return {
        flag("processCR", &P::processCR)
            .label("Line ends become line breaks")
            .meaning("Line ends in texts become line breaks in Word documents."),
        flag("processLF", &P::processLF)
            .label("\\n becomes a line break")
            .meaning("The two characters backslash and n in a text become a line break."),
        flag("inlineImg", &P::inlineImg)
            .label("Store images in the document")
            .meaning("Stores images in the document. Off: it links to the image files."),
    };
}

/// What goes beyond the parts and markers that saved graphs expect.
ParamGroup<P> extensions()
{
    return {
        flag("joinRuns", &P::joinRuns)
            .label("Join divided markers")
            .meaning("Finds markers that a word processor has divided into several runs, and "
                     "markers with '&' or '<'."),
        flag("allParts", &P::allParts)
            .label("Markers in all parts")
            .meaning("Also replaces markers in headers, footers, footnotes, endnotes, comments, "
                     "charts, diagrams, notes of slides, slide layouts and slide masters."),
        flag("fitImages", &P::fitImages)
            .label("Keep the ratio of images")
            .meaning("Fits each image into the box of its placeholder and keeps the image's "
                     "ratio of width to height."),
        flag("strictMarkup", &P::strictMarkup)
            .label("Markup as in the standard")
            .meaning("Ends the text element at line breaks in Word documents. Off: the break "
                     "is inside it, where some programs do not show it."),
    };
}

/// The input columns that have markers in the templates. These are child elements, which come after
/// all attributes.
ParamGroup<P> markedColumns()
{
    return {
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
}

} // namespace

const ParamTable<WriteDocParams> &writeDocParamTable()
{
    static const ParamTable<P> table{documents(), conversions(), extensions(), markedColumns()};
    return table;
}

} // namespace corvanta
