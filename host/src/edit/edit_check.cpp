// The checks of one action in its graph, on copies that no other thread uses.
#include "corvanta/edit/edit_check.h"

#include "corvanta/action_item.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/global_parameters.h"
#include "corvanta/main_ui.h"
#include "engine/target_order.h"

#include <algorithm>

namespace corvanta {

namespace {

using File = ParameterInfo::File;

/// A new action with the same parameters; null for one that does not declare them. Not through the
/// saved form, which cannot hold all texts.
std::unique_ptr<ActionItem> copyOf(ActionItem &action, GlobalParameters *global)
{
    const auto *const from = dynamic_cast<const ActionParameters *>(&action);
    if (from == nullptr) {
        return nullptr;
    }
    auto *const empty = new XMLNode; // newInstance() owns it
    std::unique_ptr<ActionItem> copy(action.newInstance(empty, global));
    auto &to = dynamic_cast<ActionParameters &>(*copy);
    for (int i = 0; i < static_cast<int>(from->parameters().size()); ++i) {
        to.setParameterValue(i, from->parameterValue(i));
    }
    return copy;
}

FileUser filesOf(const CorvantaGraph::Action &action, const ActionItem *item)
{
    FileUser user{action.id, action.line};
    if (const auto *const files = dynamic_cast<const ActionParameters *>(item)) {
        user.targets = files->targets();
        user.inputs = files->inputs();
    }
    return user;
}

/// The parameter with the name of the file; empty if there is none.
QString fileParameter(const ActionItem &action)
{
    const QVector<ParameterInfo> infos =
        dynamic_cast<const ActionParameters &>(action).parameters();
    for (const File kind : {File::Output, File::Input}) {
        const auto found = std::find_if(infos.begin(), infos.end(), [&](const ParameterInfo &info) {
            return info.file == kind;
        });
        if (found != infos.end()) {
            return found->name;
        }
    }
    return {};
}

} // namespace

struct EditCheck::Private
{
    QVector<FileUser> users(const ActionRegistry &registry);
    QVector<ParameterProblem> conflicts();

    GlobalParameters global;
    std::unique_ptr<ActionItem> action; // uses `global`; null: nothing can be checked
    CorvantaGraph graph;
    int index = -1; // of the action in the graph; -1: in none
};

EditCheck::EditCheck(ActionItem &action)
    : d(std::make_unique<Private>())
{
    const GlobalParameters *const global = action.globalParameters();
    if (global != nullptr) {
        d->global = *global;
    }
    d->action = copyOf(action, global == nullptr ? nullptr : &d->global);
    const CorvantaGraph *const graph = MainUI::editedGraph();
    if (graph != nullptr && action.getIdx() >= 0 && action.getIdx() < graph->actions.size()) {
        d->graph = *graph;
        d->index = action.getIdx();
    }
}

EditCheck::~EditCheck() = default;

QVector<ParameterProblem> EditCheck::problems() const
{
    return d->action == nullptr ? QVector<ParameterProblem>()
                                : valueProblems(*d->action) + d->conflicts();
}

/// The files of all actions.
QVector<FileUser> EditCheck::Private::users(const ActionRegistry &registry)
{
    QVector<FileUser> users;
    for (const CorvantaGraph::Action &other : std::as_const(graph.actions)) {
        const bool isThis = users.size() == index;
        const auto item = isThis ? nullptr : registry.create(other.parameters, &global);
        users.append(filesOf(other, isThis ? action.get() : item.get()));
    }
    return users;
}

/// The reasons for which a run would be rejected, as far as they concern this action.
QVector<ParameterProblem> EditCheck::Private::conflicts()
{
    if (index < 0 || graph.actions.size() < 2) {
        return {};
    }
    // The editor's registry is not known here; see EngineRunner.
    ActionRegistry registry;
    registry.loadAll();
    if (!graph.validate(registry, {}).isEmpty()) {
        return {}; // an order needs links without loops
    }
    QVector<std::pair<int, int>> links;
    for (const CorvantaGraph::Link &link : std::as_const(graph.links)) {
        links.append({graph.indexOf(link.from.action), graph.indexOf(link.to.action)});
    }
    const QVector<FileUser> files = users(registry);
    QVector<ParameterProblem> problems;
    for (const TargetConflict &conflict : orderByTargets(files, links).conflicts) {
        if (conflict.action == index || conflict.other == index) {
            problems.append({fileParameter(*action), conflict.text});
        }
    }
    return problems;
}

} // namespace corvanta
