// The paths of a sampled document that a user can choose for the levels of a reader.
//
// A document has several tables, each with levels of its own. What can be chosen for a level
// depends on the levels before it. Threads: pure functions.
#pragma once
#include "codecs/markup/levels/level.h"

#include <QStringList>

#include <vector>

namespace corvanta {

/// The levels of each table of a document.
using SampledLevels = std::vector<std::vector<markup::Level>>;

/// The levels that a user has, as far as they decide what follows: containers and names.
using LevelPlaces = std::vector<markup::Level>;

/// Containers for the level after `before`.
QStringList containersAfter(const SampledLevels &sample, const LevelPlaces &before);
/// Names of the repeated elements in the container of the last of `levels`.
QStringList repeatedIn(const SampledLevels &sample, const LevelPlaces &levels);
/// Paths of values in the occurrences of the last of `levels`.
QStringList valuesIn(const SampledLevels &sample, const LevelPlaces &levels);

} // namespace corvanta
