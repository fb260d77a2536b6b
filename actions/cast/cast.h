// cast: changes the types of columns. Numbers become texts with the fewest digits that give the
// same value again, texts become numbers if they are one as a whole.
//
// What does not fit fails the run, or becomes missing with one warning for all values. Missing
// cells stay missing, and an empty text is not a number.
#pragma once
#include "actions/cast/cast_params.h"
#include "actions/shared/tables/row_transform.h"
#include "actions/shared/tables/table_columns.h"
#include "base/occurrences.h"

#include <vector>

namespace corvanta {

extern const ActionEntry kCastEntry;

/// Passes rows on as a whole when no type changes. Threads: as ActionBase.
class ActionCast final : public ParamAction<ActionCast, CastParams, RowTransform>
{
public:
    ActionCast(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<CastParams> &paramTable() { return castParamTable(); }
    QVector<ParameterProblem> problems() const override;

private:
    /// A column whose type changes.
    struct Change
    {
        int column;
        cell::Type from;
        cell::Type to;
    };

    void start() override;
    bool begin(const OneRow &columns) override;
    bool takeRow(const OneRow &row) override;
    bool endInput() override;
    /// Read one element of the parameter. Returns false after a failure.
    bool addChange(const OneRow &columns, const QString &text, shared::Assigned *assigned);
    /// Set one cell of the output. Returns false after a failure.
    bool putChanged(const Change &change, const OneRow &row, OneRow *out);
    /// Fail the run, or count the value; false after a failure.
    bool reportValue(const Change &change, const OneRow &row);

    std::vector<Change> m_changes; // in the order of the parameter
    Occurrences m_lost;            // values that became missing
};

} // namespace corvanta
