// Reads graph files. All problems of a file are collected, so that the user sees them together;
// only text that is not XML ends the reading immediately.
#include "base/nearest_name.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/failure_reason.h"
#include "corvanta/files.h"
#include "graph/problem_list.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

using namespace Qt::StringLiterals;
using corvanta::Fault;
using corvanta::ProblemList;
using Kind = CorvantaGraph::Problem::Kind;

namespace {

constexpr qsizetype kShownChars = 100; // of a text in a message

/// Larger files are certainly not graphs; reading one would exhaust the memory.
constexpr qint64 kMaxGraphBytes = qint64(256) << 20;

/// Notes everything in an element but the attributes `known`, and its children unless
/// `hasElements`. Reading ignores them.
void noteUnknown(const XMLNode &node, const QStringList &known, bool hasElements,
                 ProblemList &mistakes)
{
    for (const QString &name : node.attributeNames()) {
        if (!known.contains(name)) {
            mistakes.add(node.line(),
                         u"unknown attribute '%1' of '%2'%3"_s.arg(
                             name, node.getName(), corvanta::nearestNameHint(name, known)),
                         Kind::Mistake);
        }
    }
    for (int i = 0; i < node.nChildNode() && !hasElements; ++i) {
        const XMLNode child = node.getChildNode(i);
        mistakes.add(child.line(),
                     u"unknown element '%1' of '%2'"_s.arg(child.getName(), node.getName()),
                     Kind::Mistake);
    }
    const QString text = node.text().simplified();
    if (!text.isEmpty()) {
        mistakes.add(
            node.line(),
            u"the text '%1' in '%2' is not used"_s.arg(text.left(kShownChars), node.getName()),
            Kind::Mistake);
    }
}

/// Notes an attribute of the graph itself that should be a number and is not. What it has of a
/// number at its start is used.
void noteNumber(const XMLNode &node, const char *attribute, ProblemList &mistakes)
{
    const char16_t *const text = node.getAttribute(attribute);
    bool isNumber = true;
    if (text != nullptr) {
        QString::fromUtf16(text).trimmed().toDouble(&isNumber);
    }
    if (!isNumber) {
        mistakes.add(
            node.line(),
            u"the value '%1' of '%2' is not allowed; allowed: a decimal number; the graph uses %3"_s
                .arg(QString::fromUtf16(text), QLatin1StringView(attribute),
                     QString::number(xmltof(text, 0))),
            Kind::Mistake);
    }
}

/// Notes what is unknown in an element of the graph.
void noteUnknown(const XMLNode &node, ProblemList &mistakes)
{
    const QString name = node.getName();
    if (name == "action"_L1) {
        noteNumber(node, "x", mistakes);
        noteNumber(node, "y", mistakes);
        noteUnknown(node, {u"id"_s, u"x"_s, u"y"_s, u"comment"_s}, true, mistakes);
    } else if (name == "link"_L1) {
        noteUnknown(node, {u"from"_s, u"to"_s}, false, mistakes);
    } else if (name == "variable"_L1) {
        noteUnknown(node, {u"name"_s, u"value"_s}, false, mistakes);
    }
}

/// Reads an action element. An action with problems is kept out of the graph only if it has no
/// parameters, so that its links are still checked.
void readAction(const XMLNode &node, CorvantaGraph *graph, ProblemList &problems)
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
    // The child's name is the type, so neither none nor two children make sense. Whether the type
    // exists depends on the plug-ins and is checked by validate().
    if (node.nChildNode() != 1) {
        problems.add(node.line(),
                     u"the action '%1' needs exactly one child element, named after its type"_s.arg(
                         action.id));
        return;
    }
    action.parameters = node.getChildNode(0);
    graph->actions.append(action);
}

/// Reads a link element. Both ends are checked, so that two faults need one run.
void readLink(const XMLNode &node, CorvantaGraph *graph, ProblemList &problems)
{
    CorvantaGraph::Link link;
    link.line = node.line();
    bool ok = true;
    for (const auto &[name, pin] : {std::pair("from", &link.from), std::pair("to", &link.to)}) {
        const auto parsed = CorvantaGraph::parsePin(xmltoa(node.getAttribute(name), QString()));
        if (!parsed) {
            problems.add(node.line(),
                         u"a link needs a '%1' of the form ID:PIN"_s.arg(QLatin1StringView(name)));
            ok = false;
            continue;
        }
        *pin = *parsed;
    }
    if (ok) {
        graph->links.append(link);
    }
}

void readVariable(const XMLNode &node, CorvantaGraph *graph, ProblemList &problems,
                  ProblemList &mistakes)
{
    const QString name = xmltoa(node.getAttribute("name"), QString());
    if (name.isEmpty()) {
        problems.add(node.line(), u"a variable has no 'name'"_s);
    } else {
        if (graph->variables.contains(name)) {
            mistakes.add(node.line(),
                         u"the variable '%1' is defined twice; the last value is used"_s.arg(name),
                         Kind::Hint);
        }
        // Not null, which would mean an unknown variable. Of equal names the last one counts.
        graph->variables.insert(name, xmltoa(node.getAttribute("value"), u""_s));
    }
}

void readElement(const XMLNode &node, CorvantaGraph *graph, ProblemList &problems,
                 ProblemList &mistakes)
{
    const QString name = node.getName();
    if (name == "action"_L1) {
        readAction(node, graph, problems);
    } else if (name == "link"_L1) {
        readLink(node, graph, problems);
    } else if (name == "variable"_L1) {
        readVariable(node, graph, problems, mistakes);
    } else {
        const QStringList known{u"action"_s, u"link"_s, u"variable"_s};
        problems.add(node.line(),
                     u"unknown element '%1'%2"_s.arg(name, corvanta::nearestNameHint(name, known)));
    }
}

Fault<CorvantaGraph::Problems> faultWith(ProblemList problems, qint64 line, const QString &text)
{
    problems.add(line, text);
    return {problems.problems()};
}

/// Why the file cannot be read; empty when it can.
QString whyUnreadable(const QString &fileName)
{
    using corvanta::failureReason;
    using corvanta::FileUse;
    // A folder can be opened on some systems, but not read; a pipe would wait for its writer.
    const QFileInfo info(fileName);
    if (info.isDir()) {
        return failureReason(fileName, FileUse::Read, {EISDIR});
    }
    if (info.exists() && !info.isFile()) {
        return u"it is not a regular file"_s;
    }
    const auto opened = MyReadFile::open(fileName);
    return opened ? QString() : failureReason(fileName, FileUse::Read, opened.fault().code);
}

} // namespace

CorvantaGraph::Loaded CorvantaGraph::load(const QString &fileName)
{
    const ProblemList problems(fileName);
    QFile file(fileName);
    const QString reason = whyUnreadable(fileName);
    if (!reason.isEmpty()) {
        return faultWith(problems, 0, u"cannot read the graph file: %1"_s.arg(reason));
    }
    if (!file.open(QIODevice::ReadOnly)) {
        return faultWith(problems, 0, u"cannot read the graph file: %1"_s.arg(file.errorString()));
    }
    if (file.size() > kMaxGraphBytes) {
        return faultWith(problems, 0, u"the file is too large for a graph"_s);
    }
    const QByteArray document = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return faultWith(problems, 0, u"cannot read the graph file: %1"_s.arg(file.errorString()));
    }
    return parse(document, fileName);
}

CorvantaGraph::Loaded CorvantaGraph::parse(const QByteArray &document, const QString &fileName)
{
    ProblemList problems(fileName);
    const auto root = XMLNode::parse(document);
    if (!root) {
        const auto &[place, message, offset] = root.fault();
        return faultWith(
            problems, place.line,
            u"not well-formed XML (column %1): %2"_s.arg(QString::number(place.column), message));
    }
    if (root->getName() != "graph"_L1) {
        return faultWith(problems, root->line(),
                         u"the document element is '%1', not 'graph'"_s.arg(root->getName()));
    }
    CorvantaGraph graph;
    graph.fileName = fileName;
    graph.version = xmltof(root->getAttribute("version"), -1); // -1: a new graph
    ProblemList mistakes(fileName);
    noteUnknown(*root, {u"version"_s}, true, mistakes);
    noteNumber(*root, "version", mistakes);
    for (int i = 0; i < root->nChildNode(); ++i) {
        readElement(root->getChildNode(i), &graph, problems, mistakes);
        noteUnknown(root->getChildNode(i), mistakes);
    }
    graph.mistakes = mistakes.problems();
    if (!problems.problems().isEmpty()) {
        return Fault{problems.problems()};
    }
    return graph;
}
