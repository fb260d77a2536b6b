// Labels, formats and widths of single variables, for the writers of SAS files.
#pragma once
#include "corvanta/params/param_children.h"

#include <vector>

namespace corvanta {

/// Name of the parameter, for messages about it.
inline constexpr char kVariableDefinitions[] = "VariableDef";

/// What is known about the variable of one column, a `V` element.
struct VariableDefinition
{
    /// Name of the column.
    QString name;
    /// Replaces the label that the writer would choose; empty: no change.
    QString label;
    /// A format of SAS, for example "DATE9."; empty: none. With a format of dates or times, the
    /// texts of a column, in the form of ISO 8601, become numbers.
    QString format;
    /// Bytes of a number, 3 to 8, in transport files; 0: as the other numbers.
    int width = 0;
    bool operator==(const VariableDefinition &) const = default;
};

/// The attributes of a `V` element. Constant; made by the first call.
const ParamTable<VariableDefinition> &variableDefinitionTable();
/// The same for transport files, in which each number has a width.
const ParamTable<VariableDefinition> &transportVariableTable();

/// The line of a parameter table for `definitions`, with the attributes of `table`. They are saved
/// inside a `VariableDef` element. `meaning` names the attributes.
template <class P>
Param<P> variableDefinitions(std::vector<VariableDefinition> P::*definitions,
                             const ParamTable<VariableDefinition> &table, const char *meaning)
{
    return children("V", definitions, table)
        .inside(kVariableDefinitions)
        .label("Labels and formats of columns")
        .meaning(meaning);
}

} // namespace corvanta
