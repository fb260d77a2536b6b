// writeXML: writes rows to an XML file of levels and items.
#pragma once
#include "actions/shared/level_writer.h"
#include "actions/write_xml/write_xml_params.h"

namespace corvanta {

extern const ActionEntry kWriteXmlEntry;

class ActionWriteXML final : public ParamAction<ActionWriteXML, WriteXmlParams, LevelWriter>
{
public:
    ActionWriteXML(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteXmlParams> &paramTable() { return writeXmlParamTable(); }

private:
    const LevelWriterParams &rowParams() const override { return m_params; }
    QString message(WriteProblem problem, const QString &name) const override;
    QString levelMessage(compose::LevelProblem problem, const QString &name,
                         const QString &level) const override;
    std::vector<WriteLevel> declaredLevels() const override;
    compose::LevelCompiler::Levels compileLevels(const std::vector<WriteLevel> &levels,
                                                 const RowView &columns) const override;
    compose::ValueRules valueRules() const override;
    FileFrame frame() const override;
};

} // namespace corvanta
