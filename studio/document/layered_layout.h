// Places actions in layers from left to right, so that all links lead to the right.
//
// Each part of the graph that has no link to the others gets rows of its own, below the one before.
// Threads: any.
#pragma once
#include "studio/document/content.h"

#include <QMap>
#include <QSizeF>
#include <QStringList>

namespace corvanta::studio {

/// Distance of the upper left corners of neighbours: of two layers, and of two actions in a layer.
constexpr QSizeF kLayerStep{272, 112};

/// The positions of `ids` by id; the upper left corner of all is `origin`. Links to other actions
/// are ignored. The result depends only on the graph, and keeps the order of the file among equal
/// actions.
QMap<QString, QPointF> layeredLayout(const Content &content, const QStringList &ids,
                                     QPointF origin);

/// Gives all actions the positions where they are shown. Otherwise the next layout of those without
/// a position would move them away from those that have one.
void placeAll(Content *content);

/// Moves an action between the ends of a link. Where they are too close, the later one and what
/// depends on it move to the right.
void placeBetween(Content *content, const QString &id, const LinkRef &link);

} // namespace corvanta::studio
