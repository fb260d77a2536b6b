#include "actions/write_doc_table/write_doc_table_params.h"

// The lines are in the order of saved graphs: those of the action and of a table.
namespace corvanta {

namespace {

/// The table of one pin: attributes of a `v` element.
const ParamTable<DocTable> &docTableTable()
{
    static const ParamTable<DocTable> table{
        text("markerName", &DocTable::markerName)
            .always()
            .label("Marker")
            .meaning("Name of the marker in the template, without its percent signs."),
        text("colWidths", &DocTable::colWidths)
            .always()
            .label("Widths")
            .meaning("Comma-separated widths of the columns, in twentieths of a point."),
        text("styleID", &DocTable::styleID)
            .always()
            .label("Style")
            .meaning("Identifier of the Word table style."),
        flag("includeHeaders", &DocTable::includeHeaders)
            .label("Header row")
            .meaning("Writes a header row with the column names."),
    };
    return table;
}

/// An action without a table would have no input pin, so it gets the default one.
void completeTables(std::vector<DocTable> &tables, const XMLNode &)
{
    if (tables.empty()) {
        tables = WriteDocTableParams().tables;
    }
}

} // namespace

QByteArray markerOf(const DocTable &table)
{
    return '%' + table.markerName.toUtf8() + '%';
}

DocTable defaultDocTable(int pin)
{
    return {QStringLiteral("T%1").arg(pin + 1), {}, QStringLiteral("TableGrid"), false};
}

const ParamTable<WriteDocTableParams> &writeDocTableParamTable()
{
    using P = WriteDocTableParams;
    static const ParamTable<P> table{
        text("template", &P::templateName)
            .inputFile()
            .required()
            .label("Template")
            .meaning("Word document with the markers."),
        text("output", &P::output)
            .outputFile()
            .required()
            .label("Document")
            .meaning("Word document to write."),
        flag("processCR", &P::processCR)
            .label("Line ends become line breaks")
            .meaning("Line ends in cells become line breaks."),
        flag("processLF", &P::processLF)
            .label("\\n becomes a line break")
            .meaning("The two characters backslash and n in a cell become a line break."),
        flag("joinRuns", &P::joinRuns)
            .label("Join divided markers")
            .meaning("Finds markers that a word processor has divided into several runs."),
        flag("strictMarkup", &P::strictMarkup)
            .label("Markup as in the standard")
            .meaning(
                "Puts tables between paragraphs and line breaks between texts. Off: a table in "
                "a formatted paragraph is inside its text, where some programs do not show it."),
        // Child elements come after all attributes.
        children("v", &P::tables, docTableTable(), {defaultDocTable, completeTables})
            .label("Tables, one per input pin")
            .meaning("One v (markerName, colWidths in twentieths of a point, styleID, "
                     "includeHeaders) per input pin."),
    };
    return table;
}

} // namespace corvanta
