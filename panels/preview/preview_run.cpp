#include "panels/preview/preview_run.h"

#include "corvanta/action_item.h"
#include "corvanta/action_registry.h"
#include "corvanta/main_ui.h"

#include <QCoreApplication>

#include <sstream>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

struct PreviewTexts
{
    Q_DECLARE_TR_FUNCTIONS(corvanta::Preview)
};

/// Loaded once: modules are never unloaded.
std::shared_ptr<const ActionRegistry> sharedRegistry()
{
    static const auto shared = [] {
        auto registry = std::make_shared<ActionRegistry>();
        registry->loadAll();
        return registry;
    }();
    return shared;
}

XMLNode elementOf(ActionItem &action)
{
    std::wostringstream out;
    out.exceptions(std::ios::badbit); // otherwise text is lost when there is no memory
    action.save(out, QString::fromLatin1(action.getTypeName()));
    const auto node = XMLNode::parse(QString::fromStdWString(out.str()).toUtf8());
    return node ? *node : XMLNode();
}

} // namespace

PreviewRequest requestOf(ActionItem &action)
{
    PreviewRequest request;
    request.registry = sharedRegistry();
    const CorvantaGraph *const edited = MainUI::editedGraph();
    const int index = action.getIdx();
    if (edited != nullptr && index >= 0 && index < edited->actions.size()) {
        request.graph = *edited;
        request.graph.actions[index].parameters = elementOf(action);
        request.action = edited->actions[index].id;
        return request;
    }
    const GlobalParameters *const global = action.globalParameters();
    request.action = u"action"_s;
    request.graph.actions << CorvantaGraph::Action{request.action, elementOf(action)};
    // Relative names are relative to the folder of this file, which need not exist.
    request.graph.fileName = global == nullptr ? QString() : global->graphDir() + u"/graph"_s;
    return request;
}

PreviewRows previewRows(const PreviewRequest &request, EngineRunner::PinType pin,
                        const std::stop_token &stop)
{
    LogLines log;
    EngineRunner runner;
    const bool isGood = runner.run(request.graph, *request.registry, request.action, 0, pin,
                                   {.mayWrite = false, .stop = stop, .log = &log});
    PreviewRows preview{runner.columns(), runner.rows(), log.worst()};
    if (!isGood && preview.problem.text.isEmpty()) {
        preview.problem = {NoteLabel::Kind::Error, PreviewTexts::tr("The action cannot be run.")};
    }
    return preview;
}

} // namespace corvanta
