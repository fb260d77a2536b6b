#include "actions/shared/params/variable_definitions.h"

namespace corvanta {

const ParamTable<VariableDefinition> &variableDefinitionTable()
{
    using V = VariableDefinition;
    // The names of the column and of the width are those of StringColDef.
    static const ParamTable<V> table{
        text("n", &V::name).always().label("Column").meaning("Name of the column."),
        text("label", &V::label).label("Label").meaning("Label of the variable."),
        text("format", &V::format)
            .label("Format")
            .meaning(
                "Format of SAS that shows the values, for example DATE9. or 8.2. With a format "
                "of dates or times, ISO 8601 texts become numbers."),
        number("l", &V::width)
            .range(0, 8)
            .lowMeans("as all numbers")
            .label("Width of numbers")
            .meaning("Bytes of each number in a transport file, 3 to 8; 0: numberWidth."),
    };
    return table;
}

} // namespace corvanta
