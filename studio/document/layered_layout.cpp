// Layer of an action: the longest path of links to it. Order in a layer: by the mean position of
// the neighbours in the next layer, in sweeps to the right and to the left, which leaves few
// crossings (the barycenter method of Sugiyama, Tagawa and Toda, 1981).
#include "studio/document/layered_layout.h"

#include <QHash>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <vector>

namespace corvanta::studio {

namespace {

/// The layout of one set of actions. Works with indexes, because graphs may be large.
class Layout
{
public:
    /// Links from and to other actions do not count.
    Layout(const Content &content, const QStringList &ids)
        : m_ids(ids)
        , m_next(static_cast<size_t>(ids.size()))
        , m_previous(m_next.size())
    {
        QHash<QString, size_t> indexes;
        for (qsizetype i = 0; i < ids.size(); ++i) {
            indexes.insert(ids[i], static_cast<size_t>(i));
        }
        for (const Wire &wire : content.wires) {
            const auto from = indexes.constFind(wire.ends.from.action);
            const auto to = indexes.constFind(wire.ends.to.action);
            if (from != indexes.constEnd() && to != indexes.constEnd() && *from != *to) {
                m_next[*from].push_back(*to);
                m_previous[*to].push_back(*from);
            }
        }
    }

    /// The parts of the graph, one below the other.
    QMap<QString, QPointF> positions(QPointF origin)
    {
        findLayers();
        QMap<QString, QPointF> result;
        for (const std::vector<size_t> &part : parts()) {
            placePart(part);
            double bottom = 0;
            for (const size_t node : part) {
                const QPointF at(m_layer[node] * kLayerStep.width(),
                                 m_row[node] * kLayerStep.height());
                result.insert(m_ids[static_cast<qsizetype>(node)], origin + at);
                bottom = std::max(bottom, at.y() + kLayerStep.height());
            }
            origin.ry() += bottom;
        }
        return result;
    }

private:
    /// A loop has no first action; its links that lead back are ignored.
    void findLayers()
    {
        m_layer.assign(m_next.size(), 0);
        std::vector<size_t> open(m_next.size());
        std::transform(m_previous.begin(), m_previous.end(), open.begin(),
                       [](const auto &list) { return list.size(); });
        std::vector<size_t> ready;
        for (size_t i = 0; i < open.size(); ++i) {
            if (open[i] == 0) {
                ready.push_back(i);
            }
        }
        for (size_t i = 0; i < ready.size(); ++i) {
            for (const size_t next : m_next[ready[i]]) {
                m_layer[next] = std::max(m_layer[next], m_layer[ready[i]] + 1);
                if (--open[next] == 0) {
                    ready.push_back(next);
                }
            }
        }
    }

    /// The connected parts, each in the order of the file.
    std::vector<std::vector<size_t>> parts() const
    {
        std::vector<std::vector<size_t>> all;
        std::vector<bool> seen(m_next.size());
        for (size_t start = 0; start < m_next.size(); ++start) {
            if (!seen[start]) {
                all.push_back(partOf(start, &seen));
            }
        }
        return all;
    }

    /// The part of one action; marks what it has.
    std::vector<size_t> partOf(size_t start, std::vector<bool> *seen) const
    {
        std::vector<size_t> part;
        const auto add = [&](size_t node) {
            if (!(*seen)[node]) {
                (*seen)[node] = true;
                part.push_back(node);
            }
        };
        add(start);
        for (size_t i = 0; i < part.size(); ++i) {
            const size_t node = part[i];
            std::ranges::for_each(m_next[node], add);
            std::ranges::for_each(m_previous[node], add);
        }
        std::sort(part.begin(), part.end());
        return part;
    }

    /// Find the rows of the actions of a part.
    void placePart(const std::vector<size_t> &part)
    {
        m_row.resize(m_next.size());
        std::vector<std::vector<size_t>> layers;
        for (const size_t node : part) {
            const auto layer = static_cast<size_t>(m_layer[node]);
            layers.resize(std::max(layers.size(), layer + 1));
            m_row[node] = static_cast<double>(layers[layer].size());
            layers[layer].push_back(node);
        }
        constexpr int kSweeps = 6;
        for (int sweep = 0; sweep < kSweeps; ++sweep) {
            for (size_t i = 1; i < layers.size(); ++i) {
                sortLayer(&layers[i], m_previous);
            }
            for (size_t i = layers.size() - 1; i-- > 0;) {
                sortLayer(&layers[i], m_next);
            }
        }
        alignRows(layers);
    }

    /// The mean row of the neighbours; the own row without any.
    double meanRow(size_t node, const std::vector<std::vector<size_t>> &neighbours) const
    {
        double sum = 0;
        for (const size_t other : neighbours[node]) {
            sum += m_row[other];
        }
        const auto count = static_cast<double>(neighbours[node].size());
        return count == 0 ? m_row[node] : sum / count;
    }

    /// Order a layer by the neighbours on one side. Stable, so that equal actions keep their order.
    void sortLayer(std::vector<size_t> *layer, const std::vector<std::vector<size_t>> &neighbours)
    {
        std::vector<std::pair<double, size_t>> keys;
        keys.reserve(layer->size());
        for (const size_t node : *layer) {
            keys.emplace_back(meanRow(node, neighbours), node);
        }
        std::stable_sort(keys.begin(), keys.end(),
                         [](const auto &a, const auto &b) { return a.first < b.first; });
        for (size_t i = 0; i < keys.size(); ++i) {
            (*layer)[i] = keys[i].second;
            m_row[keys[i].second] = static_cast<double>(i);
        }
    }

    /// Move actions down to the middle of their sources, so that chains are straight lines.
    void alignRows(const std::vector<std::vector<size_t>> &layers)
    {
        for (const std::vector<size_t> &layer : layers) {
            double free = 0;
            for (const size_t node : layer) {
                m_row[node] = std::max(free, meanRow(node, m_previous));
                free = m_row[node] + 1;
            }
        }
        double top = m_row[layers[0][0]];
        for (const std::vector<size_t> &layer : layers) {
            top = std::min(top, m_row[layer[0]]);
        }
        for (const std::vector<size_t> &layer : layers) {
            for (const size_t node : layer) {
                m_row[node] = std::round((m_row[node] - top) * 2) / 2;
            }
        }
    }

    const QStringList &m_ids;
    // By index in m_ids: the neighbours along the links, the layer, and the row in the part.
    std::vector<std::vector<size_t>> m_next;
    std::vector<std::vector<size_t>> m_previous;
    std::vector<int> m_layer;
    std::vector<double> m_row;
};

} // namespace

QMap<QString, QPointF> layeredLayout(const Content &content, const QStringList &ids, QPointF origin)
{
    return Layout(content, ids).positions(origin);
}

void placeAll(Content *content)
{
    for (int i = 0; i < content->nodes.size(); ++i) {
        if (!content->nodes[i]->isPlaced) {
            content->changeNode(i, [](Node &node) { node.isPlaced = true; });
        }
    }
}

namespace {

/// An action and all that get rows of it.
QSet<QString> fromActionOn(const Content &content, const QString &id)
{
    QSet<QString> found{id};
    for (qsizetype before = 0; before != found.size();) {
        before = found.size();
        for (const Wire &wire : content.wires) {
            if (found.contains(wire.ends.from.action)) {
                found.insert(wire.ends.to.action);
            }
        }
    }
    return found;
}

} // namespace

void placeBetween(Content *content, const QString &id, const LinkRef &link)
{
    const double step = kLayerStep.width();
    const QPointF from = content->nodes[content->indexOf(link.from.action)]->position;
    const QPointF to = content->nodes[content->indexOf(link.to.action)]->position;
    const double distance = to.x() - from.x();
    // Only where rows go from left to right.
    const double missing = distance > 0 ? qMax(0.0, 2 * step - distance) : 0;
    const QPointF place = (from + to + QPointF(missing, 0)) / 2;
    placeAll(content);
    content->changeNode(content->indexOf(id),
                        [&](Node &node) { node.position = canvasPosition(place); });
    const QSet<QString> later = fromActionOn(*content, link.to.action);
    for (int i = 0; missing > 0 && i < content->nodes.size(); ++i) {
        const NodePtr &node = content->nodes[i];
        if (later.contains(node->id) && node->position.x() >= to.x()) {
            content->changeNode(i, [&](Node &moved) { moved.position.rx() += missing; });
        }
    }
}

} // namespace corvanta::studio
