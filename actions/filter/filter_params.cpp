// The expression is saved always: it is what a reader of the graph wants to see.
#include "actions/filter/filter_params.h"

#include "actions/shared/tables/table_columns.h"

namespace corvanta {

const ParamTable<FilterParams> &filterParamTable()
{
    using P = FilterParams;
    static const ParamTable<P> table{
        text("where", &P::where)
            .required()
            .expanded()
            .always()
            .label("Rows to keep")
            .meaning("Expression that is true for the rows of the output, for example price > 10 "
                     "and (name = 'a b' or day is null). Compares columns, numbers and texts in "
                     "single quotes by = != < <= > >=; \"a column\" with blanks is in double "
                     "quotes."),
        shared::columnKinds<P>(),
        shared::decimalPoint<P>(),
    };
    return table;
}

} // namespace corvanta
