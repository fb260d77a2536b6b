#include "actions/write_doc_table/write_doc_table_params.h"

namespace corvanta {

namespace {

std::vector<DocTable> tablesFromXml(const XMLNode &action)
{
    std::vector<DocTable> tables;
    int at = 0;
    for (XMLNode v = action.getChildNode("v", &at); !v.isEmpty();
         v = action.getChildNode("v", &at)) {
        const DocTable start = defaultDocTable(static_cast<int>(tables.size()));
        tables.push_back({xmltoa(v.getAttribute("markerName"), start.markerName),
                          xmltoa(v.getAttribute("colWidths"), start.colWidths),
                          xmltoa(v.getAttribute("styleID"), start.styleID),
                          xmltob(v.getAttribute("includeHeaders"), start.includeHeaders) != 0});
    }
    return tables.empty() ? WriteDocTableParams().tables : tables;
}

void saveTables(const std::vector<DocTable> &tables, std::wostream &out)
{
    if (tables == WriteDocTableParams().tables) {
        return;
    }
    ToXMLStringTool tool;
    for (const DocTable &table : tables) {
        out << L"  <v markerName='" << tool.toXML(table.markerName) << L'\'';
        out << L" colWidths='" << tool.toXML(table.colWidths) << L'\'';
        out << L" styleID='" << tool.toXML(table.styleID) << L'\'';
        out << (table.includeHeaders ? L" includeHeaders='1'/>\n" : L"/>\n");
    }
}

} // namespace

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
            .label("Template")
            .meaning("Word document with the markers."),
        text("output", &P::output)
            .outputFile()
            .label("Document")
            .meaning("Word document to write."),
        flag("processCR", &P::processCR)
            .label("Line ends become line breaks")
            .meaning("Line ends in cells become line breaks."),
        flag("processLF", &P::processLF)
            .label("\\n becomes a line break")
            .meaning("The two characters backslash and n in a cell become a line break."),
        structure("v", &P::tables, tablesFromXml, saveTables)
            .label("Tables")
            .meaning("One v (markerName, colWidths in twentieths of a point, styleID, "
                     "includeHeaders) per input pin."),
    };
    return table;
}

} // namespace corvanta
