// The editors of the levels of readers and writers, with what the actions know about their levels.
//
// Each is a MakeEditor for the layout of a panel. Threads: the GUI thread.
#pragma once
#include "panels/field_editor.h"

namespace corvanta::shared {

/// Of an action derived from LevelReader.
FieldEditor *readLevelsEditor(const FieldContext &context);
/// Of writeJSON and of writeXML.
FieldEditor *jsonLevelsEditor(const FieldContext &context);
FieldEditor *xmlLevelsEditor(const FieldContext &context);

} // namespace corvanta::shared
