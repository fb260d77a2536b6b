// A writer with an output pin passes on every row of its input pin, so that the rows of a pin after
// it can be seen without writing: the links after the writer begin at the pin before it.
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

/// An input pin has at most one link. Null: it has none.
const Graph::Link *linkTo(const Graph &graph, const QString &id, int pin)
{
    const auto found = std::find_if(graph.links.begin(), graph.links.end(), [&](const auto &link) {
        return link.to.action == id && link.to.pin == pin;
    });
    return found == graph.links.end() ? nullptr : &*found;
}

/// As the type declares it: the name of the file need not be set yet.
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

/// The output pin whose rows a pin has; none for an input pin without a link.
std::optional<Graph::Pin> outputFor(const Graph &graph, const Graph::Pin &pin,
                                    EngineRunner::PinType type)
{
    if (type == EngineRunner::PinOut) {
        return pin;
    }
    const Graph::Link *const link = linkTo(graph, pin.action, pin.pin);
    return link == nullptr ? std::nullopt : std::optional(link->from);
}

/// Replaces output pins of writers by the pins that the writers read.
class WriterSkipper
{
public:
    WriterSkipper(const Graph &graph, const ActionRegistry &registry)
        : m_graph(graph)
        , m_registry(registry)
    {
    }
    /// The first pin before `pin` that no writer passes on. Adds the ids of the writers to
    /// `skipped`.
    Graph::Pin sourceOf(Graph::Pin pin, QStringList *skipped) const
    {
        // An edited graph may have a loop of links, which the number of links bounds.
        for (qsizetype step = 0; step <= m_graph.links.size(); ++step) {
            const Graph::Link *const link = linkTo(m_graph, pin.action, 0);
            if (link == nullptr || !writesFiles(m_graph, m_registry, pin.action)) {
                break;
            }
            *skipped << pin.action;
            pin = link->from;
        }
        return pin;
    }

private:
    const Graph &m_graph;
    const ActionRegistry &m_registry;
};

} // namespace

std::optional<PreviewGraph> previewGraphOf(const Graph &graph, const ActionRegistry &registry,
                                           const Graph::Pin &pin, EngineRunner::PinType type)
{
    const std::optional<Graph::Pin> source = outputFor(graph, pin, type);
    if (!source || !graph.hasOutputPin(registry, *source)) {
        return std::nullopt;
    }
    const WriterSkipper skipper(graph, registry);
    PreviewGraph preview{graph.upTo(source->action), *source, {}};
    preview.source = skipper.sourceOf(*source, &preview.skipped);
    for (Graph::Link &link : preview.graph.links) {
        link.from = skipper.sourceOf(link.from, &preview.skipped);
    }
    // The writers are no longer linked to anything that the pin depends on.
    preview.graph = preview.graph.upTo(preview.source.action);
    preview.skipped.removeDuplicates();
    return preview;
}

/// Both names are absolute. Links are not followed: that could block on a network drive.
bool readsFiles(const Graph &graph, const ActionRegistry &registry, const QStringList &files)
{
    const QStringList inputs = inputsOf(graph, registry); // patterns, or names without a wildcard
    return std::any_of(files.begin(), files.end(), [&](const QString &file) {
        const QString name = QDir::cleanPath(file);
        return inputs.contains(name) || QDir::match(inputs, name);
    });
}

/// A pipe or a device: what a preview has read from it, a run would not get again. A name without a
/// file is not one: the run reports that it is missing.
bool isStream(const QString &name)
{
    const QFileInfo info(name);
    return info.exists() && !info.isFile() && !info.isDir();
}

QString unrepeatableInput(const Graph &graph, const ActionRegistry &registry)
{
    const QStringList inputs = inputsOf(graph, registry);
    const auto found = std::ranges::find_if(inputs, isStream);
    return found == inputs.end() ? QString() : *found;
}

/// The name of the file counts, because relative names depend on its folder.
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
