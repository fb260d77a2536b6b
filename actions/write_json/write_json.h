// writeJSON: writes rows to a JSON file of levels and items, or to one file per value of a column.
#pragma once
#include "actions/shared/level_writer.h"
#include "actions/write_json/write_json_params.h"

namespace corvanta {

extern const ActionEntry kWriteJsonEntry;

class ActionWriteJSON final : public ParamAction<ActionWriteJSON, WriteJsonParams, LevelWriter>
{
public:
    ActionWriteJSON(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteJsonParams> &paramTable() { return writeJsonParamTable(); }
    static void adjustDefaults(WriteJsonParams &params, double savedVersion)
    {
        adjustWriteJsonDefaults(params, savedVersion);
    }

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
    void start() override;
    bool prepareColumns(const OneRow &columns) override;
    bool prepareRow(const OneRow &row) override;
    QString targetName() const override;
    void warnUnsorted();

    int m_splitColumn = -1;
    QString m_splitValue; // of the current file
};

} // namespace corvanta
