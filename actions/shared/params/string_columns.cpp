#include "actions/shared/params/string_columns.h"

namespace corvanta {

// The short names are those of saved graphs. All three are saved always.
const ParamTable<StringColumn> &stringColumnTable()
{
    // The names are short because a table may have hundreds of text columns.
    static const ParamTable<StringColumn> table{
        text("n", &StringColumn::name).always().label("Column").meaning("Name of the text column."),
        number("l", &StringColumn::width)
            .always()
            .range(0, std::numeric_limits<int>::max())
            .label("Width")
            .unit("bytes")
            .meaning("Width of the column, in bytes; 0: unknown."),
        number("ol", &StringColumn::longest)
            .always()
            .range(0, std::numeric_limits<int>::max())
            .label("Longest text")
            .meaning("Bytes of the longest text that was found when the width was measured; 0: "
                     "unknown."),
    };
    return table;
}

} // namespace corvanta
