#include "actions/write_sas/write_sas_params.h"

// The lines are in the order of saved graphs.
namespace corvanta {

namespace {

using P = WriteSasParams;

/// What happens to names and texts that exceed the limits of the format.
ParamGroup<P> formatLimits()
{
    return {
        choice("columnNameMode", &P::columnNameMode,
               {{VariableNames::Truncated,
                 "Use the same Column Names as in Corvanta (possibly truncated)"},
                {VariableNames::Whole,
                 "Use the same Column Names as in Corvanta (abort if truncation)"},
                {VariableNames::Numbered,
                 "Column Names are C1,C2,.. and Column Labels are Corvanta Column Names"},
                {VariableNames::Valid,
                 "Column Names are valid SAS names and Column Labels are Corvanta Column Names"}})
            .otherwise("cuts the names of the columns")
            .label("Names of the variables")
            .meaning("A name in the data set has at most 32 bytes of UTF-8. Without the option "
                     "VALIDVARNAME=ANY, SAS accepts only letters of ASCII, digits and '_' in it."),
        shared::wideTexts<P>(),
    };
}

/// How a measured width follows from the longest text of a column. Declared widths (StringColDef)
/// stay as they are.
ParamGroup<P> automaticWidths()
{
    return {
        real("f1", &P::f1)
            .onlyWhen("autoWidth", {QStringLiteral("1")})
            .label("Automatic width: factor")
            .meaning("Measured widths are the longest text times this factor."),
        number("f2", &P::f2)
            .onlyWhen("autoWidth", {QStringLiteral("1")})
            .unit("bytes")
            .label("Automatic width: extra bytes")
            .meaning("Bytes added to measured widths."),
    };
}

} // namespace

const ParamTable<WriteSasParams> &writeSasParamTable()
{
    static const ParamTable<P> table{
        shared::dataSetFile<P>("Data set (.sas7bdat) to write."),
        formatLimits(),
        automaticWidths(),
        // Child elements come after all attributes.
        shared::dataSetContent<P>(
            variableDefinitionTable(),
            "One V (n, label, format) per column that needs one, with its name, a label and a "
            "format of SAS such as DATE9."),
    };
    return table;
}

} // namespace corvanta
