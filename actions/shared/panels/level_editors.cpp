#include "actions/shared/panels/level_editors.h"

#include "actions/shared/level_reader.h"
#include "actions/shared/level_writer.h"
#include "codecs/compose/json_levels.h"
#include "codecs/compose/xml_levels.h"
#include "panels/structures/read_levels_editor.h"
#include "panels/structures/write_levels_editor.h"

namespace corvanta::shared {

namespace {

LevelWriting::Text previewOf(ActionItem &action, const PreviewRows &rows)
{
    const auto preview = dynamic_cast<LevelWriter &>(action).preview(rows.columns, rows.rows);
    return {preview.text, preview.problem};
}

} // namespace

FieldEditor *readLevelsEditor(const FieldContext &context)
{
    return new ReadLevelsEditor(context, [](ActionItem &action) {
        return dynamic_cast<LevelReader &>(action).sampledLevels();
    });
}

FieldEditor *jsonLevelsEditor(const FieldContext &context)
{
    return new WriteLevelsEditor(context, {previewOf, compose::defaultJsonLevels});
}

FieldEditor *xmlLevelsEditor(const FieldContext &context)
{
    return new WriteLevelsEditor(context, {previewOf, compose::defaultXmlLevels});
}

} // namespace corvanta::shared
