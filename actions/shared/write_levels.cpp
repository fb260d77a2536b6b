#include "actions/shared/write_levels.h"

namespace corvanta {

namespace {

WriteItem itemFromXml(const XMLNode &node)
{
    return {xmltoi(node.getAttribute("type"), 0), xmltoa(node.getAttribute("text"), {}),
            xmltoa(node.getAttribute("calledLevel"), {}), xmltoa(node.getAttribute("p1"), {}),
            fromXMLSL(node)};
}

void saveText(const wchar_t *name, const QString &text, std::wostream &out)
{
    if (!text.isEmpty()) {
        ToXMLStringTool tool;
        out << L' ' << name << L"='" << tool.toXML(text) << L'\'';
    }
}

void saveItem(const WriteItem &item, std::wostream &out)
{
    out << L"\t\t\t<Item type='" << item.type << L'\'';
    saveText(L"text", item.text, out);
    saveText(L"calledLevel", item.calledLevel, out);
    saveText(L"p1", item.p1, out);
    out << L'>';
    toXML(item.columns, out);
    out << L"</Item>\n";
}

} // namespace

std::vector<WriteLevel> writeLevelsFromXml(const XMLNode &action)
{
    std::vector<WriteLevel> levels;
    const XMLNode parent = action.getChildNode("Levels");
    int at = 0;
    for (XMLNode node = parent.getChildNode("Level", &at); !node.isEmpty();
         node = parent.getChildNode("Level", &at)) {
        WriteLevel level{xmltoa(node.getAttribute("name"), {}),
                         xmltoa(node.getAttribute("partitionCol"), {}),
                         xmltob(node.getAttribute("commaSeparated"), 1) != 0,
                         {}};
        int itemAt = 0;
        for (XMLNode item = node.getChildNode("Item", &itemAt); !item.isEmpty();
             item = node.getChildNode("Item", &itemAt)) {
            level.items.push_back(itemFromXml(item));
        }
        levels.push_back(std::move(level));
    }
    return levels;
}

void saveWriteLevels(const std::vector<WriteLevel> &levels, std::wostream &out)
{
    if (levels.empty()) {
        return;
    }
    out << L"\t<Levels>\n";
    for (const WriteLevel &level : levels) {
        out << L"\t\t<Level";
        saveText(L"name", level.name, out);
        saveText(L"partitionCol", level.partitionCol, out);
        out << (level.commaSeparated ? L">\n" : L" commaSeparated='0'>\n");
        for (const WriteItem &item : level.items) {
            saveItem(item, out);
        }
        out << L"\t\t</Level>\n";
    }
    out << L"\t</Levels>\n";
}

} // namespace corvanta
