// The edits of actions and variables.
#include "corvanta/action_parameters.h"
#include "corvanta/edit/worker.h"
#include "studio/document/error_texts.h"
#include "studio/document/file_reader.h"
#include "studio/document/graph_document.h"
#include "studio/document/layered_layout.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// The element with another value of one parameter; empty if the value is not of its type.
XMLNode withParameter(ActionItem &action, const XMLNode &before, const QString &parameter,
                      const QString &value)
{
    const std::unique_ptr<ActionItem> copy(
        action.newInstance(new XMLNode(before), action.globalParameters())); // which owns it
    auto *const parameters = dynamic_cast<ActionParameters *>(copy.get());
    const int index = parameters == nullptr ? -1 : parameters->indexOfParameter(parameter);
    if (index < 0 || !parameters->setParameterValue(index, value)) {
        return {};
    }
    return savedForm(*copy, before, {parameter, value});
}

/// The text of a step on one action, or on several.
QString counted(const QStringList &ids, const QString &one, const QString &several)
{
    return ids.size() == 1 ? one.arg(ids.first()) : several.arg(ids.size());
}

} // namespace

/// The wanted id, or the first free one of its kind: sort, sort2, sort3. `taken` are ids that are
/// about to be added.
QString GraphDocument::uniqueId(const QString &wanted, const QStringList &taken) const
{
    static const QRegularExpression number(u"\\d+$"_s);
    const QString stem = QString(wanted).remove(number);
    QString id = wanted;
    for (int i = 2; contains(id) || taken.contains(id); ++i) {
        id = stem + QString::number(i);
    }
    return id;
}

// The key is never used again, so that removed actions can come back.
Node GraphDocument::newNode(const QString &wantedId, const XMLNode &element, QPointF position)
{
    Node node;
    node.key = m_nextKey++;
    node.id = uniqueId(wantedId);
    node.element = element;
    node.position = canvasPosition(position);
    node.isPlaced = true;
    return node;
}

/// Add a node and its links as one step.
QString GraphDocument::addNode(const QString &text, const Node &node, const QVector<Wire> &wires,
                               int series)
{
    push(
        text,
        [&](Content &content) {
            placeAll(&content);
            content.nodes.append(std::make_shared<const Node>(node));
            content.wires += wires;
        },
        series);
    return node.id;
}

/// What a new action of a type saves: its version, and the parameters that are always saved.
XMLNode GraphDocument::newElement(const QString &type) const
{
    // The copy of the variables is only for the time of the action.
    GlobalParameters global = m_global;
    const auto item = m_registry.create(parsedElement(u"<%1/>"_s.arg(type)), &global);
    return item == nullptr ? XMLNode() : savedElement(*item);
}

// The type is the first name; users rename what they find important.
QString GraphDocument::addAction(const QString &type, QPointF position)
{
    const XMLNode element = newElement(type);
    return element.isEmpty()
               ? QString()
               : addNode(tr("Add %1").arg(type), newNode(type, element, position), {});
}

// Below the actions that are there already, so that a fan of links stays readable.
QString GraphDocument::addActionAfter(const QString &type, const PinRef &from, QString *why)
{
    const ActionItem *const prototype = m_registry.prototype(type);
    if (prototype == nullptr || prototype->maxPinIn() == 0) {
        if (why != nullptr) {
            *why = tr("“%1” has no input.").arg(type);
        }
        return {};
    }
    QPointF at = position(from.action) + QPointF(kLayerStep.width(), 0);
    const auto isTaken = [&](const NodePtr &node) {
        const QPointF distance = node->position - at;
        return qAbs(distance.x()) < kLayerStep.width() && qAbs(distance.y()) < kLayerStep.height();
    };
    while (std::any_of(m_content.nodes.begin(), m_content.nodes.end(), isTaken)) {
        at.ry() += kLayerStep.height();
    }
    const Node node = newNode(type, newElement(type), at);
    return addNode(tr("Add %1").arg(type), node, {{{from, {node.id, 0}}, -1}});
}

// One step: without the link the action would be of no use there.
QString GraphDocument::addActionIntoLink(const QString &type, const LinkRef &link, QString *why)
{
    const ActionItem *const prototype = m_registry.prototype(type);
    const int index = m_content.indexOf(link);
    if (index < 0 || prototype == nullptr || prototype->maxPinIn() == 0 ||
        prototype->pinOutCount() == 0) {
        if (why != nullptr) {
            *why = index < 0 ? tr("There is no such link.")
                             : tr("“%1” has no input or no output.").arg(type);
        }
        return {};
    }
    const Node node = newNode(type, newElement(type), {});
    push(tr("Insert %1 into a link").arg(type), [&](Content &content) {
        content.nodes.append(std::make_shared<const Node>(node));
        content.wires[index].ends.to = {node.id, 0};
        content.wires.insert(index + 1, {{{node.id, 0}, link.to}, -1});
        placeBetween(&content, node.id, link);
    });
    return node.id;
}

// The action is there at once; its levels and columns arrive when the file has been read.
QString GraphDocument::addDataFile(const QString &file, QPointF position, QString *why,
                                   const PinRef &to)
{
    const auto reader = makeReader(m_registry, file, &m_global);
    const XMLNode element = reader == nullptr ? XMLNode() : savedElement(*reader);
    if (element.isEmpty()) {
        if (why != nullptr) {
            *why = tr("No action reads files such as “%1”.").arg(QFileInfo(file).fileName());
        }
        return {};
    }
    const int series = m_nextSeries--;
    const QString name = QFileInfo(file).fileName().section(u'.', 0, 0);
    const Node node = newNode(name.isEmpty() ? element.getName() : name, element, position);
    const QString text = tr("Add %1").arg(node.id);
    const bool isLinked = !to.action.isEmpty() && isFree(to, why);
    addNode(text, node, isLinked ? QVector<Wire>{{{{node.id, 0}, to}, -1}} : QVector<Wire>(),
            series);
    fill(node.id, text, series);
    return node.id;
}

/// Read the beginning of the input of an action in the background, and set what depends on it.
void GraphDocument::fill(const QString &id, const QString &text, int series)
{
    const int key = node(id).key;
    const int revision = node(id).revision;
    auto *const background = new Worker; // one for each file; a child of the document
    background->setParent(this);
    const auto finish = [this, key, revision, text, series, background](const XMLNode &filled,
                                                                        const QString &reason) {
        background->deleteLater();
        finishFill(key, revision, filled, text, series, reason);
    };
    background->start(
        [finish, element = node(id).element, global = m_global,
         &registry = m_registry](const std::stop_token &) -> Worker::Show {
            GlobalParameters variables = global;
            ErrorTexts log;
            const LogScope scope({&log, {}});
            const auto item = registry.create(element, &variables);
            auto *const parameters = dynamic_cast<ActionParameters *>(item.get());
            const bool isFilled = parameters != nullptr && parameters->fillFromInput(-1);
            const XMLNode filled = isFilled ? savedElement(*item) : XMLNode();
            return [finish, filled, reason = log.text()] { finish(filled, reason); };
        },
        [finish](const QString &reason) { finish({}, reason); });
}

/// The end of fill(), with the filled element, or an empty one and the reason.
void GraphDocument::finishFill(int key, int revision, const XMLNode &filled, const QString &text,
                               int series, const QString &reason)
{
    const auto found = std::find_if(m_content.nodes.begin(), m_content.nodes.end(),
                                    [&](const NodePtr &node) { return node->key == key; });
    // The user has removed or edited the action in the meantime.
    if (found == m_content.nodes.end() || (*found)->revision != revision) {
        return;
    }
    const QString id = (*found)->id;
    if (filled.isEmpty()) {
        Q_EMIT fillFailed(id, reason);
    } else {
        setElements({{id, filled}}, text, series);
    }
}

/// Replace the elements of actions, by id.
void GraphDocument::setElements(const QHash<QString, XMLNode> &elements, const QString &text,
                                int series)
{
    const auto change = [&](Content &content) {
        for (auto it = elements.begin(); it != elements.end(); ++it) {
            content.changeNode(m_indexes.value(it.key()), [&](Node &node) {
                node.element = it.value();
                node.revision = m_nextRevision++;
                node.isElementEdited = true;
            });
        }
    };
    push(text, change, series);
}

// Links that are left without an end go too.
void GraphDocument::remove(const QStringList &ids, const QVector<LinkRef> &links,
                           const QVector<int> &notes)
{
    const QSet<QString> removed(ids.begin(), ids.end());
    if (ids.isEmpty() && links.isEmpty() && notes.isEmpty()) {
        return;
    }
    const QString text = !ids.isEmpty() ? counted(ids, tr("Remove “%1”"), tr("Remove %1 actions"))
                         : !links.isEmpty() ? tr("Remove link")
                                            : tr("Remove note");
    push(text, [&](Content &content) {
        content.nodes.removeIf([&](const NodePtr &node) { return removed.contains(node->id); });
        content.wires.removeIf([&](const Wire &wire) {
            return removed.contains(wire.ends.from.action) ||
                   removed.contains(wire.ends.to.action) || links.contains(wire.ends);
        });
        content.notes.removeIf([&](const Note &note) { return notes.contains(note.key); });
    });
}

// A move to the same place is not a step.
void GraphDocument::move(const QMap<QString, QPointF> &positions, int series)
{
    Content after = m_content;
    bool isMoved = false;
    for (auto it = positions.begin(); it != positions.end(); ++it) {
        const int index = m_indexes.value(it.key(), -1);
        if (index >= 0 && after.nodes[index]->position != canvasPosition(it.value())) {
            isMoved = true;
            after.changeNode(index,
                             [&](Node &node) { node.position = canvasPosition(it.value()); });
        }
    }
    if (isMoved) {
        placeAll(&after);
        const QString text = counted(positions.keys(), tr("Move “%1”"), tr("Move %1 actions"));
        push(
            text, [&](Content &content) { content = after; }, series);
    }
}

// The links name the action, so they change in the same step.
bool GraphDocument::rename(const QString &id, const QString &name, QString *why)
{
    const QString wanted = name.trimmed();
    static const QRegularExpression control(u"[\\x00-\\x1f]"_s);
    const bool isAllowed = !wanted.isEmpty() && !wanted.contains(control);
    if (!isAllowed || (contains(wanted) && wanted != id)) {
        if (why != nullptr) {
            *why = isAllowed ? tr("Another action is named “%1”.").arg(wanted)
                             : tr("A name must not be empty or contain control characters.");
        }
        return false;
    }
    if (wanted == id || !contains(id)) {
        return contains(id);
    }
    push(tr("Rename “%1” to “%2”").arg(id, wanted), [&](Content &content) {
        content.changeNode(m_indexes.value(id), [&](Node &node) { node.id = wanted; });
        for (Wire &wire : content.wires) {
            for (PinRef *const pin : {&wire.ends.from, &wire.ends.to}) {
                pin->action = pin->action == id ? wanted : pin->action;
            }
        }
    });
    return true;
}

// Comments are texts of the file only; rows do not depend on them.
void GraphDocument::setComment(const QString &id, const QString &comment, int series)
{
    if (contains(id) && node(id).comment != comment) {
        push(
            tr("Comment on “%1”").arg(id),
            [&](Content &content) {
                content.changeNode(m_indexes.value(id),
                                   [&](Node &node) { node.comment = comment; });
            },
            series);
    }
}

// An empty value is a value; only a null one removes the variable.
void GraphDocument::setVariable(const QString &name, const QString &value, int series)
{
    if (m_content.variables.value(name) == value &&
        m_content.variables.contains(name) != value.isNull()) {
        return;
    }
    push(
        tr("Variable “%1”").arg(name),
        [&](Content &content) {
            if (value.isNull()) {
                content.variables.remove(name);
            } else {
                content.variables.insert(name, value);
            }
        },
        series);
}

// All elements are made before the first one is set: a value that one action rejects sets none.
bool GraphDocument::setParameter(const QStringList &ids, const QString &parameter,
                                 const QString &value)
{
    QHash<QString, XMLNode> elements;
    for (const QString &id : ids) {
        ActionItem *const item = action(id);
        const XMLNode element =
            item == nullptr ? XMLNode() : withParameter(*item, node(id).element, parameter, value);
        if (element.isEmpty()) {
            return false;
        }
        elements.insert(id, element);
    }
    setElements(elements, tr("Set %1").arg(parameter));
    return true;
}

/// Give the inputs that are relative to the old folder of the graph their absolute names.
void GraphDocument::rebaseInputs(const QString &oldFolder)
{
    if (m_global.graphDir() == oldFolder) {
        return;
    }
    QHash<QString, XMLNode> elements;
    for (const NodePtr &node : std::as_const(m_content.nodes)) {
        ActionItem *const item = m_items.value(node->key).get();
        const auto *const parameters = dynamic_cast<const ActionParameters *>(item);
        const auto infos =
            parameters == nullptr ? QVector<ParameterInfo>() : parameters->parameters();
        for (int i = 0; i < infos.size(); ++i) {
            const QString value = infos[i].file == ParameterInfo::File::Input
                                      ? parameters->parameterValue(i)
                                      : QString();
            // Names that begin with a variable or name an included template do not depend on it.
            if (!value.isEmpty() && QDir::isRelativePath(value) && !value.startsWith(u'$') &&
                !value.startsWith(u'>')) {
                const QString absolute = QDir::cleanPath(oldFolder + u'/' + value);
                elements.insert(node->id,
                                withParameter(*item, elements.value(node->id, node->element),
                                              infos[i].name, absolute));
            }
        }
    }
    if (!elements.isEmpty()) {
        setElements(elements, tr("Keep the inputs of the old folder"));
    }
}

// savedForm() keeps what the action does not know.
void GraphDocument::recordEdit(ActionItem *action, const ParameterEdit &edit)
{
    const QString id = idOf(action);
    if (id.isEmpty()) {
        return;
    }
    const XMLNode after = savedForm(*action, node(id).element, edit);
    // The action already has the value; to set it again would disturb the panel.
    m_upToDateKey = node(id).key;
    setElements({{id, after}}, tr("Edit %1 of “%2”").arg(edit.parameter, id), edit.series);
    m_upToDateKey = -1;
}

// A graph file, so that text editors and other windows understand it.
QString GraphDocument::copied(const QStringList &ids) const
{
    Content part;
    for (const QString &id : ids) {
        if (contains(id)) {
            part.nodes.append(m_content.nodes[m_indexes.value(id)]);
            part.changeNode(static_cast<int>(part.nodes.size()) - 1, [](Node &node) {
                node.origin = -1;
                node.isPlaced = true;
            });
        }
    }
    for (const Wire &wire : m_content.wires) {
        if (ids.contains(wire.ends.from.action) && ids.contains(wire.ends.to.action)) {
            part.wires.append({wire.ends, -1});
        }
    }
    return QString::fromUtf8(SourceText().compose(part, m_graph.version));
}

// Links to actions that are not in the text are dropped: their names may mean others here.
QStringList GraphDocument::paste(const QString &text, QPointF position)
{
    const auto graph = CorvantaGraph::parse(text.toUtf8(), QString());
    if (!graph || graph->actions.isEmpty()) {
        return {};
    }
    QPointF corner(graph->actions[0].x, graph->actions[0].y);
    for (const CorvantaGraph::Action &action : graph->actions) {
        corner = {qMin(corner.x(), action.x), qMin(corner.y(), action.y)};
    }
    Content after = m_content;
    placeAll(&after);
    QMap<QString, QString> names; // in this graph, by that in the text
    for (const CorvantaGraph::Action &action : graph->actions) {
        Node node = newNode(uniqueId(action.id, names.values()), action.parameters,
                            QPointF(action.x, action.y) - corner + position);
        node.comment = action.comment;
        names.insert(action.id, node.id);
        after.nodes.append(std::make_shared<const Node>(node));
    }
    for (const auto &[from, to, line] : graph->links) {
        if (names.contains(from.action) && names.contains(to.action)) {
            after.wires.append(
                {{{names.value(from.action), from.pin}, {names.value(to.action), to.pin}}, -1});
        }
    }
    QStringList ids = names.values();
    push(counted(ids, tr("Paste “%1”"), tr("Paste %1 actions")),
         [&](Content &content) { content = after; });
    return ids;
}

// Through the text of the clipboard, but not through the clipboard, which the user may need.
QStringList GraphDocument::duplicate(const QStringList &ids)
{
    if (ids.isEmpty()) {
        return {};
    }
    QPointF corner = position(ids.first());
    for (const QString &id : ids) {
        corner = {qMin(corner.x(), position(id).x()), qMin(corner.y(), position(id).y())};
    }
    constexpr QPointF kShift(32, 32);
    return paste(copied(ids), corner + kShift);
}

// A part of the graph keeps its upper left corner.
void GraphDocument::layout(const QStringList &ids)
{
    const QStringList chosen = ids.isEmpty() ? this->ids() : ids;
    QPointF corner = chosen.isEmpty() ? QPointF() : position(chosen.first());
    for (const QString &id : chosen) {
        corner = {qMin(corner.x(), position(id).x()), qMin(corner.y(), position(id).y())};
    }
    move(layeredLayout(m_content, chosen, ids.isEmpty() ? QPointF() : corner));
}

} // namespace corvanta::studio
