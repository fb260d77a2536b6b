// Writes graph files, with one line per element so that differences between versions are readable.
#include "corvanta/corvanta_graph.h"
#include "graph/node_writer.h"

#include <QLocale>

#include <sstream>

using namespace Qt::StringLiterals;
using corvanta::writeNode;

namespace {

void writeAction(const CorvantaGraph::Action &action, std::wostream &out)
{
    ToXMLStringTool tool;
    out << L"  <action id='" << tool.toXML(action.id) << L'\'';
    // A graph that was never in an editor has no positions.
    if (action.x != 0 || action.y != 0) {
        out << L" x='" << QString::number(action.x).toStdWString() << L"' y='"
            << QString::number(action.y).toStdWString() << L'\'';
    }
    if (!action.comment.isEmpty()) {
        out << L" comment='" << tool.toXML(action.comment) << L'\'';
    }
    const bool isShort = action.parameters.nChildNode() == 0;
    out << (isShort ? L">" : L">\n    ");
    writeNode(action.parameters, 2, out);
    out << (isShort ? L"</action>\n" : L"\n  </action>\n");
}

} // namespace

QByteArray CorvantaGraph::toXml() const
{
    ToXMLStringTool tool;
    std::wostringstream out;
    out.exceptions(std::ios::badbit); // otherwise text is lost when there is no memory
    out << L"<graph";
    if (version >= 0) {
        out << L" version='"
            << QString::number(version, 'g', QLocale::FloatingPointShortest).toStdWString()
            << L'\'';
    }
    out << L">\n";
    for (auto it = variables.begin(); it != variables.end(); ++it) {
        out << L"  <variable name='" << tool.toXML(it.key());
        out << L"' value='" << tool.toXML(it.value()) << L"'/>\n";
    }
    for (const Action &action : actions) {
        writeAction(action, out);
    }
    for (const Link &link : links) {
        out << L"  <link from='" << tool.toXML(link.from.action) << L':' << link.from.pin;
        out << L"' to='" << tool.toXML(link.to.action) << L':' << link.to.pin << L"'/>\n";
    }
    out << L"</graph>\n";
    return QString::fromStdWString(out.str()).toUtf8();
}
