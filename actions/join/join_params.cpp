// Attributes come first in a saved graph, lists after them; the panel has its own order.
#include "actions/join/join_params.h"

#include "actions/shared/tables/table_columns.h"

namespace corvanta {

const ParamTable<JoinParams> &joinParamTable()
{
    using P = JoinParams;
    static const ParamTable<P> table{
        choice("type", &P::type,
               {{JoinType::Inner, "inner", "Only rows that have a partner in the other table."},
                {JoinType::Left, "left", "Also the rows of the first table without a partner."},
                {JoinType::Full, "full", "Also the rows of both tables without a partner."}})
            .range(0, 2)
            .label("Rows without a partner")
            .meaning("Which rows without a partner are in the output."),
        text("suffix", &P::suffix)
            .label("Suffix")
            .meaning("Added to the name of a column of the second table that the first has too."),
        strings("keys", &P::keys)
            .required()
            .label("Keys")
            .meaning("Columns whose values must be equal: NAME if both tables have it, else "
                     "NAME=NAME of the second table. Missing cells are equal to nothing."),
        shared::columnKinds<P>(),
    };
    return table;
}

} // namespace corvanta
