// The columns of a join: those of the output, and those of the second table that are kept.
#pragma once
#include "actions/join/join_params.h"
#include "corvanta/action_base.h"
#include "io/rows/packed_row.h"
#include "io/rows/row_key.h"

#include <optional>
#include <vector>

namespace corvanta {

/// Columns count from 0, in their own table.
struct JoinLayout
{
    rows::ColumnTypes firstTypes;
    std::vector<rows::KeyColumn> firstKey;
    std::vector<rows::KeyColumn> secondKey;
    /// Columns of the second table that are kept; those of the key only for a full join, and then
    /// first.
    std::vector<int> kept;
    rows::ColumnTypes keptTypes;
    /// By kept column: its column of the output. A key is in the column of the first table, and
    /// written only for a row without a partner.
    std::vector<int> outputs;
    int keptKeys = 0; ///< how many of `kept` are of the key
    TableSchema output;
    QStringList renamed; ///< names of the second table that got the suffix
};

/// Find the columns; fails the run of `action` and returns nothing if that is not possible.
std::optional<JoinLayout> findJoinLayout(ActionBase *action, const JoinParams &params,
                                         const TableSchema &first, const TableSchema &second);

} // namespace corvanta
