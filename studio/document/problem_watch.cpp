// Checks a copy of the document. A problem names its action, or only its line; the line belongs to
// the action that begins there or before.
#include "studio/document/problem_watch.h"

#include "corvanta/run.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// The id of the action whose element contains a line; empty for a line of a link.
QString actionAtLine(const CorvantaGraph &graph, int line)
{
    QString id;
    int start = 0;
    for (const CorvantaGraph::Action &action : graph.actions) {
        if (action.line <= line && action.line > start) {
            start = action.line;
            id = action.id;
        }
    }
    const bool isLink = std::any_of(graph.links.begin(), graph.links.end(), [&](const auto &link) {
        return link.line <= line && link.line > start;
    });
    return isLink ? QString() : id;
}

/// The id of the action that a text begins with; empty if it names none.
QString actionNamedIn(const CorvantaGraph &graph, const QString &text)
{
    constexpr auto kBefore = "the action '"_L1;
    const QStringView rest =
        QStringView(text).sliced(text.startsWith(kBefore) ? kBefore.size() : 0);
    const auto found = std::ranges::find_if(graph.actions, [&](const auto &action) {
        return rest.startsWith(action.id) && rest.sliced(action.id.size()).startsWith("' "_L1);
    });
    return found == graph.actions.end() ? QString() : found->id;
}

/// Without "FILE:LINE: ".
GraphProblem problemOf(const CorvantaGraph &graph, const CorvantaGraph::Problem &problem)
{
    static const QRegularExpression place(u"^(?::(\\d+))?: "_s);
    GraphProblem found{problem.text, {}, problem.kind};
    if (found.text.startsWith(graph.fileName)) {
        found.text.remove(0, graph.fileName.size());
        const QRegularExpressionMatch match = place.match(found.text);
        found.text.remove(0, match.capturedLength());
        // Some programs write a graph in one line.
        found.action = actionNamedIn(graph, found.text);
        if (found.action.isEmpty() && match.hasCaptured(1)) {
            found.action = actionAtLine(graph, match.captured(1).toInt());
        }
    }
    // The list has a column for the action, and texts of a translated window are not mixed then.
    const int index = graph.indexOf(found.action);
    if (index >= 0) {
        const QString type = graph.actions[index].parameters.getName();
        const QString before = u"the action '%1' (%2): "_s.arg(found.action, type);
        found.text.remove(0, found.text.startsWith(before) ? before.size() : 0);
    }
    return found;
}

// check() and runs expect a valid graph. A run, which is never started, knows which actions cannot
// share a file.
CorvantaGraph::Problems problemsIn(const CorvantaGraph &graph, const ActionRegistry &registry)
{
    const CorvantaGraph::Problems invalid = graph.validate(registry, {});
    return !invalid.isEmpty()
               ? invalid
               : graph.check(registry, {}, {}) + Run(graph, registry, RunOptions()).problems();
}

/// What is wrong with a text; looks up files, and so may block.
QVector<GraphProblem> problemsOf(const QByteArray &text, const QString &fileName,
                                 const ActionRegistry &registry)
{
    // A graph without a file needs some name, so that its problems have lines.
    const auto graph = CorvantaGraph::parse(text, fileName.isEmpty() ? u"graph"_s : fileName);
    QVector<GraphProblem> problems;
    if (!graph) {
        CorvantaGraph unreadable;
        unreadable.fileName = fileName.isEmpty() ? u"graph"_s : fileName;
        for (const auto &problem : graph.fault().code) {
            problems.append(problemOf(unreadable, problem));
        }
        return problems;
    }
    for (const auto &problem : problemsIn(*graph, registry)) {
        problems.append(problemOf(*graph, problem));
    }
    return problems;
}

} // namespace

// A timer, so that letters that are typed are checked once.
ProblemWatch::ProblemWatch(GraphDocument &document, std::function<void()> changed)
    : m_document(document)
    , m_changed(std::move(changed))
{
    m_timer.setSingleShot(true);
    m_timer.setInterval(kDelayMs);
    connect(&m_timer, &QTimer::timeout, this, &ProblemWatch::check);
}

// Older work is dropped by the worker.
void ProblemWatch::check()
{
    m_background.start(
        [this, text = m_document.toXml(), file = m_document.fileName(),
         &registry = m_document.registry()](const std::stop_token &) -> Worker::Show {
            const QVector<GraphProblem> problems = problemsOf(text, file, registry);
            return [this, problems] { show(problems); };
        },
        [this](const QString &reason) {
            show({{reason, {}}});
        });
}

// Most edits change no problem, and then lists keep their selection.
void ProblemWatch::show(const QVector<GraphProblem> &problems)
{
    if (m_problems != problems) {
        m_problems = problems;
        m_changed();
    }
}

} // namespace corvanta::studio
