// Compiles levels whose items are pieces of JSON.
#pragma once
#include "codecs/compose/level_compiler.h"

namespace corvanta::compose {

/// Compile `levels` (at least one) for a table; `form` is that of text values. Faults: see
/// LevelCompiler::compile().
LevelCompiler::Levels compileJsonLevels(const std::vector<WriteLevel> &levels,
                                        const RowView &columns, ComposeOperation::TextForm form);

/// The level that is used when none is declared: an object per row.
std::vector<WriteLevel> defaultJsonLevels(bool writeAllColumns, const QStringList &toWrite);

} // namespace corvanta::compose
