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

} // namespace corvanta::studio
