#include "graph/node_writer.h"

#include <ostream>

namespace corvanta {

void writeAttributes(const XMLNode &node, std::wostream &out)
{
    ToXMLStringTool tool;
    for (const QString &attribute : node.attributeNames()) {
        const QString value =
            QString::fromUtf16(node.getAttribute(attribute.toLatin1().constData()));
        out << L' ' << attribute.toStdWString() << L"='" << tool.toXML(value) << L'\'';
    }
}

// Recursive: a parsed tree has a limited depth.
void writeNode(const XMLNode &node, int depth, std::wostream &out)
{
    ToXMLStringTool tool;
    const std::wstring name = node.getName().toStdWString();
    out << L'<' << name;
    writeAttributes(node, out);
    const int children = node.nChildNode();
    const QString text = node.text();
    // Spaces between elements only indent them and are replaced; in an element without children
    // they are a value.
    const bool hasText = children == 0 ? !text.isEmpty() : !text.trimmed().isEmpty();
    if (children == 0 && !hasText) {
        out << L"/>";
        return;
    }
    out << L'>' << (hasText ? tool.toXML(text) : L"");
    const auto breakLine = [&](int level) {
        if (children > 0 && !hasText) {
            out << L'\n' << std::wstring(static_cast<size_t>(2 * level), L' ');
        }
    };
    for (int i = 0; i < children; ++i) {
        breakLine(depth + 1);
        writeNode(node.getChildNode(i), depth + 1, out);
    }
    breakLine(depth);
    out << L"</" << name << L'>';
}

} // namespace corvanta
