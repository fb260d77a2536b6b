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

/// The line of a parameter table for `definitions`. They are saved inside a `VariableDef` element.
template <class P> Param<P> variableDefinitions(std::vector<VariableDefinition> P::*definitions)
{
    return children("V", definitions, variableDefinitionTable())
        .inside(kVariableDefinitions)
        .label("Labels and formats of columns")
        .meaning("One V (n, label, format, l) per column that needs one, with its name, a label, a "
                 "format of SAS such as DATE9., and in transport files the width of its numbers.");
}

} // namespace corvanta
