// The order is that in which the parameters are applied, except that attributes come first.
#include "actions/select/select_params.h"

namespace corvanta {

const ParamTable<SelectParams> &selectParamTable()
{
    using P = SelectParams;
    static const ParamTable<P> table{
        number("firstRow", &P::firstRow)
            .range(1, std::numeric_limits<qint64>::max())
            .label("First row")
            .meaning("Number of the first row of the output; rows count from 1."),
        number("lastRow", &P::lastRow)
            .range(-1, std::numeric_limits<qint64>::max())
            .lowMeans("the last row of the table")
            .label("Last row")
            .meaning("Number of the last row of the output; -1: the last row of the table. The "
                     "input is read no further."),
        strings("columns", &P::columns)
            .label("Columns")
            .meaning("Names of the columns of the output, in order. None: all columns."),
        strings("rename", &P::rename)
            .label("New names")
            .meaning("old=new, one per line: new names of columns of the output."),
    };
    return table;
}

} // namespace corvanta
