#include "actions/write_sas/write_sas_params.h"

namespace corvanta {

const ParamTable<WriteSasParams> &writeSasParamTable()
{
    using P = WriteSasParams;
    static const ParamTable<P> table{
        text<P>("fileName", &P::fileName)
            .outputFile()
            .label("File")
            .meaning("Data set (.sas7bdat) to write."),
        choice("columnNameMode", &P::columnNameMode,
               {{VariableNames::Truncated,
                 "Use the same Column Names as in Corvanta (possibly truncated)"},
                {VariableNames::Whole,
                 "Use the same Column Names as in Corvanta (abort if truncation)"},
                {VariableNames::Numbered,
                 "Column Names are C1,C2,.. and Column Labels are Corvanta Column Names"}})
            .label("Names of the variables")
            .meaning("A name in the data set has at most 32 bytes of UTF-8."),
        choice("stringStorage", &P::stringStorage,
               {{WideText::Truncate, "truncate it, with a warning"}, {WideText::Abort, "abort"}})
            .label("A text wider than its column")
            .meaning("What happens to a text that does not fit."),
        real("f1", &P::f1)
            .label("Automatic width: factor")
            .meaning("Measured widths are the longest text times this factor."),
        number("f2", &P::f2)
            .label("Automatic width: extra bytes")
            .meaning("Bytes added to measured widths."),
        shared::dataSetContent<P>(),
    };
    return table;
}

} // namespace corvanta
