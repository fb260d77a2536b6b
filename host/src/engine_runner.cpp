// Previews: runs the part of a graph that a pin depends on, with a listener at the pin.
#include "corvanta/engine_runner.h"

#include "base/platform/files.h"
#include "corvanta/action_item.h"
#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/global_parameters.h"
#include "corvanta/main_ui.h"
#include "corvanta/row_listener.h"
#include "corvanta/run.h"

#include <algorithm>
#include <memory>
#include <optional>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// The output pin that is linked to an input pin; nothing if there is no link.
std::optional<CorvantaGraph::Pin> sourceOf(const CorvantaGraph &graph, const QString &id, int pin)
{
    const auto link = std::ranges::find_if(graph.links, [&](const CorvantaGraph::Link &candidate) {
        return candidate.to.action == id && candidate.to.pin == pin;
    });
    return link == graph.links.end() ? std::nullopt : std::optional(link->from);
}

/// A pipe or device that an action of the part reads; empty: none.
QString pipeIn(const CorvantaGraph &part, const ActionRegistry &registry)
{
    GlobalParameters global;
    part.applyTo(&global, {}, QString());
    for (const CorvantaGraph::Action &action : part.actions) {
        const std::unique_ptr<ActionItem> item = registry.create(action.parameters, &global);
        const auto *const parameters = dynamic_cast<const ActionParameters *>(item.get());
        const QStringList files = parameters == nullptr ? QStringList() : parameters->inputs();
        const auto pipe = std::ranges::find_if(files, platform::isPipeOrDevice);
        if (pipe != files.end()) {
            return *pipe;
        }
    }
    return {};
}

/// What a preview must not do to the world outside, in the words of a message; empty: nothing.
QString effectOf(const CorvantaGraph &part, const ActionRegistry &registry)
{
    const QStringList written = part.outputs(registry, {}, QString());
    if (!written.isEmpty()) {
        return u"run actions that write files ('%1')"_s.arg(written.first());
    }
    const QString pipe = pipeIn(part, registry);
    return pipe.isEmpty() ? QString()
                          : u"read a pipe, whose bytes a run would miss ('%1')"_s.arg(pipe);
}

/// Whether the part can be run for a preview. Logs what is wrong with it.
bool canRun(const CorvantaGraph &part, const ActionRegistry &registry,
            const EngineRunner::Options &options)
{
    const LogScope scope({options.log, {}});
    CorvantaGraph::Problems problems = part.validate(registry, {});
    for (const CorvantaGraph::Problem &problem : std::as_const(problems)) {
        MainUI::addLog(MainUI::Error, problem.text);
    }
    if (!problems.isEmpty()) {
        return false;
    }
    const QString effect = options.mayWrite ? QString() : effectOf(part, registry);
    if (!effect.isEmpty()) {
        MainUI::addLog(MainUI::Error, u"Error: a preview does not %1\n"_s.arg(effect));
    }
    return effect.isEmpty();
}

} // namespace

bool EngineRunner::run(int pin, ActionItem *action, PinType type, bool wholeTable)
{
    const CorvantaGraph *const graph = MainUI::editedGraph();
    const int index = action->getIdx();
    if (graph == nullptr || index < 0 || index >= graph->actions.size()) {
        return false;
    }
    // The editor's registry is not known here; loading the modules again costs little, because they
    // are never unloaded.
    ActionRegistry registry;
    registry.loadAll();
    return run(*graph, registry, graph->actions[index].id, pin, type, {.wholeTable = wholeTable});
}

bool EngineRunner::run(const CorvantaGraph &graph, const ActionRegistry &registry,
                       const QString &id, int pin, PinType type, const Options &options)
{
    m_columns = {};
    m_rows.clear();
    // An input pin shows what its source sends.
    const std::optional<CorvantaGraph::Pin> source =
        type == PinIn ? sourceOf(graph, id, pin) : CorvantaGraph::Pin{id, pin};
    if (!source || !graph.hasOutputPin(registry, *source)) {
        return false;
    }
    const CorvantaGraph part = graph.upTo(source->action);
    // Other parts of an edited graph may be incomplete; a preview needs only this one.
    if (!canRun(part, registry, options)) {
        return false;
    }
    // Called on the listener's thread. run.wait() below orders its writes before the caller's
    // reads.
    const auto keepRow = [&](const TableSchema &columns, const OneRow *row) {
        m_columns = columns;
        if (row != nullptr) {
            m_rows.append(textsOf(*row));
        }
        return options.wholeTable || m_rows.size() < kPreviewRows;
    };
    RunOptions runOptions;
    runOptions.log = options.log;
    runOptions.keepPartial = true; // the rows before a failure
    runOptions.listeners.push_back(
        {u"preview"_s, *source,
         std::make_unique<RowListener>(options.onRow ? options.onRow
                                                     : RowListener::Callback(keepRow))});
    Run run(part, registry, std::move(runOptions));
    const std::stop_callback stop(options.stop, [&run] { run.stop(); });
    run.start();
    run.wait();
    // The listener has stopped it when it had enough rows.
    return !run.failed() && !options.stop.stop_requested();
}
