// One pin after the other: previews of several pins at once would read the same files.
#include "studio/document/input_columns.h"

#include "corvanta/engine_runner.h"
#include "studio/document/error_texts.h"

namespace corvanta::studio {

namespace {

/// Run the graph up to an input pin; blocks.
TableSchema columnsOf(const CorvantaGraph &graph, const ActionRegistry &registry, const QString &id,
                      int pin, const std::stop_token &stop)
{
    ErrorTexts log; // what is wrong with the graph is in the list of problems
    EngineRunner runner;
    // Also after a failure: the columns are known before the row that cannot be read.
    (void)runner.run(graph, registry, id, pin, EngineRunner::PinIn,
                     {.mayWrite = false, .stop = stop, .log = &log});
    return runner.columns();
}

} // namespace

// The owner passes the ids on to panels.
InputColumns::InputColumns(const ActionRegistry &registry,
                           std::function<void(const QString &)> known)
    : m_registry(registry)
    , m_known(std::move(known))
{
}

// Panels ask often; only the first question after a change starts a run.
TableSchema InputColumns::columns(const CorvantaGraph &graph, const QString &id, int pin)
{
    const auto found = m_columns.constFind({id, pin});
    if (found != m_columns.constEnd()) {
        return *found;
    }
    m_graph = graph;
    if (!m_wanted.contains(Pin(id, pin))) {
        m_wanted.append({id, pin});
        if (!m_background.isRunning()) {
            computeNext(graph);
        }
    }
    return {};
}

/// Compute the columns of the first wanted pin, then of the next.
void InputColumns::computeNext(const CorvantaGraph &graph)
{
    const Pin pin = m_wanted.first();
    const auto show = [this, pin](const TableSchema &columns) {
        m_columns.insert(pin, columns);
        m_wanted.removeAll(pin);
        if (!m_wanted.isEmpty()) {
            computeNext(m_graph);
        }
        m_known(pin.first);
    };
    m_background.start(
        [graph, pin, show, &registry = m_registry](const std::stop_token &stop) -> Worker::Show {
            const TableSchema columns = columnsOf(graph, registry, pin.first, pin.second, stop);
            return [show, columns] { show(columns); };
        },
        [show](const QString &) { show({}); });
}

// With all actions at once, because each call begins the current run again.
void InputColumns::forget(const QSet<QString> &ids)
{
    if (ids.isEmpty()) {
        return;
    }
    m_columns.removeIf([&](auto entry) { return ids.contains(entry.key().first); });
    m_wanted.removeIf([&](const Pin &pin) { return ids.contains(pin.first); });
    // A result for an older state of the graph must not arrive.
    m_background.stop();
    if (!m_wanted.isEmpty()) {
        computeNext(m_graph);
    }
}

// For another graph in the same document.
void InputColumns::clear()
{
    m_columns.clear();
    m_wanted.clear();
    m_background.stop();
}

} // namespace corvanta::studio
