// writers/write_json.h
// writeJSON: rows into a JSON file of levels and items, or one file per value of a column.
#pragma once
#include "actions/shared/level_writer.h"
#include "actions/write_json/write_json_params.h"

namespace corvanta {

class ActionWriteJSON final : public LevelWriter<ActionWriteJSON, WriteJsonParams>
{
public:
    ActionWriteJSON(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteJsonParams> &paramTable() { return writeJsonParamTable(); }
    static void adjustDefaults(WriteJsonParams &params, double savedVersion)
    {
        adjustWriteJsonDefaults(params, savedVersion);
    }

private:
    QString message(WriteProblem problem, const QString &name, const QString &level) const override;
    std::vector<WriteLevel> declaredLevels() const override;
    LevelCompiler::Levels compileLevels(const std::vector<WriteLevel> &levels,
                                        const OneRow &columns) const override;
    ValueRules rules() const override;
    FileFrame frame() const override { return {}; }
    void start() override;
    bool beforeFirstRow(const OneRow &row) override;
    bool beforeRow(const OneRow &row) override;
    QString targetName() const override;

    int m_splitColumn = -1;
    QString m_splitValue; // of the file that is written
};

} // namespace corvanta
