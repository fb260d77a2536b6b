#include "actions/shared/params/variable_definitions.h"

namespace corvanta {

namespace {

using V = VariableDefinition;

/// The attributes that both formats have. The names of the column and of the width are those of
/// StringColDef.
ParamGroup<V> description()
{
    return {
        text("n", &V::name).always().label("Column").meaning("Name of the column."),
        text("label", &V::label).label("Label").meaning("Label of the variable."),
        text("format", &V::format)
            .label("Format")
            .meaning(
                "Format of SAS that shows the values, for example DATE9. or 8.2. With a format "
                "of dates or times, ISO 8601 texts become numbers."),
    };
}

} // namespace

const ParamTable<VariableDefinition> &variableDefinitionTable()
{
    static const ParamTable<V> table{description()};
    return table;
}

const ParamTable<VariableDefinition> &transportVariableTable()
{
    static const ParamTable<V> table{
        description(),
        number("l", &V::width)
            .range(0, 8)
            .lowMeans("as all numbers")
            .label("Width of numbers")
            .meaning("Bytes of each number, 3 to 8; 0: numberWidth."),
    };
    return table;
}

} // namespace corvanta
