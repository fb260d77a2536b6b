// writers/json_levels.h
// What the items of writeJSON mean.
#pragma once
#include "actions/shared/level_compiler.h"

namespace corvanta {

/// Compile `levels` (at least one) for a table; `form` is that of text values. Faults: see
/// LevelCompiler::compile().
LevelCompiler::Levels compileJsonLevels(const std::vector<WriteLevel> &levels,
                                        const OneRow &columns, ComposeOperation::TextForm form);

/// The one level that is written when none is declared: an object per row.
std::vector<WriteLevel> defaultJsonLevels(bool writeAllColumns, const QStringList &toWrite);

} // namespace corvanta
