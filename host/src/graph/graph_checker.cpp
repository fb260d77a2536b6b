// Finds what a valid graph does not do as its author probably meant: names and values that the
// actions ignore, required values and files that are missing, writers without input.
#include "base/mapped.h"
#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/failure_reason.h"
#include "corvanta/files.h"
#include "corvanta/params/saved_form.h"
#include "graph/problem_list.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;
using corvanta::ActionRegistry;
using corvanta::ProblemList;
using corvanta::SavedFormProblem;
using Kind = CorvantaGraph::Problem::Kind;

namespace {

using Role = ParameterInfo::Role;

/// The checks of the values of one action, whatever graph it belongs to.
class ValueCheck
{
public:
    /// One line of the result; the parameter is empty for a problem of the whole action.
    struct Finding
    {
        QString parameter;
        QString text;
        Kind kind = Kind::Missing;
    };

    ValueCheck(const ActionItem &item, const ActionParameters &parameters)
        : m_item(item)
        , m_parameters(parameters)
        , m_infos(parameters.parameters())
    {
    }

    /// `earlier` are the targets of the actions before this one.
    QVector<Finding> findings(const QStringList &earlier);

private:
    void add(const QString &parameter, const QString &text, Kind kind = Kind::Missing)
    {
        m_findings.append({parameter, text, kind});
    }
    /// Such a text makes the graph invalid; without its value nothing else is known about it.
    bool hasUnknownVariable(const QString &text) const
    {
        QStringList unknown;
        if (const GlobalParameters *const global = m_item.globalParameters()) {
            global->expandString(text, &unknown);
        }
        return !unknown.isEmpty();
    }
    /// The value of the parameter with a name or role; empty if the action has none.
    template <class NameOrRole> QString valueOf(const NameOrRole &key) const
    {
        const int index = m_parameters.indexOfParameter(key);
        return index < 0 ? QString() : m_parameters.parameterValue(index);
    }

    void checkValues();
    void checkInput(const ParameterInfo &info, const QString &value);
    QString folderProblem(const QString &target) const;
    QString targetProblem(const TargetUse &target, const QStringList &earlier) const;
    void checkTarget(const TargetUse &target, const QStringList &earlier);
    void checkOwnProblems();

    const ActionItem &m_item;
    const ActionParameters &m_parameters;
    const QVector<ParameterInfo> m_infos;
    QVector<Finding> m_findings;
};

/// The checks of one action of a graph.
class ActionCheck
{
public:
    ActionCheck(const CorvantaGraph &graph, const CorvantaGraph::Action &action, ActionItem &item,
                const ActionParameters &parameters, ProblemList &problems)
        : m_graph(graph)
        , m_action(action)
        , m_item(item)
        , m_parameters(parameters)
        , m_infos(parameters.parameters())
        , m_problems(problems)
    {
    }

    /// What a run ignores.
    void findMistakes();
    /// Everything else. `earlier` are the targets of the actions before this one.
    void findMissing(const QStringList &earlier);

private:
    void add(int line, const QString &text, Kind kind)
    {
        m_problems.add(
            line,
            u"the action '%1' (%2): %3"_s.arg(m_action.id, m_action.parameters.getName(), text),
            kind);
    }
    /// Of the child element that holds a parameter, or of the action's own element.
    int lineOf(const QString &parameter) const
    {
        const XMLNode child = m_action.parameters.getChildNode(parameter.toLatin1().constData());
        return child.isEmpty() ? m_action.parameters.line() : child.line();
    }
    void checkLinks();

    const CorvantaGraph &m_graph;
    const CorvantaGraph::Action &m_action;
    ActionItem &m_item;
    const ActionParameters &m_parameters;
    const QVector<ParameterInfo> m_infos;
    ProblemList &m_problems;
};

void ActionCheck::findMistakes()
{
    for (const SavedFormProblem &problem :
         corvanta::savedFormProblems(m_action.parameters, m_infos, m_item.globalParameters())) {
        const bool isMistake = problem.kind == SavedFormProblem::Kind::Mistake;
        add(problem.line, problem.text, isMistake ? Kind::Mistake : Kind::Hint);
    }
    checkLinks();
}

void ActionCheck::findMissing(const QStringList &earlier)
{
    for (const ValueCheck::Finding &finding : ValueCheck(m_item, m_parameters).findings(earlier)) {
        add(lineOf(finding.parameter), finding.text, finding.kind);
    }
}

QVector<ValueCheck::Finding> ValueCheck::findings(const QStringList &earlier)
{
    checkValues();
    for (const TargetUse &target : m_parameters.targets()) {
        // An empty name is reported as a required value.
        if (!target.name.isEmpty() && !hasUnknownVariable(target.name)) {
            checkTarget(target, earlier);
        }
    }
    checkOwnProblems();
    return std::move(m_findings);
}

void ValueCheck::checkValues()
{
    for (const ParameterInfo &info : m_infos) {
        if (m_parameters.failedCondition(info) != nullptr ||
            hasUnknownVariable(valueOf(info.name))) {
            continue;
        }
        // A variable may be empty.
        const QString value = m_item.expandString(valueOf(info.name)).trimmed();
        if (value.isEmpty() && info.isRequired) {
            add(info.name, QCoreApplication::translate("Problems", "'%1' is required and empty")
                               .arg(info.name));
        } else if (!value.isEmpty() && info.file == ParameterInfo::File::Input) {
            checkInput(info, valueOf(info.name));
        }
    }
}

void ValueCheck::checkInput(const ParameterInfo &info, const QString &value)
{
    // A template that the program includes; its folder is known to the action only.
    if (value.startsWith(u'>')) {
        return;
    }
    QStringList names;
    listFiles(m_item.expandFile(value), &names);
    const QFileInfo file(fileOfInput(names.value(0)));
    if (file.exists() && !file.isDir()) {
        return;
    }
    // Parameters can make a reader continue without the file, or wait for it.
    const QString aborts = valueOf(Role::AbortIfMissing);
    const bool isTolerated =
        aborts == "0"_L1 || (aborts == "1"_L1 && valueOf(Role::RetryTime).toLongLong() != 0);
    const QString state = file.isDir() ? QCoreApplication::translate("Problems", "is a folder")
                                       : QCoreApplication::translate("Problems", "does not exist");
    add(info.name,
        QCoreApplication::translate("Problems", "the file '%1' of '%2' %3")
            .arg(file.filePath(), info.name, state),
        isTolerated ? Kind::Hint : Kind::Missing);
}

/// Why the folder of a target cannot be used; empty if it can.
QString ValueCheck::folderProblem(const QString &target) const
{
    const QFileInfo folder(QFileInfo(target).absolutePath());
    if (const QFileInfo above = corvanta::existingAbove(target); !above.isDir()) {
        return QCoreApplication::translate(
                   "Problems",
                   "the folder '%1' of the target does not exist, and '%2' is not a folder")
            .arg(folder.filePath(), above.filePath());
    }
    // "run" creates the folder of --out-dir. An action in a panel may be in no graph.
    const GlobalParameters *const global = m_item.globalParameters();
    const bool isOutDir = global != nullptr && folder.filePath() == global->outDir();
    const QString create = valueOf(Role::CreateFolder);
    if (folder.isDir() || create == "1"_L1 || isOutDir) {
        return {};
    }
    // Without a value the action has no such parameter.
    const QString remedy =
        create.isEmpty() ? QString()
                         : QCoreApplication::translate("Problems", " (createDir='1' creates it)");
    return QCoreApplication::translate("Problems", "the folder '%1' of the target does not exist%2")
        .arg(folder.filePath(), remedy);
}

/// Why a run cannot write a target; empty if it can. `earlier` are the targets of earlier actions.
QString ValueCheck::targetProblem(const TargetUse &target, const QStringList &earlier) const
{
    const QFileInfo file(target.name);
    const bool isUpdated =
        target.access == TargetUse::Access::Update && !earlier.contains(target.name);
    if (isUpdated && !file.exists() && valueOf(Role::CreateFile) == "0"_L1) {
        return QCoreApplication::translate("Problems", "the file '%1' does not exist")
            .arg(target.name);
    }
    return file.isDir() ? QCoreApplication::translate("Problems", "the target '%1' is a folder")
                              .arg(target.name)
                        : folderProblem(target.name);
}

void ValueCheck::checkTarget(const TargetUse &target, const QStringList &earlier)
{
    if (const QString problem = targetProblem(target, earlier); !problem.isEmpty()) {
        const auto output =
            std::ranges::find(m_infos, ParameterInfo::File::Output, &ParameterInfo::file);
        add(output == m_infos.end() ? QString() : output->name, problem);
    }
}

/// An action whose rows come from pins does nothing, or writes an empty file, without a link.
void ActionCheck::checkLinks()
{
    const bool isLinked =
        std::any_of(m_graph.links.begin(), m_graph.links.end(),
                    [&](const CorvantaGraph::Link &link) { return link.to.action == m_action.id; });
    if (m_item.pinInCount() == 0 || isLinked) {
        return;
    }
    const bool isWriter =
        m_item.pinOutCount() == 0 ||
        std::any_of(m_infos.begin(), m_infos.end(), [](const ParameterInfo &info) {
            return info.file == ParameterInfo::File::Output;
        });
    add(m_action.parameters.line(),
        isWriter ? QCoreApplication::translate("Problems", "no link leads to this writer")
                 : QCoreApplication::translate("Problems", "no link leads to its input pins"),
        Kind::Idle);
}

void ValueCheck::checkOwnProblems()
{
    for (const ParameterProblem &problem : m_parameters.problems()) {
        if (hasUnknownVariable(valueOf(problem.parameter))) {
            continue;
        }
        const bool isError = problem.severity == ParameterProblem::Severity::Error;
        add(problem.parameter, problem.text, isError ? Kind::Missing : Kind::Hint);
    }
}

QStringList namesOf(const QVector<TargetUse> &targets)
{
    return corvanta::mapped<QStringList>(targets,
                                         [](const TargetUse &target) { return target.name; });
}

/// Calls `visit(action, item, parameters)` for the actions whose parameters are declared.
template <class F>
void forEachAction(const CorvantaGraph &graph, const ActionRegistry &registry,
                   GlobalParameters *global, F visit)
{
    for (const CorvantaGraph::Action &action : graph.actions) {
        // Null for an unknown type; plug-ins of others may implement only the contract.
        const std::unique_ptr<ActionItem> item = registry.create(action.parameters, global);
        if (const auto *const parameters = dynamic_cast<const ActionParameters *>(item.get())) {
            visit(action, *item, *parameters);
        }
    }
}

} // namespace

QString fileOfInput(const QString &name)
{
    for (const auto marker : {".zip@"_L1, ".xlsx@"_L1}) {
        const qsizetype at = name.indexOf(marker);
        if (at >= 0) {
            return name.left(at + marker.size() - 1);
        }
    }
    return name;
}

QVector<ParameterProblem> valueProblems(const ActionItem &item)
{
    QVector<ParameterProblem> problems;
    const auto *const parameters = dynamic_cast<const ActionParameters *>(&item);
    if (parameters == nullptr) {
        return problems;
    }
    for (const ValueCheck::Finding &finding : ValueCheck(item, *parameters).findings({})) {
        problems.append({finding.parameter, finding.text,
                         finding.kind == Kind::Hint ? ParameterProblem::Severity::Warning
                                                    : ParameterProblem::Severity::Error});
    }
    return problems;
}

CorvantaGraph::Problems CorvantaGraph::findMistakes(const ActionRegistry &registry,
                                                    const QMap<QString, QString> &given) const
{
    GlobalParameters global;
    applyTo(&global, given, QString());
    ProblemList problems(fileName);
    forEachAction(*this, registry, &global,
                  [&](const Action &action, ActionItem &item, const ActionParameters &parameters) {
                      ActionCheck(*this, action, item, parameters, problems).findMistakes();
                  });
    Problems found = problems.problems();
    found.removeIf([](const Problem &problem) {
        return problem.kind != Kind::Mistake && problem.kind != Kind::Idle;
    });
    return mistakes + found;
}

CorvantaGraph::Problems CorvantaGraph::check(const ActionRegistry &registry,
                                             const QMap<QString, QString> &given,
                                             const QString &outDir) const
{
    GlobalParameters global;
    applyTo(&global, given, outDir);
    ProblemList problems(fileName);
    QStringList earlier;
    forEachAction(*this, registry, &global,
                  [&](const Action &action, ActionItem &item, const ActionParameters &parameters) {
                      ActionCheck check(*this, action, item, parameters, problems);
                      check.findMistakes();
                      check.findMissing(earlier);
                      earlier << namesOf(parameters.targets());
                  });
    return mistakes + problems.problems();
}

QStringList CorvantaGraph::outputs(const ActionRegistry &registry,
                                   const QMap<QString, QString> &given, const QString &outDir) const
{
    GlobalParameters global;
    applyTo(&global, given, outDir);
    QStringList names;
    forEachAction(*this, registry, &global,
                  [&](const Action &, ActionItem &, const ActionParameters &parameters) {
                      names << namesOf(parameters.targets());
                  });
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}
