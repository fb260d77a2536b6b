// writeXML: writes rows to an XML file of levels and items.
//
// LevelWriter runs the action. What is special to XML is its syntax (codecs/compose/xml_levels.h),
// the encoding of the file, and the declaration at its start. The file is not split.
#pragma once
#include "actions/shared/level_writer.h"
#include "actions/write_xml/write_xml_params.h"

namespace corvanta {

extern const ActionEntry kWriteXmlEntry;

/// The parts of LevelWriter that depend on XML.
class ActionWriteXML final : public ParamAction<ActionWriteXML, WriteXmlParams, LevelWriter>
{
public:
    ActionWriteXML(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteXmlParams> &paramTable() { return writeXmlParamTable(); }

private:
    const LevelWriterParams &rowParams() const override { return m_params; }
    /// Every message begins with a line feed.
    LevelWriterTexts texts() const override;
    std::vector<WriteLevel> declaredLevels() const override;
    compose::LevelCompiler::Levels compileLevels(const std::vector<WriteLevel> &levels,
                                                 const RowView &columns) const override;
    compose::ValueRules valueRules() const override;
    /// The head is the byte-order mark, if any, and the XML declaration.
    FileFrame frame() const override;
};

} // namespace corvanta
