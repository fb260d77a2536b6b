// The numbers of the choices are saved: they never change.
#include "actions/union/union_params.h"

namespace corvanta {

const ParamTable<UnionParams> &unionParamTable()
{
    using P = UnionParams;
    static const ParamTable<P> table{
        choice("match", &P::match,
               {{UnionMatch::Names, "by name",
                 "The output has every column of every table; cells of other tables are missing."},
                {UnionMatch::Positions, "by position",
                 "All tables have the same number of columns; the names are those of the first."},
                {UnionMatch::Same, "by name, all equal",
                 "All tables have the same names in the same order; anything else is an error."}})
            .range(0, 2)
            .label("Columns that belong together")
            .meaning("Which columns of the tables become one column of the output."),
        text("lastColumn", &P::lastColumn)
            .label("Last column")
            .meaning("Name of a column that is the last one of the output, such as _FileNames. "
                     "Empty: the columns keep the order in which they appear."),
    };
    return table;
}

} // namespace corvanta
