// writers/xml_levels.h
// What the items of writeXML mean.
#pragma once
#include "actions/shared/level_compiler.h"

#include <optional>

namespace corvanta {

struct XmlLayout
{
    std::optional<int> indent = {}; ///< blanks in front of an element of the top level: elements
                                    ///< and subtags are put on lines of their own
    bool wellFormed = false;        ///< whatever the columns are called and hold
};

/// Compile `levels` (at least one) for a table. Faults: see LevelCompiler::compile().
LevelCompiler::Levels compileXmlLevels(const std::vector<WriteLevel> &levels, const OneRow &columns,
                                       const XmlLayout &layout);

/// The one level that is written when none is declared: an empty element per row.
std::vector<WriteLevel> defaultXmlLevels(bool writeAllColumns, const QStringList &toWrite);

} // namespace corvanta
