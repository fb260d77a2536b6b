#include "panels/structures/preview_rows.h"

#include "corvanta/action_item.h"
#include "corvanta/action_registry.h"
#include "corvanta/engine_runner.h"
#include "corvanta/main_ui.h"

#include <QSet>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// A text that shows which column and which row it is from.
QString sampleValue(const QString &column, MetaInfo::MetaTypeColumn type, int row)
{
    switch (type) {
    case MetaInfo::Key:
        return QString::number(row);
    case MetaInfo::Float:
        return QString::number(row + 0.5);
    case MetaInfo::Unknown:
        break;
    }
    return u"%1 %2"_s.arg(column, QString::number(row));
}

/// The actions that `id` depends on, with itself.
QSet<QString> neededFor(const CorvantaGraph &graph, const QString &id)
{
    QSet<QString> needed{id};
    for (qsizetype size = 0; size != needed.size();) { // until nothing is added
        size = needed.size();
        for (const CorvantaGraph::Link &link : graph.links) {
            if (needed.contains(link.to.action)) {
                needed.insert(link.from.action);
            }
        }
    }
    return needed;
}

CorvantaGraph partOf(CorvantaGraph graph, const QSet<QString> &actions)
{
    graph.actions.removeIf(
        [&](const CorvantaGraph::Action &action) { return !actions.contains(action.id); });
    graph.links.removeIf([&](const CorvantaGraph::Link &link) {
        return !actions.contains(link.to.action) || !actions.contains(link.from.action);
    });
    return graph;
}

} // namespace

PreviewRows sampleRows(TableSchema columns)
{
    constexpr int kSampleRows = 2;
    PreviewRows sample;
    sample.columns = std::move(columns);
    if (sample.columns.names.isEmpty()) {
        sample.columns.names = {u"a"_s, u"b"_s};
    }
    sample.columns.types.resize(sample.columns.names.size()); // of unknown type
    for (int row = 1; row <= kSampleRows; ++row) {
        QStringList values;
        for (qsizetype i = 0; i < sample.columns.names.size(); ++i) {
            values << sampleValue(sample.columns.names[i], sample.columns.types[i].type(), row);
        }
        sample.rows.append(values);
    }
    return sample;
}

InputPart inputPartOf(const ActionItem &action)
{
    const CorvantaGraph *const graph = MainUI::editedGraph();
    const int index = action.getIdx();
    if (graph == nullptr || index < 0 || index >= graph->actions.size()) {
        return {};
    }
    const QString id = graph->actions[index].id;
    const bool isLinked =
        std::any_of(graph->links.begin(), graph->links.end(), [&](const CorvantaGraph::Link &link) {
            return link.to.action == id && link.to.pin == 0;
        });
    return isLinked ? InputPart{partOf(*graph, neededFor(*graph, id)), id} : InputPart();
}

PreviewRows inputRows(const InputPart &part)
{
    ActionRegistry registry;
    registry.loadAll(); // the modules stay loaded
    // A preview must not write files, which writers before this one would.
    QSet<QString> sources = neededFor(part.graph, part.id);
    sources.remove(part.id);
    EngineRunner runner;
    if (!partOf(part.graph, sources).outputs(registry, {}, {}).isEmpty() ||
        !runner.run(part.graph, registry, part.id, 0, EngineRunner::PinIn, false)) {
        return {};
    }
    return {runner.columns(),
            runner.rows().first(qMin<qsizetype>(PreviewRows::kMaxRows, runner.rows().size())),
            false};
}

} // namespace corvanta
