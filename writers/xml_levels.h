// writers/xml_levels.h
// What the items of writeXML mean.
#pragma once
#include "writers/level_compiler.h"

#include <optional>

namespace corvanta {

/// Compile `levels` (at least one) for a table. With `indent`, the blanks in front of an element of
/// the top level, elements and subtags are put on lines of their own. Faults: see
/// LevelCompiler::compile().
LevelCompiler::Levels compileXmlLevels(const std::vector<WriteLevel> &levels, const OneRow &columns,
                                       std::optional<int> indent);

/// The one level that is written when none is declared: an empty element per row.
std::vector<WriteLevel> defaultXmlLevels(bool writeAllColumns, const QStringList &toWrite);

} // namespace corvanta
