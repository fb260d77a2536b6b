// Compiles levels whose items are pieces of XML.
#pragma once
#include "codecs/compose/level_compiler.h"

#include <optional>

namespace corvanta::compose {

struct XmlLayout
{
    /// Blanks before an element of the top level. When set, elements and subtags are written on
    /// lines of their own.
    std::optional<int> indent = {};
    /// Write XML that every parser accepts, whatever names the columns have and the cells hold.
    bool wellFormed = false;
};

/// Compile `levels` (at least one) for a table. Faults: see LevelCompiler::compile().
LevelCompiler::Levels compileXmlLevels(const std::vector<WriteLevel> &levels,
                                       const RowView &columns, const XmlLayout &layout);

/// The level that is used when none is declared: an element per row, with attributes.
std::vector<WriteLevel> defaultXmlLevels(bool writeAllColumns, const QStringList &toWrite);

} // namespace corvanta::compose
