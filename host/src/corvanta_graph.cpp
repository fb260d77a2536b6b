#include "corvanta/corvanta_graph.h"

#include "base/number.h"
#include "corvanta/action_registry.h"

#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <sstream>

using namespace Qt::StringLiterals;
using corvanta::ActionRegistry;

namespace {

constexpr qint64 kLargestGraphBytes = qint64(256) << 20;
constexpr int kMostPins = 10000;

/// Collects problems with their place: FILE:LINE.
class ProblemList
{
public:
    ProblemList(QString file, QVector<CorvantaGraph::Problem> *problems)
        : m_file(std::move(file))
        , m_problems(problems)
    {
    }
    void add(qint64 line, const QString &text) const
    {
        const QString place = line > 0 ? m_file + u':' + QString::number(line) : m_file;
        m_problems->append({place + ": "_L1 + text});
    }

private:
    QString m_file;
    QVector<CorvantaGraph::Problem> *m_problems;
};

void readAction(const XMLNode &node, CorvantaGraph *graph, const ProblemList &problems)
{
    CorvantaGraph::Action action;
    action.id = xmltoa(node.getAttribute("id"), QString());
    action.x = xmltof(node.getAttribute("x"), 0);
    action.y = xmltof(node.getAttribute("y"), 0);
    action.comment = xmltoa(node.getAttribute("comment"), QString());
    action.line = node.line();
    if (action.id.isEmpty()) {
        problems.add(node.line(), u"an action has no 'id'"_s);
    } else if (graph->indexOf(action.id) >= 0) {
        problems.add(node.line(), u"the id '%1' is used by two actions"_s.arg(action.id));
    }
    if (node.nChildNode() != 1) {
        problems.add(
            node.line(),
            u"the action '%1' must have one element with its parameters, named after its type"_s
                .arg(action.id));
        return;
    }
    action.parameters = node.getChildNode(0);
    graph->actions.append(action);
}

void readLink(const XMLNode &node, CorvantaGraph *graph, const ProblemList &problems)
{
    CorvantaGraph::Link link;
    link.line = node.line();
    bool ok = true;
    for (const auto &[name, pin] : {std::pair("from", &link.from), std::pair("to", &link.to)}) {
        const QString text = xmltoa(node.getAttribute(name), QString());
        if (!CorvantaGraph::parsePin(text, pin)) {
            problems.add(node.line(),
                         u"a link has no '%1' of the form ID:PIN"_s.arg(QLatin1StringView(name)));
            ok = false;
        }
    }
    if (ok) {
        graph->links.append(link);
    }
}

void readVariable(const XMLNode &node, CorvantaGraph *graph, const ProblemList &problems)
{
    const QString name = xmltoa(node.getAttribute("name"), QString());
    if (name.isEmpty()) {
        problems.add(node.line(), u"a variable has no 'name'"_s);
    } else {
        graph->variables.insert(name, xmltoa(node.getAttribute("value"), u""_s));
    }
}

/// Calls `visit(text, line)` for every text of a parameter element and of what is inside it.
template <class F> void forEachText(const XMLNode &root, F visit)
{
    QVector<XMLNode> open{root};
    while (!open.isEmpty()) {
        const XMLNode node = open.takeLast();
        for (const QString &name : node.attributeNames()) {
            visit(QString::fromUtf16(node.getAttribute(name.toLatin1().constData())), node.line());
        }
        visit(node.text(), node.line());
        for (int i = 0; i < node.nChildNode(); ++i) {
            open.append(node.getChildNode(i));
        }
    }
}

/// Elements that hold elements alone get a line each; text stays as it is.
void writeNode(const XMLNode &node, int depth, std::wostream &out)
{
    ToXMLStringTool tool;
    const std::wstring name = node.getName().toStdWString();
    out << L'<' << name;
    for (const QString &attribute : node.attributeNames()) {
        const QString value =
            QString::fromUtf16(node.getAttribute(attribute.toLatin1().constData()));
        out << L' ' << attribute.toStdWString() << L"='" << tool.toXML(value) << L'\'';
    }
    const int children = node.nChildNode();
    const QString text = node.text();
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
        writeNode(node.getChildNode(i), depth + 1,
                  out); // the depth is that of a parsed tree, which is limited
    }
    breakLine(depth);
    out << L"</" << name << L'>';
}

} // namespace

int CorvantaGraph::indexOf(const QString &id) const
{
    for (int i = 0; i < actions.size(); ++i) {
        if (actions[i].id == id) {
            return i;
        }
    }
    return -1;
}

bool CorvantaGraph::parsePin(const QString &text, Pin *pin)
{
    const qsizetype colon = text.lastIndexOf(u':');
    quint64 number = 0;
    const QString digits = text.mid(colon + 1);
    if (colon <= 0 ||
        !corvanta::parseUInt(std::u16string_view(digits.toStdU16String()), kMostPins, &number)) {
        return false;
    }
    *pin = {text.left(colon), static_cast<int>(number)};
    return true;
}

CorvantaGraph CorvantaGraph::load(const QString &fileName, QVector<Problem> *problems)
{
    QFile file(fileName);
    if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly)) {
        problems->append({u"%1: cannot read the graph file"_s.arg(fileName)});
        return {};
    }
    if (file.size() > kLargestGraphBytes) {
        problems->append({u"%1: the file is too large for a graph"_s.arg(fileName)});
        return {};
    }
    return parse(file.readAll(), fileName, problems);
}

CorvantaGraph CorvantaGraph::parse(const QByteArray &document, const QString &fileName,
                                   QVector<Problem> *problems)
{
    const ProblemList list(fileName, problems);
    CorvantaGraph graph;
    graph.fileName = fileName;
    XMLNode::Error error;
    const XMLNode root = XMLNode::parse(document, &error);
    if (root.isEmpty()) {
        list.add(error.line, u"not well-formed XML (column %1): %2"_s.arg(
                                 QString::number(error.column), error.message));
        return graph;
    }
    if (root.getName() != "graph"_L1) {
        list.add(root.line(), u"the document element is '%1', not 'graph'"_s.arg(root.getName()));
        return graph;
    }
    graph.version = xmltof(root.getAttribute("version"), -1);
    for (int i = 0; i < root.nChildNode(); ++i) {
        const XMLNode node = root.getChildNode(i);
        const QString name = node.getName();
        if (name == "action"_L1) {
            readAction(node, &graph, list);
        } else if (name == "link"_L1) {
            readLink(node, &graph, list);
        } else if (name == "variable"_L1) {
            readVariable(node, &graph, list);
        } else {
            list.add(node.line(), u"unknown element '%1'"_s.arg(name));
        }
    }
    return graph;
}

QByteArray CorvantaGraph::toXml() const
{
    ToXMLStringTool tool;
    std::wostringstream out;
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
        out << L"  <action id='" << tool.toXML(action.id) << L'\'';
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
    for (const Link &link : links) {
        out << L"  <link from='" << tool.toXML(link.from.action) << L':' << link.from.pin;
        out << L"' to='" << tool.toXML(link.to.action) << L':' << link.to.pin << L"'/>\n";
    }
    out << L"</graph>\n";
    return QString::fromStdWString(out.str()).toUtf8();
}

namespace {

void checkTypes(const CorvantaGraph &graph, const ActionRegistry &registry,
                const ProblemList &problems)
{
    for (const CorvantaGraph::Action &action : graph.actions) {
        if (registry.prototype(action.parameters.getName()) == nullptr) {
            problems.add(action.parameters.line(),
                         u"the action '%1' has the unknown type '%2'"_s.arg(
                             action.id, action.parameters.getName()));
        }
    }
}

void checkLinkEnd(const CorvantaGraph &graph, const ActionRegistry &registry,
                  const CorvantaGraph::Link &link, bool isInput, const ProblemList &problems)
{
    const CorvantaGraph::Pin &end = isInput ? link.to : link.from;
    const int index = graph.indexOf(end.action);
    if (index < 0) {
        problems.add(link.line,
                     u"a link names the action '%1', which is not there"_s.arg(end.action));
        return;
    }
    const ActionItem *type = registry.prototype(graph.actions[index].parameters.getName());
    if (type == nullptr) {
        return;
    }
    const int pins = isInput ? type->maxPinIn() : type->pinOutCount();
    if (end.pin >= pins) {
        problems.add(link.line, u"the action '%1' (%2) has no %3 pin %4"_s.arg(
                                    end.action, QLatin1StringView(type->getTypeName()),
                                    isInput ? u"input"_s : u"output"_s, QString::number(end.pin)));
    }
}

void checkLinks(const CorvantaGraph &graph, const ActionRegistry &registry,
                const ProblemList &problems)
{
    QSet<QString> taken;
    for (const CorvantaGraph::Link &link : graph.links) {
        checkLinkEnd(graph, registry, link, false, problems);
        checkLinkEnd(graph, registry, link, true, problems);
        const QString input = link.to.action + u':' + QString::number(link.to.pin);
        if (taken.contains(input)) {
            problems.add(link.line, u"two links lead to the input pin '%1'"_s.arg(input));
        }
        taken.insert(input);
    }
}

/// Takes away actions without open inputs until none is left; what remains is part of a loop or
/// behind one.
void checkLoops(const CorvantaGraph &graph, const ProblemList &problems)
{
    QVector<int> inputs(graph.actions.size(), 0);
    for (const CorvantaGraph::Link &link : graph.links) {
        const int to = graph.indexOf(link.to.action);
        if (to >= 0 && graph.indexOf(link.from.action) >= 0) {
            ++inputs[to];
        }
    }
    QVector<int> free;
    for (int i = 0; i < inputs.size(); ++i) {
        if (inputs[i] == 0) {
            free << i;
        }
    }
    for (int i = 0; i < free.size(); ++i) {
        for (const CorvantaGraph::Link &link : graph.links) {
            const int to = graph.indexOf(link.to.action);
            if (to >= 0 && link.from.action == graph.actions[free[i]].id && --inputs[to] == 0) {
                free << to;
            }
        }
    }
    if (free.size() == graph.actions.size()) {
        return;
    }
    QStringList stuck;
    for (int i = 0; i < inputs.size(); ++i) {
        if (inputs[i] > 0) {
            stuck << graph.actions[i].id;
        }
    }
    const int line = graph.actions[graph.indexOf(stuck.first())].line;
    problems.add(
        line, u"the links form a loop (actions in it or behind it: %1)"_s.arg(stuck.join(", "_L1)));
}

} // namespace

QVector<CorvantaGraph::Problem> CorvantaGraph::validate(const ActionRegistry &registry,
                                                        const QMap<QString, QString> &given) const
{
    QVector<Problem> found;
    const ProblemList problems(fileName, &found);
    checkTypes(*this, registry, problems);
    checkLinks(*this, registry, problems);
    checkLoops(*this, problems);

    GlobalParameters global;
    for (const auto *set : {&variables, &given}) {
        for (auto it = set->begin(); it != set->end(); ++it) {
            global.setVariable(it.key(), it.value());
        }
    }
    for (const Action &action : actions) {
        forEachText(action.parameters, [&](const QString &text, int line) {
            QStringList unknown;
            global.expandString(text, &unknown);
            for (const QString &name : unknown) {
                problems.add(line, u"the action '%1' uses the unknown variable '${%2}'"_s.arg(
                                       action.id, name));
            }
        });
    }
    return found;
}
