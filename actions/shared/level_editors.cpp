#include "actions/shared/level_editors.h"

#include "actions/shared/level_reader.h"
#include "panels/structures/read_levels_editor.h"

namespace corvanta::shared {

FieldEditor *readLevelsEditor(const FieldContext &context)
{
    return new ReadLevelsEditor(context, [](ActionItem &action) {
        return dynamic_cast<LevelReader &>(action).sampledLevels();
    });
}

} // namespace corvanta::shared
