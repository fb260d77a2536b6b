// writeJSON: writes rows to a JSON file of levels and items, or to one file per value of a column.
//
// LevelWriter runs the action. What is special to JSON is its syntax (codecs/compose/json_levels.h)
// and the split of a table into files: when the value of the split column changes, the open file is
// completed and the next text opens the file of the new value. So at most one file is open, and a
// value that returns later replaces its earlier file, unless files are appended to.
#pragma once
#include "actions/shared/level_writer.h"
#include "actions/write_json/write_json_params.h"

namespace corvanta {

extern const ActionEntry kWriteJsonEntry;

/// The parts of LevelWriter that depend on JSON.
class ActionWriteJSON final : public ParamAction<ActionWriteJSON, WriteJsonParams, LevelWriter>
{
public:
    ActionWriteJSON(const XMLNode &saved, GlobalParameters *parameters);
    QVector<ParameterProblem> problems() const override;
    static const ParamTable<WriteJsonParams> &paramTable() { return writeJsonParamTable(); }
    static void adjustDefaults(WriteJsonParams &params, double savedVersion)
    {
        adjustWriteJsonDefaults(params, savedVersion);
    }

    QVector<TargetUse> targets() const override;
    bool needsColumnKinds() const override { return m_params.bareColumns.isEmpty(); }
    void setColumnKinds(const QVector<ColumnKind> &columns) override;

private:
    const LevelWriterParams &rowParams() const override { return m_params; }
    LevelWriterTexts texts() const override;
    std::vector<WriteLevel> declaredLevels() const override;
    compose::LevelCompiler::Levels compileLevels(const std::vector<WriteLevel> &levels,
                                                 const RowView &columns) const override;
    compose::ValueRules valueRules() const override;
    FileFrame frame() const override;
    void start() override;
    /// Find the split column, if the table is split, and take the first file's value.
    bool prepareColumns(const OneRow &columns) override;
    /// Complete the current file before a row of another value.
    bool prepareRow(const OneRow &row) override;
    /// The expanded file name, with the value of the current file when the table is split.
    QString targetName() const override;
    /// The name of the file for rows with this part.
    QString splitName(const QString &part) const;
    void warnUnsorted();
    /// About a floatToString whose numbers are not JSON.
    void warnNumbers(const OneRow &columns);
    /// `names` is the list of the element `parameter`.

    // Index in the input; -1: the table is not split.
    int m_splitColumn = -1;
    // Text of the split column in the rows of the current file.
    QString m_splitValue;
};

} // namespace corvanta
