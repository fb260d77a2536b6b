#include "studio/data/preview_graph.h"

#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace corvanta::studio {

namespace {

using Graph = CorvantaGraph;

const Graph::Link *linkTo(const Graph &graph, const QString &id, int pin)
{
    const auto found = std::find_if(graph.links.begin(), graph.links.end(), [&](const auto &link) {
        return link.to.action == id && link.to.pin == pin;
    });
    return found == graph.links.end() ? nullptr : &*found;
}

bool writesFiles(const Graph &graph, const ActionRegistry &registry, const QString &id)
{
    const int index = graph.indexOf(id);
    const auto *const action =
        index < 0 ? nullptr
                  : dynamic_cast<const ActionParameters *>(
                        registry.prototype(graph.actions[index].parameters.getName()));
    if (action == nullptr) {
        return false;
    }
    const QVector<ParameterInfo> infos = action->parameters();
    return std::any_of(infos.begin(), infos.end(), [](const ParameterInfo &info) {
        return info.file == ParameterInfo::File::Output;
    });
}

/// The expanded names and patterns of the files that the actions read.
QStringList inputsOf(const Graph &graph, const ActionRegistry &registry)
{
    GlobalParameters global;
    graph.applyTo(&global, {}, QString());
    QStringList files;
    for (const Graph::Action &saved : graph.actions) {
        const std::unique_ptr<ActionItem> action = registry.create(saved.parameters, &global);
        const auto *const parameters = dynamic_cast<const ActionParameters *>(action.get());
        const QStringList inputs = parameters == nullptr ? QStringList() : parameters->inputs();
        for (const QString &input : inputs) {
            files << QDir::cleanPath(fileOfInput(input));
        }
    }
    return files;
}

} // namespace

std::optional<PreviewGraph> previewGraphOf(const Graph &graph, const ActionRegistry &registry,
                                           const Graph::Pin &pin, EngineRunner::PinType type)
{
    PreviewGraph preview{graph, pin, {}};
    // The number of links bounds the steps, also if they form a loop.
    const auto skipWriters = [&](Graph::Pin *from) {
        for (qsizetype step = 0; step <= graph.links.size(); ++step) {
            const Graph::Link *const link = linkTo(graph, from->action, 0);
            if (link == nullptr || !writesFiles(graph, registry, from->action)) {
                return;
            }
            preview.skipped.removeAll(from->action);
            preview.skipped << from->action;
            *from = link->from;
        }
    };
    if (type == EngineRunner::PinIn) {
        const Graph::Link *const link = linkTo(graph, pin.action, pin.pin);
        if (link == nullptr) {
            return std::nullopt;
        }
        preview.source = link->from;
    }
    if (!graph.hasOutputPin(registry, preview.source)) {
        return std::nullopt;
    }
    const Graph whole = graph.upTo(preview.source.action);
    skipWriters(&preview.source);
    for (Graph::Link &link : preview.graph.links) {
        if (whole.indexOf(link.to.action) >= 0) {
            skipWriters(&link.from);
        }
    }
    preview.graph = preview.graph.upTo(preview.source.action);
    preview.skipped.removeIf([&](const QString &id) { return whole.indexOf(id) < 0; });
    return preview;
}

bool readsFiles(const Graph &graph, const ActionRegistry &registry, const QStringList &files)
{
    const QStringList inputs = inputsOf(graph, registry);
    return std::any_of(inputs.begin(), inputs.end(), [&](const QString &input) {
        return std::any_of(files.begin(), files.end(), [&](const QString &file) {
            return QDir::match(input, QDir::cleanPath(file)); // an input may be a pattern
        });
    });
}

QString unrepeatableInput(const Graph &graph, const ActionRegistry &registry)
{
    const QStringList inputs = inputsOf(graph, registry);
    const auto found = std::find_if(inputs.begin(), inputs.end(), [](const QString &input) {
        const QFileInfo info(input);
        return info.exists() && !info.isFile() && !info.isDir();
    });
    return found == inputs.end() ? QString() : *found;
}

QByteArray contentKeyOf(const PreviewGraph &preview)
{
    CorvantaGraph plain = preview.graph;
    for (CorvantaGraph::Action &action : plain.actions) {
        action.x = action.y = 0;
        action.comment.clear();
    }
    QCryptographicHash hash(QCryptographicHash::Sha256);
    // The pin is separated by what neither an id nor a name of a file contains.
    hash.addData(plain.toXml());
    hash.addData('\0' + preview.source.action.toUtf8() + '\0' +
                 QByteArray::number(preview.source.pin) + '\0' + preview.graph.fileName.toUtf8());
    return hash.result();
}

} // namespace corvanta::studio
