#include "actions/shared/read_levels.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

ReadLevel levelFromXml(const XMLNode &node)
{
    ReadLevel level;
    level.initialPath = xmltoa(node.getAttribute("initialPath"), {});
    level.subtagName = xmltoa(node.getAttribute("subtagName"), {});
    int at = 0;
    for (XMLNode e = node.getChildNode("e", &at); !e.isEmpty(); e = node.getChildNode("e", &at)) {
        level.items.push_back({xmltoa(e.getAttribute("path"), {}),
                               xmltoa(e.getAttribute("name"), {}),
                               xmltob(e.getAttribute("tagName"), 0) != 0});
    }
    return level;
}

void saveItem(const ReadItem &item, std::wostream &out)
{
    ToXMLStringTool tool;
    out << L"  <e";
    if (!item.name.isEmpty()) {
        out << L" name='" << tool.toXML(item.name) << L'\'';
    }
    out << L" path='" << tool.toXML(item.path) << (item.tagName ? L"' tagName='1'/>\n" : L"'/>\n");
}

} // namespace

std::vector<ReadLevel> readLevelsFromXml(const XMLNode &action)
{
    std::vector<ReadLevel> levels;
    if (action.nChildNode() > 0 && action.getChildNode(0).getName() == "Level"_L1) {
        for (int i = 0; i < action.nChildNode(); ++i) {
            levels.push_back(levelFromXml(action.getChildNode(i)));
        }
    } else if (ReadLevel only = levelFromXml(action); only != ReadLevel()) {
        levels.push_back(std::move(only));
    }
    return levels;
}

void saveReadLevels(const std::vector<ReadLevel> &levels, std::wostream &out)
{
    ToXMLStringTool tool;
    for (const ReadLevel &level : levels) {
        out << L" <Level initialPath='" << tool.toXML(level.initialPath) << L'\'';
        out << L" subtagName='" << tool.toXML(level.subtagName) << L"'>\n";
        for (const ReadItem &item : level.items) {
            saveItem(item, out);
        }
        out << L" </Level>\n";
    }
}

std::vector<ReadLevel> expandedLevels(const std::vector<ReadLevel> &levels,
                                      const ActionItem &action)
{
    const auto expand = [&](QString *text) { *text = action.expandString(*text).trimmed(); };
    std::vector<ReadLevel> expanded = levels;
    for (ReadLevel &level : expanded) {
        expand(&level.initialPath);
        expand(&level.subtagName);
        for (ReadItem &item : level.items) {
            expand(&item.path);
            expand(&item.name);
            item.name = item.name.isEmpty() ? item.path : item.name;
        }
    }
    return expanded;
}

} // namespace corvanta
