// Attributes come first in a saved graph, lists after them; the panel has its own order.
#include "actions/cast/cast_params.h"

namespace corvanta {

const ParamTable<CastParams> &castParamTable()
{
    using P = CastParams;
    static const ParamTable<P> table{
        choice(
            "onError", &P::onError,
            {{CastError::Fail, "fail", "The run fails and names row, column and value."},
             {CastError::Missing, "missing", "The cell becomes missing; a warning counts them."}})
            .range(0, 1)
            .label("Values that do not fit")
            .meaning("What happens to a value that the new type does not have."),
        strings("types", &P::types)
            .required()
            .label("Types")
            .meaning("column=LETTER, one per line: K (whole number), F (decimal number), U "
                     "(text). Other columns stay as they are."),
    };
    return table;
}

} // namespace corvanta
