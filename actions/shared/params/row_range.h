// The parameters that choose some rows of each file of a reader, so that several runs can share the
// rows of one file.
#pragma once
#include "corvanta/action_base.h"
#include "corvanta/params/param_table.h"

#include <limits>
#include <optional>

namespace corvanta::shared {

/// The values are texts, because they may contain variables of the graph.
struct RowRangeParams
{
    QString firstRow = QStringLiteral("1");
    QString rowCount = QStringLiteral("0");
};

/// Rows of a file.
struct RowRange
{
    qint64 skipped = 0; ///< rows before the first one
    qint64 count = 0;   ///< 0: all that follow
};

/// `P` is derived from RowRangeParams. `skipping` says what is not read.
template <class P> ParamGroup<P> rowRange(const char *skipping)
{
    return {
        text<P>("firstRow", &P::firstRow)
            .wholeNumber(1, std::numeric_limits<qint64>::max())
            .otherwise("fails the run")
            .label("First row")
            .meaning(skipping),
        text<P>("rowCount", &P::rowCount)
            .wholeNumber(0, std::numeric_limits<qint64>::max())
            .lowMeans("all rows")
            .otherwise("fails the run")
            .label("Number of rows")
            .meaning("Number of rows of each file that are read, starting at firstRow; 0: all."),
    };
}

/// The range with the variables of the graph. Without it the run has failed.
std::optional<RowRange> rowRangeOf(ActionBase &action, const RowRangeParams &params);

} // namespace corvanta::shared
