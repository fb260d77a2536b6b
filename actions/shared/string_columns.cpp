#include "actions/shared/string_columns.h"

namespace corvanta {

std::vector<StringColumn> stringColumnsFromXml(const XMLNode &action)
{
    std::vector<StringColumn> columns;
    const XMLNode parent = action.getChildNode("StringColDef");
    int at = 0;
    for (XMLNode node = parent.getChildNode("CD", &at); !node.isEmpty();
         node = parent.getChildNode("CD", &at)) {
        columns.push_back({xmltoa(node.getAttribute("n"), {}), xmltoi(node.getAttribute("l"), 0),
                           xmltoi(node.getAttribute("ol"), 0)});
    }
    return columns;
}

void saveStringColumns(const std::vector<StringColumn> &columns, std::wostream &out)
{
    if (columns.empty()) {
        return;
    }
    ToXMLStringTool tool;
    out << L"  <StringColDef>\n";
    for (const StringColumn &column : columns) {
        out << L"    <CD n='" << tool.toXML(column.name) << L"' l='" << column.width;
        out << L"' ol='" << column.longest << L"'/>\n";
    }
    out << L"  </StringColDef>\n";
}

} // namespace corvanta
