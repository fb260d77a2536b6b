// Both parameters are lists, and therefore child elements.
#include "actions/sort/sort_params.h"

#include "actions/shared/tables/table_columns.h"

namespace corvanta {

const ParamTable<SortParams> &sortParamTable()
{
    using P = SortParams;
    static const ParamTable<P> table{
        strings("keys", &P::keys)
            .required()
            .label("Sort by")
            .meaning("Names of columns, the most significant first; -NAME: descending. Missing "
                     "cells come last in both directions. Rows with equal keys keep their order."),
        shared::columnKinds<P>(),
        shared::decimalPoint<P>(),
    };
    return table;
}

} // namespace corvanta
