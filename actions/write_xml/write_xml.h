// writers/write_xml.h
// writeXML: rows into an XML file of levels and items.
#pragma once
#include "actions/shared/level_writer.h"
#include "actions/write_xml/write_xml_params.h"

namespace corvanta {

class ActionWriteXML final : public LevelWriter<ActionWriteXML, WriteXmlParams>
{
public:
    ActionWriteXML(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteXmlParams> &paramTable() { return writeXmlParamTable(); }

private:
    QString message(WriteProblem problem, const QString &name, const QString &level) const override;
    std::vector<WriteLevel> declaredLevels() const override;
    LevelCompiler::Levels compileLevels(const std::vector<WriteLevel> &levels,
                                        const OneRow &columns) const override;
    ValueRules rules() const override;
    FileFrame frame() const override;
};

} // namespace corvanta
